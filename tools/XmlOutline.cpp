#include "XmlOutline.h"

#include "ToolSupport.h"

#include <QHash>
#include <QXmlStreamReader>

namespace TorviTool {

bool isObjectElement(const QString& name)
{
    return settingsClass(name) != nullptr;
}

XmlOutline walkXml(const QByteArray& document, const XmlVisitor& visit)
{
    XmlOutline outline;
    QXmlStreamReader reader(document);
    QVector<XmlElement> open;
    // For each open element, how many children of each name it has so far.
    QVector<QHash<QString, int>> childCounts{QHash<QString, int>()};
    // Where the token being read began: where the one before it ended.
    qint64 line = 1;
    qint64 column = 1;
    qint64 offset = 0;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::StartElement) {
            XmlElement element;
            element.name = reader.name().toString();
            element.depth = open.size();
            element.line = line;
            element.column = column;
            element.start = offset;
            element.hasText = true;
            const QXmlStreamAttributes attributes = reader.attributes();
            if (attributes.hasAttribute(QStringLiteral("Name"))) {
                element.hasName = true;
                element.objectName = attributes.value(QStringLiteral("Name")).toString();
            }
            if (!open.isEmpty()) {
                open.last().hasText = false;
                open.last().text.clear();
            }
            element.position = ++childCounts.last()[element.name];
            childCounts.append(QHash<QString, int>());
            open.append(element);
            visit(open, true);
        } else if (token == QXmlStreamReader::Characters && !open.isEmpty() && open.last().hasText) {
            open.last().text += reader.text();
        } else if (token == QXmlStreamReader::EndElement && !open.isEmpty()) {
            XmlElement& element = open.last();
            element.end = reader.characterOffset();
            // A name given as a child element, as hand-written documents have it.
            if (element.name == QLatin1String("Name") && element.hasText && open.size() > 1
                && !open[open.size() - 2].hasName) {
                open[open.size() - 2].hasName = true;
                open[open.size() - 2].objectName = element.text;
            }
            visit(open, false);
            open.removeLast();
            childCounts.removeLast();
        }
        // A text other than CDATA ends where the reader met the next '<',
        // which it has taken already.
        const qint64 lookahead = token == QXmlStreamReader::Characters && !reader.isCDATA() ? 1 : 0;
        line = reader.lineNumber();
        column = reader.columnNumber() + 1 - lookahead;
        offset = reader.characterOffset() - lookahead;
        // Without an XML declaration the reader reports the document's start
        // only once it has looked into the first tag.
        if (token == QXmlStreamReader::StartDocument && reader.documentVersion().isEmpty()) {
            line = 1;
            column = 1;
            offset = 0;
        }
    }
    if (reader.hasError()) {
        outline.wellFormed = false;
        outline.errorLine = reader.lineNumber();
        outline.errorColumn = reader.columnNumber() + 1;
        outline.error = reader.errorString();
    }
    return outline;
}

XmlOutline outlineXml(const QByteArray& document)
{
    QVector<XmlElement> elements;
    // The indexes of the open elements.
    QVector<int> open;
    XmlOutline outline = walkXml(document, [&](const QVector<XmlElement>& path, bool started) {
        if (started) {
            elements.append(path.last());
            elements.last().parent = open.isEmpty() ? -1 : open.last();
            open.append(elements.size() - 1);
            if (elements.last().parent >= 0)
                elements[elements.last().parent].hasText = false;
            return;
        }
        XmlElement& element = elements[open.takeLast()];
        const int parent = element.parent;
        element = path.last();
        element.parent = parent;
        if (parent >= 0) {
            elements[parent].hasName = path[path.size() - 2].hasName;
            elements[parent].objectName = path[path.size() - 2].objectName;
        }
    });
    outline.elements = elements;
    return outline;
}

int XmlOutline::elementAt(qint64 offset) const
{
    int found = -1;
    for (int i = 0; i < elements.size(); ++i) {
        const XmlElement& element = elements[i];
        if (element.start < offset && (element.end < 0 || element.end >= offset)
            && (found < 0 || element.depth > elements[found].depth))
            found = i;
    }
    return found;
}

QVector<int> XmlOutline::children(int element, const QString& name) const
{
    QVector<int> result;
    // The element's descendants follow it, deeper than it is.
    for (int i = element + 1; i < elements.size() && elements[i].depth > elements[element].depth; ++i) {
        if (elements[i].parent == element && elements[i].name == name)
            result.append(i);
    }
    return result;
}

int XmlOutline::objectOf(int element) const
{
    while (element >= 0 && !isObjectElement(elements[element].name))
        element = elements[element].parent;
    return element;
}

QString XmlOutline::objectPath(int element) const
{
    QString path;
    for (int i = objectOf(element); i >= 0; i = objectOf(elements[i].parent)) {
        const XmlElement& e = elements[i];
        QString segment = e.name;
        if (e.parent >= 0) {
            int sameName = 0;
            for (int sibling : children(e.parent, e.name))
                sameName += elements[sibling].hasName && elements[sibling].objectName == e.objectName ? 1 : 0;
            segment = pathSegment(e.name, e.hasName && sameName == 1, e.objectName, e.position);
        }
        path = path.isEmpty() ? segment : segment + QLatin1Char('/') + path;
    }
    return path;
}

} // namespace TorviTool
