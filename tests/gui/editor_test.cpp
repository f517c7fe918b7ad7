// torvixml-editor driven from the keyboard as a person drives it: open a
// document, move to a dock area, choose another area in the chooser, save
// with Ctrl+S, and compare the saved bytes; a refusal of the library shown
// and the file left alone; the question before changes are discarded; and
// the screenshots in English and German that the README shows.

#include "EditorWindow.h"
#include "SettingsModel.h"

#include <TorviXML/TorviXML.h>
#include <TorviXML/TranslationCenter.h>

#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeView>
#include <QtTest>

using TORVIXML::SettingsModel;
using TORVIXML::Editor::EditorWindow;

namespace {

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString testData(const char* name)
{
    return QStringLiteral(TEST_DATA_DIR "/") + QLatin1String(name);
}

// A copy of a test document in dir, to be edited and saved.
QString copyInto(const QTemporaryDir& dir, const char* name)
{
    const QString copy = dir.filePath(QLatin1String(name));
    QFile::remove(copy);
    QFile::copy(testData(name), copy);
    QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
    return copy;
}

void press(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTest::keyClick(widget, key, modifiers);
}

} // namespace

class EditorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        EditorWindow::registerTranslations();
        TranslationCenter::Instance().SetLanguage(QStringLiteral("en"));
    }

    void changeDockAreaThroughChooserAndSave_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<bool>("compressed");
        QTest::newRow("XML") << "workshop.xml" << "workshop-overview-right.xml" << false;
        QTest::newRow("binary") << "workshop.bin" << "workshop-overview-right.bin" << false;
        QTest::newRow("compressed binary") << "workshop-compressed.bin" << "workshop-overview-right.bin" << true;
    }

    void changeDockAreaThroughChooserAndSave()
    {
        QFETCH(QString, input);
        QFETCH(QString, expected);
        QFETCH(bool, compressed);
        QTemporaryDir dir;
        const QString path = copyInto(dir, input.toLatin1().constData());

        EditorWindow window;
        QVERIFY(window.openFile(path));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(!window.isWindowModified());
        QTreeView* view = window.treeView();
        QCOMPARE(view->currentIndex().data().toString(), QStringLiteral("Standard"));

        // Down to the first component, right to its dock area, F2 opens the
        // chooser, Down picks the next area, Return writes it.
        view->setFocus();
        press(view, Qt::Key_Down);
        QCOMPARE(view->currentIndex().data().toString(), QStringLiteral("Overview"));
        press(view, Qt::Key_Right);
        press(view, Qt::Key_Right);
        QCOMPARE(view->currentIndex().column(), int(SettingsModel::DockAreaColumn));
        QCOMPARE(view->currentIndex().data().toString(), QStringLiteral("LeftDockWidgetArea"));
        press(view, Qt::Key_F2);
        auto* chooser = qobject_cast<QComboBox*>(QApplication::focusWidget());
        QVERIFY(chooser);
        QCOMPARE(chooser->count(), 7);
        QCOMPARE(chooser->itemText(5), QStringLiteral("FloatingDockWidgetArea "));
        QCOMPARE(chooser->currentText(), QStringLiteral("LeftDockWidgetArea"));
        press(chooser, Qt::Key_Down);
        press(chooser, Qt::Key_Return);
        QTRY_COMPARE(view->currentIndex().data().toString(), QStringLiteral("RightDockWidgetArea"));
        QVERIFY(window.isWindowModified());

        press(view, Qt::Key_S, Qt::ControlModifier);
        QVERIFY(!window.isWindowModified());
        const QByteArray saved = readFile(path);
        if (compressed) {
            QVERIFY(saved != readFile(testData("workshop-overview-right.bin")));
            QCOMPARE(qUncompress(saved), readFile(testData(expected.toLatin1().constData())));
        } else {
            QCOMPARE(saved, readFile(testData(expected.toLatin1().constData())));
        }
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
    }

    void refusalIsShownAndTheFileLeftAlone()
    {
        // Read without a handler (a read makes no completeness check); the
        // save in validation mode is refused with the library's message.
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("nohandler.xml"));
        const QByteArray document =
            "<TorviGuiModeSettings><DataOperationMode Name=\"M\"/></TorviGuiModeSettings>";
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(document);
        file.close();

        EditorWindow window;
        QVERIFY(window.openFile(path));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        window.treeView()->setCurrentIndex(window.model()->modeIndex(0));
        window.treeView()->setFocus();
        press(window.treeView(), Qt::Key_F2);
        auto* nameEditor = QApplication::focusWidget();
        QVERIFY(nameEditor && nameEditor != window.treeView());
        press(nameEditor, Qt::Key_End);
        QTest::keyClicks(nameEditor, QStringLiteral("2"));
        press(nameEditor, Qt::Key_Return);
        // The delegate writes what was typed once control returns to the
        // event loop.
        QTRY_COMPARE(window.model()->modeIndex(0).data().toString(), QStringLiteral("M2"));
        press(window.treeView(), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(window.statusBar()->currentMessage(),
                 QStringLiteral("nohandler.xml was not saved: TorviGuiModeSettings: Please set OperationModeHandler "
                                "properly."));
        QVERIFY(window.isWindowModified());
        QCOMPARE(readFile(path), document);

        // A document that does not read leaves the one open as it was.
        QVERIFY(!window.openFile(testData("preview-readme-standard.png")));
        QCOMPARE(window.statusBar()->currentMessage(),
                 QStringLiteral("preview-readme-standard.png was not opened: This is not a settings document in "
                                "binary form."));
        QCOMPARE(window.model()->modeIndex(0).data().toString(), QStringLiteral("M2"));
        QVERIFY(window.isWindowModified());
        window.setWindowModified(false);
    }

    void asksBeforeDiscardingChanges()
    {
        QTemporaryDir dir;
        const QString path = copyInto(dir, "workshop.xml");
        EditorWindow window;
        QVERIFY(window.openFile(path));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(window.model()->removeRow(0, window.model()->modeIndex(1)));
        QVERIFY(window.isWindowModified());

        // Escape cancels: the window stays open.
        QString question;
        QTimer::singleShot(0, this, [&question] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            question = box ? box->text() : QStringLiteral("no question asked");
            if (box)
                press(box, Qt::Key_Escape);
        });
        QVERIFY(!window.close());
        QCOMPARE(question, QStringLiteral("The settings have been changed. Save the changes?"));
        QVERIFY(window.isVisible());

        // Discard closes without saving.
        QTimer::singleShot(0, this, [] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box) {
                box->button(QMessageBox::Discard)->setFocus();
                press(box->button(QMessageBox::Discard), Qt::Key_Space);
            }
        });
        QVERIFY(window.close());
        QCOMPARE(readFile(path), readFile(testData("workshop.xml")));
    }

    void screenshotsInEnglishAndGerman_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("dockHeader");
        QTest::addColumn<QString>("fileMenu");
        QTest::newRow("en") << "en" << "Dock area" << "&File";
        QTest::newRow("de") << "de" << "Andockbereich" << "&Datei";
    }

    void screenshotsInEnglishAndGerman()
    {
        QFETCH(QString, language);
        QFETCH(QString, dockHeader);
        QFETCH(QString, fileMenu);
        TranslationCenter::Instance().SetLanguage(language);
        QTemporaryDir dir;
        EditorWindow window;
        QVERIFY(window.openFile(copyInto(dir, "workshop.xml")));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(window.treeView()->model()->headerData(SettingsModel::DockAreaColumn, Qt::Horizontal).toString(),
                 dockHeader);
        QCOMPARE(window.menuBar()->actions().constFirst()->text(), fileMenu);
        QVERIFY(window.previewLabel()->text().isEmpty()); // the drawing, not the hint
        const QString screenshot = QStringLiteral(SCREENSHOT_DIR "/editor-%1.png").arg(language);
        QVERIFY(QDir().mkpath(QStringLiteral(SCREENSHOT_DIR)));
        QVERIFY(window.grab().save(screenshot));
        TranslationCenter::Instance().SetLanguage(QStringLiteral("en"));
    }
};

QTEST_MAIN(EditorTest)
#include "editor_test.moc"
