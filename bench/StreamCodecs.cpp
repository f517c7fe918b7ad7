#include "StreamCodecs.h"

#include <QBuffer>
#include <QDataStream>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>
#include <QtEndian>

namespace Bench {

namespace {

// Class id of the root and the member ids of the records.
constexpr qint32 RootClassId = 232099450;
constexpr qint32 ModeListId = -1785428698;
constexpr qint32 HandlerId = 1861080544;
constexpr qint32 NameId = 1490308454;
constexpr qint32 ComponentListId = -1059801328;
constexpr qint32 UsageId = 249323652;
constexpr qint32 DockId = 388603748;

// Writes through a QDataStream into a QByteArray that it owns, so that each
// length placeholder can be overwritten in the array once its content is
// known.
class BinaryEncoder
{
public:
    BinaryEncoder()
        : m_buffer(&m_bytes)
    {
        m_buffer.open(QIODevice::WriteOnly);
        m_stream.setDevice(&m_buffer);
    }

    QByteArray Take()
    {
        m_buffer.close();
        return std::move(m_bytes);
    }

    void Int(qint32 value) { m_stream << value; }

    /// Writes a length placeholder; returns the position behind it.
    qint64 Open()
    {
        m_stream << qint32(0);
        return m_buffer.pos();
    }
    void Close(qint64 start)
    {
        qToBigEndian(qint32(m_buffer.pos() - start), m_bytes.data() + start - 4);
    }

    void Bytes(const QByteArray& utf8)
    {
        m_stream << quint32(utf8.size());
        m_stream.writeRawData(utf8.constData(), utf8.size());
    }
    void Text(const QString& text)
    {
        if (text.isNull())
            m_stream << quint32(0xFFFFFFFFu);
        else
            Bytes(text.toUtf8());
    }

