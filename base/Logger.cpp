#include "Logger.h"

namespace REPORTGENERATOR {

Logger::Logger() = default;
Logger::~Logger() = default;

void Logger::Log(const QString& message)
{
    m_messages.append(message);
}

QStringList Logger::Messages() const
{
    return m_messages;
}

} // namespace REPORTGENERATOR
