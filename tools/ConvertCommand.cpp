// torvixml convert IN OUT [--to FORM] [--compress LEVEL] [--no-validate]
// [--max-size SIZE]: reads a settings document in either form and writes it
// in the form OUT's extension (or --to) names.

#include "Commands.h"
#include "ToolSupport.h"

#include <TorviXML/TorviXML.h>

#include <QCommandLineParser>
#include <QFileInfo>
#include <QTextStream>

namespace TorviTool {

int runConvert(const QStringList& arguments)
{
    const QString command = QStringLiteral("convert");
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Converts a settings document. The input form is told from its content (XML, plain\n"
        "or compressed binary), the output form from OUT's extension, .xml or .bin, or from\n"
        "--to. IN may be - for standard input, OUT - for standard output (with --to).\n"
        "OUT is replaced only when the whole document could be written. A name that holds a\n"
        "character XML 1.0 cannot represent (a control character, U+FFFE, U+FFFF) stops a\n"
        "conversion to XML with the object and the place of the character; the binary form\n"
        "holds every character."));
    parser.addPositionalArgument(QStringLiteral("IN"), QStringLiteral("Input document, or - for standard input."));
    parser.addPositionalArgument(QStringLiteral("OUT"),
                                 QStringLiteral("Output document, *.xml or *.bin, or - for standard output."));
    const QCommandLineOption toOption(QStringLiteral("to"),
                                      QStringLiteral("Write the form <FORM>, xml or bin, whatever OUT is called."),
                                      QStringLiteral("FORM"));
    const QCommandLineOption compressOption(
        QStringLiteral("compress"),
        QStringLiteral("Write the compressed binary form with zlib level <LEVEL> (-1 for zlib's default, 0 to 9); "
                       "binary output only."),
        QStringLiteral("LEVEL"));
    const QCommandLineOption noValidateOption(
        QStringLiteral("no-validate"),
        QStringLiteral("Read and write without validation: objects that lack members are converted, each member "
                       "that is not set written with its initial value (the enumeration's default, an empty name), "
                       "which reads back as set. A text that names no value of its enumeration cannot be written "
                       "back: the conversion stops with exit status 1, naming the object and the text, and writes "
                       "nothing."));
    parser.addOption(toOption);
    parser.addOption(compressOption);
    parser.addOption(noValidateOption);
    parser.addOption(maxSizeOption());
    const int parsed = parseCommandLine(parser, command, arguments);
    if (parsed >= 0)
        return parsed;

    const QStringList positional = parser.positionalArguments();
    if (positional.size() != 2)
        return usageError(command, QStringLiteral("convert needs exactly two files, IN and OUT"));
    const QString input = positional[0];
    const QString output = positional[1];
    QString form = parser.value(toOption).toLower();
    if (parser.isSet(toOption)) {
        if (form != QLatin1String("xml") && form != QLatin1String("bin"))
            return usageError(command, QStringLiteral("--to: the form must be xml or bin, not \"%1\"").arg(parser.value(toOption)));
    } else if (isStandardStream(output)) {
        return usageError(command, QStringLiteral("writing to standard output needs --to xml or --to bin"));
    } else {
        form = QFileInfo(output).suffix().toLower();
        if (form != QLatin1String("xml") && form != QLatin1String("bin"))
            return usageError(command, QStringLiteral("%1: the output file must end in .xml or .bin").arg(output));
    }
    const bool toXml = form == QLatin1String("xml");
    int level = 0;
    const bool compress = parser.isSet(compressOption);
    if (compress) {
        if (toXml)
            return usageError(command, QStringLiteral("--compress applies to binary output only"));
        bool ok = false;
        level = parser.value(compressOption).toInt(&ok);
        if (!ok || level < -1 || level > 9) {
            return usageError(command, QStringLiteral("--compress: level must be -1 or 0 to 9, not \"%1\"")
                                           .arg(parser.value(compressOption)));
        }
    }
    const bool validate = !parser.isSet(noValidateOption);
    QString message;
    qint64 maxSize = 0;
    if (!maxSizeFrom(parser, maxSize, message))
        return usageError(command, message);

    TORVIXML::TorviGuiModeSettings settings;
    QByteArray data;
    const int loaded = loadDocument(input, settings, validate, maxSize, message, &data);
    if (loaded != ExitSuccess) {
        reportFileError(input, message);
        return loaded;
    }

    if (!validate && reportNamelessValues(input, output, settings, data, maxSize))
        return ExitInvalidInput;

    // The whole document is made in memory before OUT is touched.
    QByteArray bytes;
    try {
        if (toXml)
            bytes = settings.GetXmlString().toUtf8();
        else if (compress)
            bytes = settings.GetCompressedBinaryRepresentationAsQByteArray(level);
        else
            bytes = settings.GetBinaryRepresentationAsQByteArray();
    } catch (const ReportException& e) {
        reportFileError(input, e.GetMessageText());
        return ExitInvalidInput;
    }
    if (bytes.isEmpty()) {
        reportFileError(input, QStringLiteral("the settings read produce no document"));
        return ExitInvalidInput;
    }
    if (!writeOutput(output, bytes, message)) {
        reportFileError(output, message);
        return ExitUsageOrIo;
    }
    if (!isStandardStream(output)) {
        out() << output << ": "
              << (toXml ? QStringLiteral("XML") : compress ? QStringLiteral("compressed binary") : QStringLiteral("binary"))
              << ", " << bytes.size() << " bytes\n";
        out().flush();
    }
    return ExitSuccess;
}

} // namespace TorviTool
