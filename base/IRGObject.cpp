#include "IRGObject.h"

#include "Compression.h"
#include "torvixml_version.h"

#include <QBuffer>
#include <QByteArray>
#include <QDataStream>
#include <QDateTime>
#include <QFile>
#include <QSaveFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <cmath>
#include <limits>

namespace REPORTGENERATOR {

namespace {

// Restores a stream's byte order when a whole-document operation is done
// with it; documents are always big-endian.
class BigEndianScope
{
public:
    explicit BigEndianScope(QDataStream& stream)
        : m_stream(stream)
        , m_order(stream.byteOrder())
    {
        stream.setByteOrder(QDataStream::BigEndian);
    }
    ~BigEndianScope() { m_stream.setByteOrder(m_order); }
    BigEndianScope(const BigEndianScope&) = delete;
    BigEndianScope& operator=(const BigEndianScope&) = delete;

private:
    QDataStream& m_stream;
    QDataStream::ByteOrder m_order;
};

quint32 bigEndian32(const char* p)
{
    const auto* u = reinterpret_cast<const uchar*>(p);
    return (quint32(u[0]) << 24) | (quint32(u[1]) << 16) | (quint32(u[2]) << 8) | quint32(u[3]);
}

// Reads a byte array of the given size from the stream, growing the result
// only as the bytes arrive.
bool readChunked(QDataStream& stream, quint32 size, QByteArray& out)
{
    constexpr quint32 Step = 1024 * 1024;
    quint32 done = 0;
    while (done < size) {
        const quint32 chunk = qMin(Step, size - done);
        out.resize(int(done + chunk));
        if (stream.readRawData(out.data() + done, int(chunk)) != int(chunk)) {
            out.clear();
            stream.setStatus(QDataStream::ReadPastEnd);
            return false;
        }
        done += chunk;
    }
    return true;
}

} // namespace

IRGObject::IRGObject() = default;

IRGObject::IRGObject(ObjectTypes type)
    : m_objectType(type)
{
}

IRGObject::IRGObject(const IRGObject& other) = default;
IRGObject::IRGObject(IRGObject&& other) noexcept = default;
IRGObject& IRGObject::operator=(const IRGObject& other) = default;
IRGObject& IRGObject::operator=(IRGObject&& other) noexcept = default;
IRGObject::~IRGObject() = default;

void IRGObject::Check() const
{
    Check(false);
}

bool IRGObject::IsValid(float value) const { return !std::isnan(value); }
bool IRGObject::IsValid(bool) const { return true; }
bool IRGObject::IsValid(unsigned int value) const { return value != std::numeric_limits<unsigned int>::max(); }
bool IRGObject::IsValid(long long value) const { return value != std::numeric_limits<long long>::min(); }
bool IRGObject::IsValid(const QDateTime& value) const { return value.isValid(); }
bool IRGObject::IsValid(const QString& value) const { return !value.isNull(); }
bool IRGObject::IsValid(double value) const { return !std::isnan(value); }
bool IRGObject::IsValid(int value) const { return value != std::numeric_limits<int>::min(); }
void IRGObject::SetInvalid(float& value) const { value = std::numeric_limits<float>::quiet_NaN(); }
void IRGObject::SetInvalid(unsigned int& value) const { value = std::numeric_limits<unsigned int>::max(); }
void IRGObject::SetInvalid(long long& value) const { value = std::numeric_limits<long long>::min(); }
void IRGObject::SetInvalid(QString& value) const { value = QString(); }
void IRGObject::SetInvalid(double& value) const { value = std::numeric_limits<double>::quiet_NaN(); }
void IRGObject::SetInvalid(int& value) const { value = std::numeric_limits<int>::min(); }

bool IRGObject::SetXmlString(const QString& xml, bool resetFirst)
{
    if (resetFirst)
        Reset();
    QXmlStreamReader reader(xml);
    return ReadXmlDocument(reader);
}

bool IRGObject::ReadXmlDocument(QXmlStreamReader& reader)
{
    while (!reader.atEnd() && reader.readNext() != QXmlStreamReader::StartElement) {
    }
    if (reader.hasError() || !reader.isStartElement() || reader.name() != GetObjectName())
        return false;
    ProcessXml(reader);
    // Read the rest, so that anything malformed behind the root is noticed.
    while (!reader.atEnd())
        reader.readNext();
    return !reader.hasError();
}

bool IRGObject::SetBinaryRepresentation(QByteArray& data)
{
    if (data.size() >= 8 && qint32(bigEndian32(data.constData())) == qint32(m_classId)
        && qint64(qint32(bigEndian32(data.constData() + 4))) == qint64(data.size()) - 8)
        return ReadPlainBinary(data);
    QByteArray plain;
    if (!InflateCompressed(data, plain))
        return false;
    if (plain.size() < 8 || qint32(bigEndian32(plain.constData())) != qint32(m_classId))
        return false;
    return ReadPlainBinary(plain);
}

bool IRGObject::ReadPlainBinary(const QByteArray& data)
{
    QBuffer buffer;
    buffer.setData(data);
    if (!buffer.open(QIODevice::ReadOnly))
        return false;
    QDataStream stream(&buffer);
    stream.setByteOrder(QDataStream::BigEndian);
    qint32 id = 0;
    qint32 length = 0;
    stream >> id >> length;
    if (stream.status() != QDataStream::Ok || id != qint32(m_classId))
        return false;
    SetBinary(stream, length);
    return stream.status() == QDataStream::Ok && stream.atEnd();
}

bool IRGObject::SetBinaryRepresentation(QDataStream& stream)
{
    BigEndianScope order(stream);
    qint32 first = 0;
    stream >> first;
    if (stream.status() != QDataStream::Ok)
        return false;
    if (first == qint32(m_classId)) {
        qint32 length = 0;
        stream >> length;
        if (stream.status() != QDataStream::Ok)
            return false;
        SetBinary(stream, length);
        return stream.status() == QDataStream::Ok;
    }
    // Otherwise the byte count of a compressed document.
    const quint32 count = quint32(first);
    if (count == 0xFFFFFFFFu || count < 6 || count > quint32(std::numeric_limits<int>::max() - 1))
        return false;
    QByteArray compressed;
    if (!readChunked(stream, count, compressed))
        return false;
    return SetBinaryRepresentation(compressed);
}

bool IRGObject::MergeRGObject(const IRGObject&)
{
    return false;
}

ObjectTypes IRGObject::GetObjectType() const
{
    return m_objectType;
}

const QString& IRGObject::GetObjectName() const
{
    return m_objectName;
}

void IRGObject::ProcessXml(QXmlStreamReader& reader)
{
    // depth counts the elements opened inside the object's element and not
    // yet closed: a start tag at depth 0 is a direct child, an end tag at
    // depth 0 the object's own. Every round reads at least one token, so the
    // walk ends at the latest when the reader reaches the end of its input
    // or reports an error.
    qint64 depth = 0;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            if (depth > 0) {
                ++depth;
                break;
            }
            // The child normally consumes itself up to its end tag; a skip
            // that stopped inside it reports how many elements it left open.
            m_openXmlElements = 0;
            ProcessXmlStartElement(reader);
            depth = m_openXmlElements;
            m_openXmlElements = 0;
            break;
        case QXmlStreamReader::EndElement:
            if (depth == 0)
                return;
            --depth;
            break;
        default:
            break;
        }
    }
}

