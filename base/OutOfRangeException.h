#ifndef TORVIXML_OUTOFRANGEEXCEPTION_H
#define TORVIXML_OUTOFRANGEEXCEPTION_H

#include "RGException.h"

/// Thrown when a value is rejected or a required member is missing in validation mode.
class RGBASE_EXPORT OutOfRangeException : public RGException
{
public:
    explicit OutOfRangeException(const QString& message);
    OutOfRangeException(const OutOfRangeException& other);
    ~OutOfRangeException() override;
};

#endif
