#include "BenchTrees.h"

#include <cstring>

using namespace TORVIXML;

namespace Bench {

NameTable::NameTable(const QStringList& names)
{
    for (const QString& name : names) {
        strings.append(name);
        utf8.append(name.toUtf8());
    }
}

int NameTable::IndexOf(const QString& name) const
{
    return strings.indexOf(name);
}

int NameTable::IndexOf(const char* bytes, int size) const
{
    for (int i = 0; i < utf8.size(); ++i) {
        const QByteArray& candidate = utf8.at(i);
        if (candidate.size() == size && std::memcmp(candidate.constData(), bytes, size_t(size)) == 0)
            return i;
    }
    return -1;
}

const NameTable& HandlerNames()
{
    static const NameTable table(TorviGuiModeSettings::GetOperationModeHandlers());
    return table;
}

const NameTable& UsageNames()
{
    static const NameTable table(GuiComponentSettings::GetGuiComponentUsages());
    return table;
}

const NameTable& DockNames()
{
    static const NameTable table(GuiComponentSettings::GetDockWidgetLocations());
    return table;
}

namespace {

// Names of realistic length (13 to 25 characters), a few with characters
// outside ASCII so that UTF-8 conversion has real work now and then.
QString ModeName(int m)
{
    return QStringLiteral("Operation mode %1").arg(m);
}

QString ComponentName(int m, int c)
{
    if (c % 16 == 7)
        return QStringLiteral("Übersicht %1.%2").arg(m).arg(c);
    return QStringLiteral("Component %1.%2").arg(m).arg(c);
}

qint32 UsageOf(int c)
{
    return c % 3 == 0 ? GuiComponentSettings::DEFAULT_DISPLAY : GuiComponentSettings::AVAILABLE;
}

qint32 DockOf(int m, int c)
{
    return (m + c) % 7;
}

} // namespace

PlainTree BuildPlainTree(const TreeShape& shape)
{
    PlainTree tree;
    tree.handler = TorviGuiModeSettings::PMR830ManagementComponent;
    tree.modes.reserve(shape.modes);
    for (int m = 0; m < shape.modes; ++m) {
        PlainMode mode;
        mode.name = ModeName(m);
        mode.components.reserve(shape.components);
        for (int c = 0; c < shape.components; ++c)
            mode.components.append(PlainComponent{ComponentName(m, c), UsageOf(c), DockOf(m, c)});
        tree.modes.append(std::move(mode));
    }
    return tree;
}

TorviGuiModeSettings BuildSettingsTree(const TreeShape& shape)
{
    TorviGuiModeSettings root;
    root.SetValidate(true);
    root.SetOperationModeHandler(TorviGuiModeSettings::PMR830ManagementComponent);
    for (int m = 0; m < shape.modes; ++m) {
        DataOperationMode mode;
        mode.SetValidate(true);
        mode.SetName(ModeName(m));
        for (int c = 0; c < shape.components; ++c) {
            GuiComponentSettings component;
            component.SetValidate(true);
            component.SetName(ComponentName(m, c));
            component.SetGuiComponentUsage(GuiComponentSettings::GuiComponentUsage(UsageOf(c)));
            component.SetDockWidgetLocation(GuiComponentSettings::DockWidgetLocation(DockOf(m, c)));
            mode.AppendGuiComponentSettings(component);
        }
        root.AppendDataOperationMode(mode);
    }
    return root;
}

} // namespace Bench
