// The item model over the settings tree: Qt's QAbstractItemModelTester
// watching every change; every cell in every role, and for each change its
// result and exactly the signals it emitted (refusals with the library's
// message), compared with files in tests/data/gui.

#include "SettingsModel.h"

#include <TorviXML/TorviXML.h>
#include <TorviXML/TranslationCenter.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

using namespace TORVIXML;

namespace {

QStringList dataLines(const QString& name)
{
    QFile file(QStringLiteral(TEST_DATA_DIR "/") + name);
    file.open(QIODevice::ReadOnly);
    return QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

// A cell as a person and an editor see it: display text ("-": none), "=value"
// if other, choices ("{...}" if shown before), [tool tip], "*" if editable.
QString cell(const QModelIndex& index, QStringList& choicesShown)
{
    QString text = index.data().isValid() ? index.data().toString() : QStringLiteral("-");
    if (index.data(Qt::EditRole).toString() != index.data().toString())
        text += QLatin1Char('=') + index.data(Qt::EditRole).toString();
    const QString choices = index.data(SettingsModel::ChoicesRole).toStringList().join(QLatin1Char(','));
    if (!choices.isEmpty())
        text += choicesShown.contains(choices) ? QStringLiteral(" {...}") : QStringLiteral(" {%1}").arg(choices);
    choicesShown.append(choices);
    if (index.data(Qt::ToolTipRole).isValid())
        text += QStringLiteral(" [%1]").arg(index.data(Qt::ToolTipRole).toString());
    return text + (index.flags() & Qt::ItemIsEditable ? QStringLiteral(" *") : QString());
}

// A line per row with its kind and cells, components indented under their mode.
void dump(const SettingsModel& model, const QModelIndex& parent, QStringList& lines, QStringList& choicesShown)
{
    const char* const kinds[] = {"handler: ", "mode: ", "component: "};
    for (int row = 0; row < model.rowCount(parent); ++row) {
        QStringList cells;
        for (int column = 0; column < model.columnCount(parent); ++column)
            cells.append(cell(model.index(row, column, parent), choicesShown));
        const QModelIndex index = model.index(row, 0, parent);
        lines.append(QString(parent.isValid() ? 2 : 0, QLatin1Char(' '))
                     + QLatin1String(kinds[index.data(SettingsModel::RowKindRole).toInt()])
                     + cells.join(QStringLiteral(" | ")));
        dump(model, index, lines, choicesShown);
    }
}

// An index as "row,column" after its parent's ("2,0/1,2"), or "root".
QString path(const QModelIndex& index)
{
    if (!index.isValid())
        return QStringLiteral("root");
    return (index.parent().isValid() ? path(index.parent()) + QLatin1Char('/') : QString())
           + QStringLiteral("%1,%2").arg(index.row()).arg(index.column());
}
} // namespace

class SettingsModelTest : public QObject
{
    Q_OBJECT

private:
    SettingsModel* m_model = nullptr;
    std::unique_ptr<QSignalSpy> m_spies[4];

    QModelIndex component(int mode, int row, int column) const
    {
        return m_model->index(row, column, m_model->modeIndex(mode));
    }

    // The result of a change and the signals emitted since the last call, as
    // "true changed(1,0/0,2 1,0/0,2 role0 role2)": indexes as paths, roles as "roleN".
    QString outcome(bool result)
    {
        const char* const names[] = {"changed", "inserted", "removed", "refused"};
        QString text = QLatin1String(result ? "true" : "false");
        for (int i = 0; i < 4; ++i) {
            for (const QList<QVariant>& arguments : *m_spies[i]) {
                QStringList texts;
                for (const QVariant& argument : arguments) {
                    if (argument.userType() == qMetaTypeId<QModelIndex>())
                        texts.append(path(argument.value<QModelIndex>()));
                    else if (argument.userType() == qMetaTypeId<QVector<int>>())
                        for (int role : argument.value<QVector<int>>())
                            texts.append(QStringLiteral("role%1").arg(role));
                    else
                        texts.append(argument.toString());
                }
                text += QStringLiteral(" %1(%2)").arg(QLatin1String(names[i]), texts.join(QLatin1Char(' ')));
            }
            m_spies[i]->clear();
        }
        return text;
    }

private Q_SLOTS:
    void init()
    {
        TranslationCenter::Instance().SetLanguage(QStringLiteral("en"));
        m_model = new SettingsModel;
        // Fatal: an inconsistency aborts the test program. It goes with the model.
        new QAbstractItemModelTester(m_model, QAbstractItemModelTester::FailureReportingMode::Fatal, m_model);
        TorviGuiModeSettings settings;
        settings.SetValidate(true);
        QVERIFY(settings.LoadXml(QStringLiteral(TEST_DATA_DIR "/workshop.xml")));
        m_model->setSettings(settings);
        m_spies[0].reset(new QSignalSpy(m_model, &QAbstractItemModel::dataChanged));
        m_spies[1].reset(new QSignalSpy(m_model, &QAbstractItemModel::rowsInserted));
        m_spies[2].reset(new QSignalSpy(m_model, &QAbstractItemModel::rowsRemoved));
        m_spies[3].reset(new QSignalSpy(m_model, &SettingsModel::refused));
    }

    void cleanup() { delete m_model; }

