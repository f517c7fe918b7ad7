#ifndef TORVIXML_REPRESENTATION_BINARYSOURCE_H
#define TORVIXML_REPRESENTATION_BINARYSOURCE_H

#include <QDataStream>
#include <QIODevice>

namespace TORVIXML {
namespace Binary {

/**
 * What SetBinary() reads one object's records from.
 *
 * When the stream's device is a plain QBuffer open for reading (the device
 * of every whole-document read), the bytes are taken straight from the
 * buffer's array with a cursor of the source's own, which spares the
 * QIODevice machinery behind every integer a QDataStream reads. Otherwise
 * every read goes through the stream.
 *
 * Either way the effect on the stream is that of reading through it: short
 * reads consume what is there, give 0 (or no bytes) and set the status to
 * ReadPastEnd, and the device stands behind the last byte read whenever the
 * stream itself is handed on (HandOn) and when the source goes away, also
 * when an exception ends the read.
 *
 * The stream's status is only ever set, never consulted: as with the
 * stream's own operators outside a transaction, the bytes read are the same
 * whatever status the stream was handed in with. A short read shows in what
 * it gives (0, no bytes, AtEnd() afterwards), not in the status, which may
 * have been bad from the start.
 */
class Source
{
public:
    explicit Source(QDataStream& stream);
    ~Source();
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    bool AtEnd() const { return m_direct ? m_pos >= m_size : m_stream.atEnd(); }
    qint64 BytesAvailable() const;

    qint32 ReadInt32() { return qint32(ReadUInt32()); }
    quint32 ReadUInt32();
    /// Reads count bytes: returns where they are (in the buffer's array, or
    /// copied into scratch, which must hold count bytes when the source does
    /// not read directly), or null after a short read.
    const char* ReadBytes(int count, char* scratch);
    bool Direct() const { return m_direct; }

    /// Lends the stream to code that reads through it (a nested object, the
    /// skipping of a record): the device is moved to the cursor first, and
    /// the cursor follows the device again afterwards.
    class HandOn
    {
    public:
        explicit HandOn(Source& source)
            : m_source(source)
        {
            m_source.Sync();
        }
        ~HandOn() { m_source.Resume(); }
        HandOn(const HandOn&) = delete;
        HandOn& operator=(const HandOn&) = delete;
        QDataStream& Stream() const { return m_source.m_stream; }

    private:
        Source& m_source;
    };

private:
    void Sync();
    void Resume();
    void ShortRead();

    QDataStream& m_stream;
    QIODevice* m_device = nullptr;
    const char* m_data = nullptr;
    qint64 m_size = 0;
    qint64 m_pos = 0;
    bool m_direct = false;
    bool m_bigEndian = true;
};

} // namespace Binary
} // namespace TORVIXML

#endif
