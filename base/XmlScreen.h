#ifndef TORVIXML_XMLSCREEN_H
#define TORVIXML_XMLSCREEN_H

// What the whole-document XML reads of IRGObject do before Qt's reader sees a
// document: bound the costs that the reader would incur inside a single
// token, before any of it reaches the caller. Entity references are expanded
// inside the reader (a text or an attribute value of a billion characters
// is built whole before it is reported), and the attributes of an element
// are compared pairwise. Both are measured on the document's markup first.

#include <QByteArray>
#include <QString>

namespace REPORTGENERATOR {
namespace XmlScreen {

/// A document given as bytes, decoded as QXmlStreamReader decodes it: by
/// its byte order mark or the pattern of its first character, then by the
/// encoding its XML declaration names. A UTF-8 document is not decoded (text
/// stays null): ScreenUtf8 measures its bytes.
struct Decoded
{
    QString text;
    bool utf8 = false; // read as UTF-8
};
Decoded Decode(const QByteArray& bytes);

/// A place in a document: line and column, both counted from 1, the column
/// in UTF-16 units as QXmlStreamReader counts.
struct Position
{
    qint64 line = 1;
    qint64 column = 1;
};

/// Where the first byte sequence that is not UTF-8 starts; false when all
/// bytes are UTF-8.
bool FindInvalidUtf8(const QByteArray& bytes, Position& position);

/// Measures the document's markup: the characters its references to
/// declared entities expand to, inside text and attribute values alike, may
/// not exceed inputSize + allowance; no element may carry more than
/// maxAttributes attributes. Returns false at the first place where a limit
/// is exceeded, with position and message (starting with "at line L,
/// column C: "). Malformed markup is left to the reader: the screen only
/// counts what it recognises.
bool Screen(const QString& text, qint64 inputSize, const QString& inputUnit, qint64 allowance, int maxAttributes,
            QString& message);
/// The same for a UTF-8 document, on its bytes; inputSize is their number.
bool ScreenUtf8(const QByteArray& bytes, qint64 allowance, int maxAttributes, QString& message);

} // namespace XmlScreen
} // namespace REPORTGENERATOR

#endif
