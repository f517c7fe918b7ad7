#include "ToolSupport.h"

#include "BinaryWalker.h"
#include "DocumentIO.h"

#include <TorviXML/TorviXML.h>

#include <QBuffer>
#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>
#include <QXmlStreamReader>

#include <cstdio>

#include "QtCompat.h"

namespace TorviTool {

namespace {

// A text stream on stdout or stderr that writes UTF-8 whatever the locale;
// flushed when it is destroyed at exit.
struct Utf8Stream
{
    explicit Utf8Stream(FILE* file)
        : stream(file)
    {
        TORVIXML::Framework::UseUtf8(stream);
    }
    QTextStream stream;
};

// Where standard output goes under --quiet: everything written is dropped.
class DiscardDevice : public QIODevice
{
public:
    DiscardDevice() { open(QIODevice::WriteOnly); }

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char*, qint64 size) override { return size; }
};

bool quietOutput = false;

bool isXmlBlank(uint c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

QString escapedChar(uint c)
{
    switch (c) {
    case '\\':
        return QStringLiteral("\\\\");
    case '"':
        return QStringLiteral("\\\"");
    case '\n':
        return QStringLiteral("\\n");
    case '\r':
        return QStringLiteral("\\r");
    case '\t':
        return QStringLiteral("\\t");
    default:
        break;
    }
    return QStringLiteral("\\u{%1}").arg(QString::number(c, 16).toUpper().rightJustified(4, QLatin1Char('0')));
}

bool needsEscape(uint c)
{
    if (c == '\\' || c == '"')
        return true;
    if (c == ' ')
        return false;
    if (QChar::isSpace(c))
        return true; // every blank but the plain space: tab, no-break space, ...
    const QChar::Category category = QChar::category(c);
    return category == QChar::Other_Control || category == QChar::Other_Format
        || category == QChar::Other_Surrogate || category == QChar::Other_NotAssigned
        || category == QChar::Separator_Line || category == QChar::Separator_Paragraph;
}

// Where the library refused a binary file, says why: the first fault that a
// walk over the bytes finds, or else the library's own reason.
QString describeBinaryFailure(const QByteArray& data, qint64 maxSize, const QString& reason)
{
    const UnpackedBinary unpacked = unpackBinary(data, maxSize);
    if (unpacked.kind == UnpackedBinary::Unreadable)
        return unpacked.problem;
    const bool inflated = unpacked.kind == UnpackedBinary::Compressed;
    const QString form = inflated ? QStringLiteral("inflated document") : QStringLiteral("binary document");
    if (unpacked.bytes.size() >= 4) {
        const auto* b = reinterpret_cast<const uchar*>(unpacked.bytes.constData());
        const qint32 id = qint32((quint32(b[0]) << 24) | (quint32(b[1]) << 16) | (quint32(b[2]) << 8) | quint32(b[3]));
        if (id == qint32(TORVIXML::DataOperationMode::id))
            return QStringLiteral("the %1 holds a DataOperationMode, not a TorviGuiModeSettings").arg(form);
        if (id == qint32(TORVIXML::GuiComponentSettings::id))
            return QStringLiteral("the %1 holds a GuiComponentSettings, not a TorviGuiModeSettings").arg(form);
    }
    const WalkSummary summary = walkBinary(unpacked.bytes, [](const WalkLine&) {});
    if (summary.errors > 0) {
        return QStringLiteral("bad %1 at offset %2%3: %4")
            .arg(form)
            .arg(summary.firstErrorOffset)
            .arg(inflated ? QStringLiteral(" of the inflated bytes") : QString())
            .arg(summary.firstError);
    }
    return reason;
}

using TORVIXML::ClassDescription;
using TORVIXML::MemberDescription;
using TORVIXML::ObjectValues;

// An enumeration member that holds a value without a name. Read without
// validation, that is what a text naming no value becomes; it would be
// written as an empty text, and the text of the input would be lost.
struct Nameless
{
    QString where;
    QString member;
};

// The members of the object tree[index] and of its list elements, in
// document order; where names the object ("DataOperationMode 1 (\"Standard\")").
void findNameless(const QVector<ObjectValues>& tree, int index, const QString& where, QVector<Nameless>& found)
{
    const ObjectValues& object = tree[index];
    const ClassDescription& cls = settingsClasses()[object.classIndex];
    for (int m : membersInWriteOrder(cls)) {
        const MemberDescription& member = cls.members[m];
        const TORVIXML::MemberValue& value = object.members[m];
        if (member.kind == MemberDescription::Enumeration && value.set && value.text.isNull())
            found.append({where.isEmpty() ? cls.name : where, member.name});
        for (int i = 0; i < value.elements.size(); ++i) {
            const int element = value.elements[i];
            QString name;
            nameOf(tree[element], name);
            const QString here = QStringLiteral("%1 %2 (%3)").arg(member.name).arg(i + 1).arg(quoted(name));
            findNameless(tree, element, where.isEmpty() ? here : where + QStringLiteral(", ") + here, found);
        }
    }
}

// The texts of the input that name no value, per member in document order,
// with their place: where the elements of an XML document stand as the
// readers take them, the text elements' own text; in a binary document the
// enumeration texts the walk finds.
QHash<QString, QStringList> namelessTextsInXml(const QByteArray& data)
{
    QHash<QString, QStringList> texts;
    QXmlStreamReader reader(data);
    // For each open element, the class of the object it is (null for a
    // member's element and what the readers skip).
    QVector<const ClassDescription*> open;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::EndElement && !open.isEmpty()) {
            open.removeLast();
            continue;
        }
        if (token != QXmlStreamReader::StartElement)
            continue;
        const QString name = reader.name().toString();
        if (open.isEmpty()) {
            open << (name == settingsClasses().first().name ? &settingsClasses().first() : nullptr);
            continue;
        }
        const int index = open.last() ? memberIndex(*open.last(), name) : -1;
        const MemberDescription* member = index < 0 ? nullptr : &open.last()->members[index];
        if (!member || member->kind != MemberDescription::Enumeration) {
            open << (member && member->kind == MemberDescription::List ? settingsClass(name) : nullptr);
            continue;
        }
        const qint64 line = reader.lineNumber();
        const qint64 column = reader.columnNumber() + 1;
        const QString text = reader.readElementText(QXmlStreamReader::SkipChildElements);
        if (!member->enumerationNames.contains(text))
            texts[name] << QStringLiteral("%1 (line %2, column %3)").arg(quoted(text)).arg(line).arg(column);
    }
    return texts;
}

