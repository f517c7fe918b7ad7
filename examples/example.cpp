// Builds the settings of one mode with two components, prints them as XML
// and shows what validation mode refuses.
#include <TorviXML/TorviXML.h>

#include <QTextStream>

using namespace TORVIXML;

int main()
{
    QTextStream out(stdout);

    TorviGuiModeSettings settings;
    settings.SetValidate(true);
    settings.SetOperationModeHandler(TorviGuiModeSettings::PMR830ManagementComponent);

    GuiComponentSettings overview;
    overview.SetName(QStringLiteral("Overview"));
    overview.SetGuiComponentUsage(GuiComponentSettings::DEFAULT_DISPLAY);
    overview.SetDockWidgetLocation(GuiComponentSettings::LeftDockWidgetArea);

    GuiComponentSettings details;
    details.SetName(QStringLiteral("Details"));
    details.SetGuiComponentUsage(GuiComponentSettings::AVAILABLE);
    details.SetDockWidgetLocation(GuiComponentSettings::FloatingDockWidgetArea);

    DataOperationMode standard;
    standard.SetName(QStringLiteral("Standard"));
    standard.AppendGuiComponentSettings(overview);
    standard.AppendGuiComponentSettings(details);
    settings.AppendDataOperationMode(standard);

    for (const GuiComponentSettings& component : standard.GetGuiComponentSettings()) {
        out << component.GetName() << ": " << component.GetGuiComponentUsageAsString() << ", \""
            << component.GetDockWidgetLocationAsString() << "\"\n";
    }
    out << settings.GetXmlString() << "\n";

    try {
        GuiComponentSettings unnamed;
        unnamed.SetValidate(true);
        unnamed.SetName(QString());
    } catch (const RGException& e) {
        out << "refused: " << e.GetMessageText() << "\n";
    }
    return 0;
}
