#ifndef TORVIXML_INCOMPLETEDEFINITIONEXCEPTION_H
#define TORVIXML_INCOMPLETEDEFINITIONEXCEPTION_H

#include "RGException.h"

/// Thrown when an element without data is added to a list in validation mode.
class RGBASE_EXPORT IncompleteDefinitionException : public RGException
{
public:
    explicit IncompleteDefinitionException(const QString& message);
    IncompleteDefinitionException(const IncompleteDefinitionException& other);
    ~IncompleteDefinitionException() override;
};

#endif