QHash<QString, QStringList> namelessTextsInBinary(const QByteArray& data, qint64 maxSize)
{
    QHash<QString, QStringList> texts;
    const UnpackedBinary unpacked = unpackBinary(data, maxSize);
    const QString offsets = unpacked.kind == UnpackedBinary::Compressed ? QStringLiteral("offset %1 of the inflated bytes")
                                                                        : QStringLiteral("offset %1");
    walkBinary(unpacked.bytes, [&](const WalkLine& line) {
        // "text \"LeftDock\" (not a name of DockWidgetLocation)", or
        // "byte count 0xFFFFFFFF: null text (no name of ...)".
        for (const QString& marker : {QStringLiteral(" (not a name of "), QStringLiteral(" (no name of ")}) {
            const int at = line.text.lastIndexOf(marker);
            if (at < 0 || !line.text.endsWith(QLatin1Char(')')))
                continue;
            const QString member = line.text.mid(at + marker.size()).chopped(1);
            QString text = line.text.left(at);
            if (text.startsWith(QLatin1String("text ")))
                text = text.mid(5);
            texts[member] << QStringLiteral("%1 (%2)").arg(text, offsets.arg(line.offset));
        }
    });
    return texts;
}

} // namespace

QVector<int> membersInWriteOrder(const ClassDescription& cls)
{
    QVector<int> order(cls.members.size());
    for (int i = 0; i < cls.members.size(); ++i)
        order[cls.members[i].writeOrder] = i;
    return order;
}

int memberIndex(const ClassDescription& cls, const QString& name)
{
    for (int i = 0; i < cls.members.size(); ++i) {
        if (cls.members[i].name == name)
            return i;
    }
    return -1;
}

