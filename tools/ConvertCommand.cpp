// torvixml convert IN OUT [--to FORM] [--compress LEVEL] [--no-validate]
// [--max-size SIZE]: reads a settings document in either form and writes it
// in the form OUT's extension (or --to) names.

#include "BinaryWalker.h"
#include "Commands.h"
#include "ToolSupport.h"

#include <TorviXML/TorviXML.h>

#include <QCommandLineParser>
#include <QFileInfo>
#include <QHash>
#include <QTextStream>
#include <QXmlStreamReader>

namespace TorviTool {

namespace {

using TORVIXML::DataOperationMode;
using TORVIXML::GuiComponentSettings;
using TORVIXML::TorviGuiModeSettings;

// An enumeration member that holds a value without a name. Read without
// validation, that is what a text naming no value becomes; it would be
// written as an empty text, and the text of the input would be lost.
struct Nameless
{
    QString where;
    QString member;
};

QVector<Nameless> namelessValues(const TorviGuiModeSettings& root)
{
    QVector<Nameless> found;
    const QVector<DataOperationMode>& modes = root.GetDataOperationMode();
    for (int m = 0; m < modes.size(); ++m) {
        const DataOperationMode& mode = modes.at(m);
        const QVector<GuiComponentSettings>& components = mode.GetGuiComponentSettings();
        for (int c = 0; c < components.size(); ++c) {
            const GuiComponentSettings& component = components.at(c);
            const QString where = QStringLiteral("DataOperationMode %1 (%2), GuiComponentSettings %3 (%4)")
                                      .arg(m + 1)
                                      .arg(quoted(mode.GetName()))
                                      .arg(c + 1)
                                      .arg(quoted(component.GetName()));
            if (component.IsGuiComponentUsageSet()
                && component.GuiComponentUsageToName(component.GetGuiComponentUsage()).isNull())
                found.append({where, QStringLiteral("GuiComponentUsage")});
            if (component.IsDockWidgetLocationSet()
                && component.DockWidgetLocationToName(component.GetDockWidgetLocation()).isNull())
                found.append({where, QStringLiteral("DockWidgetLocation")});
        }
    }
    if (root.IsOperationModeHandlerSet() && root.OperationModeHandlerToName(root.GetOperationModeHandler()).isNull())
        found.append({QStringLiteral("TorviGuiModeSettings"), QStringLiteral("OperationModeHandler")});
    return found;
}

// The texts of the input that name no value, per member in document order,
// with their place: where the elements of an XML document stand as the
// readers take them, the text elements' own text; in a binary document the
// enumeration texts the walk finds.
QHash<QString, QStringList> namelessTextsInXml(const QByteArray& data)
{
    QHash<QString, QStringList> texts;
    QXmlStreamReader reader(data);
    QStringList path;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::EndElement && !path.isEmpty()) {
            path.removeLast();
            continue;
        }
        if (token != QXmlStreamReader::StartElement)
            continue;
        path << reader.name().toString();
        const QString& name = path.last();
        QStringList names;
        if (path.size() == 2 && name == QLatin1String("OperationModeHandler"))
            names = TorviGuiModeSettings::GetOperationModeHandlers();
        else if (path.size() == 4 && path.at(1) == QLatin1String("DataOperationMode")
                 && path.at(2) == QLatin1String("GuiComponentSettings")
                 && name == QLatin1String("GuiComponentUsage"))
            names = GuiComponentSettings::GetGuiComponentUsages();
        else if (path.size() == 4 && path.at(1) == QLatin1String("DataOperationMode")
                 && path.at(2) == QLatin1String("GuiComponentSettings")
                 && name == QLatin1String("DockWidgetLocation"))
            names = GuiComponentSettings::GetDockWidgetLocations();
        else
            continue;
        const qint64 line = reader.lineNumber();
        const qint64 column = reader.columnNumber() + 1;
        const QString member = name;
        const QString text = reader.readElementText(QXmlStreamReader::SkipChildElements);
        path.removeLast();
        if (!names.contains(text))
            texts[member] << QStringLiteral("%1 (line %2, column %3)").arg(quoted(text)).arg(line).arg(column);
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

    TorviGuiModeSettings settings;
    QByteArray data;
    const int loaded = loadDocument(input, settings, validate, maxSize, message, &data);
    if (loaded != ExitSuccess) {
        reportFileError(input, message);
        return loaded;
    }

    // Without validation a text that names no value was read as a value
    // without a name; say which, with the text where it can be found.
    const QVector<Nameless> nameless = namelessValues(settings);
    if (!nameless.isEmpty()) {
        const QHash<QString, QStringList> texts =
            detectForm(data) == DocumentForm::Xml ? namelessTextsInXml(data) : namelessTextsInBinary(data, maxSize);
        QHash<QString, int> count;
        for (const Nameless& value : nameless)
            ++count[value.member];
        QHash<QString, int> next;
        for (const Nameless& value : nameless) {
            const QStringList& found = texts.value(value.member);
            const QString text = found.size() == count.value(value.member)
                ? QLatin1Char(' ') + found.at(next[value.member]++)
                : QString();
            reportFileError(input, QStringLiteral("%1: %2%3 is no name of its enumeration and cannot be written back")
                                       .arg(value.where, value.member, text));
        }
        reportFileError(output, QStringLiteral("not written: %1 %2 would be lost")
                                    .arg(nameless.size())
                                    .arg(nameless.size() == 1 ? QStringLiteral("value") : QStringLiteral("values")));
        return ExitInvalidInput;
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
