#ifndef TORVIXML_LOGGER_H
#define TORVIXML_LOGGER_H

#include "rgbase_export.h"

#include <QString>
#include <QStringList>

namespace REPORTGENERATOR {

/// A sink for diagnostic messages, shared by all objects of one tree through
/// std::shared_ptr. Report objects only hold and hand on their logger; what is
/// logged, and when, is up to the application.
class RGBASE_EXPORT Logger
{
public:
    Logger();
    virtual ~Logger();

    /// Appends one message. The default implementation keeps it in memory.
    virtual void Log(const QString& message);
    /// The messages logged so far, oldest first.
    QStringList Messages() const;

private:
    QStringList m_messages;
};

} // namespace REPORTGENERATOR

#endif
