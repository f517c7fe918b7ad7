#ifndef TORVIXML_TOOLS_XMLOUTLINE_H
#define TORVIXML_TOOLS_XMLOUTLINE_H

// The elements of an XML settings document with where each one starts and
// ends, so that a place the reader reached can be told as the element being
// read there, with its line, column and object path.

#include <QByteArray>
#include <QString>
#include <QVector>

#include <functional>

namespace TorviTool {

struct XmlElement
{
    QString name;
    int parent = -1;       // index in XmlOutline::elements, -1 for the document element
    int depth = 0;
    qint64 line = 0;       // of its '<', from 1
    qint64 column = 0;     // of its '<', from 1
    qint64 start = 0;      // character offsets: of its '<' ...
    qint64 end = -1;       // ... and behind its end tag (-1 while open)
    int position = 1;      // among the siblings of the same name, from 1
    bool hasName = false;  // a Name attribute or Name child element
    QString objectName;    // its value
    bool hasText = false;  // no child elements, only text
    QString text;
};

struct XmlOutline
{
    QVector<XmlElement> elements;
    bool wellFormed = true;
    qint64 errorLine = 0;
    qint64 errorColumn = 0;
    QString error;

    /// The innermost element whose start tag begins before offset and whose
    /// end tag does not end before it; -1 when none does.
    int elementAt(qint64 offset) const;
    /// "TorviGuiModeSettings/DataOperationMode[Name=\"Standard\"]/
    /// GuiComponentSettings[2]": the objects from the document element down
    /// to the element (or its parent, for a member's element). A list element
    /// is named by its Name when no sibling has the same, else by position.
    QString objectPath(int element) const;
    /// The object element that holds a member's element (the element itself
    /// when it is an object's).
    int objectOf(int element) const;
    /// The children of an element with the given name.
    QVector<int> children(int element, const QString& name) const;
};

/// Reads the whole document; stops at the first error of the XML.
XmlOutline outlineXml(const QByteArray& document);

/// What walkXml() shows of each element: the open elements from the
/// document element down to it (their parent fields are not filled in), and
/// whether its start tag (name, place, position, Name attribute known) or
/// its end tag (text and end known too) was just read.
using XmlVisitor = std::function<void(const QVector<XmlElement>& open, bool started)>;

/// Reads the document element by element, keeping only the open ones, and
/// returns an outline without elements that tells whether the document is
/// well-formed and where not; stops at the first error of the XML.
XmlOutline walkXml(const QByteArray& document, const XmlVisitor& visit);

/// Whether the element name is that of a settings class.
bool isObjectElement(const QString& name);

} // namespace TorviTool

#endif
