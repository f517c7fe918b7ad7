#include "BinaryFrame.h"

#include "BinaryParsingException.h"
#include "IRGObject.h"

#include "Messages.h"

#include <QBuffer>
#include <QIODevice>
#include <QtEndian>

#include <limits>

namespace TORVIXML {
namespace Binary {

namespace {
// Texts longer than this arrive in steps of this size, so that a byte count
// that lies costs no more memory than the input holds.
constexpr qint64 Step = 1024 * 1024;
// How far the source reads ahead of what it parses.
constexpr qint64 ReadAhead = 256 * 1024;
} // namespace

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

Output::Output(QDataStream::ByteOrder order)
    : m_bigEndian(order == QDataStream::BigEndian)
{
}

void Output::Int(qint32 value)
{
    char bytes[4];
    if (m_bigEndian)
        qToBigEndian(value, bytes);
    else
        qToLittleEndian(value, bytes);
    m_bytes.append(bytes, 4);
}

qint64 Output::OpenLength()
{
    Int(0);
    return m_bytes.size();
}

void Output::CloseLength(qint64 start)
{
    const qint32 length = qint32(m_bytes.size() - start);
    char* placeholder = m_bytes.data() + (start - 4);
    if (m_bigEndian)
        qToBigEndian(length, placeholder);
    else
        qToLittleEndian(length, placeholder);
}

void Output::Text(const QString& text)
{
    if (text.isNull()) {
        Utf8(nullptr);
        return;
    }
    const QByteArray utf8 = text.toUtf8();
    Utf8(&utf8);
}

void Output::Utf8(const QByteArray* utf8)
{
    if (!utf8) {
        Int(qint32(0xFFFFFFFFu));
        return;
    }
    Int(qint32(utf8->size()));
    m_bytes.append(*utf8);
}

void Output::HandTo(QDataStream& stream) const
{
    stream.writeRawData(m_bytes.constData(), int(m_bytes.size()));
}

Source::Source(QDataStream& stream)
    : m_stream(stream)
    , m_device(stream.device())
    // Bytes read ahead can only be given back by seeking; in text mode the
    // bytes read need not match the distance the device moved.
    , m_readAhead(m_device && !m_device->isSequential() && !m_device->isTextModeEnabled())
    , m_bigEndian(stream.byteOrder() == QDataStream::BigEndian)
{
}

Source::~Source()
{
    GiveBack();
}

bool Source::AtEnd() const
{
    return m_pos >= m_window.size() && m_stream.atEnd();
}

qint64 Source::BytesAvailable() const
{
    const qint64 device = m_device ? qMax<qint64>(0, m_device->bytesAvailable()) : 0;
    return m_window.size() - m_pos + device;
}

// Makes count bytes available from m_pos on; false when the stream ends
// first, with what did arrive in the window.
bool Source::Fill(qint64 count)
{
    qint64 have = m_window.size() - m_pos;
    if (have >= count)
        return true;
    m_window.remove(0, int(m_pos));
    m_pos = 0;
    qint64 want = count;
    if (m_readAhead)
        want = qMax(count, have + qMin(ReadAhead, qMax<qint64>(0, m_device->bytesAvailable())));
    while (have < want) {
        const qint64 step = qMin(Step, want - have);
        m_window.resize(int(have + step));
        const int got = m_stream.readRawData(m_window.data() + have, int(step));
        if (got < step) {
            have += qMax(got, 0);
            m_window.resize(int(have));
            return have >= count;
        }
        have += step;
    }
    return true;
}

// A read that wants more than there is takes what there is.
const char* Source::ShortRead()
{
    m_pos = m_window.size();
    return nullptr;
}

void Source::Skip(quint64 count)
{
    while (count > 0) {
        const qint64 step = qint64(qMin<quint64>(count, quint64(Step)));
        if (!ReadBytes(step))
            return;
        count -= quint64(step);
    }
}

void Source::GiveBack()
{
    const qint64 unread = m_window.size() - m_pos;
    if (unread > 0)
        m_device->seek(m_device->pos() - unread);
    m_window.clear();
    m_pos = 0;
}

QDataStream& Source::Lend()
{
    GiveBack();
    return m_stream;
}

Utf8 ReadUtf8(Source& in)
{
    const quint32 count = in.ReadUInt32();
    // A null text, an empty one and a short read of the count all give 0
    // bytes.
    if (count == 0xFFFFFFFFu || count == 0)
        return {};
    if (count > quint32(std::numeric_limits<int>::max())) {
        // More than a byte array can hold: the payload is passed over as a
        // text of that length would be read, which in practice ends at the
        // end of the stream, with the status of a short read.
        in.Skip(count);
        return {};
    }
    const char* bytes = in.ReadBytes(count);
    if (!bytes)
        return {};
    return {bytes, int(count)};
}

QString ReadText(Source& in)
{
    const Utf8 text = ReadUtf8(in);
    if (text.size == 0)
        return QStringLiteral("");
    return QString::fromUtf8(text.bytes, text.size);
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
