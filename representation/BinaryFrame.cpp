#include "BinaryFrame.h"

#include <QBuffer>
#include <QByteArray>
#include <QtEndian>

#include <limits>

namespace TORVIXML {
namespace Binary {

bool CanWrite(QDataStream& stream)
{
    QIODevice* device = stream.device();
    // Only QBuffer itself: a subclass may write differently in append mode.
    if (device && device->isWritable() && !device->isSequential()
        && (!(device->openMode() & QIODevice::Append) || device->metaObject() == &QBuffer::staticMetaObject))
        return true;
    stream.setStatus(QDataStream::WriteFailed);
    return false;
}

void WriteText(QDataStream& stream, const QString& text)
{
    if (text.isNull()) {
        stream << quint32(0xFFFFFFFFu);
        return;
    }
    const QByteArray utf8 = text.toUtf8();
    WriteUtf8(stream, &utf8);
}

void WriteUtf8(QDataStream& stream, const QByteArray* utf8)
{
    if (!utf8) {
        stream << quint32(0xFFFFFFFFu);
        return;
    }
    stream << quint32(utf8->size());
    stream.writeRawData(utf8->constData(), int(utf8->size()));
}

namespace {

constexpr quint32 SmallText = 256;

// The bytes of a text payload after its count: null after a short read.
// Texts that are longer than the small buffer and cannot be read in place
// grow with the bytes that really arrive, so a count that lies costs no
// more memory than the input holds.
const char* ReadPayload(Source& in, quint32 count, char (&small)[SmallText], QByteArray& large)
{
    if (in.Direct() || count <= SmallText)
        return in.ReadBytes(int(count), small);
    constexpr quint32 Step = 1024 * 1024;
    quint32 done = 0;
    while (done < count) {
        const quint32 chunk = qMin(Step, count - done);
        large.resize(int(done + chunk));
        if (!in.ReadBytes(int(chunk), large.data() + done))
            return nullptr;
        done += chunk;
    }
    return large.constData();
}

// The count of a text payload; 0 for a null or empty text and after a short
// read, which yields 0 itself.
quint32 ReadCount(Source& in)
{
    const quint32 count = in.ReadUInt32();
    if (count == 0xFFFFFFFFu)
        return 0;
    if (count > quint32(std::numeric_limits<int>::max())) {
        // More than a byte array can hold. The payload is passed over as a
        // text of that length would be read, without keeping it, so that
        // the stream ends up where such a read leaves it: in practice at
        // its end, with the status of a short read.
        char scratch[4096];
        for (quint32 left = count; left > 0;) {
            const int chunk = int(qMin<quint32>(left, sizeof scratch));
            if (!in.ReadBytes(chunk, scratch))
                break;
            left -= quint32(chunk);
        }
        return 0;
    }
    return count;
}

} // namespace

QString ReadText(Source& in)
{
    const quint32 count = ReadCount(in);
    if (count == 0)
        return QStringLiteral("");
    char small[SmallText];
    QByteArray large;
    const char* bytes = ReadPayload(in, count, small, large);
    if (!bytes)
        return QStringLiteral("");
    return QString::fromUtf8(bytes, int(count));
}

int ReadName(Source& in, const Framework::EnumNameTable& table, QString& text)
{
    const quint32 count = ReadCount(in);
    if (count == 0) {
        text = QStringLiteral("");
        return -1;
    }
    char small[SmallText];
    QByteArray large;
    const char* bytes = ReadPayload(in, count, small, large);
    if (!bytes) {
        text = QStringLiteral("");
        return -1;
    }
    const int value = table.IndexOfUtf8(bytes, int(count));
    if (value < 0)
        text = QString::fromUtf8(bytes, int(count));
    return value;
}

FrameWriter::FrameWriter(QDataStream& stream, int id, bool writeId)
    : m_stream(stream)
    , m_device(stream.device())
    , m_bytes(m_device->metaObject() == &QBuffer::staticMetaObject ? &static_cast<QBuffer*>(m_device)->buffer()
                                                                    : nullptr)
{
    if (writeId)
        m_stream << qint32(id);
    m_stream << qint32(0);
    m_start = m_device->pos();
}

void FrameWriter::Text(qint32 memberId, const QString& text)
{
    const qint64 start = BeginRecord(memberId);
    WriteText(m_stream, text);
    EndRecord(start);
}

void FrameWriter::Name(qint32 memberId, const QByteArray* utf8)
{
    const qint64 start = BeginRecord(memberId);
    WriteUtf8(m_stream, utf8);
    EndRecord(start);
}

qint64 FrameWriter::BeginRecord(qint32 memberId)
{
    m_stream << memberId << qint32(0);
    return m_device->pos();
}

void FrameWriter::EndRecord(qint64 start)
{
    Patch(start);
}

void FrameWriter::Finish()
{
    Patch(m_start);
}

void FrameWriter::Patch(qint64 start)
{
    // The placeholder stands in the four bytes before start.
    const qint64 end = m_device->pos();
    if (m_bytes && m_stream.status() == QDataStream::Ok) {
        // What writing the length over the placeholder through the stream
        // would do, without moving the buffer's position.
        const qint32 length = qint32(end - start);
        char* placeholder = m_bytes->data() + (start - 4);
        if (m_stream.byteOrder() == QDataStream::BigEndian)
            qToBigEndian(length, placeholder);
        else
            qToLittleEndian(length, placeholder);
        return;
    }
    m_device->seek(start - 4);
    m_stream << qint32(end - start);
    m_device->seek(end);
}

void ThrowLengthError(const REPORTGENERATOR::IRGObject& object)
{
    throw BinaryParsingException(Framework::LengthErrorMessage(object.GetObjectName()));
}

int ReservationFor(const Source& in, qint32 count, qint32 recordLength)
{
    qint64 room = qMin<qint64>(count, qMax<qint64>(0, qint64(recordLength) - 4) / 4);
    room = qMin<qint64>(room, in.BytesAvailable() / 4);
    return int(room);
}

} // namespace Binary
} // namespace TORVIXML
