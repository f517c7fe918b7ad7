// An application written from the README: builds the README's settings
// through the installed headers and libraries, prints its XML, shows the
// German display names from the installed catalogue and a refused value.
// The test compares the output with expected.txt.
#include <TorviXML/TorviXML.h>
#include <TorviXML/TranslationCenter.h>

#include <QCoreApplication>

#include <cstdio>

using namespace TORVIXML;

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    TranslationCenter::Instance().SetLanguage(QStringLiteral("de"));

    TorviGuiModeSettings settings;
    settings.SetValidate(true);
    settings.SetOperationModeHandler(TorviGuiModeSettings::PMR830ManagementComponent);

    GuiComponentSettings overview;
    overview.SetName(QStringLiteral("Overview"));
    overview.SetGuiComponentUsage(GuiComponentSettings::DEFAULT_DISPLAY);
    overview.SetDockWidgetLocation(GuiComponentSettings::LeftDockWidgetArea);

    DataOperationMode standard;
    standard.SetName(QStringLiteral("Standard"));
    standard.AppendGuiComponentSettings(overview);
    settings.AppendDataOperationMode(standard);

    std::printf("%s", settings.GetXmlString().toUtf8().constData()); // ends with a line break
    TorviGuiModeSettings loaded;
    loaded.SetValidate(true);
    QByteArray bytes = settings.GetBinaryRepresentationAsQByteArray();
    std::printf("binary %d bytes, read back %s\n", int(bytes.size()),
                loaded.SetBinaryRepresentation(bytes) && loaded == settings ? "equal" : "different");

    std::printf("%s\n", GuiComponentSettings::GetGUIDockWidgetLocations()
                            .join(QStringLiteral("|")).toUtf8().constData());
    std::printf("%s\n", TorviGuiModeSettings::GetGUIOperationModeHandlers()
                            .join(QStringLiteral("|")).toUtf8().constData());
    overview.SetValidate(true);
    try {
        overview.SetDockWidgetLocation(GuiComponentSettings::DockWidgetLocation(7));
        std::printf("accepted\n");
    } catch (const RGException& e) {
        std::printf("refused: %s\n", e.GetMessageText().toUtf8().constData());
    }
    std::printf("version %s\n", TORVIXML_VERSION_STRING);
    return 0;
}
