#ifndef TORVIXML_IRGOBJECT_H
#define TORVIXML_IRGOBJECT_H

#include "rgbase_export.h"

#include "Logger.h"
#include "ObjectTypes.h"

#include <QString>
#include <QtGlobal>

#include <memory>

class QByteArray;
class QDataStream;
class QDateTime;
class QFile;
class QIODevice;
class QXmlStreamReader;
class QXmlStreamWriter;

namespace REPORTGENERATOR {

/**
 * Base class of all report objects.
 *
 * A report object has a name (its XML element name), an object type, a class
 * id, a validation flag and a shared logger. Concrete classes write and read
 * themselves through the hooks GetXml/ProcessXml/ProcessXmlStartElement and
 * GetBinary/SetBinary; this class turns those hooks into whole-document
 * operations (XML text and files, plain and compressed binary forms).
 *
 * The validation flag and the logger are mutable state: they are set through
 * const operations, since they describe how an object is handled rather than
 * what it holds.
 *
 * Whole-document reads (SetXmlString, every LoadXml, both
 * SetBinaryRepresentation, LoadBinary) are all or nothing. Each reads into a
 * new, empty object of the same class (CreateEmpty) that carries this
 * object's validation flag, logger and maximum document size; only when the
 * whole document was read does this object take over what was read
 * (TakeContent, which shares the new object's record instead of copying it),
 * replacing everything it held before. After false or an exception the
 * object holds exactly what it held before. GetErrorString() tells why the
 * last whole-document operation failed.
 *
 * Every whole-document read costs time and memory in proportion to its
 * input. Inputs larger than the maximum document size (SetMaxDocumentSize,
 * DefaultMaxDocumentSize) are refused before they are read whole; what the
 * input could expand to is bounded as well: XML entity references may add at
 * most as many characters as the document has bytes (characters, for a
 * string) plus XmlEntityAllowance, an element may carry at most
 * MaxXmlAttributes attributes, and a compressed document may announce at most
 * 16 times its compressed size plus 32 MiB (MaxInflationFactor and
 * InflationAllowance of the internal Compression.h), and no more than the
 * maximum document size.
 *
 * Binary documents: GetBinaryRepresentation writes GetBinary(stream, classId,
 * true) on a big-endian stream, i.e. the class id, the object length and the
 * object's member records. The compressed form is qCompress() of that plain
 * form: a big-endian 32-bit uncompressed size followed by a zlib stream. On a
 * QDataStream the compressed form is written as one byte array (a 32-bit byte
 * count, then the qCompress() bytes). SetBinaryRepresentation tells the forms
 * apart by the first 32-bit word: the object's class id starts a plain
 * document (and, in a QByteArray, the object length must then match the
 * array's size), anything else is taken as a compressed one. A compressed
 * document is refused as soon as its inflated bytes cannot begin a document
 * of the object's class: they must start with the class id and an object
 * length of the announced size minus 8.
 *
 * XML documents are written only when every text can be represented in
 * XML 1.0 (see RequireXmlText); the binary form holds every text exactly, and
 * refuses only what no form can hold, unpaired surrogates (RequireUtf8Text).
 */
class RGBASE_EXPORT IRGObject
{
public:
    IRGObject();
    explicit IRGObject(ObjectTypes type);
    IRGObject(const IRGObject& other);
    IRGObject(IRGObject&& other) noexcept;
    IRGObject& operator=(const IRGObject& other);
    IRGObject& operator=(IRGObject&& other) noexcept;

    // Virtual operations, in the order of the virtual table.
    virtual ~IRGObject();
    virtual bool HasData() const = 0;
    virtual void Reset() = 0;
    virtual void Check(bool flag) const = 0;
    virtual void Check() const;

    // Validity of plain values: a value is invalid when it equals the marker
    // that the matching SetInvalid overload stores (NaN for floating point,
    // the lowest value for signed integers, the highest for unsigned ones, a
    // null string, an invalid date). Every bool is valid.
    virtual bool IsValid(float value) const;
    virtual bool IsValid(bool value) const;
    virtual bool IsValid(unsigned int value) const;
    virtual bool IsValid(long long value) const;
    virtual bool IsValid(const QDateTime& value) const;
    virtual bool IsValid(const QString& value) const;
    virtual bool IsValid(double value) const;
    virtual bool IsValid(int value) const;
    virtual void SetInvalid(float& value) const;
    virtual void SetInvalid(unsigned int& value) const;
    virtual void SetInvalid(long long& value) const;
    virtual void SetInvalid(QString& value) const;
    virtual void SetInvalid(double& value) const;
    virtual void SetInvalid(int& value) const;