    void everyCellInEveryRole()
    {
        for (const char* language : {"en", "de"}) {
            TranslationCenter::Instance().SetLanguage(QLatin1String(language));
            QStringList lines, choicesShown;
            for (int column = 0; column < m_model->columnCount(); ++column)
                lines.append(m_model->headerData(column, Qt::Horizontal).toString());
            dump(*m_model, QModelIndex(), lines, choicesShown);
            QCOMPARE(lines, dataLines(QStringLiteral("workshop-model-%1.txt").arg(QLatin1String(language))));
        }
        // Modes are numbered from 0 below the handler row; children hang in column 0 only.
        QCOMPARE(m_model->modeNumber(component(1, 2, SettingsModel::DockAreaColumn)), 1);
        QCOMPARE(m_model->rowCount(m_model->index(2, SettingsModel::UsageColumn)), 0);
    }

    void changesSignalExactlyTheChangedCell()
    {
        const QModelIndex dock = component(0, 0, SettingsModel::DockAreaColumn);
        QStringList outcomes = {
            outcome(m_model->setData(dock, int(GuiComponentSettings::RightDockWidgetArea))),
            outcome(m_model->setData(dock, int(GuiComponentSettings::RightDockWidgetArea))), // unchanged
            outcome(m_model->setData(m_model->index(0, 0), int(TorviGuiModeSettings::VbkManagementComponent))),
            outcome(m_model->setData(m_model->modeIndex(1), QStringLiteral("Repair"))),
            // Only the edit role writes, an enumeration takes numbers only,
            // a mode row has nothing in the other columns.
            outcome(m_model->setData(dock, 0, Qt::DisplayRole)),
            outcome(m_model->setData(dock, QStringLiteral("LeftDockWidgetArea"))),
            outcome(m_model->setData(m_model->index(2, SettingsModel::UsageColumn), 1)),
        };
        QCOMPARE(m_model->settings().GetXmlString().split(QLatin1Char('\n'), Qt::SkipEmptyParts),
                 dataLines(QStringLiteral("workshop-changed.xml")));

        // Without validation everything is stored: a value without display
        // name, appended default modes and components. The appended component
        // holds the default AVAILABLE unset; choosing AVAILABLE sets it.
        m_model->setValidate(false);
        outcomes += {
            outcome(m_model->setData(dock, 7)),
            dock.data().toString() + QLatin1Char('=') + dock.data(Qt::EditRole).toString(),
            outcome(m_model->insertRows(3, 2)),
            outcome(m_model->insertRows(0, 1, m_model->modeIndex(2))),
            component(2, 0, SettingsModel::UsageColumn).data(Qt::EditRole).toString(),
            outcome(m_model->setData(component(2, 0, SettingsModel::UsageColumn), GuiComponentSettings::AVAILABLE)),
        };
        QVERIFY(std::as_const(m_model->settings()).GetDataOperationMode().at(2).GetGuiComponentSettings().at(0)
                    .IsGuiComponentUsageSet());
        // Switched on again, the elements just appended refuse too.
        m_model->setValidate(true);
        outcomes.append(outcome(m_model->setData(m_model->modeIndex(3), QVariant())));
        QCOMPARE(outcomes, dataLines(QStringLiteral("model-changes.txt")));
    }

    void validationRefusesWhatTheLibraryRefuses()
    {
        const TorviGuiModeSettings before(m_model->settings());
        const QStringList outcomes = {
            outcome(m_model->setData(component(0, 3, SettingsModel::DockAreaColumn), 7)),
            outcome(m_model->setData(component(0, 3, SettingsModel::UsageColumn), 2)),
            outcome(m_model->setData(m_model->index(0, 0), 4)),
            outcome(m_model->setData(component(0, 3, SettingsModel::NameColumn), QVariant())),
            outcome(m_model->setData(m_model->modeIndex(1), QVariant())),
            outcome(m_model->insertRows(m_model->rowCount(), 1)),
            outcome(m_model->insertRows(3, 2, m_model->modeIndex(1))),
            outcome(m_model->appendComponent(m_model->modeIndex(0), GuiComponentSettings())),
            QString::number(m_model->settings() == before),
            // An empty name is a name.
            outcome(m_model->setData(component(0, 3, SettingsModel::NameColumn), QString(QLatin1String("")))),
        };
        QCOMPARE(outcomes, dataLines(QStringLiteral("model-refusals.txt")));
    }

    void appendingAndRemovingRows()
    {
        DataOperationMode expert;
        expert.SetName(QStringLiteral("Expert"));
        GuiComponentSettings console;
        console.ResetToDefault();
        console.SetName(QStringLiteral("Console"));
        const QPersistentModelIndex terminal = component(1, 2, SettingsModel::NameColumn);
        QStringList outcomes = {
            // Rows are appended only.
            outcome(m_model->insertRows(1, 1)),
            outcome(m_model->insertRows(0, 1, m_model->modeIndex(0))),
            outcome(m_model->appendMode(expert)),
            outcome(m_model->setData(m_model->modeIndex(2), QVariant())), // validated like the rest
            outcome(m_model->appendComponent(m_model->modeIndex(2), console)),
        };
        // The handler row stays; a component of a later mode keeps its index
        // when a mode before it goes.
        const QPersistentModelIndex consoleIndex = component(2, 0, SettingsModel::NameColumn);
        outcomes += {
            outcome(m_model->removeRows(0, 1)),
            outcome(m_model->removeRows(1, 1)),
            path(terminal) + QLatin1Char(' ') + path(consoleIndex) + QLatin1Char(' ') + consoleIndex.data().toString(),
            outcome(m_model->removeRows(0, 2, m_model->modeIndex(0))),
            outcome(m_model->removeRows(1, 1, m_model->modeIndex(0))),
            path(terminal) + QLatin1Char(' ') + terminal.data().toString(),
        };
        QCOMPARE(outcomes, dataLines(QStringLiteral("model-rows.txt")));
    }
};

QTEST_GUILESS_MAIN(SettingsModelTest)
#include "settings_model_test.moc"
