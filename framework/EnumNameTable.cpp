#include "EnumNameTable.h"

#include <QObject>

#include <cstring>

namespace TORVIXML {
namespace Framework {

EnumNameTable::EnumNameTable(const char* const* names, int count)
    : m_source(names)
{
    m_names.reserve(count);
    m_utf8.reserve(count);
    for (int i = 0; i < count; ++i) {
        m_names.append(QString::fromLatin1(names[i]));
        m_utf8.append(m_names.last().toUtf8());
    }
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

int EnumNameTable::IndexOfUtf8(const char* bytes, int size) const
{
    // Bytes that are a name's own encoding decode to that name; others may
    // still decode to one (the decoder drops a leading byte order mark).
    for (int i = 0; i < m_utf8.size(); ++i) {
        const QByteArray& name = m_utf8.at(i);
        if (name.size() == size && std::memcmp(name.constData(), bytes, size_t(size)) == 0)
            return i;
    }
    return IndexOf(QString::fromUtf8(bytes, size));
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
