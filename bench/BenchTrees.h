#ifndef TORVIXML_BENCH_BENCHTREES_H
#define TORVIXML_BENCH_BENCHTREES_H

// The trees every benchmark works on: N data operation modes of M component
// settings each, once as the library's settings objects and once as plain
// structs for the anchor codecs. Both are built from the same rule, so the
// anchors encode exactly the content the library encodes.

#include <TorviXML/TorviXML.h>

#include <QByteArray>
#include <QString>
#include <QVector>

namespace Bench {

struct PlainComponent
{
    QString name;
    qint32 usage = 0;
    qint32 dock = 0;

    bool operator==(const PlainComponent& o) const
    {
        return name == o.name && usage == o.usage && dock == o.dock;
    }
};

struct PlainMode
{
    QString name;
    QVector<PlainComponent> components;

    bool operator==(const PlainMode& o) const { return name == o.name && components == o.components; }
};

struct PlainTree
{
    QVector<PlainMode> modes;
    qint32 handler = 0;

    bool operator==(const PlainTree& o) const { return handler == o.handler && modes == o.modes; }
};

/// The enumeration names, entry k naming value k, in the forms the anchors
/// need: as QString, as UTF-8 bytes and as Latin-1 views.
struct NameTable
{
    explicit NameTable(const QStringList& names);

    QVector<QString> strings;
    QVector<QByteArray> utf8;

    /// The value of a name, or -1.
    int IndexOf(const QString& name) const;
    int IndexOf(const char* bytes, int size) const;
    template <typename View>
    int IndexOfView(const View& view) const
    {
        for (int i = 0; i < strings.size(); ++i) {
            if (view == strings.at(i))
                return i;
        }
        return -1;
    }
};

const NameTable& HandlerNames();
const NameTable& UsageNames();
const NameTable& DockNames();

/// The tree shape: modes x components per mode.
struct TreeShape
{
    int modes = 0;
    int components = 0;

    int Leaves() const { return modes * components; }
    QString Label() const { return QStringLiteral("%1x%2").arg(modes).arg(components); }
};

PlainTree BuildPlainTree(const TreeShape& shape);
/// The same tree as settings objects, built through the public setters and
/// appends with validation on; every object of the tree has validation on.
TORVIXML::TorviGuiModeSettings BuildSettingsTree(const TreeShape& shape);

} // namespace Bench

#endif
