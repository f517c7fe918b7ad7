// An application that shows the README's settings through the installed item
// model: the German column headers and display names, a value the library
// refuses with its message, and an accepted change.
#include <TorviXML/SettingsModel.h>
#include <TorviXML/TorviXML.h>
#include <TorviXML/TranslationCenter.h>

#include <QCoreApplication>

#include <cstdio>

using namespace TORVIXML;

namespace {

void printRow(const QAbstractItemModel& model, const QModelIndex& parent, int row, const char* indent)
{
    QStringList cells;
    for (int column = 0; column < model.columnCount(parent); ++column)
        cells.append(model.index(row, column, parent).data().toString());
    std::printf("%s%s\n", indent, cells.join(QStringLiteral("|")).toUtf8().constData());
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    TranslationCenter::Instance().SetLanguage(QStringLiteral("de"));

    TorviGuiModeSettings settings;
    settings.SetValidate(true);
    settings.SetXmlString(QStringLiteral(
        "<TorviGuiModeSettings><DataOperationMode Name=\"Standard\"><GuiComponentSettings Name=\"Overview\">"
        "<GuiComponentUsage>DEFAULT_DISPLAY</GuiComponentUsage><DockWidgetLocation>LeftDockWidgetArea"
        "</DockWidgetLocation></GuiComponentSettings></DataOperationMode><OperationModeHandler>"
        "PMR830ManagementComponent</OperationModeHandler></TorviGuiModeSettings>"), true);

    SettingsModel model;
    model.setSettings(settings);
    QObject::connect(&model, &SettingsModel::refused, [](const QString& message) {
        std::printf("refused: %s\n", message.toUtf8().constData());
    });
    QStringList headers;
    for (int column = 0; column < model.columnCount(); ++column)
        headers.append(model.headerData(column, Qt::Horizontal).toString());
    std::printf("%s\n", headers.join(QStringLiteral("|")).toUtf8().constData());
    for (int row = 0; row < model.rowCount(); ++row) {
        printRow(model, QModelIndex(), row, "");
        const QModelIndex parent = model.index(row, 0);
        for (int child = 0; child < model.rowCount(parent); ++child)
            printRow(model, parent, child, "  ");
    }
    const QModelIndex dock = model.index(0, SettingsModel::DockAreaColumn, model.modeIndex(0));
    model.setData(dock, 7);
    model.setData(dock, int(GuiComponentSettings::RightDockWidgetArea));
    std::printf("%s\n", model.settings().GetDataOperationMode().at(0).GetGuiComponentSettings().at(0)
                            .GetDockWidgetLocationAsString().toUtf8().constData());
    return 0;
}
