// torvixml names [--lang LANG]: the values of the three enumerations with
// their stored names and their display names in the current language.

#include "Commands.h"
#include "ToolSupport.h"

#include <TorviXML/TorviXML.h>
#include <TorviXML/TranslationCenter.h>

#include <QCommandLineParser>
#include <QTextStream>

namespace TorviTool {

namespace {

void printEnumeration(const QString& title, const QStringList& names, const QStringList& displayNames)
{
    int width = 0;
    for (const QString& name : names)
        width = qMax(width, quoted(name).size());
    out() << title << '\n';
    for (int value = 0; value < names.size(); ++value) {
        const QString display = value < displayNames.size() ? quoted(displayNames[value]) : QStringLiteral("-");
        out() << QStringLiteral("  %1  %2  %3").arg(value, 2).arg(quoted(names[value]), -width).arg(display)
              << '\n';
    }
}

} // namespace

void selectLanguage(const QString& language)
{
    if (language.isEmpty())
        return;
    TranslationCenter& center = TranslationCenter::Instance();
    center.SetLanguage(language);
    // English is the language of the names themselves; it needs no catalogue.
    if (center.Translator(QStringLiteral("TorviXML")) == nullptr && !language.startsWith(QLatin1String("en"))
        && language != QLatin1String("C")) {
        out().flush();
        err() << "torvixml: no TorviXML catalogue for language \"" << language << "\" in "
              << center.SearchDirectories().join(QStringLiteral(", ")) << "; display names stay untranslated\n";
        err().flush();
    }
}

int runNames(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Lists the values of the enumerations OperationModeHandler, GuiComponentUsage and\n"
        "DockWidgetLocation: value, name as stored in XML and binary documents (quoted, so\n"
        "that blanks show) and display name in the current language (quoted)."));
    const QCommandLineOption langOption(QStringLiteral("lang"),
                                        QStringLiteral("Show display names in language <LANG> (e.g. de)."),
                                        QStringLiteral("LANG"));
    parser.addOption(langOption);
    const int parsed = parseCommandLine(parser, QStringLiteral("names"), arguments);
    if (parsed >= 0)
        return parsed;
    if (!parser.positionalArguments().isEmpty())
        return usageError(QStringLiteral("names"), QStringLiteral("names takes no arguments"));
    selectLanguage(parser.value(langOption));

    using TORVIXML::GuiComponentSettings;
    using TORVIXML::TorviGuiModeSettings;
    printEnumeration(QStringLiteral("OperationModeHandler (TorviGuiModeSettings)"),
                     TorviGuiModeSettings::GetOperationModeHandlers(),
                     TorviGuiModeSettings::GetGUIOperationModeHandlers());
    out() << '\n';
    printEnumeration(QStringLiteral("GuiComponentUsage (GuiComponentSettings)"),
                     GuiComponentSettings::GetGuiComponentUsages(), GuiComponentSettings::GetGUIGuiComponentUsages());
    out() << '\n';
    printEnumeration(QStringLiteral("DockWidgetLocation (GuiComponentSettings)"),
                     GuiComponentSettings::GetDockWidgetLocations(), GuiComponentSettings::GetGUIDockWidgetLocations());
    out().flush();
    return ExitSuccess;
}

} // namespace TorviTool
