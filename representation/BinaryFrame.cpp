#include "BinaryFrame.h"

#include <QBuffer>
#include <QByteArray>
#include <QtEndian>

namespace TORVIXML {
namespace Binary {

bool CanWrite(QDataStream& stream)
{
    QIODevice* device = stream.device();
    if (device && device->isWritable() && !device->isSequential()
        && !(device->openMode() & QIODevice::Append))
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

// The part of ReadText() after the byte count, for texts that do not fit
// into a small buffer.
QString ReadLargeText(QDataStream& stream, quint32 count)
{
    // Larger texts grow with the bytes that really arrive, so a count that
    // lies costs no more memory than the input holds.
    constexpr quint32 Step = 1024 * 1024;
    QByteArray bytes;
    quint32 done = 0;
    while (done < count) {
        const quint32 chunk = qMin(Step, count - done);
        bytes.resize(int(done + chunk));
        if (stream.readRawData(bytes.data() + done, int(chunk)) != int(chunk)) {
            stream.setStatus(QDataStream::ReadPastEnd);
            return QStringLiteral("");
        }
        done += chunk;
    }
    return QString::fromUtf8(bytes.constData(), int(bytes.size()));
}

} // namespace

QString ReadText(QDataStream& stream)
{
    quint32 count = 0;
    stream >> count;
    if (count == 0 || count == 0xFFFFFFFFu || stream.status() != QDataStream::Ok)
        return QStringLiteral("");
    if (count <= SmallText) {
        char buffer[SmallText];
        if (stream.readRawData(buffer, int(count)) != int(count)) {
            stream.setStatus(QDataStream::ReadPastEnd);
            return QStringLiteral("");
        }
        return QString::fromUtf8(buffer, int(count));
    }
    return ReadLargeText(stream, count);
}

int ReadName(QDataStream& stream, const Framework::EnumNameTable& table, QString& text)
{
    quint32 count = 0;
    stream >> count;
    if (count == 0 || count == 0xFFFFFFFFu || stream.status() != QDataStream::Ok) {
        text = QStringLiteral("");
        return -1;
    }
    if (count <= SmallText) {
        char buffer[SmallText];
        if (stream.readRawData(buffer, int(count)) != int(count)) {
            stream.setStatus(QDataStream::ReadPastEnd);
            text = QStringLiteral("");
            return -1;
        }
        const int value = table.IndexOfUtf8(buffer, int(count));
        if (value < 0)
            text = QString::fromUtf8(buffer, int(count));
        return value;
    }
    text = ReadLargeText(stream, count);
    return -1;
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

int ReservationFor(QDataStream& stream, qint32 count, qint32 recordLength)
{
    qint64 room = qMin<qint64>(count, qMax<qint64>(0, qint64(recordLength) - 4) / 4);
    if (QIODevice* device = stream.device())
        room = qMin<qint64>(room, qMax<qint64>(0, device->bytesAvailable()) / 4);
    return int(room);
}

} // namespace Binary
} // namespace TORVIXML
