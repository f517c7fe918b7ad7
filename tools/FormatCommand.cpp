// torvixml format FILE [-o OUT]: writes a settings document as indented XML.
// The library writes the elements; the writer only adds line breaks and
// indentation between them, so the text of every element stays as it is and
// the document reads back equal to the one read.

#include "Commands.h"
#include "ToolSupport.h"

#include <TorviXML/TorviXML.h>

#include <QBuffer>
#include <QCommandLineParser>
#include <QFile>
#include <QTextStream>
#include <QXmlStreamWriter>

namespace TorviTool {

namespace {

// Until the shared output helper exists: a file written atomically, or
// standard output for "-".
bool writeOutput(const QString& path, const QByteArray& bytes, QString& message)
{
    if (path != QLatin1String("-"))
        return writeAtomically(path, bytes, message);
    out().flush();
    QFile file;
    if (!file.open(stdout, QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush()) {
        message = QStringLiteral("cannot write: %1").arg(file.errorString());
        return false;
    }
    return true;
}

} // namespace

int runFormat(const QStringList& arguments)
{
    const QString command = QStringLiteral("format");
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Reads a settings document (XML, plain or compressed binary) and writes it as\n"
        "indented XML, one element per line, to standard output or to OUT."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("Input document."));
    const QCommandLineOption outputOption(
        {QStringLiteral("o"), QStringLiteral("output")},
        QStringLiteral("Write to <OUT> instead of standard output (- for standard output); OUT is replaced "
                       "only when the whole document could be written."),
        QStringLiteral("OUT"));
    const QCommandLineOption indentOption(QStringLiteral("indent"),
                                          QStringLiteral("Indent by <N> blanks per level (0 to 16, default 2)."),
                                          QStringLiteral("N"), QStringLiteral("2"));
    const QCommandLineOption noValidateOption(
        QStringLiteral("no-validate"),
        QStringLiteral("Read and write without validation: unknown names and incomplete objects are "
                       "taken as they are."));
    parser.addOption(outputOption);
    parser.addOption(indentOption);
    parser.addOption(noValidateOption);
    const int parsed = parseCommandLine(parser, command, arguments);
    if (parsed >= 0)
        return parsed;
    const QStringList positional = parser.positionalArguments();
    if (positional.size() != 1)
        return usageError(command, QStringLiteral("format needs exactly one file"));
    bool ok = false;
    const int indent = parser.value(indentOption).toInt(&ok);
    if (!ok || indent < 0 || indent > 16) {
        return usageError(command, QStringLiteral("--indent: a number of blanks from 0 to 16, not \"%1\"")
                                       .arg(parser.value(indentOption)));
    }
    const QString input = positional.first();
    const QString output = parser.isSet(outputOption) ? parser.value(outputOption) : QStringLiteral("-");

    TORVIXML::TorviGuiModeSettings settings;
    QString message;
    const int loaded = loadDocument(input, settings, !parser.isSet(noValidateOption), message);
    if (loaded != ExitSuccess) {
        reportFileError(input, message);
        return loaded;
    }
    if (!settings.HasData()) {
        reportFileError(input, QStringLiteral("the settings read produce no document"));
        return ExitInvalidInput;
    }
    QByteArray bytes;
    try {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QXmlStreamWriter writer(&buffer);
        writer.setAutoFormatting(true);
        writer.setAutoFormattingIndent(indent);
        writer.writeStartDocument();
        settings.GetXml(writer);
        writer.writeEndDocument();
    } catch (const ReportException& e) {
        reportFileError(input, e.GetMessageText());
        return ExitInvalidInput;
    }
    if (!writeOutput(output, bytes, message)) {
        reportFileError(output, message);
        return ExitUsageOrIo;
    }
    return ExitSuccess;
}

} // namespace TorviTool
