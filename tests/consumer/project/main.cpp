// Builds one GuiComponentSettings through the installed headers and library
// and prints what it holds; the test compares the output exactly.
#include <TorviXML/TorviXML.h>

#include <cstdio>

using TORVIXML::GuiComponentSettings;

int main()
{
    GuiComponentSettings component;
    component.SetValidate(true);
    component.SetName(QStringLiteral("Navigator"));
    component.SetGuiComponentUsage(GuiComponentSettings::DEFAULT_DISPLAY);
    component.SetDockWidgetLocation(GuiComponentSettings::FloatingDockWidgetArea);
    component.Check();

    std::printf("%s %lld\n", component.GetObjectName().toUtf8().constData(),
                static_cast<long long>(GuiComponentSettings::GetId()));
    std::printf("%s|%s|%s|%s\n", component.GetName().toUtf8().constData(),
                component.GetGuiComponentUsageAsString().toUtf8().constData(),
                component.GetDockWidgetLocationAsString().toUtf8().constData(),
                component.HasData() ? "complete" : "incomplete");
    try {
        component.SetDockWidgetLocation(GuiComponentSettings::DockWidgetLocation(7));
        std::printf("accepted\n");
    } catch (const RGException& e) {
        std::printf("refused: %s\n", e.GetMessageText().toUtf8().constData());
    }
    return component.GetDockWidgetLocation() == GuiComponentSettings::FloatingDockWidgetArea ? 0 : 1;
}
