#ifndef TORVIXML_REPORTEXCEPTION_H
#define TORVIXML_REPORTEXCEPTION_H

#include "rgbase_export.h"

#include <QString>

/// Root of the report-object exception hierarchy. Deliberately not derived
/// from std::exception: handlers for std::exception do not catch it.
class RGBASE_EXPORT ReportException
{
public:
    explicit ReportException(const QString& message);
    ReportException(const ReportException& other);
    ReportException& operator=(const ReportException& other);
    virtual ~ReportException();

    /// The message text the exception was constructed with.
    QString GetMessageText() const;

private:
    QString m_message;
};

#endif
