#include "DocumentCodecs.h"

#include <QCborArray>
#include <QCborMap>
#include <QCborValue>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

namespace Bench {

namespace {

// Keys, named like the XML elements.
const QString& Key(int which)
{
    static const QString keys[] = {QStringLiteral("DataOperationMode"), QStringLiteral("GuiComponentSettings"),
                                   QStringLiteral("Name"), QStringLiteral("GuiComponentUsage"),
                                   QStringLiteral("DockWidgetLocation"), QStringLiteral("OperationModeHandler")};
    return keys[which];
}
enum { ModesKey, ComponentsKey, NameKey, UsageKey, DockKey, HandlerKey };

QString NameOf(const NameTable& table, qint32 value)
{
    return value >= 0 && value < table.strings.size() ? table.strings.at(value) : QString();
}

bool ValueOf(const NameTable& table, const QString& name, qint32& value)
{
    value = table.IndexOf(name);
    return value >= 0;
}

} // namespace

QByteArray EncodeJson(const PlainTree& tree)
{
    QJsonArray modes;
    for (const PlainMode& mode : tree.modes) {
        QJsonArray components;
        for (const PlainComponent& component : mode.components) {
            QJsonObject object;
            object.insert(Key(NameKey), component.name);
            object.insert(Key(UsageKey), NameOf(UsageNames(), component.usage));
            object.insert(Key(DockKey), NameOf(DockNames(), component.dock));
            components.append(object);
        }
        QJsonObject object;
        object.insert(Key(NameKey), mode.name);
        object.insert(Key(ComponentsKey), components);
        modes.append(object);
    }
    QJsonObject root;
    root.insert(Key(ModesKey), modes);
    root.insert(Key(HandlerKey), NameOf(HandlerNames(), tree.handler));
    return QJsonDocument(root).toJson(QJsonDocument::Compact);
}

bool DecodeJson(const QByteArray& json, PlainTree& tree)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return false;
    const QJsonObject root = document.object();
    tree = PlainTree();
    const QJsonArray modes = root.value(Key(ModesKey)).toArray();
    tree.modes.reserve(modes.size());
    for (const QJsonValue& modeValue : modes) {
        const QJsonObject modeObject = modeValue.toObject();
        PlainMode mode;
        mode.name = modeObject.value(Key(NameKey)).toString();
        const QJsonArray components = modeObject.value(Key(ComponentsKey)).toArray();
        mode.components.reserve(components.size());
        for (const QJsonValue& componentValue : components) {
            const QJsonObject object = componentValue.toObject();
            PlainComponent component;
            component.name = object.value(Key(NameKey)).toString();
            if (!ValueOf(UsageNames(), object.value(Key(UsageKey)).toString(), component.usage)
                || !ValueOf(DockNames(), object.value(Key(DockKey)).toString(), component.dock))
                return false;
            mode.components.append(std::move(component));
        }
        tree.modes.append(std::move(mode));
    }
    return ValueOf(HandlerNames(), root.value(Key(HandlerKey)).toString(), tree.handler);
}

QByteArray EncodeCbor(const PlainTree& tree)
{
    QCborArray modes;
    for (const PlainMode& mode : tree.modes) {
        QCborArray components;
        for (const PlainComponent& component : mode.components) {
            QCborMap map;
            map.insert(Key(NameKey), component.name);
            map.insert(Key(UsageKey), NameOf(UsageNames(), component.usage));
            map.insert(Key(DockKey), NameOf(DockNames(), component.dock));
            components.append(map);
        }
        QCborMap map;
        map.insert(Key(NameKey), mode.name);
        map.insert(Key(ComponentsKey), components);
        modes.append(map);
    }
    QCborMap root;
    root.insert(Key(ModesKey), modes);
    root.insert(Key(HandlerKey), NameOf(HandlerNames(), tree.handler));
    return QCborValue(root).toCbor();
}

bool DecodeCbor(const QByteArray& cbor, PlainTree& tree)
{
    QCborParserError error;
    const QCborValue document = QCborValue::fromCbor(cbor, &error);
    if (error.error != QCborError::NoError || !document.isMap())
        return false;
    const QCborMap root = document.toMap();
    tree = PlainTree();
    const QCborArray modes = root.value(Key(ModesKey)).toArray();
    tree.modes.reserve(int(modes.size()));
    for (const QCborValue& modeValue : modes) {
        const QCborMap modeMap = modeValue.toMap();
        PlainMode mode;
        mode.name = modeMap.value(Key(NameKey)).toString();
        const QCborArray components = modeMap.value(Key(ComponentsKey)).toArray();
        mode.components.reserve(int(components.size()));
        for (const QCborValue& componentValue : components) {
            const QCborMap map = componentValue.toMap();
            PlainComponent component;
            component.name = map.value(Key(NameKey)).toString();
            if (!ValueOf(UsageNames(), map.value(Key(UsageKey)).toString(), component.usage)
                || !ValueOf(DockNames(), map.value(Key(DockKey)).toString(), component.dock))
                return false;
            mode.components.append(std::move(component));
        }
        tree.modes.append(std::move(mode));
    }
    return ValueOf(HandlerNames(), root.value(Key(HandlerKey)).toString(), tree.handler);
}

} // namespace Bench
