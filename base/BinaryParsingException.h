#ifndef TORVIXML_BINARYPARSINGEXCEPTION_H
#define TORVIXML_BINARYPARSINGEXCEPTION_H

#include "RGException.h"

/// Thrown when the binary form of an object is inconsistent.
class RGBASE_EXPORT BinaryParsingException : public RGException
{
public:
    explicit BinaryParsingException(const QString& message);
    BinaryParsingException(const BinaryParsingException& other);
    ~BinaryParsingException() override;
};

#endif
