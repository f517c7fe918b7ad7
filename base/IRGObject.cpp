#include "IRGObject.h"

#include "Compression.h"
#include "DocumentIO.h"
#include "OutOfRangeException.h"
#include "XmlScreen.h"
#include "torvixml_version.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QByteArray>
#include <QDataStream>
#include <QDateTime>
#include <QFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>
#include <QtEndian>

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
            out.clear(); // the short read has set ReadPastEnd
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

// Every whole-document read runs here: into a new object of this class that
// reads with this object's flag, logger and limit, taken over only when the
// whole document was read. The reason of a failure goes to this object.
template <typename Read>
bool IRGObject::ReadReplacing(Read&& read)
{
    m_errorString.clear();
    std::unique_ptr<IRGObject> fresh = CreateEmpty();
    if (!fresh)
        return Fail(QStringLiteral("%1 cannot make an object to read into").arg(GetObjectName()));
    fresh->SetValidate(GetValidate());
    fresh->SetLogger(GetLogger());
    fresh->m_maxDocumentSize = m_maxDocumentSize;
    bool complete = false;
    try {
        complete = read(*fresh);
    } catch (const ReportException& e) {
        m_errorString = e.GetMessageText();
        throw;
    }
    if (!complete)
        return Fail(fresh->m_errorString);
    TakeContent(*fresh);
    return true;
}

bool IRGObject::Fail(const QString& reason) const
{
    m_errorString = reason;
    return false;
}

bool IRGObject::SetXmlString(const QString& xml, bool)
{
    return ReadReplacing([&](IRGObject& object) { return object.ReadXmlText(xml); });
}

bool IRGObject::ReadXmlText(const QString& xml)
{
    const QString characters = QStringLiteral("characters");
    if (xml.size() > m_maxDocumentSize)
        return Fail(SizeLimitMessage(QStringLiteral("the text"), xml.size(), m_maxDocumentSize, characters));
    QString problem;
    if (!XmlScreen::Screen(xml, xml.size(), characters, XmlEntityAllowance, MaxXmlAttributes, problem))
        return Fail(problem);
    QXmlStreamReader reader(xml);
    return ReadXmlDocument(reader, nullptr);
}

// The bytes come from ReadDevice, which has refused anything beyond the
// maximum document size.
bool IRGObject::ReadXmlBytes(const QByteArray& bytes)
{
    bool utf8 = false;
    {
        const XmlScreen::Decoded decoded = XmlScreen::Decode(bytes);
        utf8 = decoded.utf8;
        QString problem;
        const bool within = utf8 ? XmlScreen::ScreenUtf8(bytes, XmlEntityAllowance, MaxXmlAttributes, problem)
                                 : XmlScreen::Screen(decoded.text, bytes.size(), QStringLiteral("bytes"),
                                                     XmlEntityAllowance, MaxXmlAttributes, problem);
        if (!within)
            return Fail(problem);
    }
    // The reader decodes the bytes itself, so that it reports what is not
    // in the document's encoding; from a device it decodes them in steps of
    // 8 KiB, given an array it would decode all of them at once.
    QBuffer device;
    device.setData(bytes);
    device.open(QIODevice::ReadOnly);
    QXmlStreamReader reader(&device);
    return ReadXmlDocument(reader, utf8 ? &bytes : nullptr);
}

bool IRGObject::ReadXmlDocument(QXmlStreamReader& reader, const QByteArray* utf8)
{
    while (!reader.atEnd() && reader.readNext() != QXmlStreamReader::StartElement) {
    }
    if (reader.hasError())
        return FailXml(reader, utf8);
    if (!reader.isStartElement())
        return Fail(QStringLiteral("the document holds no element"));
    if (reader.name() != GetObjectName()) {
        return Fail(QStringLiteral("the document element is <%1>, not <%2>")
                        .arg(reader.name().toString(), GetObjectName()));
    }
    try {
        ProcessXml(reader);
    } catch (const ReportException&) {
        // A setter or an append refused what it got. When the document is
        // broken (the text it got was cut off by the break, or the document
        // breaks further on), the document is what is wrong.
        while (!reader.atEnd())
            reader.readNext();
        if (!reader.hasError())
            throw;
        return FailXml(reader, utf8);
    }
    // Read the rest, so that anything malformed behind the root is noticed.
    while (!reader.atEnd())
        reader.readNext();
    if (reader.hasError())
        return FailXml(reader, utf8);
    return true;
}

bool IRGObject::FailXml(const QXmlStreamReader& reader, const QByteArray* utf8) const
{
    // The reader decodes all the bytes it has before it parses them and
    // reports bytes outside the encoding where it stands when it finds
    // them, which is where the decoding began; the first of those bytes is
    // where the error is.
    XmlScreen::Position position;
    position.line = reader.lineNumber();
    position.column = reader.columnNumber();
    const QString encodingError = QCoreApplication::translate("QXmlStream", "Encountered incorrectly encoded content.");
    if (utf8 && reader.errorString() == encodingError)
        XmlScreen::FindInvalidUtf8(*utf8, position);
    return Fail(QStringLiteral("XML error at line %1, column %2: %3")
                    .arg(position.line)
                    .arg(position.column)
                    .arg(reader.errorString()));
}

