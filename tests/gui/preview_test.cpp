// The preview of a mode's main window: `torvixml preview` on the README's
// example, run as a user runs it, and the drawing of a mode that uses every
// area, in English and German, each compared with a golden image.

#include "ModePreview.h"

#include <TorviXML/TorviXML.h>
#include <TorviXML/TranslationCenter.h>

#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdlib>

using namespace TORVIXML;

namespace {

int channelDistance(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
}

// Text is drawn by the platform's font engine, whose metrics and
// anti-aliasing differ a little between Qt versions (Qt 6 places some text
// one pixel higher than Qt 5). A pixel counts as different when no pixel of
// the expected image at most one pixel away is within 64 in every channel;
// up to 0.5 % of the pixels may differ. A component in another area, a
// missing one or a fill of the other usage changes far more.
QString imageDifference(const QImage& actual, const QImage& expected)
{
    if (actual.size() != expected.size())
        return QStringLiteral("size %1x%2, expected %3x%4")
            .arg(actual.width()).arg(actual.height()).arg(expected.width()).arg(expected.height());
    const QImage a = actual.convertToFormat(QImage::Format_RGB32);
    const QImage e = expected.convertToFormat(QImage::Format_RGB32);
    qint64 different = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            bool near = false;
            for (int dy = -1; dy <= 1 && !near; ++dy) {
                for (int dx = -1; dx <= 1 && !near; ++dx) {
                    const QPoint p(x + dx, y + dy);
                    near = e.valid(p) && channelDistance(a.pixel(x, y), e.pixel(p)) <= 64;
                }
            }
            if (!near)
                ++different;
        }
    }
    const qint64 allowed = qint64(a.width()) * a.height() / 200;
    if (different <= allowed)
        return QString();
    return QStringLiteral("%1 pixels differ, at most %2 may").arg(different).arg(allowed);
}

// Compares with tests/data/gui/<golden>; on a difference the image drawn is
// kept in the build tree for a look.
void compareWithGolden(const QImage& actual, const QString& golden)
{
    const QImage expected(QStringLiteral(TEST_DATA_DIR "/") + golden);
    const QString difference =
        expected.isNull() ? QStringLiteral("the golden image is missing") : imageDifference(actual, expected);
    if (!difference.isEmpty()) {
        const QString kept = QStringLiteral(ACTUAL_IMAGE_DIR "/") + golden;
        actual.save(kept);
        QFAIL(qPrintable(golden + QStringLiteral(": ") + difference + QStringLiteral("; drawn: ") + kept));
    }
}

// The XML document of the README's section "The two stored forms".
QByteArray readmeExample()
{
    QFile readme(QStringLiteral(PROJECT_SOURCE_DIR "/README.md"));
    if (!readme.open(QIODevice::ReadOnly))
        return QByteArray();
    const QByteArray text = readme.readAll();
    const int section = text.indexOf("## The two stored forms");
    const int start = text.indexOf("<?xml", section);
    if (section < 0 || start < 0)
        return QByteArray();
    return text.mid(start, text.indexOf('\n', start) - start);
}

DataOperationMode workshopMode(const QString& name)
{
    TorviGuiModeSettings settings;
    settings.SetValidate(true);
    if (!settings.LoadXml(QStringLiteral(TEST_DATA_DIR "/workshop.xml")))
        qFatal("workshop.xml does not read");
    for (const DataOperationMode& mode : std::as_const(settings).GetDataOperationMode()) {
        if (mode.GetName() == name)
            return mode;
    }
    qFatal("no such mode in workshop.xml");
    return DataOperationMode();
}

bool toolBuilt()
{
    return !QLatin1String(TORVIXML_TOOL_PATH).isEmpty();
}

struct ToolRun
{
    int exitCode;
    QString standardError;
};

// The tool as a user starts it: no platform chosen, no library path.
ToolRun runTool(const QStringList& arguments)
{
    QProcess tool;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    environment.remove(QStringLiteral("LD_LIBRARY_PATH"));
    tool.setProcessEnvironment(environment);
    tool.start(QStringLiteral(TORVIXML_TOOL_PATH), arguments);
    if (!tool.waitForFinished(60000))
        return {-1, QStringLiteral("did not finish")};
    return {tool.exitStatus() == QProcess::NormalExit ? tool.exitCode() : -1,
            QString::fromUtf8(tool.readAllStandardError())};
}

} // namespace

class PreviewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readmeExampleThroughTheTool()
    {
        if (!toolBuilt())
            QSKIP("torvixml is not built (TORVIXML_BUILD_TOOLS=OFF)");
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const QByteArray example = readmeExample();
        QVERIFY(example.endsWith("</TorviGuiModeSettings>"));
        QFile input(dir.filePath(QStringLiteral("readme.xml")));
        QVERIFY(input.open(QIODevice::WriteOnly));
        input.write(example);
        input.close();
        const QString output = dir.filePath(QStringLiteral("Standard.png"));

        const ToolRun run = runTool({QStringLiteral("preview"), input.fileName(), QStringLiteral("Standard"),
                                     QStringLiteral("-o"), output, QStringLiteral("--lang"), QStringLiteral("en")});
        QVERIFY2(run.exitCode == 0 && !run.standardError.contains(QLatin1String("torvixml")),
                 qPrintable(run.standardError));
        compareWithGolden(QImage(output), QStringLiteral("preview-readme-standard.png"));
    }

    void toolRefusesAnUnknownModeAndAMissingOutput()
    {
        if (!toolBuilt())
            QSKIP("torvixml is not built (TORVIXML_BUILD_TOOLS=OFF)");
        QTemporaryDir dir;
        const QString output = dir.filePath(QStringLiteral("x.png"));
        const QString input = QStringLiteral(TEST_DATA_DIR "/workshop.xml");
        ToolRun run = runTool({QStringLiteral("preview"), input, QStringLiteral("Expert"), QStringLiteral("-o"), output});
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.standardError.endsWith(
                     input + QStringLiteral(": no mode named \"Expert\"; the modes are: \"Standard\", \"Service\"\n")),
                 qPrintable(run.standardError));
        QVERIFY(!QFile::exists(output));
        run = runTool({QStringLiteral("preview"), input, QStringLiteral("Standard")});
        QCOMPARE(run.exitCode, 2);
        QVERIFY2(run.standardError.contains(QStringLiteral("torvixml: preview needs -o PNG")),
                 qPrintable(run.standardError));
    }

    void everyAreaFloatingAndUndocked()
    {
        TranslationCenter::Instance().SetLanguage(QStringLiteral("en"));
        compareWithGolden(Preview::renderMode(workshopMode(QStringLiteral("Standard"))),
                          QStringLiteral("preview-workshop-standard.png"));
    }

    void areasCaptionedInGerman()
    {
        TranslationCenter::Instance().SetLanguage(QStringLiteral("de"));
        compareWithGolden(Preview::renderMode(workshopMode(QStringLiteral("Service"))),
                          QStringLiteral("preview-workshop-service-de.png"));
        TranslationCenter::Instance().SetLanguage(QStringLiteral("en"));
    }
};

QTEST_MAIN(PreviewTest)
#include "preview_test.moc"
