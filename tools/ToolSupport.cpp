#include "ToolSupport.h"

#include "BinaryWalker.h"

#include <TorviXML/TorviXML.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QSaveFile>
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

// Where the library refused an XML file, says why: the reader's error with
// its position, or a root element of another name.
QString describeXmlFailure(const QByteArray& data)
{
    QXmlStreamReader reader(data);
    bool rootSeen = false;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && !rootSeen) {
            rootSeen = true;
            if (reader.name() != QLatin1String("TorviGuiModeSettings")) {
                return QStringLiteral("the document element is <%1>, not <TorviGuiModeSettings>")
                    .arg(reader.name().toString());
            }
        }
    }
    if (reader.hasError()) {
        return QStringLiteral("XML error at line %1, column %2: %3")
            .arg(reader.lineNumber())
            .arg(reader.columnNumber())
            .arg(reader.errorString());
    }
    return QStringLiteral("not a readable TorviGuiModeSettings XML document");
}

// Where the library refused a binary file, says why, naming the first fault
// that a walk over the bytes finds.
QString describeBinaryFailure(const QByteArray& data)
{
    const UnpackedBinary unpacked = unpackBinary(data);
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
    return QStringLiteral("not a readable TorviGuiModeSettings binary document");
}

} // namespace

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

bool readWholeFile(const QString& path, QByteArray& data, QString& message)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        message = QStringLiteral("cannot open for reading: %1").arg(file.errorString());
        return false;
    }
    data = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        message = QStringLiteral("cannot read: %1").arg(file.errorString());
        return false;
    }
    return true;
}

int loadDocument(const QString& path, TORVIXML::TorviGuiModeSettings& root, bool validate, QString& message)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        message = QStringLiteral("cannot open for reading: %1").arg(file.errorString());
        return ExitUsageOrIo;
    }
    QByteArray data = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        message = QStringLiteral("cannot read: %1").arg(file.errorString());
        return ExitUsageOrIo;
    }
    if (data.isEmpty()) {
        message = QStringLiteral("empty file");
        return ExitInvalidInput;
    }

    root.SetValidate(validate);
    try {
        if (detectForm(data) == DocumentForm::Xml) {
            // Let the reader see the bytes themselves, so that it honours the
            // document's byte order mark and encoding declaration.
            if (!file.seek(0)) {
                message = QStringLiteral("cannot read: %1").arg(file.errorString());
                return ExitUsageOrIo;
            }
            if (root.LoadXml(&file))
                return ExitSuccess;
            message = describeXmlFailure(data);
            return ExitInvalidInput;
        }
        root.Reset();
        if (root.SetBinaryRepresentation(data))
            return ExitSuccess;
        message = describeBinaryFailure(data);
        return ExitInvalidInput;
    } catch (const ReportException& e) {
        message = e.GetMessageText();
        return ExitInvalidInput;
    }
}

bool writeAtomically(const QString& path, const QByteArray& bytes, QString& message)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        message = QStringLiteral("cannot open for writing: %1").arg(file.errorString());
        return false;
    }
    if (file.write(bytes) != bytes.size()) {
        message = QStringLiteral("cannot write: %1").arg(file.errorString());
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        message = QStringLiteral("cannot write: %1").arg(file.errorString());
        return false;
    }
    return true;
}

} // namespace TorviTool