bool IRGObject::SetBinaryRepresentation(QByteArray& data)
{
    return ReadReplacing([&](IRGObject& object) { return object.ReadBinaryBytes(data); });
}

bool IRGObject::ReadBinaryBytes(const QByteArray& data)
{
    if (data.size() > m_maxDocumentSize)
        return Fail(SizeLimitMessage(QStringLiteral("the document"), data.size(), m_maxDocumentSize));
    const bool classFirst = data.size() >= 4 && qint32(qFromBigEndian<quint32>(data.constData())) == qint32(m_classId);
    if (classFirst && data.size() >= 8 && qint64(qint32(qFromBigEndian<quint32>(data.constData() + 4))) == qint64(data.size()) - 8)
        return ReadPlainBinary(data);
    InflateLimits limits;
    limits.maxSize = m_maxDocumentSize;
    limits.budget = true;
    limits.checkHeader = true;
    limits.classId = qint32(m_classId);
    QByteArray plain;
    QString problem;
    if (InflateCompressed(data, plain, &problem, limits))
        return ReadPlainBinary(plain);
    if (classFirst && data.size() >= 8) {
        return Fail(QStringLiteral("the object length %1 does not match the %2 bytes behind it")
                        .arg(qint32(qFromBigEndian<quint32>(data.constData() + 4)))
                        .arg(data.size() - 8));
    }
    return Fail(QStringLiteral("neither a plain %1 document (class id %2) nor a compressed one: %3")
                    .arg(GetObjectName())
                    .arg(m_classId)
                    .arg(problem));
}

bool IRGObject::ReadPlainBinary(const QByteArray& data)
{
    QBuffer buffer;
    buffer.setData(data);
    if (!buffer.open(QIODevice::ReadOnly))
        return Fail(buffer.errorString());
    QDataStream stream(&buffer);
    stream.setByteOrder(QDataStream::BigEndian);
    qint32 id = 0;
    qint32 length = 0;
    stream >> id >> length;
    SetBinary(stream, length);
    if (stream.status() != QDataStream::Ok)
        return Fail(QStringLiteral("the document ends inside a text or list its records announce"));
    // The records add up (or the object threw), but a record may hold more
    // than its payload used.
    if (!stream.atEnd())
        return Fail(QStringLiteral("a record holds bytes its payload does not use"));
    return true;
}

bool IRGObject::SetBinaryRepresentation(QDataStream& stream)
{
    BigEndianScope order(stream);
    return ReadReplacing([&](IRGObject& object) { return object.ReadBinaryStream(stream); });
}

bool IRGObject::ReadBinaryStream(QDataStream& stream)
{
    qint32 first = 0;
    stream >> first;
    if (stream.status() != QDataStream::Ok)
        return Fail(QStringLiteral("the stream ends before a document begins"));
    if (first == qint32(m_classId)) {
        qint32 length = 0;
        stream >> length;
        if (stream.status() != QDataStream::Ok)
            return Fail(QStringLiteral("the stream ends inside the document's object length"));
        if (qint64(length) + 8 > m_maxDocumentSize)
            return Fail(SizeLimitMessage(QStringLiteral("the document"), qint64(length) + 8, m_maxDocumentSize));
        SetBinary(stream, length);
        if (stream.status() != QDataStream::Ok)
            return Fail(QStringLiteral("the stream ends inside the document"));
        return true;
    }
    // Otherwise the byte count of a compressed document.
    const quint32 count = quint32(first);
    if (count == 0xFFFFFFFFu || count < 6) {
        return Fail(QStringLiteral("the stream holds neither a %1 document (class id %2) nor a compressed one (its "
                                   "first word %3 is no byte count of one)")
                        .arg(GetObjectName())
                        .arg(m_classId)
                        .arg(first));
    }
    if (qint64(count) > m_maxDocumentSize) {
        return Fail(SizeLimitMessage(QStringLiteral("the compressed document"), qint64(count), m_maxDocumentSize));
    }
    QByteArray compressed;
    if (!readChunked(stream, count, compressed))
        return Fail(QStringLiteral("the stream ends inside the compressed document of %1 bytes").arg(count));
    return ReadBinaryBytes(compressed);
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
    m_errorString.clear();
    try {
        return WriteXmlString();
    } catch (const ReportException& e) {
        m_errorString = e.GetMessageText();
        throw;
    }
}