bool nameOf(const ObjectValues& object, QString& name)
{
    const int member = memberIndex(settingsClasses()[object.classIndex], QStringLiteral("Name"));
    if (member < 0 || !object.members[member].set)
        return false;
    name = object.members[member].text;
    return true;
}

QString enumerationValueNote(const MemberDescription& member, const QString& text, bool validText)
{
    if (member.kind != MemberDescription::Enumeration)
        return QString();
    const int value = validText ? member.enumerationNames.indexOf(text) : -1;
    return value >= 0 ? QStringLiteral(" -> value %1").arg(value) : QStringLiteral(" (not a name of %1)").arg(member.name);
}

QString pathSegment(const QString& className, bool byName, const QString& name, int position)
{
    return byName ? QStringLiteral("%1[Name=%2]").arg(className, quoted(name))
                  : QStringLiteral("%1[%2]").arg(className).arg(position);
}

QString Place::text() const
{
    if (line > 0)
        return QStringLiteral("%1:%2").arg(line).arg(column);
    return offset >= 0 ? QStringLiteral("offset %1").arg(offset) : QString();
}

void Place::addTo(QJsonObject& object) const
{
    if (line > 0) {
        object.insert(QStringLiteral("line"), line);
        object.insert(QStringLiteral("column"), column);
    } else if (offset >= 0) {
        object.insert(QStringLiteral("offset"), offset);
    }
}

void printJson(const QJsonObject& object)
{
    out() << QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Indented));
    out().flush();
}

QTextStream& out()
{
    static Utf8Stream output(stdout);
    if (quietOutput) {
        static DiscardDevice discard;
        static QTextStream discarded(&discard);
        return discarded;
    }
    return output.stream;
}

QTextStream& err()
{
    static Utf8Stream errors(stderr);
    return errors.stream;
}

void reportFileError(const QString& file, const QString& message)
{
    out().flush();
    err() << file << ": " << message << '\n';
    err().flush();
}

int usageError(const QString& command, const QString& message)
{
    out().flush();
    err() << "torvixml: " << message << '\n';
    if (command.isEmpty())
        err() << "Try 'torvixml --help'.\n";
    else
        err() << "Try 'torvixml " << command << " --help'.\n";
    err().flush();
    return ExitUsageOrIo;
}

int parseCommandLine(QCommandLineParser& parser, const QString& command, const QStringList& arguments)
{
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption quiet({QStringLiteral("q"), QStringLiteral("quiet")},
                                   QStringLiteral("Print no reports on standard output (a document written to - "
                                                  "still is); only diagnostics and the exit status tell the "
                                                  "outcome."));
    parser.addOption(quiet);
    QStringList argv = arguments;
    argv.prepend(QStringLiteral("torvixml ") + command);
    if (!parser.parse(argv))
        return usageError(command, parser.errorText());
    if (parser.isSet(help) || parser.isSet(QStringLiteral("help-all"))) {
        // Qt names the program by its path; name it by the command instead.
        QString text = parser.helpText();
        const int options = text.indexOf(QStringLiteral(" [options]"));
        if (text.startsWith(QStringLiteral("Usage: ")) && options > 0)
            text.replace(7, options - 7, QStringLiteral("torvixml ") + command);
        out() << text;
        out().flush();
        return ExitSuccess;
    }
    quietOutput = parser.isSet(quiet);
    return -1;
}

const QVector<TORVIXML::ClassDescription>& settingsClasses()
{
    static const QVector<TORVIXML::ClassDescription> classes = TORVIXML::SettingsClasses();
    return classes;
}

const TORVIXML::ClassDescription* settingsClass(const QString& name)
{
    for (const TORVIXML::ClassDescription& cls : settingsClasses()) {
        if (cls.name == name)
            return &cls;
    }
    return nullptr;
}

QString quoted(const QString& text)
{
    QString result = QStringLiteral("\"");
    const QVector<uint> codePoints = text.toUcs4();
    for (uint c : codePoints)
        result += needsEscape(c) ? escapedChar(c) : QString::fromUcs4(reinterpret_cast<const char32_t*>(&c), 1);
    result += QLatin1Char('"');
    return result;
}

