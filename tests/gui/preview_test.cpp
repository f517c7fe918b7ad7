// The preview of a mode's main window, drawn for the modes of
// tests/data/gui/workshop.xml and compared with golden images: "Standard",
// which uses every area, in English, and "Service" in German through
// `torvixml preview`, run as a user runs it.

#include "ModePreview.h"

#include <TorviXML/TorviXML.h>
#include <TorviXML/TranslationCenter.h>

#include <QImage>
#include <QProcess>
#include <QtTest>

using namespace TORVIXML;

namespace {

// Compares actual with tests/data/gui/<golden>, keeping it in the build tree
// when it differs. Font engines differ a little between Qt versions, so a
// pixel differs only when no expected pixel at most one pixel away is within
// 64 in every channel, and 0.05 % of the pixels may differ (none do with Qt
// 5.15 or 6.4); a component moved to another area differs in some 700.
void compareWithGolden(const QImage& actual, const QString& golden)
{
    const QImage a = actual.convertToFormat(QImage::Format_RGB32);
    const QImage e = QImage(QStringLiteral(TEST_DATA_DIR "/") + golden).convertToFormat(QImage::Format_RGB32);
    const auto near = [](QRgb p, QRgb q) {
        return qAbs(qRed(p) - qRed(q)) <= 64 && qAbs(qGreen(p) - qGreen(q)) <= 64 && qAbs(qBlue(p) - qBlue(q)) <= 64;
    };
    qint64 different = 0;
    for (int y = 0; y < a.height() && a.size() == e.size(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            bool matched = false;
            for (int dy = -1; dy <= 1 && !matched; ++dy)
                for (int dx = -1; dx <= 1 && !matched; ++dx)
                    matched = e.valid(x + dx, y + dy) && near(a.pixel(x, y), e.pixel(x + dx, y + dy));
            different += matched ? 0 : 1;
        }
    }
    const qint64 allowed = qint64(a.width()) * a.height() / 2000;
    if (a.size() == e.size() && different <= allowed)
        return;
    const QString kept = QStringLiteral(TEST_BINARY_DIR "/") + golden;
    actual.save(kept);
    QFAIL(qPrintable(QStringLiteral("%1: %2x%3 drawn, %4x%5 expected, %6 pixels differ, at most %7 may; drawn: %8")
                         .arg(golden).arg(a.width()).arg(a.height()).arg(e.width()).arg(e.height())
                         .arg(different).arg(allowed).arg(kept)));
}

// The tool as a user starts it (no platform chosen, no library path, a
// runtime directory of its own): its exit code (-1: crashed or hung) and
// what it wrote to standard error, as "1: ...".
QString runTool(const QStringList& arguments)
{
    static const QTemporaryDir runtimeDirectory;
    QProcess tool;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    environment.remove(QStringLiteral("LD_LIBRARY_PATH"));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimeDirectory.path());
    tool.setProcessEnvironment(environment);
    tool.start(QStringLiteral(TORVIXML_TOOL_PATH), QStringList(QStringLiteral("preview")) + arguments);
    const bool ok = tool.waitForFinished(60000) && tool.exitStatus() == QProcess::NormalExit;
    return QStringLiteral("%1: %2").arg(ok ? tool.exitCode() : -1).arg(QString::fromUtf8(tool.readAllStandardError()));
}

} // namespace

class PreviewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyAreaInEnglish()
    {
        TorviGuiModeSettings settings;
        QVERIFY(settings.LoadXml(QStringLiteral(TEST_DATA_DIR "/workshop.xml")));
        TranslationCenter::Instance().SetLanguage(QStringLiteral("en"));
        compareWithGolden(Preview::renderMode(std::as_const(settings).GetDataOperationMode().at(0)),
                          QStringLiteral("preview-workshop-standard.png"));
    }

    void germanThroughTheTool()
    {
        if (QLatin1String(TORVIXML_TOOL_PATH).isEmpty())
            QSKIP("torvixml is not built (TORVIXML_BUILD_TOOLS=OFF)");
        const QString input = QStringLiteral(TEST_DATA_DIR "/workshop.xml");
        QTemporaryDir dir;
        const QString output = dir.filePath(QStringLiteral("Service.png"));
        // An unknown mode, and no output named: nothing written.
        QCOMPARE(runTool({input, QStringLiteral("Expert"), QStringLiteral("-o"), output}),
                 QStringLiteral("1: ") + input
                     + QStringLiteral(": no mode named \"Expert\"; the modes are: \"Standard\", \"Service\"\n"));
        QCOMPARE(runTool({input, QStringLiteral("Service")}),
                 QStringLiteral("2: torvixml: preview needs -o PNG\nTry 'torvixml preview --help'.\n"));
        QVERIFY(!QFile::exists(output));
        QCOMPARE(runTool({input, QStringLiteral("Service"), QStringLiteral("-o"), output, QStringLiteral("--lang"),
                          QStringLiteral("de")}),
                 QStringLiteral("0: "));
        compareWithGolden(QImage(output), QStringLiteral("preview-workshop-service-de.png"));
    }
};

QTEST_MAIN(PreviewTest)
#include "preview_test.moc"
