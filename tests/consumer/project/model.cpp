// An application that shows a settings document (the test names the README's
// example) through the installed item model: the German column headers and
// display names, a value the library refuses with its message, and an
// accepted change. The test compares the output with expected-model.txt.
#include <TorviXML/SettingsModel.h>
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
    if (argc != 2 || !settings.LoadXml(QString::fromLocal8Bit(argv[1])))
        return 1;

    SettingsModel model;
    model.setSettings(settings);
    QObject::connect(&model, &SettingsModel::refused, [](const QString& message) {
        std::printf("refused: %s\n", message.toUtf8().constData());
    });
    // The headers, then each row's cells, components indented.
    const auto print = [&model](int row, const QModelIndex& parent, bool header) {
        QStringList cells;
        for (int column = 0; column < model.columnCount(parent); ++column)
            cells.append(header ? model.headerData(column, Qt::Horizontal).toString()
                                : model.index(row, column, parent).data().toString());
        std::printf("%s%s\n", parent.isValid() ? "  " : "", cells.join(QStringLiteral("|")).toUtf8().constData());
    };
    print(0, QModelIndex(), true);
    for (int row = 0; row < model.rowCount(); ++row) {
        print(row, QModelIndex(), false);
        for (int child = 0; child < model.rowCount(model.index(row, 0)); ++child)
            print(child, model.index(row, 0), false);
    }
    const QModelIndex dock = model.index(0, SettingsModel::DockAreaColumn, model.modeIndex(0));
    model.setData(dock, 7);
    model.setData(dock, int(GuiComponentSettings::RightDockWidgetArea));
    std::printf("%s\n", model.settings().GetDataOperationMode().at(0).GetGuiComponentSettings().at(0)
                            .GetDockWidgetLocationAsString().toUtf8().constData());
    return 0;
}