QString quotedUtf8(const QByteArray& bytes, bool* validUtf8)
{
    // Invalid sequences decode to U+FFFD, which does not encode back to them.
    const QString text = QString::fromUtf8(bytes);
    const bool valid = text.toUtf8() == bytes;
    if (validUtf8)
        *validUtf8 = valid;
    if (valid)
        return quoted(text);
    // Not UTF-8: printable ASCII as it is, every other byte as \xNN.
    QString result = QStringLiteral("\"");
    for (char ch : bytes) {
        const uchar c = uchar(ch);
        if (c >= 0x20 && c < 0x7F)
            result += needsEscape(c) ? escapedChar(c) : QString(QLatin1Char(char(c)));
        else
            result += QStringLiteral("\\x%1").arg(QString::number(c, 16).toUpper().rightJustified(2, QLatin1Char('0')));
    }
    result += QLatin1Char('"');
    return result;
}

DocumentForm detectForm(const QByteArray& data)
{
    const auto* b = reinterpret_cast<const uchar*>(data.constData());
    const int size = data.size();
    // UTF-16 with a byte order mark: look at 16-bit units.
    if (size >= 2 && ((b[0] == 0xFF && b[1] == 0xFE) || (b[0] == 0xFE && b[1] == 0xFF))) {
        const bool little = b[0] == 0xFF;
        for (int i = 2; i + 1 < size; i += 2) {
            const uint unit = little ? (uint(b[i + 1]) << 8 | b[i]) : (uint(b[i]) << 8 | b[i + 1]);
            if (unit == '<')
                return DocumentForm::Xml;
            if (!isXmlBlank(unit))
                break;
        }
        return DocumentForm::Binary;
    }
    int i = 0;
    if (size >= 3 && b[0] == 0xEF && b[1] == 0xBB && b[2] == 0xBF)
        i = 3;
    while (i < size && isXmlBlank(b[i]))
        ++i;
    return i < size && b[i] == '<' ? DocumentForm::Xml : DocumentForm::Binary;
}

bool isStandardStream(const QString& path)
{
    return path == QLatin1String("-");
}

QCommandLineOption maxSizeOption()
{
    return QCommandLineOption(
        QStringLiteral("max-size"),
        QStringLiteral("Refuse documents larger than <SIZE> bytes (K, M or G for KiB, MiB or GiB; default 256M). "
                       "It also bounds what a compressed document may inflate to."),
        QStringLiteral("SIZE"));
}

bool maxSizeFrom(const QCommandLineParser& parser, qint64& maxSize, QString& message)
{
    maxSize = REPORTGENERATOR::IRGObject::DefaultMaxDocumentSize;
    if (!parser.isSet(QStringLiteral("max-size")))
        return true;
    QString text = parser.value(QStringLiteral("max-size")).trimmed();
    qint64 unit = 1;
    const QChar last = text.isEmpty() ? QChar() : text.at(text.size() - 1).toUpper();
    if (last == QLatin1Char('K') || last == QLatin1Char('M') || last == QLatin1Char('G')) {
        unit = last == QLatin1Char('K') ? 1024 : last == QLatin1Char('M') ? 1024 * 1024 : 1024 * 1024 * 1024;
        text.chop(1);
    }
    bool ok = false;
    const qint64 number = text.toLongLong(&ok);
    // No byte array holds 2 GiB.
    if (!ok || number < 1 || number > (qint64(2) << 30) / unit - 1) {
        message = QStringLiteral("--max-size: \"%1\" is no size from 1 byte to 2047M")
                      .arg(parser.value(QStringLiteral("max-size")));
        return false;
    }
    maxSize = number * unit;
    return true;
}