QString IRGObject::WriteXmlString() const
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
// Opens a device for reading unless the caller already did, and closes it
// again only in the first case.
class ReadAccess
{
public:
    explicit ReadAccess(QIODevice* file)
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
    QIODevice* m_file;
    bool m_ok = false;
    bool m_opened = false;
};
} // namespace

bool IRGObject::ReadDevice(QIODevice* device, QByteArray& data)
{
    if (!device)
        return Fail(QStringLiteral("no file given"));
    ReadAccess access(device);
    if (!access.ok()) {
        // A device the caller opened without read access has no error of
        // its own to tell.
        return Fail(device->isOpen() ? QStringLiteral("cannot read: the file is open for writing only")
                                     : QStringLiteral("cannot open for reading: %1").arg(device->errorString()));
    }
    // Bytes already in memory are shared rather than copied.
    if (auto* buffer = qobject_cast<QBuffer*>(device)) {
        const qint64 remaining = buffer->size() - buffer->pos();
        if (remaining > m_maxDocumentSize) {
            return Fail(SizeLimitMessage(QStringLiteral("the document"), remaining, m_maxDocumentSize));
        }
        data = buffer->pos() == 0 ? buffer->data() : buffer->data().mid(int(buffer->pos()));
        buffer->seek(buffer->size());
        return true;
    }
    QString problem;
    return ReadWholeDevice(*device, m_maxDocumentSize, data, problem) || Fail(problem);
}

bool IRGObject::LoadXml(QFile* file)
{
    return LoadXml(static_cast<QIODevice*>(file));
}

bool IRGObject::LoadXml(QIODevice* device)
{
    return ReadReplacing([&](IRGObject& object) {
        QByteArray data;
        return object.ReadDevice(device, data) && object.ReadXmlBytes(data);
    });
}

bool IRGObject::LoadBinary(QFile* file)
{
    return ReadReplacing([&](IRGObject& object) {
        QByteArray data;
        return object.ReadDevice(file, data) && object.ReadBinaryBytes(data);
    });
}

bool IRGObject::SaveXml(const QString& fileName) const
{
    // The document is complete in memory before the file is touched, so an
    // exception of the concrete class leaves the file system unchanged.
    const QByteArray bytes = GetXmlString().toUtf8();
    QString problem;
    return WriteFileAtomically(fileName, bytes, problem) || Fail(problem);
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

void IRGObject::SetMaxDocumentSize(qint64 bytes)
{
    m_maxDocumentSize = qMax<qint64>(1, bytes);
}

qint64 IRGObject::GetMaxDocumentSize() const
{
    return m_maxDocumentSize;
}

QString IRGObject::GetErrorString() const
{
    return m_errorString;
}

namespace {

// Index of the first character of text that fails isChar, or -1. Surrogate
// pairs are one character; a surrogate without its partner always fails.
template <typename IsChar>
int FindCharacter(const QString& text, IsChar&& isChar)
{
    const int n = text.size();
    for (int i = 0; i < n; ++i) {
        const ushort c = text.at(i).unicode();
        if (QChar::isHighSurrogate(c) && i + 1 < n && QChar::isLowSurrogate(text.at(i + 1).unicode())) {
            ++i;
            continue;
        }
        if (QChar::isSurrogate(c) || !isChar(c))
            return i;
    }
    return -1;
}

} // namespace

int IRGObject::FindNonXmlCharacter(const QString& text)
{
    return FindCharacter(text, [](ushort c) {
        return c >= 0x20 ? c != 0xFFFE && c != 0xFFFF : c == 0x09 || c == 0x0A || c == 0x0D;
    });
}

int IRGObject::FindUnpairedSurrogate(const QString& text)
{
    return FindCharacter(text, [](ushort) { return true; });
}

void IRGObject::RequireXmlText(const QString& text, const char* what) const
{
    RequireText(text, FindNonXmlCharacter(text), what, "XML 1.0");
}

void IRGObject::RequireUtf8Text(const QString& text, const char* what) const
{
    RequireText(text, FindUnpairedSurrogate(text), what, "UTF-8");
}

void IRGObject::RequireText(const QString& text, int index, const char* what, const char* form) const
{
    if (index < 0)
        return;
    // Count in characters: a surrogate pair before the place is one.
    const QString before = text.left(index);
    const int position = before.toUcs4().size() + 1;
    const QString code = QString::number(text.at(index).unicode(), 16).toUpper().rightJustified(4, QLatin1Char('0'));
    constexpr int Shown = 32;
    const QString after = before.isEmpty() ? QString()
        : before.size() <= Shown ? QStringLiteral(" (after \"%1\")").arg(before)
                                 : QStringLiteral(" (after \"...%1\")").arg(before.right(Shown));
    throw OutOfRangeException(QStringLiteral("%1: %2 holds U+%3 at character %4%5, which %6 cannot represent.")
                                  .arg(GetObjectName(), QLatin1String(what), code)
                                  .arg(position)
                                  .arg(after, QLatin1String(form)));
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