QString IRGObject::GetXmlString() const
{
    QByteArray bytes;
    {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QXmlStreamWriter writer(&buffer);
        writer.writeStartDocument();
        GetXml(writer);
        writer.writeEndDocument();
    }
    return QString::fromUtf8(bytes);
}

void IRGObject::GetBinaryRepresentation(QDataStream& stream) const
{
    BigEndianScope order(stream);
    GetBinary(stream, int(m_classId), true);
}

QByteArray IRGObject::GetBinaryRepresentationAsQByteArray() const
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QDataStream stream(&buffer);
    GetBinaryRepresentation(stream);
    return bytes;
}

void IRGObject::GetCompressedBinaryRepresentation(QDataStream& stream, int level) const
{
    BigEndianScope order(stream);
    stream << GetCompressedBinaryRepresentationAsQByteArray(level);
}

QByteArray IRGObject::GetCompressedBinaryRepresentationAsQByteArray(int level) const
{
    const QByteArray plain = GetBinaryRepresentationAsQByteArray();
    if (plain.isEmpty())
        return QByteArray();
    return qCompress(plain, qBound(-1, level, 9));
}

bool IRGObject::LoadXml(const QString& fileName)
{
    QFile file(fileName);
    return LoadXml(&file);
}

namespace {
// Opens a file for reading unless the caller already did, and closes it again
// only in the first case.
class ReadAccess
{
public:
    explicit ReadAccess(QFile* file)
        : m_file(file)
    {
        if (!file)
            return;
        if (file->isOpen()) {
            m_ok = file->isReadable();
        } else {
            m_ok = m_opened = file->open(QIODevice::ReadOnly);
        }
    }
    ~ReadAccess()
    {
        if (m_opened)
            m_file->close();
    }
    ReadAccess(const ReadAccess&) = delete;
    ReadAccess& operator=(const ReadAccess&) = delete;
    bool ok() const { return m_ok; }

private:
    QFile* m_file;
    bool m_ok = false;
    bool m_opened = false;
};
} // namespace

