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
 * Binary documents: GetBinaryRepresentation writes GetBinary(stream, classId,
 * true) on a big-endian stream, i.e. the class id, the object length and the
 * object's member records. The compressed form is qCompress() of that plain
 * form: a big-endian 32-bit uncompressed size followed by a zlib stream. On a
 * QDataStream the compressed form is written as one byte array (a 32-bit byte
 * count, then the qCompress() bytes). SetBinaryRepresentation tells the forms
 * apart by the first 32-bit word: the object's class id starts a plain
 * document (and, in a QByteArray, the object length must then match the
 * array's size), anything else is taken as a compressed one.
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

    /// Reads the object from an XML document held in a string. With
    /// resetFirst, Reset() runs first; otherwise the document's content is
    /// added to what the object holds. Returns false when the text is not
    /// well-formed XML or its root element is not named GetObjectName().
    /// Exceptions of the concrete class pass through.
    virtual bool SetXmlString(const QString& xml, bool resetFirst);
    /// Reads a plain or compressed binary document (see the class comment).
    /// Returns false for a foreign class id, a truncated or inconsistent
    /// document, or data that does not decompress.
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
    virtual QString GetXmlString() const;
    virtual void GetBinaryRepresentation(QDataStream& stream) const;
    virtual QByteArray GetBinaryRepresentationAsQByteArray() const;
    /// Writes the compressed form as one byte array onto the stream;
    /// level is zlib's compression level (-1 for its default, 0 to 9).
    virtual void GetCompressedBinaryRepresentation(QDataStream& stream, int level) const;
    virtual QByteArray GetCompressedBinaryRepresentationAsQByteArray(int level) const;
    /// Reset(), then reads the XML document in the file.
    virtual bool LoadXml(const QString& fileName);
    virtual bool LoadXml(QFile* file);
    /// Reset(), then reads the plain or compressed binary document in the file.
    virtual bool LoadBinary(QFile* file);
    /// Writes GetXmlString()'s document atomically: the file is replaced only
    /// when the whole document was written; after a failure (including an
    /// exception of the concrete class) a previous file is left untouched.
    virtual bool SaveXml(const QString& fileName) const;
    virtual void SetValidate(bool validate) const;
    virtual bool GetValidate() const;
    virtual void SetLogger(std::shared_ptr<Logger> logger) const;
    virtual void ResetLogger() const;
    /// Version of the report-object base library.
    virtual const QString& GetVersion() const;
    virtual void SetObjectType(ObjectTypes type);

    std::shared_ptr<Logger> GetLogger() const;

    /// Consumes the payload of a binary member record that the reading class
    /// does not know: length bytes (nothing for a negative length). Returns
    /// the number of bytes skipped, or -1 when the stream ended first.
    int skipCurrentElement(QDataStream& stream, int length, int memberId) const;

protected:
    virtual void SetObjectName(const QString& name);
    /// Handles one child element while ProcessXml walks the object's content;
    /// entered on the child's start element. The default skips the child.
    virtual void ProcessXmlStartElement(QXmlStreamReader& reader);

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
    bool ReadXmlDocument(QXmlStreamReader& reader);
    bool ReadPlainBinary(const QByteArray& data);

    QString m_objectName;
    ObjectTypes m_objectType = UndefinedObject;
    mutable bool m_validate = false;
    mutable std::shared_ptr<Logger> m_logger;
    // Elements that the last SkipXmlElement left open; read and cleared by
    // the walk of ProcessXml after each ProcessXmlStartElement.
    qint64 m_openXmlElements = 0;
};

} // namespace REPORTGENERATOR

#endif
