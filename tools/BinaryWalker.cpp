#include "BinaryWalker.h"

#include "Compression.h"

#include "ToolSupport.h"

#include <TorviXML/TorviXML.h>

#include <QStringList>


#include <limits>

namespace TorviTool {

namespace {

quint32 bigEndian32(const char* p)
{
    const auto* u = reinterpret_cast<const uchar*>(p);
    return (quint32(u[0]) << 24) | (quint32(u[1]) << 16) | (quint32(u[2]) << 8) | quint32(u[3]);
}

QString hex32(quint32 value)
{
    return QStringLiteral("0x") + QString::number(value, 16).rightJustified(8, QLatin1Char('0')).toUpper();
}

// "-1785428698 (0x95948526)"
QString idText(qint32 value)
{
    return QStringLiteral("%1 (%2)").arg(value).arg(hex32(quint32(value)));
}

QString bytesText(qint64 count)
{
    return count == 1 ? QStringLiteral("1 byte") : QStringLiteral("%1 bytes").arg(count);
}

// ---------------------------------------------------------------------------
// What the walker knows about the three classes, from the library.

using TORVIXML::ClassDescription;
using TORVIXML::MemberDescription;

// The class read when a document's id names none.
const ClassDescription& rootClass()
{
    return settingsClasses().first();
}

const ClassDescription* classForId(qint32 id)
{
    for (const ClassDescription& info : settingsClasses()) {
        if (qint32(info.id) == id)
            return &info;
    }
    return nullptr;
}

const MemberDescription* memberOf(const ClassDescription& cls, qint32 id)
{
    for (const MemberDescription& member : cls.members) {
        if (member.binaryId == id)
            return &member;
    }
    return nullptr;
}

QString payloadName(MemberDescription::Kind kind)
{
    switch (kind) {
    case MemberDescription::String:
        return QStringLiteral("text");
    case MemberDescription::Enumeration:
        return QStringLiteral("enum");
    case MemberDescription::List:
        return QStringLiteral("list");
    }
    return QString();
}

// "DataOperationMode.Name, GuiComponentSettings.Name": the classes that do
// know a member id, for an id that is unknown where it was found.
QString ownersOf(qint32 id)
{
    QStringList owners;
    for (const ClassDescription& cls : settingsClasses()) {
        if (const MemberDescription* member = memberOf(cls, id))
            owners << QStringLiteral("%1.%2").arg(cls.name, member->name);
    }
    return owners.join(QStringLiteral(", "));
}

// ---------------------------------------------------------------------------

class Walker
{
public:
    Walker(const QByteArray& bytes, const std::function<void(const WalkLine&)>& sink)
        : m_bytes(bytes)
        , m_size(bytes.size())
        , m_sink(sink)
    {
    }

    WalkSummary walkDocument();

private:
    qint64 walkObject(const ClassDescription& cls, qint64 pos, qint64 limit, int depth, const QString& prefix,
                      const QString& limitName);
    qint64 walkText(const MemberDescription& member, qint64 pos, qint64 end, qint64 objectEnd, int depth);
    qint64 walkList(const MemberDescription& member, qint64 pos, qint64 end, int depth);
    void walkUnknown(qint64 pos, qint64 end, int depth);
    bool recordCanStartAt(const ClassDescription& cls, qint64 pos, qint64 objectEnd) const;

    // Callers make sure that pos + 4 <= m_size.
    qint32 word(qint64 pos) const { return qint32(bigEndian32(m_bytes.constData() + pos)); }

    void line(qint64 offset, int depth, const QString& text)
    {
        m_sink(WalkLine{offset, depth, text, false});
    }
    void error(qint64 offset, int depth, const QString& text)
    {
        if (m_summary.errors++ == 0) {
            m_summary.firstErrorOffset = offset;
            m_summary.firstError = text;
        }
        m_sink(WalkLine{offset, depth, text, true});
    }

