// The item model over the settings tree: Qt's QAbstractItemModelTester
// watching every change, the rows, columns and roles, exact change signals,
// and refusals that match the library's, message for message.

#include "SettingsModel.h"
#include "TestSupport.h"

#include <TorviXML/TorviXML.h>
#include <TorviXML/TranslationCenter.h>

#include <QAbstractItemModelTester>
#include <QFile>
#include <QSignalSpy>
#include <QtTest>

using namespace TORVIXML;
using TestSupport::kHandlerInvalid;
using TestSupport::kLocationInvalid;
using TestSupport::kUsageInvalid;

namespace {

TorviGuiModeSettings workshop()
{
    QFile file(QStringLiteral(TEST_DATA_DIR "/workshop.xml"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("workshop.xml is missing");
    TorviGuiModeSettings settings;
    settings.SetValidate(true);
    if (!settings.SetXmlString(QString::fromUtf8(file.readAll()), true))
        qFatal("workshop.xml does not read");
    return settings;
}

const QString kAppendModeRefused = QStringLiteral(
    "TorviGuiModeSettings: Tried to append not completely defined or invalid item DataOperationMode.");
const QString kAppendComponentRefused = QStringLiteral(
    "DataOperationMode: Tried to append not completely defined or invalid item GuiComponentSettings.");
} // namespace

class SettingsModelTest : public QObject
{
    Q_OBJECT

private:
    SettingsModel* m_model = nullptr;
    QAbstractItemModelTester* m_tester = nullptr;

    QModelIndex component(int mode, int row, int column) const
    {
        return m_model->index(row, column, m_model->modeIndex(mode));
    }

private Q_SLOTS:
    void init()
    {
        TranslationCenter::Instance().SetLanguage(QStringLiteral("en"));
        m_model = new SettingsModel;
        // Fatal: any inconsistency the tester finds while a test changes
        // the model aborts the test program.
        m_tester = new QAbstractItemModelTester(m_model, QAbstractItemModelTester::FailureReportingMode::Fatal);
        m_model->setSettings(workshop());
    }

    void cleanup()
    {
        delete m_tester;
        delete m_model;
    }

    void rowsColumnsAndRoles()
    {
        QCOMPARE(m_model->rowCount(), 3);
        QCOMPARE(m_model->columnCount(), 3);
        const QModelIndex handler = m_model->index(0, SettingsModel::NameColumn);
        QCOMPARE(handler.data().toString(), QStringLiteral("QLSManagementComponent"));
        QCOMPARE(handler.data(Qt::EditRole).toInt(), 2);
        QCOMPARE(handler.data(SettingsModel::ChoicesRole).toStringList(),
                 TorviGuiModeSettings::GetOperationModeHandlers());
        QCOMPARE(handler.data(SettingsModel::RowKindRole).toInt(), int(SettingsModel::HandlerRow));
        QCOMPARE(m_model->rowCount(handler), 0);
        QVERIFY(!m_model->index(0, SettingsModel::UsageColumn).data().isValid());
        QVERIFY(!(m_model->flags(m_model->index(0, SettingsModel::DockAreaColumn)) & Qt::ItemIsEditable));

        const QModelIndex service = m_model->modeIndex(1);
        QCOMPARE(service.row(), 2);
        QCOMPARE(service.data().toString(), QStringLiteral("Service"));
        QCOMPARE(service.data(SettingsModel::RowKindRole).toInt(), int(SettingsModel::ModeRow));
        QCOMPARE(m_model->rowCount(service), 3);
        QCOMPARE(m_model->rowCount(m_model->index(2, SettingsModel::UsageColumn)), 0);
        QVERIFY(!m_model->index(2, SettingsModel::UsageColumn).data().isValid());
        QVERIFY(!(m_model->flags(m_model->index(2, SettingsModel::UsageColumn)) & Qt::ItemIsEditable));

        const QModelIndex terminal = component(1, 2, SettingsModel::NameColumn);
        QCOMPARE(terminal.data().toString(), QStringLiteral("Terminal"));
        QCOMPARE(terminal.parent(), service);
        QCOMPARE(m_model->modeNumber(terminal), 1);
        QCOMPARE(component(1, 2, SettingsModel::UsageColumn).data().toString(), QStringLiteral("DEFAULT_DISPLAY"));
        QCOMPARE(component(1, 2, SettingsModel::UsageColumn).data(Qt::EditRole).toInt(), 1);
        // The floating area's name keeps its blank; the chooser lists all
        // seven areas, NoDockWidgetArea included.
        QCOMPARE(component(1, 2, SettingsModel::DockAreaColumn).data().toString(),
                 QStringLiteral("FloatingDockWidgetArea "));
        QCOMPARE(component(1, 2, SettingsModel::DockAreaColumn).data(SettingsModel::ChoicesRole).toStringList(),
                 GuiComponentSettings::GetDockWidgetLocations());
        QVERIFY(!terminal.data(SettingsModel::ChoicesRole).isValid());
        QCOMPARE(m_model->headerData(SettingsModel::DockAreaColumn, Qt::Horizontal).toString(),
                 QStringLiteral("Dock area"));
    }

    void germanDisplayNamesAndHeaders()
    {
        // The catalogues are found beside the libraries in the build tree.
        TranslationCenter::Instance().SetLanguage(QStringLiteral("de"));
        QCOMPARE(component(0, 0, SettingsModel::DockAreaColumn).data().toString(),
                 QStringLiteral("Linker Andockbereich"));
        QCOMPARE(component(0, 0, SettingsModel::UsageColumn).data().toString(), QStringLiteral("Standardanzeige"));
        QCOMPARE(m_model->index(0, 0).data().toString(), QStringLiteral("QLS-Verwaltungskomponente"));
        QCOMPARE(m_model->headerData(SettingsModel::DockAreaColumn, Qt::Horizontal).toString(),
                 QStringLiteral("Andockbereich"));
        QCOMPARE(m_model->headerData(SettingsModel::UsageColumn, Qt::Horizontal).toString(),
                 QStringLiteral("Verwendung"));
        // The values stay the values.
        QCOMPARE(component(0, 0, SettingsModel::DockAreaColumn).data(Qt::EditRole).toInt(), 0);
    }

    void changesSignalExactlyTheChangedCell()
    {
        QSignalSpy changed(m_model, &QAbstractItemModel::dataChanged);
        QSignalSpy refused(m_model, &SettingsModel::refused);
        const QModelIndex dock = component(1, 1, SettingsModel::DockAreaColumn);
        QVERIFY(m_model->setData(dock, int(GuiComponentSettings::RightDockWidgetArea)));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.at(0).at(0).value<QModelIndex>(), dock);
        QCOMPARE(changed.at(0).at(1).value<QModelIndex>(), dock);
        QCOMPARE(m_model->settings().GetDataOperationMode().at(1).GetGuiComponentSettings().at(1)
                     .GetDockWidgetLocationAsString(),
                 QStringLiteral("RightDockWidgetArea"));

        // The same value again changes nothing and says so by silence.
        QVERIFY(m_model->setData(dock, int(GuiComponentSettings::RightDockWidgetArea)));
        QCOMPARE(changed.count(), 1);

        const QModelIndex handler = m_model->index(0, 0);
        QVERIFY(m_model->setData(handler, int(TorviGuiModeSettings::VbkManagementComponent)));
        QCOMPARE(changed.count(), 2);
        QCOMPARE(changed.at(1).at(0).value<QModelIndex>(), handler);
        QCOMPARE(changed.at(1).at(1).value<QModelIndex>(), handler);
        QCOMPARE(m_model->settings().GetOperationModeHandlerAsString(), QStringLiteral("VbkManagementComponent"));

        const QModelIndex modeName = m_model->modeIndex(0);
        QVERIFY(m_model->setData(modeName, QStringLiteral("Everyday")));
        QCOMPARE(changed.count(), 3);
        QCOMPARE(changed.at(2).at(0).value<QModelIndex>(), modeName);
        QCOMPARE(modeName.data().toString(), QStringLiteral("Everyday"));

        // Only the edit role writes, and an enumeration takes numbers only.
        QVERIFY(!m_model->setData(dock, 0, Qt::DisplayRole));
        QVERIFY(!m_model->setData(dock, QStringLiteral("LeftDockWidgetArea")));
        QVERIFY(!m_model->setData(m_model->index(2, SettingsModel::UsageColumn), 1));
        QCOMPARE(changed.count(), 3);
        QCOMPARE(refused.count(), 0);
    }

    void settingAnUnsetMemberToItsValueSignalsTheSetFlag()
    {
        // Read without validation, a component without usage element holds
        // the default AVAILABLE unset; choosing AVAILABLE sets it.
        TorviGuiModeSettings settings;
        QVERIFY(settings.SetXmlString(
            QStringLiteral("<TorviGuiModeSettings><DataOperationMode Name=\"M\"><GuiComponentSettings Name=\"C\">"
                           "<DockWidgetLocation>TopDockWidgetArea</DockWidgetLocation></GuiComponentSettings>"
                           "</DataOperationMode></TorviGuiModeSettings>"),
            true));
        m_model->setSettings(settings);
        QSignalSpy changed(m_model, &QAbstractItemModel::dataChanged);
        const QModelIndex usage = component(0, 0, SettingsModel::UsageColumn);
        QCOMPARE(usage.data(Qt::EditRole).toInt(), int(GuiComponentSettings::AVAILABLE));
        QVERIFY(m_model->setData(usage, int(GuiComponentSettings::AVAILABLE)));
        QCOMPARE(changed.count(), 1);
        QVERIFY(m_model->settings().GetDataOperationMode().at(0).GetGuiComponentSettings().at(0)
                    .IsGuiComponentUsageSet());
    }

    void validationRefusesWhatTheLibraryRefuses()
    {
        const TorviGuiModeSettings before(m_model->settings());
        QSignalSpy changed(m_model, &QAbstractItemModel::dataChanged);
        QSignalSpy inserted(m_model, &QAbstractItemModel::rowsInserted);
        QSignalSpy refused(m_model, &SettingsModel::refused);

        QVERIFY(!m_model->setData(component(0, 3, SettingsModel::DockAreaColumn), 7));
        QVERIFY(!m_model->setData(component(0, 3, SettingsModel::DockAreaColumn), -1));
        QVERIFY(!m_model->setData(component(0, 3, SettingsModel::UsageColumn), 2));
        QVERIFY(!m_model->setData(m_model->index(0, 0), 4));
        QVERIFY(!m_model->setData(component(0, 3, SettingsModel::NameColumn), QVariant()));
        QVERIFY(!m_model->setData(m_model->modeIndex(1), QVariant()));
        QVERIFY(!m_model->insertRows(m_model->rowCount(), 1));
        QVERIFY(!m_model->insertRows(3, 2, m_model->modeIndex(1)));
        GuiComponentSettings unnamed;
        unnamed.ResetToDefault();
        QVERIFY(!m_model->appendComponent(m_model->modeIndex(0), unnamed));

        const QStringList messages = {kLocationInvalid,
                                      kLocationInvalid,
                                      kUsageInvalid,
                                      kHandlerInvalid,
                                      QStringLiteral("GuiComponentSettings: Please set Name properly."),
                                      QStringLiteral("DataOperationMode: Please set Name properly."),
                                      kAppendModeRefused,
                                      kAppendComponentRefused,
                                      kAppendComponentRefused};
        QCOMPARE(refused.count(), messages.size());
        for (int i = 0; i < messages.size(); ++i)
            QCOMPARE(refused.at(i).at(0).toString(), messages.at(i));
        QCOMPARE(changed.count(), 0);
        QCOMPARE(inserted.count(), 0);
        QVERIFY(m_model->settings() == before);
        QCOMPARE(m_model->rowCount(), 3);
        QCOMPARE(m_model->rowCount(m_model->modeIndex(1)), 3);

        // An empty name is a name.
        QVERIFY(m_model->setData(component(0, 3, SettingsModel::NameColumn), QString(QLatin1String(""))));
        QCOMPARE(refused.count(), messages.size());
    }

    void withoutValidationEverythingIsStored()
    {
        m_model->setValidate(false);
        QSignalSpy changed(m_model, &QAbstractItemModel::dataChanged);
        QSignalSpy inserted(m_model, &QAbstractItemModel::rowsInserted);
        QSignalSpy refused(m_model, &SettingsModel::refused);
        const QModelIndex dock = component(0, 0, SettingsModel::DockAreaColumn);
        QVERIFY(m_model->setData(dock, 7));
        QCOMPARE(dock.data(Qt::EditRole).toInt(), 7);
        QCOMPARE(dock.data().toString(), QString());
        QVERIFY(m_model->insertRows(3, 2));
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(inserted.at(0).at(0).value<QModelIndex>(), QModelIndex());
        QCOMPARE(inserted.at(0).at(1).toInt(), 3);
        QCOMPARE(inserted.at(0).at(2).toInt(), 4);
        QCOMPARE(m_model->settings().GetDataOperationMode().size(), 4);
        QVERIFY(m_model->modeIndex(3).data().toString().isNull());
        QCOMPARE(changed.count(), 1);
        QCOMPARE(refused.count(), 0);

        // Switched on again, the elements just appended refuse too: the
        // flag reaches them.
        m_model->setValidate(true);
        QVERIFY(!m_model->setData(m_model->modeIndex(3), QVariant()));
        QCOMPARE(refused.count(), 1);
        QCOMPARE(refused.at(0).at(0).toString(), QStringLiteral("DataOperationMode: Please set Name properly."));
    }

    void appendingAndRemovingRows()
    {
        QSignalSpy inserted(m_model, &QAbstractItemModel::rowsInserted);
        QSignalSpy removed(m_model, &QAbstractItemModel::rowsRemoved);

        // Rows are appended only.
        QVERIFY(!m_model->insertRows(1, 1));
        QVERIFY(!m_model->insertRows(0, 1, m_model->modeIndex(0)));

        DataOperationMode expert;
        expert.SetName(QStringLiteral("Expert"));
        QVERIFY(m_model->appendMode(expert));
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(inserted.at(0).at(1).toInt(), 3);
        QCOMPARE(inserted.at(0).at(2).toInt(), 3);
        GuiComponentSettings console;
        console.ResetToDefault();
        console.SetName(QStringLiteral("Console"));
        QVERIFY(m_model->appendComponent(m_model->modeIndex(2), console));
        QCOMPARE(inserted.count(), 2);
        QCOMPARE(inserted.at(1).at(0).value<QModelIndex>(), m_model->modeIndex(2));
        QCOMPARE(inserted.at(1).at(1).toInt(), 0);
        QCOMPARE(component(2, 0, SettingsModel::DockAreaColumn).data().toString(),
                 QStringLiteral("NoDockWidgetArea"));

        // A component of a later mode keeps its index when a mode before it
        // goes.
        const QPersistentModelIndex terminal = component(1, 2, SettingsModel::NameColumn);
        const QPersistentModelIndex consoleIndex = component(2, 0, SettingsModel::NameColumn);
        QVERIFY(!m_model->removeRows(0, 1)); // the handler row stays
        QVERIFY(m_model->removeRows(1, 1));
        QCOMPARE(removed.count(), 1);
        QCOMPARE(removed.at(0).at(0).value<QModelIndex>(), QModelIndex());
        QCOMPARE(removed.at(0).at(1).toInt(), 1);
        QCOMPARE(removed.at(0).at(2).toInt(), 1);
        QCOMPARE(terminal.data().toString(), QStringLiteral("Terminal"));
        QCOMPARE(terminal.parent(), m_model->modeIndex(0));
        QCOMPARE(consoleIndex.data().toString(), QStringLiteral("Console"));
        QCOMPARE(consoleIndex.parent().data().toString(), QStringLiteral("Expert"));

        QVERIFY(m_model->removeRows(0, 2, m_model->modeIndex(0)));
        QCOMPARE(removed.count(), 2);
        QCOMPARE(removed.at(1).at(0).value<QModelIndex>(), m_model->modeIndex(0));
        QCOMPARE(removed.at(1).at(2).toInt(), 1);
        QCOMPARE(terminal.row(), 0);
        QVERIFY(!m_model->removeRows(1, 1, m_model->modeIndex(0)));

        const QStringList expected = {QStringLiteral("Service"), QStringLiteral("Expert")};
        QStringList names;
        for (const DataOperationMode& mode : m_model->settings().GetDataOperationMode())
            names.append(mode.GetName());
        QCOMPARE(names, expected);
        QCOMPARE(m_model->settings().GetDataOperationMode().at(0).GetGuiComponentSettings().size(), 1);
    }
};

QTEST_GUILESS_MAIN(SettingsModelTest)
#include "settings_model_test.moc"