int readInput(const QString& path, qint64 maxSize, QByteArray& data, QString& message)
{
    QFile file(path);
    const bool opened = isStandardStream(path) ? file.open(fileno(stdin), QIODevice::ReadOnly)
                                               : file.open(QIODevice::ReadOnly);
    if (!opened) {
        message = QStringLiteral("cannot open for reading: %1").arg(file.errorString());
        return ExitUsageOrIo;
    }
    bool tooLarge = false;
    if (!REPORTGENERATOR::ReadWholeDevice(file, maxSize, data, message, &tooLarge))
        return tooLarge ? ExitInvalidInput : ExitUsageOrIo;
    return ExitSuccess;
}

int loadDocument(const QString& path, TORVIXML::TorviGuiModeSettings& root, bool validate, qint64 maxSize,
                 QString& message, QByteArray* input)
{
    QByteArray data;
    const int read = readInput(path, maxSize, data, message);
    if (read != ExitSuccess)
        return read;
    if (data.isEmpty()) {
        message = isStandardStream(path) ? QStringLiteral("empty input") : QStringLiteral("empty file");
        return ExitInvalidInput;
    }
    if (input)
        *input = data;

    root.SetValidate(validate);
    root.SetMaxDocumentSize(maxSize);
    try {
        if (detectForm(data) == DocumentForm::Xml) {
            // The reader sees the bytes themselves, so that it honours the
            // document's byte order mark and encoding declaration.
            QBuffer buffer(&data);
            if (root.LoadXml(&buffer))
                return ExitSuccess;
            message = root.GetErrorString();
            return ExitInvalidInput;
        }
        if (root.SetBinaryRepresentation(data))
            return ExitSuccess;
        message = describeBinaryFailure(data, maxSize, root.GetErrorString());
        return ExitInvalidInput;
    } catch (const ReportException& e) {
        message = e.GetMessageText();
        return ExitInvalidInput;
    }
}

QStringList namelessValues(const TORVIXML::TorviGuiModeSettings& settings, const QByteArray& data, qint64 maxSize)
{
    QVector<Nameless> nameless;
    findNameless(TORVIXML::SettingsValues(settings), 0, QString(), nameless);
    if (nameless.isEmpty())
        return QStringList();
    // The texts of the input, with their places, when there are as many of
    // them as values without a name.
    const QHash<QString, QStringList> texts =
        detectForm(data) == DocumentForm::Xml ? namelessTextsInXml(data) : namelessTextsInBinary(data, maxSize);
    QHash<QString, int> count;
    for (const Nameless& value : nameless)
        ++count[value.member];
    QHash<QString, int> next;
    QStringList messages;
    for (const Nameless& value : nameless) {
        const QStringList& found = texts.value(value.member);
        const QString text =
            found.size() == count.value(value.member) ? QLatin1Char(' ') + found.at(next[value.member]++) : QString();
        messages << QStringLiteral("%1: %2%3 is no name of its enumeration").arg(value.where, value.member, text);
    }
    return messages;
}

bool reportNamelessValues(const QString& input, const QString& output, const TORVIXML::TorviGuiModeSettings& settings,
                          const QByteArray& data, qint64 maxSize)
{
    const QStringList messages = namelessValues(settings, data, maxSize);
    if (messages.isEmpty())
        return false;
    for (const QString& message : messages)
        reportFileError(input, message + QStringLiteral(" and cannot be written back"));
    reportFileError(output, QStringLiteral("not written: %1 %2 would be lost")
                                .arg(messages.size())
                                .arg(messages.size() == 1 ? QStringLiteral("value") : QStringLiteral("values")));
    return true;
}

bool writeOutput(const QString& path, const QByteArray& bytes, QString& message)
{
    if (!isStandardStream(path))
        return REPORTGENERATOR::WriteFileAtomically(path, bytes, message);
    out().flush();
    // Straight to the descriptor, so that a failing write (a full disk, a
    // closed pipe) shows here rather than in a buffer flushed at exit.
    QFile file;
    if (!file.open(fileno(stdout), QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        message = QStringLiteral("cannot open for writing: %1").arg(file.errorString());
        return false;
    }
    if (!REPORTGENERATOR::WriteAll(file, bytes)) {
        message = QStringLiteral("cannot write: %1").arg(file.errorString());
        return false;
    }
    return true;
}

} // namespace TorviTool