    const QByteArray& m_bytes;
    const qint64 m_size;
    const std::function<void(const WalkLine&)>& m_sink;
    WalkSummary m_summary;
};

WalkSummary Walker::walkDocument()
{
    if (m_size < 4) {
        error(0, 0, QStringLiteral("%1 in all: too short for an id").arg(bytesText(m_size)));
        return m_summary;
    }
    const qint32 id = word(0);
    const ClassDescription* cls = classForId(id);
    if (cls) {
        line(0, 0, QStringLiteral("id %1 = class id of %2").arg(idText(id), cls->name));
    } else {
        cls = &rootClass();
        error(0, 0, QStringLiteral("id %1 is not the class id of any settings class; read as %2")
                        .arg(idText(id), cls->name));
    }
    const qint64 end = walkObject(*cls, 4, m_size, 0, QString(), QStringLiteral("the data"));
    if (end < m_size)
        error(end, 0, QStringLiteral("%1 after the end of the object").arg(bytesText(m_size - end)));
    return m_summary;
}

// An object frame without its id: the object length at pos, then member
// records up to the end the object length gives, which must not pass limit.
// Returns where the object ends (never before pos + 4, never after limit).
qint64 Walker::walkObject(const ClassDescription& cls, qint64 pos, qint64 limit, int depth, const QString& prefix,
                          const QString& limitName)
{
    if (limit - pos < 4) {
        error(pos, depth, QStringLiteral("%1only %2 left in %3: too few for an object length")
                              .arg(prefix, bytesText(limit - pos), limitName));
        return limit;
    }
    const qint32 length = word(pos);
    if (length < 0) {
        line(pos, depth, QStringLiteral("%1object length %2").arg(prefix).arg(length));
        error(pos, depth, QStringLiteral("object length %1 is negative").arg(length));
        return pos + 4;
    }
    qint64 objectEnd = pos + 4 + length;
    WalkLine frameLine{pos, depth, QStringLiteral("%1object length %2 (to %3)").arg(prefix).arg(length).arg(objectEnd)};
    frameLine.object = cls.name;
    m_sink(frameLine);
    if (objectEnd > limit) {
        error(pos, depth, QStringLiteral("object length %1 runs past the end of %2 at %3 by %4")
                              .arg(length).arg(limitName).arg(limit).arg(bytesText(objectEnd - limit)));
        objectEnd = limit;
    }

    qint64 p = pos + 4;
    while (p < objectEnd) {
        if (objectEnd - p < 8) {
            error(p, depth + 1, QStringLiteral("%1 left in the object: too few for a member id and a record length")
                                    .arg(bytesText(objectEnd - p)));
            p = objectEnd;
            break;
        }
        const qint32 memberId = word(p);
        const qint32 recordLength = word(p + 4);
        const MemberDescription* member = memberOf(cls, memberId);
        QString what;
        if (member) {
            what = QStringLiteral("%1.%2 (%3)").arg(cls.name, member->name, payloadName(member->kind));
        } else {
            what = QStringLiteral("unknown in %1").arg(cls.name);
            const QString owners = ownersOf(memberId);
            if (!owners.isEmpty())
                what += QStringLiteral(" (member id of %1)").arg(owners);
        }
        WalkLine recordLine{p, depth + 1, QStringLiteral("record: member id %1 = %2").arg(idText(memberId), what)};
        recordLine.recordEnd = p + 8 + qint64(recordLength);
        if (member)
            recordLine.member = QStringLiteral("%1.%2").arg(cls.name, member->name);
        m_sink(recordLine);
        if (recordLength < 0) {
            line(p + 4, depth + 2, QStringLiteral("record length %1").arg(recordLength));
            error(p + 4, depth + 2, QStringLiteral("record length %1 is negative").arg(recordLength));
            p = objectEnd;
            break;
        }
        qint64 recordEnd = p + 8 + recordLength;
        line(p + 4, depth + 2, QStringLiteral("record length %1 (to %2)").arg(recordLength).arg(recordEnd));
        const bool overrun = recordEnd > objectEnd;
        if (overrun) {
            error(p + 4, depth + 2, QStringLiteral("record length %1 runs past the end of %2 at %3 by %4")
                                        .arg(recordLength).arg(cls.name).arg(objectEnd)
                                        .arg(bytesText(recordEnd - objectEnd)));
            recordEnd = objectEnd;
        }
        qint64 payloadEnd = recordEnd;
        if (!member)
            walkUnknown(p + 8, recordEnd, depth + 2);
        else if (member->kind == MemberDescription::List)
            payloadEnd = walkList(*member, p + 8, recordEnd, depth + 2);
        else
            payloadEnd = walkText(*member, p + 8, recordEnd, objectEnd, depth + 2);
        p = recordEnd;
        // When payload and record length disagree, go on where the next
        // record really seems to start, so that one wrong length does not
        // garble the rest of the walk.
        if (payloadEnd >= 0 && payloadEnd != recordEnd && !recordCanStartAt(cls, recordEnd, objectEnd)
            && recordCanStartAt(cls, payloadEnd, objectEnd)) {
            line(payloadEnd, depth + 2,
                 QStringLiteral("going on at %1, where the payload ends: the record length looks wrong")
                     .arg(payloadEnd));
            p = payloadEnd;
        }
    }
    line(p, depth, QStringLiteral("end of %1").arg(cls.name));
    return objectEnd;
}

// Whether a member record of the class can start at pos: the end of the
// object, or a member id of the class with a record length that fits.
bool Walker::recordCanStartAt(const ClassDescription& cls, qint64 pos, qint64 objectEnd) const
{
    if (pos == objectEnd)
        return true;
    if (pos > objectEnd || objectEnd - pos < 8)
        return false;
    const qint32 recordLength = word(pos + 4);
    return memberOf(cls, word(pos)) != nullptr && recordLength >= 0 && recordLength <= objectEnd - pos - 8;
}

// A text or enum payload: a byte count (0xFFFFFFFF for a null text), then
// that many bytes of UTF-8. Returns where the payload ends, or -1 when that
// cannot be told. A text that runs past the record's end is still shown as
// far as the object holds it.
qint64 Walker::walkText(const MemberDescription& member, qint64 pos, qint64 end, qint64 objectEnd, int depth)
{
    if (end - pos < 4) {
        error(pos, depth, QStringLiteral("only %1 left in the record: too few for a byte count")
                              .arg(bytesText(end - pos)));
        return -1;
    }
    const quint32 count = quint32(word(pos));
    qint64 payloadEnd = pos + 4;
    if (count == 0xFFFFFFFFu) {
        QString text = QStringLiteral("byte count 0xFFFFFFFF: null text");
        if (member.kind == MemberDescription::Enumeration)
            text += QStringLiteral(" (no name of %1)").arg(member.name);
        line(pos, depth, text);
    } else {
        line(pos, depth, QStringLiteral("byte count %1").arg(count));
        if (qint64(count) > end - payloadEnd) {
            error(pos, depth, QStringLiteral("byte count %1 runs past the end of the record at %2 by %3")
                                  .arg(count).arg(end).arg(bytesText(qint64(count) - (end - payloadEnd))));
            if (qint64(count) > objectEnd - payloadEnd)
                return -1;
        }
        const QByteArray bytes = m_bytes.mid(int(payloadEnd), int(count));
        bool validUtf8 = true;
        QString text = QStringLiteral("text ") + quotedUtf8(bytes, &validUtf8);
        if (!validUtf8)
            text += QStringLiteral(" (not valid UTF-8)");
        text += enumerationValueNote(member, QString::fromUtf8(bytes), validUtf8);
        WalkLine textLine{payloadEnd, depth, text};
        textLine.value = QString::fromUtf8(bytes);
        m_sink(textLine);
        payloadEnd += count;
    }
    if (payloadEnd < end)
        error(payloadEnd, depth, QStringLiteral("%1 left in the record after the text").arg(bytesText(end - payloadEnd)));
    return payloadEnd;
}

// A list payload: the element count, then that many element frames (object
// length and member records, no id), each delimiting itself. Returns where
// the last element ends, or -1 when that cannot be told.
qint64 Walker::walkList(const MemberDescription& member, qint64 pos, qint64 end, int depth)
{
    if (end - pos < 4) {
        error(pos, depth, QStringLiteral("only %1 left in the record: too few for an element count")
                              .arg(bytesText(end - pos)));
        return -1;
    }
    const qint32 count = word(pos);
    line(pos, depth, count > 0 ? QStringLiteral("element count %1").arg(count)
                               : QStringLiteral("element count %1 (no elements)").arg(count));
    const ClassDescription& elementClass = *settingsClass(member.name);
    qint64 p = pos + 4;
    for (qint32 i = 0; i < count; ++i) {
        if (p >= end) {
            error(p, depth, QStringLiteral("element count %1, but the record ends after %2 elements")
                                .arg(count).arg(i));
            return -1;
        }
        const QString prefix = QStringLiteral("element %1 of %2: %3, ").arg(i + 1).arg(count)
                                   .arg(elementClass.name);
        p = walkObject(elementClass, p, end, depth, prefix, QStringLiteral("the record"));
    }
    if (p < end)
        error(p, depth, QStringLiteral("%1 left in the record after the last element").arg(bytesText(end - p)));
    return p;
}

void Walker::walkUnknown(qint64 pos, qint64 end, int depth)
{
    const qint64 size = end - pos;
    QString text = QStringLiteral("payload of %1 skipped").arg(bytesText(size));
    if (size > 0) {
        const QByteArray head = m_bytes.mid(int(pos), int(qMin<qint64>(size, 16)));
        text += QStringLiteral(": ") + QString::fromLatin1(head.toHex(' ').toUpper());
        if (size > 16)
            text += QStringLiteral(" ...");
    }
    line(pos, depth, text);
}

} // namespace

UnpackedBinary unpackBinary(const QByteArray& fileData, qint64 maxSize)
{
    UnpackedBinary result;
    if (fileData.size() < 4) {
        result.problem = QStringLiteral("only %1: too short for a binary document").arg(bytesText(fileData.size()));
        return result;
    }
    result.firstWord = bigEndian32(fileData.constData());
    if (classForId(qint32(result.firstWord))) {
        result.kind = UnpackedBinary::Plain;
        result.bytes = fileData;
        return result;
    }

    // Not a plain document: the first word is then the uncompressed size.
    const QString notPlain = QStringLiteral("the first word %1 is no class id, so not a plain binary document, "
                                            "and not a compressed one either: ")
                                 .arg(hex32(result.firstWord));
    result.announcedSize = result.firstWord;
    const qint64 streamSize = fileData.size() - 4;
    // deflate compresses at most about 1032:1; zlib adds a few bytes.
    const qint64 possible = streamSize * 1032 + 64;
    if (result.announcedSize == 0) {
        result.problem = notPlain + QStringLiteral("it announces an uncompressed size of 0");
        return result;
    }
    if (qint64(result.announcedSize) > possible
        || result.announcedSize > quint32(std::numeric_limits<int>::max() - 1)) {
        result.problem = notPlain
            + QStringLiteral("the announced uncompressed size %1 cannot come from %2 of compressed data")
                  .arg(result.announcedSize).arg(bytesText(streamSize));
        return result;
    }
    QString problem;
    REPORTGENERATOR::InflateLimits limits;
    limits.maxSize = maxSize;
    limits.budget = true;
    if (!REPORTGENERATOR::InflateCompressed(fileData, result.bytes, &problem, limits)) {
        result.bytes.clear();
        result.problem = notPlain + problem;
        return result;
    }
    result.kind = UnpackedBinary::Compressed;
    return result;
}

WalkSummary walkBinary(const QByteArray& plain, const std::function<void(const WalkLine&)>& sink)
{
    Walker walker(plain, sink);
    return walker.walkDocument();
}

} // namespace TorviTool