    void TextRecord(qint32 memberId, const QString& text)
    {
        Int(memberId);
        const qint64 record = Open();
        Text(text);
        Close(record);
    }
    void NameRecord(qint32 memberId, const NameTable& table, qint32 value)
    {
        Int(memberId);
        const qint64 record = Open();
        if (value >= 0 && value < table.utf8.size())
            Bytes(table.utf8.at(value));
        else
            m_stream << quint32(0xFFFFFFFFu);
        Close(record);
    }

private:
    QByteArray m_bytes;
    QBuffer m_buffer;
    QDataStream m_stream;
};

void EncodeComponent(BinaryEncoder& out, const PlainComponent& component)
{
    const qint64 object = out.Open();
    out.TextRecord(NameId, component.name);
    out.NameRecord(UsageId, UsageNames(), component.usage);
    out.NameRecord(DockId, DockNames(), component.dock);
    out.Close(object);
}

void EncodeMode(BinaryEncoder& out, const PlainMode& mode)
{
    const qint64 object = out.Open();
    out.TextRecord(NameId, mode.name);
    if (!mode.components.isEmpty()) {
        out.Int(ComponentListId);
        const qint64 record = out.Open();
        out.Int(mode.components.size());
        for (const PlainComponent& component : mode.components)
            EncodeComponent(out, component);
        out.Close(record);
    }
    out.Close(object);
}

// Reads records of one object until its length is used up; read(memberId,
// recordLength) returns false on malformed content.
template <typename ReadMember>
bool ReadObject(QDataStream& in, qint32 length, ReadMember&& read)
{
    qint64 remaining = length;
    while (remaining > 0 && !in.atEnd()) {
        qint32 memberId = 0;
        qint32 recordLength = 0;
        in >> memberId >> recordLength;
        remaining -= 8 + qint64(recordLength);
        if (!read(memberId, recordLength))
            return false;
    }
    return remaining == 0 && in.status() == QDataStream::Ok;
}

// A text payload into a small stack buffer (or a heap array when larger);
// hands the bytes to use(const char*, int) or reports a null text as size -1.
template <typename Use>
bool ReadBytes(QDataStream& in, Use&& use)
{
    quint32 count = 0;
    in >> count;
    if (count == 0xFFFFFFFFu)
        return use(nullptr, -1);
    char small[256];
    if (count <= sizeof small) {
        if (in.readRawData(small, int(count)) != int(count))
            return false;
        return use(small, int(count));
    }
    QByteArray large(int(count), Qt::Uninitialized);
    if (in.readRawData(large.data(), int(count)) != int(count))
        return false;
    return use(large.constData(), int(count));
}

bool ReadText(QDataStream& in, QString& text)
{
    return ReadBytes(in, [&](const char* bytes, int size) {
        text = size < 0 ? QString() : QString::fromUtf8(bytes, size);
        return true;
    });
}

bool ReadName(QDataStream& in, const NameTable& table, qint32& value)
{
    return ReadBytes(in, [&](const char* bytes, int size) {
        value = size < 0 ? -1 : table.IndexOf(bytes, size);
        return value >= 0;
    });
}

bool DecodeComponent(QDataStream& in, qint32 length, PlainComponent& component)
{
    return ReadObject(in, length, [&](qint32 memberId, qint32 recordLength) {
        switch (memberId) {
        case NameId:
            return ReadText(in, component.name);
        case UsageId:
            return ReadName(in, UsageNames(), component.usage);
        case DockId:
            return ReadName(in, DockNames(), component.dock);
        default:
            return in.skipRawData(recordLength) == recordLength;
        }
    });
}

template <typename T, typename ReadElement>
bool ReadList(QDataStream& in, QVector<T>& list, ReadElement&& readElement)
{
    qint32 count = 0;
    in >> count;
    if (count <= 0)
        return true;
    list.reserve(list.size() + count);
    for (qint32 i = 0; i < count; ++i) {
        qint32 length = 0;
        in >> length;
        T element;
        if (!readElement(in, length, element))
            return false;
        list.append(std::move(element));
    }
    return true;
}

bool DecodeMode(QDataStream& in, qint32 length, PlainMode& mode)
{
    return ReadObject(in, length, [&](qint32 memberId, qint32 recordLength) {
        switch (memberId) {
        case NameId:
            return ReadText(in, mode.name);
        case ComponentListId:
            return ReadList(in, mode.components, DecodeComponent);
        default:
            return in.skipRawData(recordLength) == recordLength;
        }
    });
}

} // namespace

QByteArray EncodeBinary(const PlainTree& tree)
{
    BinaryEncoder out;
    out.Int(RootClassId);
    const qint64 object = out.Open();
    if (!tree.modes.isEmpty()) {
        out.Int(ModeListId);
        const qint64 record = out.Open();
        out.Int(tree.modes.size());
        for (const PlainMode& mode : tree.modes)
            EncodeMode(out, mode);
        out.Close(record);
    }
    out.NameRecord(HandlerId, HandlerNames(), tree.handler);
    out.Close(object);
    return out.Take();
}

bool DecodeBinary(const QByteArray& bytes, PlainTree& tree)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QDataStream in(&buffer);
    qint32 id = 0;
    qint32 length = 0;
    in >> id >> length;
    if (id != RootClassId || qint64(length) != qint64(bytes.size()) - 8)
        return false;
    tree = PlainTree();
    const bool ok = ReadObject(in, length, [&](qint32 memberId, qint32 recordLength) {
        switch (memberId) {
        case ModeListId:
            return ReadList(in, tree.modes, DecodeMode);
        case HandlerId:
            return ReadName(in, HandlerNames(), tree.handler);
        default:
            return in.skipRawData(recordLength) == recordLength;
        }
    });
    return ok && in.atEnd();
}

