#include "EnumNameTable.h"

#include <QObject>

namespace TORVIXML {
namespace Framework {

EnumNameTable::EnumNameTable(const char* const* names, int count)
    : m_source(names)
{
    m_names.reserve(count);
    for (int i = 0; i < count; ++i)
        m_names.append(QString::fromLatin1(names[i]));
}

int EnumNameTable::IndexOf(const QString& name) const
{
    for (int i = 0; i < m_names.size(); ++i) {
        if (m_names.at(i) == name)
            return i;
    }
    return -1;
}

int EnumNameTable::IndexOf(QLatin1String name) const
{
    for (int i = 0; i < m_names.size(); ++i) {
        if (m_names.at(i) == name)
            return i;
    }
    return -1;
}

QStringList EnumNameTable::DisplayNames() const
{
    // Built afresh every time, so that a change of the installed
    // translators shows in the next call.
    QStringList display;
    display.reserve(m_names.size());
    for (int i = 0; i < m_names.size(); ++i)
        display.append(QObject::tr(m_source[i], nullptr));
    return display;
}

} // namespace Framework
} // namespace TORVIXML
