// torvixml format FILE [-o OUT]: writes a settings document as indented XML.
// The library writes the elements; the writer only adds line breaks and
// indentation between them, so the text of every element stays as it is and
// the document reads back equal to the one read.

#include "Commands.h"
#include "ToolSupport.h"

#include <TorviXML/TorviXML.h>

#include <QBuffer>
#include <QCommandLineParser>
#include <QTextStream>
#include <QXmlStreamWriter>

namespace TorviTool {

int runFormat(const QStringList& arguments)
{
    const QString command = QStringLiteral("format");
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Reads a settings document (XML, plain or compressed binary) and writes it as\n"
        "indented XML, one element per line, to standard output or to OUT."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("Input document, or - for standard input."));
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
        QStringLiteral("Read and write without validation, as convert --no-validate does: incomplete objects are "
                       "written with the initial values of the members they lack; a text that names no value of its "
                       "enumeration stops the command with exit status 1."));
    parser.addOption(outputOption);
    parser.addOption(indentOption);
    parser.addOption(noValidateOption);
    parser.addOption(maxSizeOption());
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

    QString message;
    qint64 maxSize = 0;
    if (!maxSizeFrom(parser, maxSize, message))
        return usageError(command, message);

    TORVIXML::TorviGuiModeSettings settings;
    QByteArray data;
    const bool validate = !parser.isSet(noValidateOption);
    const int loaded = loadDocument(input, settings, validate, maxSize, message, &data);
    if (loaded != ExitSuccess) {
        reportFileError(input, message);
        return loaded;
    }
    if (!validate && reportNamelessValues(input, output, settings, data, maxSize))
        return ExitInvalidInput;
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
