// torvixml check FILE...: reads each document with validation on, checks it
// for completeness, and says where and what is wrong in the form compilers
// use: "FILE:LINE:COLUMN: error: MESSAGE" for XML, "FILE: offset N: error:
// MESSAGE" for binary, followed by notes with the object path, the value
// and a hint; or all of it as one JSON document.

#include "BinaryWalker.h"
#include "Commands.h"
#include "ToolSupport.h"
#include "XmlOutline.h"

#include <TorviXML/TorviXML.h>

#include <QBuffer>
#include <QCommandLineParser>
#include <QDataStream>
#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTextStream>
#include <QXmlStreamReader>

namespace TorviTool {

namespace {

// Warnings reported per file at most; the rest are counted.
const int maxWarnings = 100;

// The member whose repetitions check warns about: the last one wins.
const QString handlerMember = QStringLiteral("OperationModeHandler");

struct Diagnostic
{
    Place place; // empty for the file as a whole
    QString severity;
    QString message;
};

struct FileReport
{
    int status = ExitSuccess;
    QString form; // "xml", "binary", "compressed binary"; empty when not read
    QVector<Diagnostic> diagnostics;
    int warnings = 0;
    int modes = -1; // of a document that passed
    int components = 0;
};

void note(FileReport& report, const Place& place, const QString& message)
{
    report.diagnostics.append({place, QStringLiteral("note"), message});
}

void error(FileReport& report, const Place& place, const QString& message)
{
    report.diagnostics.append({place, QStringLiteral("error"), message});
}

Place elementPlace(const XmlElement& element)
{
    return Place::at(element.line, element.column);
}

QString plural(int count, const char* one, const char* many)
{
    return QStringLiteral("%1 %2").arg(count).arg(QLatin1String(count == 1 ? one : many));
}

// The names an enumeration member may hold.
QStringList enumerationNames(const QString& memberName)
{
    for (const TORVIXML::ClassDescription& cls : settingsClasses()) {
        for (const TORVIXML::MemberDescription& member : cls.members) {
            if (member.name == memberName && member.kind == TORVIXML::MemberDescription::Enumeration)
                return member.enumerationNames;
        }
    }
    return QStringList();
}

// The members other than lists that an object must give to be complete, in
// the order they are written.
QStringList requiredMembers(const QString& className)
{
    const TORVIXML::ClassDescription* cls = settingsClass(className);
    QStringList names;
    if (!cls)
        return names;
    for (int m : membersInWriteOrder(*cls)) {
        if (cls->members[m].kind != TORVIXML::MemberDescription::List)
            names << cls->members[m].name;
    }
    return names;
}

// Blanks removed, lower case: two texts that agree so differ only there.
QString folded(const QString& text)
{
    QString result;
    for (const QChar c : text) {
        if (!c.isSpace())
            result += c.toLower();
    }
    return result;
}

// The enumeration name that a refused text was meant to be, if it differs
// from one only by blanks or case.
QString meantName(const QStringList& names, const QString& text)
{
    for (const QString& name : names) {
        if (name != text && folded(name) == folded(text))
            return name;
    }
    return QString();
}

// The notes on a member's value: what it is and, for a text that is almost
// an enumeration name, which one.
void addValueNotes(const Place& place, const QString& member, const QString& value, FileReport& report)
{
    note(report, place, QStringLiteral("%1 is %2").arg(member, quoted(value)));
    const QString meant = meantName(enumerationNames(member), value);
    if (!meant.isEmpty())
        note(report, place, QStringLiteral("did you mean %1?").arg(quoted(meant)));
}

// The notes that follow an error at an element of the outline: the object
// path, the member's value with a hint, or the members an object lacks.
void addElementNotes(const XmlOutline& outline, int index, FileReport& report)
{
    const XmlElement& element = outline.elements[index];
    const Place place = elementPlace(element);
    const int object = outline.objectOf(index);
    if (object < 0)
        return;
    note(report, place, QStringLiteral("in %1").arg(outline.objectPath(index)));
    const QString className = outline.elements[object].name;
    if (object != index) {
        if (element.hasText)
            addValueNotes(place, element.name, element.text, report);
        return;
    }
    // An object refused as a whole: name the members it does not give.
    QStringList missing;
    for (const QString& member : requiredMembers(className)) {
        if (member == QLatin1String("Name") ? !element.hasName : outline.children(index, member).isEmpty())
            missing << member;
    }
    if (!missing.isEmpty()) {
        note(report, place, QStringLiteral("%1 has no %2").arg(className, missing.join(QStringLiteral(", "))));
    }
}

// The objects of a document that read fine, with their places, and the
// handlers it gives, in either form: what the repetition warnings look at.
struct PlacedObject
{
    QString className;
    Place place;
    int parent = -1;
    int position = 1; // among the siblings of its class, from 1
    bool hasName = false;
    QString name;
    QVector<int> children;
    QHash<QString, int> childrenOfClass;
};

struct PlacedTree
{
    QVector<PlacedObject> objects; // the root first
    QVector<QPair<Place, QString>> handlers;

