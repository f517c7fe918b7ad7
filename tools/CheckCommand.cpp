// torvixml check FILE...: reads each document with validation on, checks it
// for completeness, and says where and what is wrong in the form compilers
// use: "FILE:LINE:COLUMN: error: MESSAGE" for XML, "FILE: offset N: error:
// MESSAGE" for binary, followed by notes with the object path, the value
// and a hint.

#include "BinaryWalker.h"
#include "Commands.h"
#include "ToolSupport.h"
#include "XmlOutline.h"

#include <TorviXML/TorviXML.h>

#include <QBuffer>
#include <QCommandLineParser>
#include <QDataStream>
#include <QRegularExpression>
#include <QTextStream>
#include <QXmlStreamReader>

#include <algorithm>

namespace TorviTool {

namespace {

// Warnings reported per file at most; the rest are counted.
const int maxWarnings = 100;

struct Diagnostic
{
    QString where; // "12:5" or "offset 40", empty for the file as a whole
    QString severity;
    QString message;
};

struct FileReport
{
    int status = ExitSuccess;
    QVector<Diagnostic> diagnostics;
    int warnings = 0;
    QString summary; // "OK (1 mode, 2 components)"
};

QString xmlPlace(qint64 line, qint64 column)
{
    return QStringLiteral("%1:%2").arg(line).arg(column);
}

QString elementPlace(const XmlElement& element)
{
    return xmlPlace(element.line, element.column);
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
    if (!cls)
        return QStringList();
    QVector<TORVIXML::MemberDescription> scalars;
    for (const TORVIXML::MemberDescription& member : cls->members) {
        if (member.kind != TORVIXML::MemberDescription::List)
            scalars.append(member);
    }
    std::sort(scalars.begin(), scalars.end(), [](const auto& a, const auto& b) { return a.writeOrder < b.writeOrder; });
    QStringList names;
    for (const TORVIXML::MemberDescription& member : scalars)
        names << member.name;
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

// The notes that follow an error at an element of the outline: the object
// path, the member's value with a hint, or the members an object lacks.
void addElementNotes(const XmlOutline& outline, int index, FileReport& report)
{
    const XmlElement& element = outline.elements[index];
    const QString where = elementPlace(element);
    const int object = outline.objectOf(index);
    if (object < 0)
        return;
    report.diagnostics.append({where, QStringLiteral("note"), QStringLiteral("in %1").arg(outline.objectPath(index))});
    const QString className = outline.elements[object].name;
    if (object != index) {
        if (!element.hasText)
            return;
        report.diagnostics.append(
            {where, QStringLiteral("note"), QStringLiteral("%1 is %2").arg(element.name, quoted(element.text))});
        const QString meant = meantName(enumerationNames(element.name), element.text);
        if (!meant.isEmpty())
            report.diagnostics.append({where, QStringLiteral("note"), QStringLiteral("did you mean %1?").arg(quoted(meant))});
        return;
    }
    // An object refused as a whole: name the members it does not give.
    QStringList missing;
    for (const QString& member : requiredMembers(className)) {
        if (member == QLatin1String("Name") ? !element.hasName : outline.children(index, member).isEmpty())
            missing << member;
    }
    if (!missing.isEmpty()) {
        report.diagnostics.append(
            {where, QStringLiteral("note"), QStringLiteral("%1 has no %2").arg(className, missing.join(QStringLiteral(", ")))});
    }
}

void warn(FileReport& report, const QString& where, const QString& message)
{
    if (++report.warnings <= maxWarnings)
        report.diagnostics.append({where, QStringLiteral("warning"), message});
}

// Repeated handlers, mode names, and component names within a mode: the
// library takes them, and the last handler wins.
void warnAboutRepetitions(const XmlOutline& outline, FileReport& report)
{
    if (outline.elements.isEmpty())
        return;
    const QVector<int> handlers = outline.children(0, QStringLiteral("OperationModeHandler"));
    for (int i = 1; i < handlers.size(); ++i) {
        const XmlElement& handler = outline.elements[handlers[i]];
        warn(report, elementPlace(handler),
             QStringLiteral("repeated OperationModeHandler %1 replaces %2").arg(quoted(handler.text), quoted(outline.elements[handlers[i - 1]].text)));
        report.diagnostics.append({elementPlace(outline.elements[handlers[0]]), QStringLiteral("note"), QStringLiteral("the first OperationModeHandler is here")});
    }
    auto warnNames = [&](const QVector<int>& objects) {
        QHash<QString, int> first;
        for (int index : objects) {
            const XmlElement& object = outline.elements[index];
            if (!object.hasName)
                continue;
            const auto seen = first.constFind(object.objectName);
            if (seen == first.constEnd()) {
                first.insert(object.objectName, index);
                continue;
            }
            warn(report, elementPlace(object),
                 QStringLiteral("repeated %1 name %2").arg(object.name, quoted(object.objectName)));
            if (report.warnings <= maxWarnings) {
                report.diagnostics.append({elementPlace(object), QStringLiteral("note"), QStringLiteral("in %1").arg(outline.objectPath(object.parent))});
                report.diagnostics.append({elementPlace(outline.elements[*seen]), QStringLiteral("note"), QStringLiteral("the first is here")});
            }
        }
    };
    const QVector<int> modes = outline.children(0, QStringLiteral("DataOperationMode"));
    warnNames(modes);
    for (int mode : modes)
        warnNames(outline.children(mode, QStringLiteral("GuiComponentSettings")));
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
        report.diagnostics.append({QString(), QStringLiteral("error"), message});
        return;
    }
    report.diagnostics.append({elementPlace(outline.elements[index]), QStringLiteral("error"), message});
    addElementNotes(outline, index, report);
}

// The XML document in data, which loadDocument read into settings with
// the given status and message.
FileReport checkXml(TORVIXML::TorviGuiModeSettings& settings, int status, const QString& message,
                    const QByteArray& data)
{
    FileReport report;
    report.status = status;
    if (report.status != ExitSuccess) {
        // The reader's own errors, and the limits the library measures on
        // the markup before reading, come with their place. A document
        // refused for a limit must not be read again here without it.
        static const QRegularExpression xmlError(
            QStringLiteral("^(?:XML error )?at line (\\d+), column (\\d+): (.*)$"));
        const QRegularExpressionMatch match = xmlError.match(message);
        if (match.hasMatch()) {
            report.diagnostics.append({xmlPlace(match.captured(1).toLongLong(), match.captured(2).toLongLong()),
                                       QStringLiteral("error"), match.captured(3)});
            return report;
        }
        const XmlOutline outline = outlineXml(data);
        if (outline.wellFormed && !outline.elements.isEmpty()
            && outline.elements.first().name == settings.GetObjectName())
            locateXmlFailure(data, outline, message, report);
        else
            report.diagnostics.append({QString(), QStringLiteral("error"), message});
        return report;
    }
    const XmlOutline outline = outlineXml(data);
    try {
        settings.Check();
    } catch (const ReportException& e) {
        report.status = ExitInvalidInput;
        report.diagnostics.append({elementPlace(outline.elements.first()), QStringLiteral("error"), e.GetMessageText()});
        return report;
    }
    warnAboutRepetitions(outline, report);
    const QVector<TORVIXML::DataOperationMode>& modes = settings.GetDataOperationMode();
    int components = 0;
    for (const TORVIXML::DataOperationMode& mode : modes)
        components += mode.GetGuiComponentSettings().size();
    report.summary = QStringLiteral("OK (%1, %2)").arg(plural(modes.size(), "mode", "modes"),
                                                      plural(components, "component", "components"));
    return report;
}

// Reads the plain bytes again through the root's own reader, so that the
// place the library's exception left the stream at can be told, and reports
// the error at the member record (or list element) being read there.
void locateBinaryFailure(const QByteArray& data, qint64 maxSize, const QString& message, FileReport& report)
{
    const UnpackedBinary unpacked = unpackBinary(data, maxSize);
    qint64 failedAt = -1;
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
            if (e.GetMessageText() == message)
                failedAt = buffer.pos();
        }
    }
    // The innermost record that holds the place, and the text read in it.
    int found = -1;
    QVector<WalkLine> records;
    QString value;
    walkBinary(unpacked.bytes, [&](const WalkLine& line) {
        if (line.recordEnd >= 0 && line.offset < failedAt && line.recordEnd >= failedAt) {
            records.append(line);
            found = records.size() - 1;
            value.clear();
        } else if (found >= 0 && !line.value.isNull() && line.offset < records[found].recordEnd) {
            value = line.value;
        }
    });
    if (found < 0) {
        report.diagnostics.append({QString(), QStringLiteral("error"), message});
        return;
    }
    const WalkLine& record = records[found];
    const QString where = QStringLiteral("offset %1").arg(record.offset);
    report.diagnostics.append({where, QStringLiteral("error"), message});
    QStringList path;
    for (const WalkLine& r : records)
        path << r.member;
    report.diagnostics.append({where, QStringLiteral("note"), QStringLiteral("in record %1").arg(path.join(QStringLiteral(" / ")))});
    if (value.isNull())
        return;
    const QString memberName = record.member.section(QLatin1Char('.'), 1);
    report.diagnostics.append({where, QStringLiteral("note"), QStringLiteral("%1 is %2").arg(memberName, quoted(value))});
    const QString meant = meantName(enumerationNames(memberName), value);
    if (!meant.isEmpty())
        report.diagnostics.append({where, QStringLiteral("note"), QStringLiteral("did you mean %1?").arg(quoted(meant))});
}