namespace {

const QString& Str(int which)
{
    static const QString strings[] = {
        QStringLiteral("TorviGuiModeSettings"), QStringLiteral("DataOperationMode"),
        QStringLiteral("GuiComponentSettings"), QStringLiteral("Name"),
        QStringLiteral("GuiComponentUsage"),    QStringLiteral("DockWidgetLocation"),
        QStringLiteral("OperationModeHandler")};
    return strings[which];
}
enum { RootTag, ModeTag, ComponentTag, NameTag, UsageTag, DockTag, HandlerTag };

QString NameOf(const NameTable& table, qint32 value)
{
    return value >= 0 && value < table.strings.size() ? table.strings.at(value) : QString();
}

} // namespace

QString EncodeXml(const PlainTree& tree)
{
    QByteArray bytes;
    {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QXmlStreamWriter out(&buffer);
        out.writeStartDocument();
        out.writeStartElement(Str(RootTag));
        for (const PlainMode& mode : tree.modes) {
            out.writeStartElement(Str(ModeTag));
            out.writeAttribute(Str(NameTag), mode.name);
            for (const PlainComponent& component : mode.components) {
                out.writeStartElement(Str(ComponentTag));
                out.writeAttribute(Str(NameTag), component.name);
                out.writeTextElement(Str(UsageTag), NameOf(UsageNames(), component.usage));
                out.writeTextElement(Str(DockTag), NameOf(DockNames(), component.dock));
                out.writeEndElement();
            }
            out.writeEndElement();
        }
        out.writeTextElement(Str(HandlerTag), NameOf(HandlerNames(), tree.handler));
        out.writeEndElement();
        out.writeEndDocument();
    }
    return QString::fromUtf8(bytes);
}

namespace {

bool ReadNameText(QXmlStreamReader& in, const NameTable& table, qint32& value)
{
    value = table.IndexOf(in.readElementText());
    return value >= 0;
}

bool DecodeXmlComponent(QXmlStreamReader& in, PlainComponent& component)
{
    const QXmlStreamAttributes attributes = in.attributes();
    if (attributes.hasAttribute(Str(NameTag)))
        component.name = attributes.value(Str(NameTag)).toString();
    while (in.readNextStartElement()) {
        const auto name = in.name();
        if (name == Str(UsageTag)) {
            if (!ReadNameText(in, UsageNames(), component.usage))
                return false;
        } else if (name == Str(DockTag)) {
            if (!ReadNameText(in, DockNames(), component.dock))
                return false;
        } else if (name == Str(NameTag)) {
            component.name = in.readElementText();
        } else {
            in.skipCurrentElement();
        }
    }
    return true;
}

bool DecodeXmlMode(QXmlStreamReader& in, PlainMode& mode)
{
    const QXmlStreamAttributes attributes = in.attributes();
    if (attributes.hasAttribute(Str(NameTag)))
        mode.name = attributes.value(Str(NameTag)).toString();
    while (in.readNextStartElement()) {
        const auto name = in.name();
        if (name == Str(ComponentTag)) {
            PlainComponent component;
            if (!DecodeXmlComponent(in, component))
                return false;
            mode.components.append(std::move(component));
        } else if (name == Str(NameTag)) {
            mode.name = in.readElementText();
        } else {
            in.skipCurrentElement();
        }
    }
    return true;
}

} // namespace

bool DecodeXml(const QString& xml, PlainTree& tree)
{
    QXmlStreamReader in(xml);
    if (!in.readNextStartElement() || in.name() != Str(RootTag))
        return false;
    tree = PlainTree();
    while (in.readNextStartElement()) {
        const auto name = in.name();
        if (name == Str(ModeTag)) {
            PlainMode mode;
            if (!DecodeXmlMode(in, mode))
                return false;
            tree.modes.append(std::move(mode));
        } else if (name == Str(HandlerTag)) {
            if (!ReadNameText(in, HandlerNames(), tree.handler))
                return false;
        } else {
            in.skipCurrentElement();
        }
    }
    while (!in.atEnd())
        in.readNext();
    return !in.hasError();
}

} // namespace Bench
