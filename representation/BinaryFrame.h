#ifndef TORVIXML_REPRESENTATION_BINARYFRAME_H
#define TORVIXML_REPRESENTATION_BINARYFRAME_H

// The bytes of the binary form: frames written into a byte array, and
// records read from a stream.
//
// An object frame is [id] objectLength memberRecord*, a member record is
// memberId recordLength payload; all integers are 32-bit in the stream's
// byte order. A text payload is a 32-bit byte count (0xFFFFFFFF for a null
// text) followed by that many bytes of UTF-8.

#include <QByteArray>
#include <QDataStream>
#include <QString>
#include <QtEndian>

class QIODevice;

namespace REPORTGENERATOR {
class IRGObject;
}

namespace TORVIXML {
namespace Binary {

/// Whether the stream's device can take a frame: present, writable and
/// random-access; in append mode only a plain QBuffer, which merely starts
/// at its end and then seeks and overwrites like any other buffer. A file
/// opened for appending would not let a writer go back to a length, so it
/// is refused like a sequential device, although frames are now built in
/// memory first. A stream that fails this gets its status set to
/// WriteFailed, and nothing is written.
bool CanWrite(QDataStream& stream);

/// A frame built in memory, in a given byte order, and handed to the stream
/// in one piece. Each length is written as a placeholder and filled in once
/// what it counts has been written.
class Output
{
public:
    explicit Output(QDataStream::ByteOrder order);

    void Int(qint32 value);
    /// A length placeholder; returns where the bytes it counts start.
    qint64 OpenLength();
    /// Fills in the placeholder before start with the bytes written since.
    void CloseLength(qint64 start);
    /// A text payload.
    void Text(const QString& text);
    /// A text payload from text already encoded as UTF-8; null for a null
    /// text.
    void Utf8(const QByteArray* utf8);

    /// Writes what has been built so far onto the stream.
    void HandTo(QDataStream& stream) const;

private:
    QByteArray m_bytes;
    bool m_bigEndian;
};

/**
 * What the readers read member records from: the stream's bytes, taken in
 * blocks and parsed from memory.
 *
 * From a random-access device the source reads ahead, as far as the device
 * holds bytes, and gives back what it did not use by seeking the device
 * back, when it goes away (also when an exception ends the read) and when it
 * lends the stream to code that reads through it. From any other device it
 * reads exactly the bytes it parses. Either way every byte passes through
 * the stream's readRawData, and the effect on the stream is that of reading
 * through it: short reads consume what is there, give 0 (or no bytes) and
 * leave the status ReadPastEnd. The stream's status is never consulted.
 */
class Source
{
public:
    explicit Source(QDataStream& stream);
    ~Source();
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    /// No byte left, here or in the stream.
    bool AtEnd() const;
    /// Bytes left, here and in the device.
    qint64 BytesAvailable() const;

    qint32 ReadInt32() { return qint32(ReadUInt32()); }
    quint32 ReadUInt32()
    {
        const char* bytes = ReadBytes(4);
        if (!bytes)
            return 0;
        return m_bigEndian ? qFromBigEndian<quint32>(bytes) : qFromLittleEndian<quint32>(bytes);
    }
    /// count bytes, valid until the next read; null after a short read.
    const char* ReadBytes(qint64 count)
    {
        if (count < 0 || (m_window.size() - m_pos < count && !Fill(count)))
            return ShortRead();
        const char* bytes = m_window.constData() + m_pos;
        m_pos += count;
        return bytes;
    }
    /// Passes over count bytes, or as many as there are.
    void Skip(quint64 count);

    /// The stream, standing where reading has got to, for code that reads
    /// through it; reading ahead starts afresh afterwards.
    QDataStream& Lend();

private:
    bool Fill(qint64 count);
    const char* ShortRead();
    void GiveBack();

    QDataStream& m_stream;
    QIODevice* m_device;
    QByteArray m_window;
    qint64 m_pos = 0;
    bool m_readAhead;
    bool m_bigEndian;
};

/// The bytes of a text payload, valid until the next read: none (size 0)
/// for a null or empty text and after a short read.
struct Utf8
{
    const char* bytes = nullptr;
    int size = 0;
};
Utf8 ReadUtf8(Source& in);

/// Reads a text payload: its bytes decoded, an empty, non-null text for
/// none.
QString ReadText(Source& in);

[[noreturn]] void ThrowLengthError(const REPORTGENERATOR::IRGObject& object);

/// How many elements to make room for when a list record announces count
/// elements: never more than the record length, or the bytes the device
/// still holds, can carry at four bytes per element frame.
int ReservationFor(const Source& in, qint32 count, qint32 recordLength);

} // namespace Binary
} // namespace TORVIXML

#endif