bool IRGObject::LoadXml(QFile* file)
{
    ReadAccess access(file);
    if (!access.ok())
        return false;
    Reset();
    QXmlStreamReader reader(file);
    return ReadXmlDocument(reader);
}

bool IRGObject::LoadBinary(QFile* file)
{
    ReadAccess access(file);
    if (!access.ok())
        return false;
    QByteArray data = file->readAll();
    Reset();
    return SetBinaryRepresentation(data);
}

bool IRGObject::SaveXml(const QString& fileName) const
{
    // The document is complete in memory before the file is touched, so an
    // exception of the concrete class leaves the file system unchanged.
    const QByteArray bytes = GetXmlString().toUtf8();
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

void IRGObject::SetValidate(bool validate) const
{
    m_validate = validate;
}

bool IRGObject::GetValidate() const
{
    return m_validate;
}

void IRGObject::SetLogger(std::shared_ptr<Logger> logger) const
{
    m_logger = std::move(logger);
}

void IRGObject::ResetLogger() const
{
    m_logger.reset();
}

const QString& IRGObject::GetVersion() const
{
    static const QString version = QStringLiteral(TORVIXML_VERSION_STRING);
    return version;
}

void IRGObject::SetObjectType(ObjectTypes type)
{
    m_objectType = type;
}

std::shared_ptr<Logger> IRGObject::GetLogger() const
{
    return m_logger;
}

int IRGObject::skipCurrentElement(QDataStream& stream, int length, int) const
{
    if (length <= 0)
        return 0;
    const int skipped = int(stream.skipRawData(length));
    if (skipped != length)
        stream.setStatus(QDataStream::ReadPastEnd);
    return skipped;
}

void IRGObject::SetObjectName(const QString& name)
{
    m_objectName = name;
}

void IRGObject::ProcessXmlStartElement(QXmlStreamReader& reader)
{
    reader.skipCurrentElement();
}

void IRGObject::SkipXmlElement(QXmlStreamReader& reader)
{
    const QString name = reader.name().toString();
    // The skipped element itself is open; every start and end tag passed,
    // the one reading stops on included, changes the count.
    qint64 open = 1;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            ++open;
            break;
        case QXmlStreamReader::EndElement:
            --open;
            break;
        default:
            break;
        }
        // Tokens without a name (text, comments) never match.
        if (reader.name() == name)
            break;
    }
    m_openXmlElements = open;
}

QString IRGObject::GetTextValue(QXmlStreamReader& reader)
{
    QString text;
    int depth = 0;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::Characters:
        case QXmlStreamReader::EntityReference:
            if (depth == 0)
                text += reader.text();
            break;
        case QXmlStreamReader::StartElement:
            ++depth;
            break;
        case QXmlStreamReader::EndElement:
            if (depth == 0)
                return text;
            --depth;
            break;
        default:
            break;
        }
    }
    return text;
}

} // namespace REPORTGENERATOR
