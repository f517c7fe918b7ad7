// torvixml convert IN OUT [--compress LEVEL] [--no-validate]: reads a
// settings document in either form and writes it in the form OUT's
// extension names.

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
        "or compressed binary), the output form from OUT's extension: .xml or .bin.\n"
        "OUT is replaced only when the whole document could be written."));
    parser.addPositionalArgument(QStringLiteral("IN"), QStringLiteral("Input document."));
    parser.addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("Output document, *.xml or *.bin."));
    const QCommandLineOption compressOption(
        QStringLiteral("compress"),
        QStringLiteral("Write the compressed binary form with zlib level <LEVEL> (-1 for zlib's default, 0 to 9); "
                       ".bin only."),
        QStringLiteral("LEVEL"));
    const QCommandLineOption noValidateOption(
        QStringLiteral("no-validate"),
        QStringLiteral("Read and write without validation: unknown names and incomplete objects are "
                       "taken as they are."));
    parser.addOption(compressOption);
    parser.addOption(noValidateOption);
    const int parsed = parseCommandLine(parser, command, arguments);
    if (parsed >= 0)
        return parsed;

    const QStringList positional = parser.positionalArguments();
    if (positional.size() != 2)
        return usageError(command, QStringLiteral("convert needs exactly two files, IN and OUT"));
    const QString input = positional[0];
    const QString output = positional[1];
    const QString suffix = QFileInfo(output).suffix().toLower();
    const bool toXml = suffix == QLatin1String("xml");
    if (!toXml && suffix != QLatin1String("bin")) {
        return usageError(command, QStringLiteral("%1: the output file must end in .xml or .bin").arg(output));
    }
    int level = 0;
    const bool compress = parser.isSet(compressOption);
    if (compress) {
        if (toXml)
            return usageError(command, QStringLiteral("--compress applies to .bin output only"));
        bool ok = false;
        level = parser.value(compressOption).toInt(&ok);
        if (!ok || level < -1 || level > 9) {
            return usageError(command, QStringLiteral("--compress: level must be -1 or 0 to 9, not \"%1\"")
                                           .arg(parser.value(compressOption)));
        }
    }
    const bool validate = !parser.isSet(noValidateOption);

    TORVIXML::TorviGuiModeSettings settings;
    QString message;
    const int loaded = loadDocument(input, settings, validate, message);
    if (loaded != ExitSuccess) {
        reportFileError(input, message);
        return loaded;
    }

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
    if (!writeAtomically(output, bytes, message)) {
        reportFileError(output, message);
        return ExitUsageOrIo;
    }
    out() << output << ": "
          << (toXml ? QStringLiteral("XML") : compress ? QStringLiteral("compressed binary") : QStringLiteral("binary"))
          << ", " << bytes.size() << " bytes\n";
    out().flush();
    return ExitSuccess;
}

} // namespace TorviTool
