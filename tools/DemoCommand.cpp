// torvixml demo [DIR]: builds the example settings in code, writes them as
// DIR/settings.xml and DIR/settings.bin, reads both back and compares, then
// prints the XML and a summary.

#include "Commands.h"
#include "ToolSupport.h"

#include <TorviXML/TorviXML.h>

#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QTextStream>

namespace TorviTool {

namespace {

using TORVIXML::DataOperationMode;
using TORVIXML::GuiComponentSettings;
using TORVIXML::TorviGuiModeSettings;

TorviGuiModeSettings buildExample()
{
    TorviGuiModeSettings settings;
    settings.SetValidate(true);
    settings.SetOperationModeHandler(TorviGuiModeSettings::PMR830ManagementComponent);

    GuiComponentSettings overview;
    overview.SetValidate(true);
    overview.SetName(QStringLiteral("Overview"));
    overview.SetGuiComponentUsage(GuiComponentSettings::DEFAULT_DISPLAY);
    overview.SetDockWidgetLocation(GuiComponentSettings::LeftDockWidgetArea);

    GuiComponentSettings details;
    details.SetValidate(true);
    details.SetName(QStringLiteral("Details"));
    details.SetGuiComponentUsage(GuiComponentSettings::AVAILABLE);
    details.SetDockWidgetLocation(GuiComponentSettings::FloatingDockWidgetArea);

    DataOperationMode standard;
    standard.SetValidate(true);
    standard.SetName(QStringLiteral("Standard"));
    standard.AppendGuiComponentSettings(overview);
    standard.AppendGuiComponentSettings(details);
    settings.AppendDataOperationMode(standard);
    return settings;
}

// "NAME" ("display name"); a value without a name shows as such.
QString nameAndDisplay(const QString& name, const QStringList& displayNames, int value)
{
    if (name.isNull())
        return QStringLiteral("(value %1, no name)").arg(value);
    const QString display = value >= 0 && value < displayNames.size() ? displayNames[value] : name;
    return QStringLiteral("%1 (%2)").arg(quoted(name), quoted(display));
}

void printSummary(const TorviGuiModeSettings& settings)
{
    out() << "Operation-mode handler: "
          << nameAndDisplay(settings.GetOperationModeHandlerAsString(),
                            TorviGuiModeSettings::GetGUIOperationModeHandlers(), settings.GetOperationModeHandler())
          << '\n';
    const QVector<DataOperationMode>& modes = settings.GetDataOperationMode();
    out() << (modes.size() == 1 ? QStringLiteral("1 mode") : QStringLiteral("%1 modes").arg(modes.size()))
          << '\n';
    const QStringList usages = GuiComponentSettings::GetGUIGuiComponentUsages();
    const QStringList locations = GuiComponentSettings::GetGUIDockWidgetLocations();
    for (const DataOperationMode& mode : modes) {
        const QVector<GuiComponentSettings>& components = mode.GetGuiComponentSettings();
        out() << "  Mode " << quoted(mode.GetName()) << ", "
              << (components.size() == 1 ? QStringLiteral("1 component")
                                         : QStringLiteral("%1 components").arg(components.size()))
              << '\n';
        for (const GuiComponentSettings& component : components) {
            out() << "    Component " << quoted(component.GetName()) << ": usage "
                  << nameAndDisplay(component.GetGuiComponentUsageAsString(), usages,
                                    component.GetGuiComponentUsage())
                  << ", dock area "
                  << nameAndDisplay(component.GetDockWidgetLocationAsString(), locations,
                                    component.GetDockWidgetLocation())
                  << '\n';
        }
    }
}

} // namespace

int runDemo(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Builds the example settings (handler PMR830ManagementComponent, mode \"Standard\" with\n"
        "the components \"Overview\" and \"Details\") with validation on, writes them to\n"
        "DIR/settings.xml and DIR/settings.bin, reads both back and compares them with the\n"
        "original, and prints the XML and a summary."));
    parser.addPositionalArgument(QStringLiteral("DIR"),
                                 QStringLiteral("Output directory, created if missing (default: torvixml-demo)."),
                                 QStringLiteral("[DIR]"));
    const QCommandLineOption langOption(QStringLiteral("lang"),
                                        QStringLiteral("Show display names in language <LANG> (e.g. de)."),
                                        QStringLiteral("LANG"));
    parser.addOption(langOption);
    const int parsed = parseCommandLine(parser, QStringLiteral("demo"), arguments);
    if (parsed >= 0)
        return parsed;
    const QStringList positional = parser.positionalArguments();
    if (positional.size() > 1)
        return usageError(QStringLiteral("demo"), QStringLiteral("demo takes at most one directory"));
    selectLanguage(parser.value(langOption));

    const QString directory = positional.isEmpty() ? QStringLiteral("torvixml-demo") : positional.first();
    if (!QDir().mkpath(directory)) {
        reportFileError(directory, QStringLiteral("cannot create the directory"));
        return ExitUsageOrIo;
    }
    const QString xmlPath = QDir(directory).filePath(QStringLiteral("settings.xml"));
    const QString binPath = QDir(directory).filePath(QStringLiteral("settings.bin"));

    try {
        const TorviGuiModeSettings settings = buildExample();

        if (!settings.SaveXml(xmlPath)) {
            reportFileError(xmlPath, settings.GetErrorString());
            return ExitUsageOrIo;
        }
        const QByteArray binary = settings.GetBinaryRepresentationAsQByteArray();
        QString message;
        if (!writeOutput(binPath, binary, message)) {
            reportFileError(binPath, message);
            return ExitUsageOrIo;
        }

        TorviGuiModeSettings fromXml;
        fromXml.SetValidate(true);
        if (!fromXml.LoadXml(xmlPath)) {
            reportFileError(xmlPath, QStringLiteral("cannot be read back: %1").arg(fromXml.GetErrorString()));
            return ExitInvalidInput;
        }
        if (fromXml != settings) {
            reportFileError(xmlPath, QStringLiteral("reads back different from the settings written"));
            return ExitInvalidInput;
        }
        TorviGuiModeSettings fromBinary;
        fromBinary.SetValidate(true);
        QFile binFile(binPath);
        if (!fromBinary.LoadBinary(&binFile)) {
            reportFileError(binPath, QStringLiteral("cannot be read back: %1").arg(fromBinary.GetErrorString()));
            return ExitInvalidInput;
        }
        if (fromBinary != settings) {
            reportFileError(binPath, QStringLiteral("reads back different from the settings written"));
            return ExitInvalidInput;
        }

        out() << "Wrote " << xmlPath << " (" << QFile(xmlPath).size() << " bytes) and " << binPath << " ("
              << binary.size() << " bytes); both read back equal to the settings built.\n\n";
        QString xml = settings.GetXmlString();
        if (!xml.endsWith(QLatin1Char('\n')))
            xml += QLatin1Char('\n');
        out() << xml << '\n';
        printSummary(settings);
        out().flush();
        return ExitSuccess;
    } catch (const ReportException& e) {
        reportFileError(directory, e.GetMessageText());
        return ExitInvalidInput;
    }
}

} // namespace TorviTool
