// torvixml preview FILE MODE -o PNG [--lang LANG] [--no-validate]: draws
// the main window of one mode of a settings document as a PNG image, without
// a display.

#include "Commands.h"
#include "ToolSupport.h"

#include "ModePreview.h"

#include <TorviXML/TorviXML.h>

#include <QBuffer>
#include <QCommandLineParser>
#include <QGuiApplication>

namespace TorviTool {

// Only the preview draws, and drawing text needs a QGuiApplication; the other
// commands keep to a QCoreApplication. Without a platform named in
// QT_QPA_PLATFORM the offscreen one is used, so that no display is needed.
std::unique_ptr<QCoreApplication> createApplication(int& argc, char** argv)
{
    if (argc > 1 && qstrcmp(argv[1], "preview") == 0) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        return std::make_unique<QGuiApplication>(argc, argv);
    }
    return std::make_unique<QCoreApplication>(argc, argv);
}

int runPreview(const QStringList& arguments)
{
    const QString command = QStringLiteral("preview");
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Draws the main window of the mode named MODE in FILE (XML, plain or compressed binary)\n"
        "as a PNG image: its dock areas with the components, solid when shown by default,\n"
        "dashed when merely available; floating ones as separate windows, undocked ones apart."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("Settings document, or - for standard input."));
    parser.addPositionalArgument(QStringLiteral("MODE"), QStringLiteral("Name of the data operation mode."));
    const QCommandLineOption outputOption({QStringLiteral("o"), QStringLiteral("output")},
                                          QStringLiteral("Write the image to <PNG> (- for standard output)."),
                                          QStringLiteral("PNG"));
    const QCommandLineOption langOption(QStringLiteral("lang"),
                                        QStringLiteral("Caption the dock areas in language <LANG> (e.g. de)."),
                                        QStringLiteral("LANG"));
    const QCommandLineOption noValidateOption(QStringLiteral("no-validate"),
                                              QStringLiteral("Read without validation."));
    parser.addOption(outputOption);
    parser.addOption(langOption);
    parser.addOption(noValidateOption);
    parser.addOption(maxSizeOption());
    const int parsed = parseCommandLine(parser, command, arguments);
    if (parsed >= 0)
        return parsed;
    const QStringList positional = parser.positionalArguments();
    if (positional.size() != 2)
        return usageError(command, QStringLiteral("preview needs FILE and MODE"));
    if (parser.value(outputOption).isEmpty())
        return usageError(command, QStringLiteral("preview needs -o PNG"));
    QString message;
    qint64 maxSize = 0;
    if (!maxSizeFrom(parser, maxSize, message))
        return usageError(command, message);
    selectLanguage(parser.value(langOption));

    const QString& input = positional[0];
    TORVIXML::TorviGuiModeSettings settings;
    const int loaded = loadDocument(input, settings, !parser.isSet(noValidateOption), maxSize, message);
    if (loaded != ExitSuccess) {
        reportFileError(input, message);
        return loaded;
    }
    QStringList names;
    for (const TORVIXML::DataOperationMode& mode : std::as_const(settings).GetDataOperationMode()) {
        if (mode.GetName() != positional[1]) {
            names.append(quoted(mode.GetName()));
            continue;
        }
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        TORVIXML::Preview::renderMode(mode).save(&buffer, "PNG");
        const QString output = parser.value(outputOption);
        if (!writeOutput(output, png, message)) {
            reportFileError(output, message);
            return ExitUsageOrIo;
        }
        return ExitSuccess;
    }
    reportFileError(input, QStringLiteral("no mode named %1; the modes are: %2")
                               .arg(quoted(positional[1]), names.isEmpty() ? QStringLiteral("none")
                                                                           : names.join(QStringLiteral(", "))));
    return ExitInvalidInput;
}

} // namespace TorviTool
