// torvixml-editor driven from the keyboard as a person drives it, the saved
// bytes compared; refusals and the question before changes are discarded;
// and the screenshots in English and German that the README shows.

#include "EditorWindow.h"
#include "SettingsModel.h"

#include <TorviXML/TranslationCenter.h>

#include <QtTest>
#include <QtWidgets>

using TORVIXML::SettingsModel;
using TORVIXML::Editor::EditorWindow;

namespace {

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A writable copy of a file of tests/data/gui in dir.
QString copyInto(const QTemporaryDir& dir, const QString& name)
{
    const QString copy = dir.filePath(name);
    QFile::copy(QStringLiteral(TEST_DATA_DIR "/") + name, copy);
    QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
    return copy;
}

bool openAndShow(EditorWindow& window, const QString& path)
{
    if (!window.openFile(path))
        return false;
    window.show();
    window.treeView()->setFocus();
    return QTest::qWaitForWindowExposed(&window);
}

// Presses key on a button (NoButton: the box) of the next question; keeps it.
void answerNextQuestion(QString& question, QMessageBox::StandardButton button, Qt::Key key)
{
    QTimer::singleShot(0, [&question, button, key] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        QWidget* target = box && button != QMessageBox::NoButton ? box->button(button) : static_cast<QWidget*>(box);
        question = box ? box->text() : QStringLiteral("no question asked");
        if (target)
            QTest::keyClick(target, key);
    });
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
        QTest::newRow("XML") << "workshop.xml" << "workshop-overview-right.xml";
        QTest::newRow("binary") << "workshop.bin" << "workshop-overview-right.bin";
        QTest::newRow("compressed binary") << "workshop-compressed.bin" << "workshop-overview-right.bin";
    }

    void changeDockAreaThroughChooserAndSave()
    {
        QFETCH(QString, input);
        QFETCH(QString, expected);
        QTemporaryDir dir;
        const QString path = copyInto(dir, input);
        EditorWindow window;
        QVERIFY(openAndShow(window, path));
        QVERIFY(!window.isWindowModified());
        // Down to the first component, right to its dock area, F2 opens the
        // chooser, Down picks the next area, Return writes it.
        QTreeView* view = window.treeView();
        QTest::keyClick(view, Qt::Key_Down);
        QCOMPARE(view->currentIndex().data().toString(), QStringLiteral("Overview"));
        QTest::keyClick(view, Qt::Key_Right);
        QTest::keyClick(view, Qt::Key_Right);
        QCOMPARE(view->currentIndex().column(), int(SettingsModel::DockAreaColumn));
        QTest::keyClick(view, Qt::Key_F2);
        auto* chooser = qobject_cast<QComboBox*>(QApplication::focusWidget());
        QVERIFY(chooser);
        QTest::keyClick(chooser, Qt::Key_Down);
        QTest::keyClick(chooser, Qt::Key_Return);
        QTRY_COMPARE(view->currentIndex().data().toString(), QStringLiteral("RightDockWidgetArea"));
        QTest::keyClick(view, Qt::Key_F2); // opened again, the chooser shows the area now stored
        QCOMPARE(QApplication::focusWidget()->property("currentIndex").toInt(), 1); // RightDockWidgetArea
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QVERIFY(window.isWindowModified());

        QTest::keyClick(view, Qt::Key_S, Qt::ControlModifier);
        QVERIFY(!window.isWindowModified());
        // Saved in the form it was read in (qUncompress of an uncompressed
        // document gives nothing), and nothing left beside it.
        const QByteArray saved = readFile(path);
        const bool compressed = input.contains(QLatin1String("compressed"));
        QCOMPARE(compressed ? qUncompress(saved) : saved, readFile(QStringLiteral(TEST_DATA_DIR "/") + expected));
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList(input));
    }

    void refusalsAreShownAndChangesNotLost()
    {
        // Read without a handler (a read makes no completeness check), the
        // changed document's save is refused with the library's message.
        QTemporaryDir dir;
        const QString path = copyInto(dir, QStringLiteral("no-handler.xml"));
        EditorWindow window;
        QVERIFY(openAndShow(window, path));
        QVERIFY(window.model()->setData(window.model()->modeIndex(0), QStringLiteral("M2")));
        QTest::keyClick(window.treeView(), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(window.statusBar()->currentMessage(),
                 QStringLiteral("no-handler.xml was not saved: TorviGuiModeSettings: Please set OperationModeHandler "
                                "properly."));
        // A document that does not read leaves the one open as it was.
        QVERIFY(!window.openFile(QStringLiteral(TEST_DATA_DIR "/preview-workshop-standard.png")));
        QCOMPARE(window.statusBar()->currentMessage(),
                 QStringLiteral("preview-workshop-standard.png was not opened: This is not a settings document in "
                                "binary form."));
        QCOMPARE(window.model()->modeIndex(0).data().toString(), QStringLiteral("M2"));
        QVERIFY(window.isWindowModified());

        // Closing asks first: Escape cancels, Discard closes without saving.
        QString question;
        answerNextQuestion(question, QMessageBox::NoButton, Qt::Key_Escape);
        QVERIFY(!window.close());
        QCOMPARE(question, QStringLiteral("The settings have been changed. Save the changes?"));
        answerNextQuestion(question, QMessageBox::Discard, Qt::Key_Space);
        QVERIFY(window.close());
        QCOMPARE(readFile(path), readFile(QStringLiteral(TEST_DATA_DIR "/no-handler.xml")));
    }

    void screenshotsInEnglishAndGerman()
    {
        QTemporaryDir dir;
        QVERIFY(QDir().mkpath(QStringLiteral(SCREENSHOT_DIR)));
        for (const QString& language : {QStringLiteral("en"), QStringLiteral("de")}) {
            TranslationCenter::Instance().SetLanguage(language);
            EditorWindow window;
            QVERIFY(openAndShow(window, copyInto(dir, QStringLiteral("workshop.xml"))));
            QCOMPARE(window.menuBar()->actions().constFirst()->text(),
                     language == QLatin1String("en") ? QStringLiteral("&File") : QStringLiteral("&Datei"));
            QVERIFY(window.previewLabel()->text().isEmpty()); // the drawing, not the hint
            QVERIFY(window.grab().save(QStringLiteral(SCREENSHOT_DIR "/editor-%1.png").arg(language)));
        }
        TranslationCenter::Instance().SetLanguage(QStringLiteral("en"));
    }
};

QTEST_MAIN(EditorTest)
#include "editor_test.moc"