    int add(const QString& className, const Place& place, int parent)
    {
        PlacedObject object;
        object.className = className;
        object.place = place;
        object.parent = parent;
        if (parent >= 0) {
            object.position = ++objects[parent].childrenOfClass[className];
            objects[parent].children.append(objects.size());
        }
        objects.append(object);
        return objects.size() - 1;
    }

    // The object path check's notes use, as XmlOutline::objectPath().
    QString path(int index) const
    {
        QString path;
        for (int i = index; i >= 0; i = objects[i].parent) {
            const PlacedObject& o = objects[i];
            QString segment = o.className;
            if (o.parent >= 0) {
                int sameName = 0;
                for (int sibling : objects[o.parent].children) {
                    const PlacedObject& s = objects[sibling];
                    sameName += s.className == o.className && s.hasName && s.name == o.name ? 1 : 0;
                }
                segment = pathSegment(o.className, o.hasName && sameName == 1, o.name, o.position);
            }
            path = path.isEmpty() ? segment : segment + QLatin1Char('/') + path;
        }
        return path;
    }
};

// The root, the list elements under objects, and the root's handlers of an
// XML document's outline.
PlacedTree placedTree(const XmlOutline& outline)
{
    PlacedTree tree;
    QVector<int> objectOf(outline.elements.size(), -1);
    for (int i = 0; i < outline.elements.size(); ++i) {
        const XmlElement& e = outline.elements[i];
        const int owner = e.parent < 0 ? -1 : objectOf[e.parent];
        if (e.parent < 0) {
            objectOf[i] = tree.add(e.name, elementPlace(e), -1);
        } else if (owner == 0 && e.name == handlerMember) {
            tree.handlers.append({elementPlace(e), e.text});
        } else if (owner >= 0) {
            const TORVIXML::ClassDescription& cls = *settingsClass(tree.objects[owner].className);
            const int member = memberIndex(cls, e.name);
            if (member < 0 || cls.members[member].kind != TORVIXML::MemberDescription::List)
                continue;
            objectOf[i] = tree.add(e.name, elementPlace(e), owner);
            tree.objects[objectOf[i]].hasName = e.hasName;
            tree.objects[objectOf[i]].name = e.objectName;
        }
    }
    return tree;
}

// The same from a walk over the plain bytes of a binary document: objects
// at the offsets of their frames, handlers at those of their records.
PlacedTree placedTree(const QByteArray& plain)
{
    PlacedTree tree;
    const QString rootHandler = settingsClasses().first().name + QLatin1Char('.') + handlerMember;
    QVector<int> open;       // the open objects; the walk nests them two levels apart
    QVector<QString> records; // the member of the latest record at each level of the walk
    walkBinary(plain, [&](const WalkLine& line) {
        if (!line.object.isEmpty()) {
            open.resize(qMin(open.size(), line.depth / 2));
            open.append(tree.add(line.object, Place::atOffset(line.offset), open.isEmpty() ? -1 : open.last()));
        } else if (line.recordEnd >= 0) {
            records.resize(line.depth + 1);
            records[line.depth] = line.member;
            if (line.depth == 1 && line.member == rootHandler)
                tree.handlers.append({Place::atOffset(line.offset), QString()});
        } else if (!line.value.isNull() && line.depth >= 2 && line.depth - 1 < records.size()
                   && (line.depth - 2) / 2 < open.size()) {
            const QString& member = records[line.depth - 1];
            PlacedObject& object = tree.objects[open[(line.depth - 2) / 2]];
            if (member == object.className + QStringLiteral(".Name")) {
                object.hasName = true;
                object.name = line.value;
            } else if (line.depth == 2 && member == rootHandler && !tree.handlers.isEmpty()) {
                tree.handlers.last().second = line.value;
            }
        }
    });
    return tree;
}

// Counts a warning and reports it when it is among the first maxWarnings;
// returns whether it did, and so whether its notes should follow.
bool warn(FileReport& report, const Place& place, const QString& message)
{
    if (++report.warnings > maxWarnings)
        return false;
    report.diagnostics.append({place, QStringLiteral("warning"), message});
    return true;
}


// Repeated handlers, mode names, and component names within a mode: the
// library takes them, and the last handler wins.
void warnAboutRepetitions(const PlacedTree& tree, FileReport& report)
{
    for (int i = 1; i < tree.handlers.size(); ++i) {
        if (warn(report, tree.handlers[i].first,
                 QStringLiteral("repeated %1 %2 replaces %3")
                     .arg(handlerMember, quoted(tree.handlers[i].second), quoted(tree.handlers[i - 1].second))))
            note(report, tree.handlers[0].first, QStringLiteral("the first %1 is here").arg(handlerMember));
    }
    for (int parent = 0; parent < tree.objects.size(); ++parent) {
        QHash<QString, int> first;
        for (int index : tree.objects[parent].children) {
            const PlacedObject& object = tree.objects[index];
            if (!object.hasName)
                continue;
            const QString key = object.className + QLatin1Char('/') + object.name;
            const auto seen = first.constFind(key);
            if (seen == first.constEnd()) {
                first.insert(key, index);
                continue;
            }
            if (warn(report, object.place,
                     QStringLiteral("repeated %1 name %2").arg(object.className, quoted(object.name)))) {
                note(report, object.place, QStringLiteral("in %1").arg(tree.path(parent)));
                note(report, tree.objects[*seen].place, QStringLiteral("the first is here"));
            }
        }
    }
}

// Reads the document again with a reader of our own, so that the place the
// library's exception left it at can be told, and reports the error there.
void locateXmlFailure(const QByteArray& data, const XmlOutline& outline, const QString& message, FileReport& report)
{
    TORVIXML::TorviGuiModeSettings root;
    root.SetValidate(true);
    QXmlStreamReader reader(data);
    while (!reader.atEnd() && reader.readNext() != QXmlStreamReader::StartElement) {
    }
    qint64 offset = -1;
    try {
        root.ProcessXml(reader);
    } catch (const ReportException& e) {
        if (e.GetMessageText() == message)
            offset = reader.characterOffset();
    }
    const int index = offset < 0 ? -1 : outline.elementAt(offset);
    if (index < 0) {
        error(report, Place(), message);
        return;
    }
    error(report, elementPlace(outline.elements[index]), message);
    addElementNotes(outline, index, report);
}

// The XML document in data, which loadDocument read into settings with
// the given status and message.
void checkXml(TORVIXML::TorviGuiModeSettings& settings, const QString& message, const QByteArray& data,
              FileReport& report)
{
    if (report.status != ExitSuccess) {
        // The reader's own errors, and the limits the library measures on
        // the markup before reading, come with their place. A document
        // refused for a limit must not be read again here without it.
        static const QRegularExpression xmlError(
            QStringLiteral("^(?:XML error )?at line (\\d+), column (\\d+): (.*)$"));
        const QRegularExpressionMatch match = xmlError.match(message);
        if (match.hasMatch()) {
            error(report, Place::at(match.captured(1).toLongLong(), match.captured(2).toLongLong()), match.captured(3));
            return;
        }
        const XmlOutline outline = outlineXml(data);
        if (outline.wellFormed && !outline.elements.isEmpty()
            && outline.elements.first().name == settings.GetObjectName())
            locateXmlFailure(data, outline, message, report);
        else
            error(report, Place(), message);
        return;
    }
    const XmlOutline outline = outlineXml(data);
    try {
        settings.Check();
    } catch (const ReportException& e) {
        report.status = ExitInvalidInput;
        error(report, elementPlace(outline.elements.first()), e.GetMessageText());
        return;
    }
    warnAboutRepetitions(placedTree(outline), report);
}

// Reads the plain bytes again through the root's own reader, so that the
// place the library's exception left the stream at can be told, and reports
// the error at the member record (or list element) being read there. A
// failure that is no exception of the library is a fault of the framing:
// reported where the walk finds the first.
void locateBinaryFailure(const UnpackedBinary& unpacked, const QString& message, FileReport& report)
{
    qint64 failedAt = -1;
    bool thrown = false;
    if (unpacked.kind != UnpackedBinary::Unreadable && unpacked.bytes.size() >= 8) {
        QBuffer buffer;
        buffer.setData(unpacked.bytes);
        buffer.open(QIODevice::ReadOnly);
        QDataStream stream(&buffer);
        stream.setByteOrder(QDataStream::BigEndian);
        qint32 id = 0;
        qint32 length = 0;
        stream >> id >> length;
        TORVIXML::TorviGuiModeSettings root;
        root.SetValidate(true);
        try {
            root.SetBinary(stream, length);
        } catch (const ReportException& e) {
            thrown = e.GetMessageText() == message;
            if (thrown)
                failedAt = buffer.pos();
        }
    }
    // The innermost record that holds the place, and the text read in it.
    int found = -1;
    QVector<WalkLine> records;
    QString value;
    const WalkSummary walk = walkBinary(unpacked.bytes, [&](const WalkLine& line) {
        if (line.recordEnd >= 0 && line.offset < failedAt && line.recordEnd >= failedAt) {
            records.append(line);
            found = records.size() - 1;
            value.clear();
        } else if (found >= 0 && !line.value.isNull() && line.offset < records[found].recordEnd) {
            value = line.value;
        }
    });
    if (found < 0) {
        if (thrown || walk.errors == 0 || unpacked.kind == UnpackedBinary::Unreadable) {
            error(report, Place(), message);
            return;
        }
        const Place place = Place::atOffset(walk.firstErrorOffset);
        error(report, place, walk.firstError);
        if (walk.errors > 1) {
            note(report, place, QStringLiteral("%1 more %2 after it; torvixml dump shows them all")
                                    .arg(walk.errors - 1)
                                    .arg(walk.errors == 2 ? QStringLiteral("fault") : QStringLiteral("faults")));
        }
        return;
    }
    const WalkLine& record = records[found];
    const Place place = Place::atOffset(record.offset);
    error(report, place, message);
    QStringList path;
    for (const WalkLine& r : records)
        path << r.member;
    note(report, place, QStringLiteral("in record %1").arg(path.join(QStringLiteral(" / "))));
    if (!value.isNull())
        addValueNotes(place, record.member.section(QLatin1Char('.'), 1), value, report);
}

FileReport checkOne(const QString& path, qint64 maxSize)
{
    // Read once: the input may be a pipe or standard input.
    QByteArray data;
    FileReport report;
    QString message;
    TORVIXML::TorviGuiModeSettings settings;
    report.status = loadDocument(path, settings, true, maxSize, message, &data);
    if (data.isEmpty()) {
        error(report, Place(), message);
        return report;
    }
    if (detectForm(data) == DocumentForm::Xml) {
        report.form = QStringLiteral("xml");
        checkXml(settings, message, data, report);
    } else {
        const UnpackedBinary unpacked = unpackBinary(data, maxSize);
        if (unpacked.kind != UnpackedBinary::Unreadable)
            report.form = unpacked.kind == UnpackedBinary::Plain ? QStringLiteral("binary") : QStringLiteral("compressed binary");
        if (report.status == ExitSuccess) {
            try {
                settings.Check();
            } catch (const ReportException& e) {
                report.status = ExitInvalidInput;
                message = e.GetMessageText();
            }
        }
        if (report.status == ExitSuccess)
            warnAboutRepetitions(placedTree(unpacked.bytes), report);
        else if (report.status == ExitInvalidInput)
            locateBinaryFailure(unpacked, message, report);
        else
            error(report, Place(), message);
    }
    if (report.status == ExitSuccess) {
        const QVector<TORVIXML::DataOperationMode>& modes = settings.GetDataOperationMode();
        report.modes = modes.size();
        for (const TORVIXML::DataOperationMode& mode : modes)
            report.components += mode.GetGuiComponentSettings().size();
    }
    return report;
}

void printReport(const QString& file, const FileReport& report)
{
    for (const Diagnostic& d : report.diagnostics) {
        // "FILE:3:7: " for XML, "FILE: offset 40: " for binary.
        const QString where = d.place.text();
        err() << file << (where.isEmpty() ? QString() : (d.place.line > 0 ? QStringLiteral(":") : QStringLiteral(": ")) + where)
              << ": " << d.severity << ": " << d.message << '\n';
    }
    if (report.warnings > maxWarnings)
        err() << file << ": note: " << report.warnings - maxWarnings << " more warnings not shown\n";
    err().flush();
    if (report.modes >= 0) {
        out() << file << ": OK (" << plural(report.modes, "mode", "modes") << ", "
              << plural(report.components, "component", "components") << ")\n";
        out().flush();
    }
}

// One file's report as JSON: each error or warning with its notes.
QJsonObject reportJson(const QString& file, const FileReport& report, int status)
{
    QJsonArray diagnostics;
    QJsonObject current;
    QJsonArray notes;
    auto flush = [&] {
        if (current.isEmpty())
            return;
        current.insert(QStringLiteral("notes"), notes);
        diagnostics.append(current);
        current = QJsonObject();
        notes = QJsonArray();
    };
    for (const Diagnostic& d : report.diagnostics) {
        QJsonObject entry{{QStringLiteral("message"), d.message}};
        d.place.addTo(entry);
        if (d.severity == QLatin1String("note") && !current.isEmpty()) {
            notes.append(entry);
            continue;
        }
        flush();
        entry.insert(QStringLiteral("file"), file);
        entry.insert(QStringLiteral("severity"), d.severity);
        current = entry;
    }
    flush();
    QJsonObject result{{QStringLiteral("file"), file},
                       {QStringLiteral("form"), report.form.isEmpty() ? QJsonValue() : QJsonValue(report.form)},
                       {QStringLiteral("status"), status},
                       {QStringLiteral("warnings"), report.warnings},
                       {QStringLiteral("diagnostics"), diagnostics}};
    if (report.modes >= 0) {
        result.insert(QStringLiteral("modes"), report.modes);
        result.insert(QStringLiteral("components"), report.components);
    }
    return result;
}

} // namespace

int runCheck(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Reads each settings document (XML, plain or compressed binary) with validation on\n"
        "and checks it for completeness. Prints \"FILE: OK (N modes, M components)\" on\n"
        "standard output; on standard error the errors and warnings as compilers print them:\n"
        "\"FILE:LINE:COLUMN: error: MESSAGE\" (XML) or \"FILE: offset N: error: MESSAGE\" (binary;\n"
        "offsets of a compressed document count in its inflated bytes), each followed by\n"
        "notes with the object path, the value and a hint. Repeated handlers, mode names\n"
        "and component names within a mode are warnings, in either form."));
    parser.addPositionalArgument(QStringLiteral("FILE"),
                                 QStringLiteral("Documents to check; files, pipes, or - for standard input."),
                                 QStringLiteral("FILE..."));
    const QCommandLineOption strictOption(QStringLiteral("strict"),
                                          QStringLiteral("Exit with 1 when there are warnings."));
    const QCommandLineOption jsonOption(
        QStringLiteral("json"),
        QStringLiteral("Print one JSON document on standard output instead: {\"files\": [{\"file\", \"form\", "
                       "\"status\", \"modes\", \"components\", \"warnings\", \"diagnostics\": [{\"file\", "
                       "\"severity\", \"line\" and \"column\" or \"offset\", \"message\", \"notes\": [...]}]}], "
                       "\"status\"}; nothing on standard error."));
    parser.addOption(strictOption);
    parser.addOption(jsonOption);
    parser.addOption(maxSizeOption());
    const int parsed = parseCommandLine(parser, QStringLiteral("check"), arguments);
    if (parsed >= 0)
        return parsed;
    const QStringList files = parser.positionalArguments();
    if (files.isEmpty())
        return usageError(QStringLiteral("check"), QStringLiteral("check needs at least one file"));
    QString limitError;
    qint64 maxSize = 0;
    if (!maxSizeFrom(parser, maxSize, limitError))
        return usageError(QStringLiteral("check"), limitError);

    const bool json = parser.isSet(jsonOption);
    int result = ExitSuccess;
    QJsonArray reports;
    for (const QString& file : files) {
        const FileReport report = checkOne(file, maxSize);
        int status = report.status;
        if (status == ExitSuccess && report.warnings > 0 && parser.isSet(strictOption))
            status = ExitInvalidInput;
        if (json)
            reports.append(reportJson(file, report, status));
        else
            printReport(file, report);
        result = qMax(result, status);
    }
    if (json)
        printJson({{QStringLiteral("files"), reports}, {QStringLiteral("status"), result}});
    return result;
}

} // namespace TorviTool