FileReport checkOne(const QString& path, qint64 maxSize)
{
    // Read once: the input may be a pipe or standard input.
    QByteArray data;
    FileReport report;
    QString message;
    TORVIXML::TorviGuiModeSettings settings;
    report.status = loadDocument(path, settings, true, maxSize, message, &data);
    if (!data.isEmpty() && detectForm(data) == DocumentForm::Xml)
        return checkXml(settings, report.status, message, data);

    if (report.status == ExitSuccess) {
        try {
            settings.Check();
        } catch (const ReportException& e) {
            report.status = ExitInvalidInput;
            message = e.GetMessageText();
        }
    }
    if (report.status == ExitInvalidInput)
        locateBinaryFailure(data, maxSize, message, report);
    else if (report.status != ExitSuccess)
        report.diagnostics.append({QString(), QStringLiteral("error"), message});
    else
        report.summary = QStringLiteral("OK");
    return report;
}

void printReport(const QString& file, const FileReport& report)
{
    for (const Diagnostic& d : report.diagnostics) {
        // "FILE:3:7: " for XML, "FILE: offset 40: " for binary.
        const QString separator = d.where.startsWith(QLatin1String("offset")) ? QStringLiteral(": ") : QStringLiteral(":");
        err() << file << (d.where.isEmpty() ? QString() : separator + d.where)
              << ": " << d.severity << ": " << d.message << '\n';
    }
    if (report.warnings > maxWarnings)
        err() << file << ": note: " << report.warnings - maxWarnings << " more warnings not shown\n";
    err().flush();
    if (report.status == ExitSuccess) {
        out() << file << ": " << report.summary << '\n';
        out().flush();
    }
}

} // namespace

int runCheck(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Reads each settings document (XML, plain or compressed binary) with validation on\n"
        "and checks it for completeness. Prints \"FILE: OK (N modes, M components)\" on\n"
        "standard output; on standard error the errors and warnings as compilers print them:\n"
        "\"FILE:LINE:COLUMN: error: MESSAGE\" (XML) or \"FILE: offset N: error: MESSAGE\" (binary),\n"
        "each followed by notes with the object path, the value and a hint. Repeated handlers,\n"
        "mode names and component names within a mode are warnings."));
    parser.addPositionalArgument(QStringLiteral("FILE"),
                                 QStringLiteral("Documents to check; files, pipes, or - for standard input."),
                                 QStringLiteral("FILE..."));
    const QCommandLineOption strictOption(QStringLiteral("strict"),
                                          QStringLiteral("Exit with 1 when there are warnings."));
    parser.addOption(strictOption);
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

    int result = ExitSuccess;
    for (const QString& file : files) {
        FileReport report = checkOne(file, maxSize);
        printReport(file, report);
        if (report.status == ExitSuccess && report.warnings > 0 && parser.isSet(strictOption))
            report.status = ExitInvalidInput;
        result = qMax(result, report.status);
    }
    return result;
}

} // namespace TorviTool
