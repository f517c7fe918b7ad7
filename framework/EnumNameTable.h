#ifndef TORVIXML_FRAMEWORK_ENUMNAMETABLE_H
#define TORVIXML_FRAMEWORK_ENUMNAMETABLE_H

#include <QByteArray>
#include <QLatin1String>
#include <QString>
#include <QStringList>
#include <QVector>

namespace TORVIXML {
namespace Framework {

/**
 * The fixed names of one enumeration, entry k naming value k. Stored forms
 * hold these names, never the numbers; the display names are their
 * translations in the context "QObject".
 *
 * Tables are built once (as function-local statics next to the class that
 * owns the enumeration) and are read-only afterwards.
 */
class EnumNameTable
{
public:
    template <int N>
    explicit EnumNameTable(const char* const (&names)[N])
        : EnumNameTable(names, N)
    {
    }
    EnumNameTable(const char* const* names, int count);

    const QStringList& Names() const { return m_names; }
    int Count() const { return m_names.size(); }
    bool Contains(qint32 value) const { return value >= 0 && value < m_names.size(); }
    /// The name of a value, or a null string for a value outside the table.
    QString Name(qint32 value) const { return Contains(value) ? m_names.at(value) : QString(); }
    /// The value of a name (exact, case-sensitive comparison), or -1.
    int IndexOf(const QString& name) const;
    int IndexOf(QLatin1String name) const;
    /// The name of a value encoded as UTF-8, or null for a value outside the
    /// table. Kept with the table so that writers need not encode it anew.
    const QByteArray* Utf8Name(qint32 value) const { return Contains(value) ? &m_utf8.at(value) : nullptr; }
    /// The value of a name given as UTF-8: the position of the name that the
    /// bytes decode to (QString::fromUtf8), or -1.
    int IndexOfUtf8(const char* bytes, int size) const;
    /// The names translated in the context "QObject", index k for value k.
    QStringList DisplayNames() const;

private:
    const char* const* m_source;
    QStringList m_names;
    QVector<QByteArray> m_utf8;
};

} // namespace Framework
} // namespace TORVIXML

#endif