    virtual void GetXml(QXmlStreamWriter& writer) const = 0;
    virtual bool GetBinary(QDataStream& stream, int id, bool writeId) const = 0;
    virtual void SetBinary(QDataStream& stream, int length) = 0;

    /// Reads the object from an XML document held in a string; on success
    /// the document's content replaces what the object held, whatever
    /// resetFirst says (it is kept for callers that pass it). Returns false
    /// when the text is not well-formed XML, its root element is not named
    /// GetObjectName(), or it exceeds the limits of the class comment.
    /// Exceptions of the concrete class pass through, unless the document is
    /// not well-formed: then the XML error is reported (false) even where a
    /// setter refused the text the broken document left it.
    virtual bool SetXmlString(const QString& xml, bool resetFirst);
    /// Reads a plain or compressed binary document (see the class comment).
    /// Returns false for a foreign class id, a truncated or inconsistent
    /// document, data that does not decompress, or a document beyond the
    /// limits of the class comment.
    virtual bool SetBinaryRepresentation(QByteArray& data);
    virtual bool SetBinaryRepresentation(QDataStream& stream);
    /// Report objects are not merged by default: returns false.
    virtual bool MergeRGObject(const IRGObject& other);
    virtual ObjectTypes GetObjectType() const;
    virtual const QString& GetObjectName() const;
    /// Walks the content of the object's element: entered with the reader on
    /// the start element, calls ProcessXmlStartElement for each direct child
    /// element and returns at the object's own end element, at the end of the
    /// document or when the reader reports an error. The walk counts the
    /// elements opened and closed inside the object (without recursion), so
    /// the content of an element that ProcessXmlStartElement left open (see
    /// SkipXmlElement) is passed over rather than taken for children.
    virtual void ProcessXml(QXmlStreamReader& reader);
    /// An XML declaration followed by the object's element, unindented.
    /// Throws OutOfRangeException (from GetXml) when a text cannot be
    /// represented in XML 1.0, rather than leaving characters out.
    virtual QString GetXmlString() const;
    virtual void GetBinaryRepresentation(QDataStream& stream) const;
    virtual QByteArray GetBinaryRepresentationAsQByteArray() const;
    /// Writes the compressed form as one byte array onto the stream;
    /// level is zlib's compression level (-1 for its default, 0 to 9).
    virtual void GetCompressedBinaryRepresentation(QDataStream& stream, int level) const;
    virtual QByteArray GetCompressedBinaryRepresentationAsQByteArray(int level) const;
    /// Reads the XML document in the file (its byte order mark and encoding
    /// declaration are honoured). The file may be a regular file, a pipe or
    /// a device; a file that is not open yet is opened for reading and
    /// closed again. Its size is checked against the maximum document size
    /// before it is read, and a pipe or device is read only up to that size.
    /// On success the document replaces the object's content.
    virtual bool LoadXml(const QString& fileName);
    virtual bool LoadXml(QFile* file);
    /// Reads the plain or compressed binary document in the file, as
    /// LoadXml reads it; on success it replaces the object's content.
    virtual bool LoadBinary(QFile* file);
    /// Writes GetXmlString()'s document atomically: the file is replaced only
    /// when the whole document was written; after a failure (including an
    /// exception of the concrete class) a previous file is left untouched.
    /// On false, GetErrorString() says why ("No space left on device").
    virtual bool SaveXml(const QString& fileName) const;
    virtual void SetValidate(bool validate) const;
    virtual bool GetValidate() const;
    virtual void SetLogger(std::shared_ptr<Logger> logger) const;
    virtual void ResetLogger() const;
    /// Version of the report-object base library.
    virtual const QString& GetVersion() const;
    virtual void SetObjectType(ObjectTypes type);

    std::shared_ptr<Logger> GetLogger() const;

    /// LoadXml for any device that delivers its data when read, as files,
    /// pipes and buffers do (a QBuffer over bytes already in memory, for
    /// example); read from its position to its end.
    bool LoadXml(QIODevice* device);

    /// The maximum document size of a new object: 256 MiB.
    static constexpr qint64 DefaultMaxDocumentSize = qint64(256) * 1024 * 1024;
    /// Characters that XML entity references may add beyond the size of the
    /// document itself.
    static constexpr qint64 XmlEntityAllowance = qint64(1) << 20;
    /// Attributes one XML element may carry. Qt's reader compares the
    /// attributes of an element pairwise, so their cost grows with the
    /// square of their number.
    static constexpr int MaxXmlAttributes = 1024;

