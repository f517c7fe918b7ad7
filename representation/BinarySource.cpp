#include "BinarySource.h"

#include <QBuffer>
#include <QtEndian>

#include <cstring>

namespace TORVIXML {
namespace Binary {

Source::Source(QDataStream& stream)
    : m_stream(stream)
    , m_device(stream.device())
    , m_bigEndian(stream.byteOrder() == QDataStream::BigEndian)
{
    // Only a QBuffer itself: a subclass may read differently. A stream
    // transaction keeps its own account of what was read, so it is left to
    // the stream.
    if (m_device && m_device->metaObject() == &QBuffer::staticMetaObject && m_device->isReadable()
        && !m_device->isTextModeEnabled() && !m_device->isTransactionStarted()) {
        const QByteArray& bytes = static_cast<const QBuffer*>(m_device)->data();
        m_data = bytes.constData();
        m_size = bytes.size();
        m_pos = m_device->pos();
        m_direct = m_pos >= 0 && m_pos <= m_size;
    }
}

Source::~Source()
{
    Sync();
}

qint64 Source::BytesAvailable() const
{
    if (m_direct)
        return m_size - m_pos;
    return m_device ? qMax<qint64>(0, m_device->bytesAvailable()) : 0;
}

quint32 Source::ReadUInt32()
{
    if (!m_direct) {
        quint32 value = 0;
        m_stream >> value;
        return value;
    }
    if (m_size - m_pos < 4) {
        ShortRead();
        return 0;
    }
    const char* at = m_data + m_pos;
    m_pos += 4;
    return m_bigEndian ? qFromBigEndian<quint32>(at) : qFromLittleEndian<quint32>(at);
}

const char* Source::ReadBytes(int count, char* scratch)
{
    if (count < 0)
        return nullptr;
    if (!m_direct) {
        if (m_stream.readRawData(scratch, count) != count) {
            m_stream.setStatus(QDataStream::ReadPastEnd);
            return nullptr;
        }
        return scratch;
    }
    if (m_size - m_pos < count) {
        ShortRead();
        return nullptr;
    }
    const char* at = m_data + m_pos;
    m_pos += count;
    return at;
}

void Source::ShortRead()
{
    m_pos = m_size;
    m_stream.setStatus(QDataStream::ReadPastEnd);
}

void Source::Sync()
{
    if (m_direct && m_device->pos() != m_pos)
        m_device->seek(m_pos);
}

void Source::Resume()
{
    if (m_direct)
        m_pos = m_device->pos();
}

} // namespace Binary
} // namespace TORVIXML
