#ifndef TORVIXML_RGEXCEPTION_H
#define TORVIXML_RGEXCEPTION_H

#include "ReportException.h"

/// Base of the exceptions thrown by report objects.
class RGBASE_EXPORT RGException : public ReportException
{
public:
    explicit RGException(const QString& message);
    RGException(const RGException& other);
    ~RGException() override;
};

#endif