    /// The largest document, in bytes (characters for SetXmlString), that
    /// the whole-document reads of this object accept; it also bounds what
    /// a compressed document may inflate to. Values below 1 count as 1.
    void SetMaxDocumentSize(qint64 bytes);
    qint64 GetMaxDocumentSize() const;

    /// Why the last whole-document operation (a read, GetXmlString,
    /// SaveXml) failed, for a read of XML with the line and column of the
    /// error; the exception's message when it ended in an exception. Empty
    /// when the last one succeeded.
    QString GetErrorString() const;

    /// Throws OutOfRangeException when text holds a character that XML 1.0
    /// cannot represent: NUL and the other control characters except tab,
    /// line feed and carriage return, U+FFFE, U+FFFF and unpaired surrogates.
    /// The message names the object, what (the member), the character and
    /// its position (counted in characters from 1) and the text before it.
    /// XML writers call it for every free text they write.
    void RequireXmlText(const QString& text, const char* what) const;
    /// The same for the binary form, whose texts are UTF-8: throws for an
    /// unpaired surrogate, which is no character and has no UTF-8 form.
    void RequireUtf8Text(const QString& text, const char* what) const;
    /// The index (in UTF-16 units) of the first character of text that
    /// XML 1.0 cannot represent, or -1; FindUnpairedSurrogate the same for
    /// UTF-8.
    static int FindNonXmlCharacter(const QString& text);
    static int FindUnpairedSurrogate(const QString& text);

    /// Consumes the payload of a binary member record that the reading class
    /// does not know: length bytes (nothing for a negative length). Returns
    /// the number of bytes skipped, or -1 when the stream ended first.
    int skipCurrentElement(QDataStream& stream, int length, int memberId) const;

protected:
    virtual void SetObjectName(const QString& name);
    /// Handles one child element while ProcessXml walks the object's content;
    /// entered on the child's start element. The default skips the child.
    virtual void ProcessXmlStartElement(QXmlStreamReader& reader);

public:
    // Added behind every other virtual operation, so that the order before
    // them stays as it was.

    /// A new object of this object's class, as its default constructor makes
    /// it. The whole-document reads read into it.
    virtual std::unique_ptr<IRGObject> CreateEmpty() const = 0;
    /// Makes this object hold what source holds, as the class's assignment
    /// does (source is an object of this class made by CreateEmpty(); it may
    /// be left empty). Name, type, flag, logger stay this object's.
    virtual void TakeContent(IRGObject& source) = 0;

protected:

    /// Returns the text of a simple element, untrimmed, and leaves the reader
    /// on the element's end element. Text inside nested elements is ignored.
    /// When the document ends or the reader reports an error first, returns
    /// the text read up to there.
    QString GetTextValue(QXmlStreamReader& reader);

    /// Passes over a child element that the class does not know, entered on
    /// its start element: reads on until the end of the input or the next
    /// token that bears the element's name. That is the element's own end
    /// tag unless a descendant of the same name comes first; reading then
    /// stops on the descendant's start tag with elements still open, and the
    /// number of those is recorded for ProcessXml, which goes on from there
    /// and still returns at the object's own end tag.
    void SkipXmlElement(QXmlStreamReader& reader);

    qint64 m_classId = 0;

private:
    void RequireText(const QString& text, int index, const char* what, const char* form) const;
    template <typename Read>
    bool ReadReplacing(Read&& read);
    bool Fail(const QString& reason) const;
    bool ReadXmlText(const QString& xml);
    bool ReadXmlBytes(const QByteArray& bytes);
    bool ReadXmlDocument(QXmlStreamReader& reader, const QByteArray* utf8);
    bool FailXml(const QXmlStreamReader& reader, const QByteArray* utf8) const;
    QString WriteXmlString() const;
    bool ReadBinaryBytes(const QByteArray& data);
    bool ReadBinaryStream(QDataStream& stream);
    bool ReadPlainBinary(const QByteArray& data);
    bool ReadDevice(QIODevice* device, QByteArray& data);

    QString m_objectName;
    ObjectTypes m_objectType = UndefinedObject;
    mutable bool m_validate = false;
    mutable std::shared_ptr<Logger> m_logger;
    qint64 m_maxDocumentSize = DefaultMaxDocumentSize;
    mutable QString m_errorString;
    // Elements that the last SkipXmlElement left open; read and cleared by
    // the walk of ProcessXml after each ProcessXmlStartElement.
    qint64 m_openXmlElements = 0;
};

} // namespace REPORTGENERATOR

#endif
