// Runs the torvixml program as a separate process on prepared files and
// checks what it prints, what it writes and how it exits.

#include <gtest/gtest.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <ostream>

// Shows QStrings readably in failure messages.
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

namespace {

struct ToolRun
{
    bool finished = false; // exited normally, neither crashed nor hung
    int code = -1;
    QString out;
    QString err;
    QByteArray rawOut; // standard output as bytes, for binary documents
};

// Runs the tool; input (if given) is what it reads on standard input, a
// pipe; outputFile (if given) receives its standard output instead.
ToolRun runTool(const QStringList& arguments, const QString& workingDirectory = QString(),
                const QByteArray* input = nullptr, const QString& outputFile = QString())
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    environment.insert(QStringLiteral("LANG"), QStringLiteral("C.UTF-8"));
    environment.remove(QStringLiteral("LANGUAGE"));
    process.setProcessEnvironment(environment);
    if (!workingDirectory.isEmpty())
        process.setWorkingDirectory(workingDirectory);
    if (!outputFile.isEmpty())
        process.setStandardOutputFile(outputFile);
    process.start(QStringLiteral(TORVIXML_TOOL_PATH), arguments);
    if (input) {
        process.write(*input);
        process.closeWriteChannel();
    }
    ToolRun run;
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.finished = process.exitStatus() == QProcess::NormalExit;
    run.code = process.exitCode();
    run.rawOut = process.readAllStandardOutput();
    run.out = QString::fromUtf8(run.rawOut);
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

QByteArray readBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

// Compares a tool's output with the golden file tests/data/NAME; with
// TORVIXML_REGENERATE_GOLDEN=1 in the environment it rewrites the file
// instead (review the change before committing it).
void expectGolden(const QString& name, const QString& actual)
{
    const QString golden = QStringLiteral(TORVIXML_TOOL_DATA "/") + name;
    if (qEnvironmentVariableIntValue("TORVIXML_REGENERATE_GOLDEN") == 1) {
        writeBytes(golden, actual.toUtf8());
        return;
    }
    EXPECT_EQ(actual, QString::fromUtf8(readBytes(golden))) << "golden file " << golden.toStdString();
}

QStringList entries(const QString& directory)
{
    return QDir(directory).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                     QDir::Name);
}

// The root with one mode "M" holding one component "A" (AVAILABLE,
// LeftDockWidgetArea) and the handler TX470ManagementComponent: 153 bytes.
const QByteArray example153 = QByteArray::fromHex(
    "0DD58E7A 00000091"                   // root class id, object length 145
    "95948526 00000065 00000001"          // DataOperationMode list, record length 101, 1 element
    "0000005D"                            //   element object length 93
    "58D44D66 00000005 00000001 4D"       //   Name "M"
    "C0D4B710 00000048 00000001"          //   GuiComponentSettings list, record length 72, 1 element
    "00000040"                            //     element object length 64
    "58D44D66 00000005 00000001 41"       //     Name "A"
    "0EDC6084 0000000D 00000009 415641494C41424C45" // GuiComponentUsage "AVAILABLE"
    "17299F64 00000016 00000012 4C656674446F636B576964676574417265 61" // "LeftDockWidgetArea"
    "6EEDD5E0 0000001C 00000018 54583437304D616E6167656D656E74436F6D706F6E656E74"); // handler

const QString demoXml = QStringLiteral(
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?><TorviGuiModeSettings><DataOperationMode Name=\"Standard\">"
    "<GuiComponentSettings Name=\"Overview\"><GuiComponentUsage>DEFAULT_DISPLAY</GuiComponentUsage>"
    "<DockWidgetLocation>LeftDockWidgetArea</DockWidgetLocation></GuiComponentSettings>"
    "<GuiComponentSettings Name=\"Details\"><GuiComponentUsage>AVAILABLE</GuiComponentUsage>"
    "<DockWidgetLocation>FloatingDockWidgetArea </DockWidgetLocation></GuiComponentSettings>"
    "</DataOperationMode><OperationModeHandler>PMR830ManagementComponent</OperationModeHandler>"
    "</TorviGuiModeSettings>\n");

QByteArray be32(qint32 value)
{
    const quint32 u = quint32(value);
    const char bytes[4] = {char(u >> 24), char(u >> 16), char(u >> 8), char(u)};
    return QByteArray(bytes, 4);
}
QByteArray text(const QByteArray& utf8) { return be32(utf8.size()) + utf8; }
QByteArray record(qint32 memberId, const QByteArray& payload) { return be32(memberId) + be32(payload.size()) + payload; }
QByteArray frame(const QByteArray& records) { return be32(records.size()) + records; }

// The demo settings in binary form, put together field by field.
QByteArray demoBinary()
{
    auto component = [](const char* name, const char* usage, const char* location) {
        return frame(record(1490308454, text(name)) + record(249323652, text(usage))
                     + record(388603748, text(location)));
    };
    const QByteArray mode = frame(record(1490308454, text("Standard"))
                                  + record(-1059801328, be32(2)
                                               + component("Overview", "DEFAULT_DISPLAY", "LeftDockWidgetArea")
                                               + component("Details", "AVAILABLE", "FloatingDockWidgetArea ")));
    return be32(232099450)
        + frame(record(-1785428698, be32(1) + mode) + record(1861080544, text("PMR830ManagementComponent")));
}

const char* const example153Walk =
    "     0  id 232099450 (0x0DD58E7A) = class id of TorviGuiModeSettings\n"
    "     4  object length 145 (to 153)\n"
    "     8    record: member id -1785428698 (0x95948526) = TorviGuiModeSettings.DataOperationMode (list)\n"
    "    12      record length 101 (to 117)\n"
    "    16      element count 1\n"
    "    20      element 1 of 1: DataOperationMode, object length 93 (to 117)\n"
    "    24        record: member id 1490308454 (0x58D44D66) = DataOperationMode.Name (text)\n"
    "    28          record length 5 (to 37)\n"
    "    32          byte count 1\n"
    "    36          text \"M\"\n"
    "    37        record: member id -1059801328 (0xC0D4B710) = DataOperationMode.GuiComponentSettings (list)\n"
    "    41          record length 72 (to 117)\n"
    "    45          element count 1\n"
    "    49          element 1 of 1: GuiComponentSettings, object length 64 (to 117)\n"
    "    53            record: member id 1490308454 (0x58D44D66) = GuiComponentSettings.Name (text)\n"
    "    57              record length 5 (to 66)\n"
    "    61              byte count 1\n"
    "    65              text \"A\"\n"
    "    66            record: member id 249323652 (0x0EDC6084) = GuiComponentSettings.GuiComponentUsage (enum)\n"
    "    70              record length 13 (to 87)\n"
    "    74              byte count 9\n"
    "    78              text \"AVAILABLE\" -> value 0\n"
    "    87            record: member id 388603748 (0x17299F64) = GuiComponentSettings.DockWidgetLocation (enum)\n"
    "    91              record length 22 (to 117)\n"
    "    95              byte count 18\n"
    "    99              text \"LeftDockWidgetArea\" -> value 0\n"
    "   117          end of GuiComponentSettings\n"
    "   117      end of DataOperationMode\n"
    "   117    record: member id 1861080544 (0x6EEDD5E0) = TorviGuiModeSettings.OperationModeHandler (enum)\n"
    "   121      record length 28 (to 153)\n"
    "   125      byte count 24\n"
    "   129      text \"TX470ManagementComponent\" -> value 0\n"
    "   153  end of TorviGuiModeSettings\n";

class ToolTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_dir.isValid()); }
    QString path(const QString& name) const { return m_dir.filePath(name); }
    QString file(const QString& name, const QByteArray& bytes) const
    {
        writeBytes(path(name), bytes);
        return path(name);
    }

    QTemporaryDir m_dir;
};

TEST_F(ToolTest, DemoWritesBothFormsAndSummarises)
{
    const QString target = path(QStringLiteral("out/nested"));
    const ToolRun run = runTool({QStringLiteral("demo"), target});
    ASSERT_TRUE(run.finished);
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(run.err, QString());
    EXPECT_EQ(readBytes(target + QStringLiteral("/settings.xml")), demoXml.toUtf8());
    EXPECT_EQ(readBytes(target + QStringLiteral("/settings.bin")), demoBinary());
    EXPECT_EQ(entries(target), QStringList({QStringLiteral("settings.bin"), QStringLiteral("settings.xml")}));
    EXPECT_TRUE(run.out.contains(QStringLiteral("\n\n") + demoXml + QStringLiteral("\nOperation-mode handler: ")));
    EXPECT_TRUE(run.out.endsWith(QStringLiteral(
        "Operation-mode handler: \"PMR830ManagementComponent\" (\"PMR830ManagementComponent\")\n"
        "1 mode\n"
        "  Mode \"Standard\", 2 components\n"
        "    Component \"Overview\": usage \"DEFAULT_DISPLAY\" (\"DEFAULT_DISPLAY\"), "
        "dock area \"LeftDockWidgetArea\" (\"LeftDockWidgetArea\")\n"
        "    Component \"Details\": usage \"AVAILABLE\" (\"AVAILABLE\"), "
        "dock area \"FloatingDockWidgetArea \" (\"FloatingDockWidgetArea \")\n")))
        << run.out.toStdString();

    // Without DIR it writes into torvixml-demo/ of the working directory;
    // display names follow the language chosen.
    const ToolRun german = runTool({QStringLiteral("demo"), QStringLiteral("--lang"), QStringLiteral("de")}, m_dir.path());
    ASSERT_TRUE(german.finished);
    EXPECT_EQ(german.code, 0) << german.err.toStdString();
    EXPECT_EQ(readBytes(path(QStringLiteral("torvixml-demo/settings.bin"))), demoBinary());
    EXPECT_TRUE(german.out.endsWith(QStringLiteral(
        "    Component \"Details\": usage \"AVAILABLE\" (\"Verfügbar\"), "
        "dock area \"FloatingDockWidgetArea \" (\"Schwebendes Fenster\")\n")))
        << german.out.toStdString();
}

TEST_F(ToolTest, ConvertRoundTripsThroughPlainAndCompressedBinary)
{
    // A byte order mark and blanks before the first tag still make XML.
    const QString input =
        file(QStringLiteral("in.xml"), QByteArray("\xEF\xBB\xBF \n") + demoXml.mid(demoXml.indexOf(QLatin1String("?>")) + 2).toUtf8());
    ToolRun run = runTool({QStringLiteral("convert"), input, path(QStringLiteral("a.bin"))});
    ASSERT_TRUE(run.finished);
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, path(QStringLiteral("a.bin")) + QStringLiteral(": binary, 253 bytes\n"));
    EXPECT_EQ(readBytes(path(QStringLiteral("a.bin"))), demoBinary());

    run = runTool({QStringLiteral("convert"), path(QStringLiteral("a.bin")), path(QStringLiteral("b.xml"))});
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(readBytes(path(QStringLiteral("b.xml"))), demoXml.toUtf8());

    run = runTool({QStringLiteral("convert"), path(QStringLiteral("b.xml")), path(QStringLiteral("c.BIN")),
                   QStringLiteral("--compress"), QStringLiteral("9")});
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    const QByteArray compressed = readBytes(path(QStringLiteral("c.BIN")));
    EXPECT_EQ(compressed.left(4), be32(253));
    EXPECT_EQ(qUncompress(compressed), demoBinary());

    run = runTool({QStringLiteral("convert"), path(QStringLiteral("c.BIN")), path(QStringLiteral("d.xml"))});
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(readBytes(path(QStringLiteral("d.xml"))), demoXml.toUtf8());

    // Usage errors: exit 2, nothing written.
    const struct {
        QStringList arguments;
        QString message;
    } usage[] = {
        {{input, path(QStringLiteral("e.txt"))}, path(QStringLiteral("e.txt")) + QStringLiteral(": the output file must end in .xml or .bin")},
        {{input, path(QStringLiteral("e.xml")), QStringLiteral("--compress"), QStringLiteral("1")}, QStringLiteral("--compress applies to binary output only")},
        {{input, QStringLiteral("-")}, QStringLiteral("writing to standard output needs --to xml or --to bin")},
        {{input, path(QStringLiteral("e.bin")), QStringLiteral("--to"), QStringLiteral("json")}, QStringLiteral("--to: the form must be xml or bin, not \"json\"")},
        {{input, path(QStringLiteral("e.bin")), QStringLiteral("--max-size"), QStringLiteral("12X")}, QStringLiteral("--max-size: \"12X\" is no size from 1 byte to 2047M")},
        {{input, path(QStringLiteral("e.bin")), QStringLiteral("--compress"), QStringLiteral("10")}, QStringLiteral("--compress: level must be -1 or 0 to 9, not \"10\"")},
        {{input}, QStringLiteral("convert needs exactly two files, IN and OUT")},
    };
    for (const auto& u : usage) {
        run = runTool(QStringList{QStringLiteral("convert")} + u.arguments);
        EXPECT_EQ(run.code, 2) << u.message.toStdString();
        EXPECT_EQ(run.err, QStringLiteral("torvixml: ") + u.message
                               + QStringLiteral("\nTry 'torvixml convert --help'.\n"));
    }
    EXPECT_EQ(entries(m_dir.path()).filter(QStringLiteral("e.")), QStringList());
}

TEST_F(ToolTest, CheckSaysWhereAndWhat)
{
    file(QStringLiteral("good.xml"), demoXml.toUtf8());
    file(QStringLiteral("good.bin"), example153);
    QByteArray longRecord = example153;
    longRecord[60] = 6; // the component's Name record claims one byte more than its text
    // A dock area in lower case and without the trailing blank of its name.
    const QByteArray floating = be32(232099450)
        + frame(record(-1785428698, be32(1) + frame(record(1490308454, text("S")) + record(-1059801328, be32(1)
            + frame(record(1490308454, text("X")) + record(249323652, text("AVAILABLE"))
                    + record(388603748, text("floatingdockwidgetarea")))))));
    const struct {
        const char* name;
        QByteArray content;
    } faults[] = {
        {"no-handler.xml", "<TorviGuiModeSettings><DataOperationMode Name=\"S\"/></TorviGuiModeSettings>"},
        {"bad-handler.xml", "<TorviGuiModeSettings>\n  <OperationModeHandler> vbkmanagementcomponent</OperationModeHandler>\n</TorviGuiModeSettings>"},
        {"no-blank.xml",
         "<TorviGuiModeSettings>\n<DataOperationMode Name=\"Standard\">\n<GuiComponentSettings Name=\"X\"/>\n"
         "<GuiComponentSettings><Name>Y</Name><GuiComponentUsage>AVAILABLE</GuiComponentUsage>\n"
         "  <DockWidgetLocation>FloatingDockWidgetArea</DockWidgetLocation></GuiComponentSettings>\n"
         "</DataOperationMode></TorviGuiModeSettings>"},
        {"nameless-mode.xml", "<TorviGuiModeSettings>\n\t<DataOperationMode/></TorviGuiModeSettings>"},
        {"repeated.xml",
         "<TorviGuiModeSettings>\n<DataOperationMode Name=\"S\">"
         "<GuiComponentSettings Name=\"A\"><GuiComponentUsage>AVAILABLE</GuiComponentUsage><DockWidgetLocation>NoDockWidgetArea</DockWidgetLocation></GuiComponentSettings>\n"
         "<GuiComponentSettings Name=\"A\"><GuiComponentUsage>AVAILABLE</GuiComponentUsage><DockWidgetLocation>NoDockWidgetArea</DockWidgetLocation></GuiComponentSettings>\n"
         "</DataOperationMode>\n<DataOperationMode Name=\"S\"/>\n"
         "<OperationModeHandler>TX470ManagementComponent</OperationModeHandler>\n"
         "<OperationModeHandler>VbkManagementComponent</OperationModeHandler>\n</TorviGuiModeSettings>"},
        {"broken.xml", "<TorviGuiModeSettings>\n<Open></TorviGuiModeSettings>"},
        {"long-record.bin", longRecord},
        {"floating.bin", floating},
        {"truncated.bin", example153.left(100)},
        {"other-root.xml", "<Other/>"},
        {"empty.xml", ""},
    };
    QStringList all{QStringLiteral("check"), QStringLiteral("good.xml"), QStringLiteral("good.bin")};
    for (const auto& fault : faults)
        all << QFileInfo(file(QString::fromLatin1(fault.name), fault.content)).fileName();
    ToolRun run = runTool(all, m_dir.path());
    ASSERT_TRUE(run.finished);
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.out, QStringLiteral("good.xml: OK (1 mode, 2 components)\ngood.bin: OK\nrepeated.xml: OK (2 modes, 2 components)\n"));
    expectGolden(QStringLiteral("tool/check-faults.txt"), run.err);

    // Warnings alone exit 0, or 1 with --strict.
    run = runTool({QStringLiteral("check"), QStringLiteral("repeated.xml")}, m_dir.path());
    EXPECT_EQ(run.code, 0);
    run = runTool({QStringLiteral("check"), QStringLiteral("--strict"), QStringLiteral("repeated.xml")}, m_dir.path());
    EXPECT_EQ(run.code, 1);

    // An unreadable file is an I/O error and outranks invalid ones.
    run = runTool({QStringLiteral("check"), QStringLiteral("good.xml"), QStringLiteral("missing.xml"), QStringLiteral("broken.xml")}, m_dir.path());
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.err.startsWith(QStringLiteral("missing.xml: error: cannot open for reading: "))) << run.err.toStdString();
}

TEST_F(ToolTest, DumpWalksEveryFieldOfPlainAndCompressedDocuments)
{
    const QString plain = file(QStringLiteral("example.bin"), example153);
    ToolRun run = runTool({QStringLiteral("dump"), plain});
    ASSERT_TRUE(run.finished);
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.err, QString());
    EXPECT_EQ(run.out, plain + QStringLiteral(": plain binary document, 153 bytes\n") + QString::fromUtf8(example153Walk));

    const QByteArray packed = qCompress(example153, 9);
    const QString compressed = file(QStringLiteral("example.z.bin"), packed);
    run = runTool({QStringLiteral("dump"), compressed});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.out, compressed
                           + QStringLiteral(": compressed binary document, %1 bytes, announcing 153 bytes, inflated to "
                                            "153 bytes; offsets are those of the inflated bytes\n")
                                 .arg(packed.size())
                           + QString::fromUtf8(example153Walk));

    // The demo's floating dock area: its trailing blank stays visible.
    run = runTool({QStringLiteral("dump"), file(QStringLiteral("demo.bin"), demoBinary())});
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.out.contains(QStringLiteral("   193              text \"FloatingDockWidgetArea \" -> value 5\n")));
}

TEST_F(ToolTest, DumpReportsFaultsWhereTheByteAccountingFails)
{
    QByteArray longRecord = example153;
    longRecord[60] = 6;
    QString name = file(QStringLiteral("long-record.bin"), longRecord);
    ToolRun run = runTool({QStringLiteral("dump"), name});
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.out.contains(QStringLiteral(
        "    57              record length 6 (to 67)\n"
        "    61              byte count 1\n"
        "    65              text \"A\"\n"
        "    66              error: 1 byte left in the record after the text\n"
        "    66              going on at 66, where the payload ends: the record length looks wrong\n"
        "    66            record: member id 249323652 (0x0EDC6084) = GuiComponentSettings.GuiComponentUsage (enum)\n")))
        << run.out.toStdString();
    EXPECT_EQ(run.err, name + QStringLiteral(": 1 error, the first at offset 66: 1 byte left in the record after the text\n"));

    QByteArray longObject = example153;
    longObject[52] = 0x41; // the component claims 65 bytes where its list record holds 64
    name = file(QStringLiteral("long-object.bin"), longObject);
    run = runTool({QStringLiteral("dump"), name});
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.out.contains(QStringLiteral(
        "    49          element 1 of 1: GuiComponentSettings, object length 65 (to 118)\n"
        "    49          error: object length 65 runs past the end of the record at 117 by 1 byte\n")));
    EXPECT_EQ(run.err, name + QStringLiteral(": 1 error, the first at offset 49: object length 65 runs past the end of the record at 117 by 1 byte\n"));

    // Unknown member ids are named as such and skipped; they are no fault.
    QByteArray unknown = example153;
    unknown.replace(53, 4, be32(7));
    unknown.replace(66, 4, be32(1861080544));
    run = runTool({QStringLiteral("dump"), file(QStringLiteral("unknown.bin"), unknown)});
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.out.contains(QStringLiteral(
        "    53            record: member id 7 (0x00000007) = unknown in GuiComponentSettings\n"
        "    57              record length 5 (to 66)\n"
        "    61              payload of 5 bytes skipped: 00 00 00 01 41\n"
        "    66            record: member id 1861080544 (0x6EEDD5E0) = unknown in GuiComponentSettings "
        "(member id of TorviGuiModeSettings.OperationModeHandler)\n")))
        << run.out.toStdString();

    // A null text shows as such.
    QByteArray nullName = example153;
    nullName.replace(61, 5, QByteArray(QByteArray::fromHex("FFFFFFFF") + QByteArray(1, '\0')));
    run = runTool({QStringLiteral("dump"), file(QStringLiteral("null.bin"), nullName)});
    EXPECT_TRUE(run.out.contains(QStringLiteral("    61              byte count 0xFFFFFFFF: null text\n"
                                                "    65              error: 1 byte left in the record after the text\n")))
        << run.out.toStdString();
}

TEST_F(ToolTest, DumpAndConvertSurviveTruncatedAndRandomBytes)
{
    const QString input = path(QStringLiteral("input.bin"));
    const QString output = path(QStringLiteral("output.xml"));
    auto expectRefused = [&](const QByteArray& bytes, const char* what) {
        writeBytes(input, bytes);
        for (const QString& command : {QStringLiteral("dump"), QStringLiteral("convert")}) {
            const QStringList arguments = command == QLatin1String("dump") ? QStringList{command, input}
                                                                            : QStringList{command, input, output};
            const ToolRun run = runTool(arguments);
            ASSERT_TRUE(run.finished) << what << " " << command.toStdString();
            EXPECT_EQ(run.code, 1) << what << " " << command.toStdString() << " " << bytes.toHex().toStdString();
            EXPECT_TRUE(run.err.startsWith(input + QStringLiteral(": "))) << run.err.toStdString();
        }
        EXPECT_FALSE(QFile::exists(output)) << what;
    };
    for (int size = 0; size < example153.size(); ++size)
        expectRefused(example153.left(size), "truncated example");
    const QByteArray packed = qCompress(example153);
    for (int size = 0; size < packed.size(); size += 3)
        expectRefused(packed.left(size), "truncated compressed example");

    QRandomGenerator random(20240611);
    for (int round = 0; round < 40; ++round) {
        QByteArray bytes(int(random.bounded(1, 300)), '\0');
        for (char& c : bytes)
            c = char(random.bounded(256));
        expectRefused(bytes, "random bytes");
        // The right class id in front of random records.
        expectRefused(be32(232099450) + be32(bytes.size()) + bytes, "random records");
    }
}

TEST_F(ToolTest, FailedConvertLeavesTheOldOutputAlone)
{
    const QByteArray previous("previous content\n");
    const QString oldBin = file(QStringLiteral("old.bin"), previous);
    const QString oldXml = file(QStringLiteral("old.xml"), previous);
    const QString noHandler =
        file(QStringLiteral("no-handler.xml"), "<TorviGuiModeSettings><DataOperationMode Name=\"S\"/></TorviGuiModeSettings>");
    const QString truncated = file(QStringLiteral("truncated.bin"), example153.left(150));
    const QStringList before = entries(m_dir.path());

    // Read fine, refused when written (incomplete), and refused when read.
    ToolRun run = runTool({QStringLiteral("convert"), noHandler, oldBin});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.err, noHandler + QStringLiteral(": TorviGuiModeSettings: Please set OperationModeHandler properly.\n"));
    run = runTool({QStringLiteral("convert"), truncated, oldXml});
    EXPECT_EQ(run.code, 1);
    run = runTool({QStringLiteral("convert"), path(QStringLiteral("missing.xml")), oldXml});
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(readBytes(oldBin), previous);
    EXPECT_EQ(readBytes(oldXml), previous);
    EXPECT_EQ(entries(m_dir.path()), before);

    // Without validation the incomplete settings are written as they are.
    run = runTool({QStringLiteral("convert"), QStringLiteral("--no-validate"), noHandler, oldXml});
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(readBytes(oldXml), QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?><TorviGuiModeSettings>"
                                            "<DataOperationMode Name=\"S\"/><OperationModeHandler>"
                                            "TX470ManagementComponent</OperationModeHandler></TorviGuiModeSettings>\n"));

    // An output directory that does not exist is an I/O error.
    const QString unwritable = path(QStringLiteral("no-such-dir/out.bin"));
    run = runTool({QStringLiteral("convert"), oldXml, unwritable});
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.err.startsWith(unwritable + QStringLiteral(": cannot open for writing: "))) << run.err.toStdString();
}

TEST_F(ToolTest, FormatIndentsAndReadsBackEqual)
{
    // Both forms in, the same indented XML out; that XML converts back to
    // the same binary bytes and to the library's one-line XML.
    const QString xml = file(QStringLiteral("demo.xml"), demoXml.toUtf8());
    const QString bin = file(QStringLiteral("demo.bin"), qCompress(demoBinary()));
    for (const QString& input : {xml, bin}) {
        const ToolRun run = runTool({QStringLiteral("format"), input});
        ASSERT_TRUE(run.finished);
        EXPECT_EQ(run.code, 0) << run.err.toStdString();
        EXPECT_EQ(run.err, QString());
        expectGolden(QStringLiteral("tool/format-demo.xml"), run.out);
    }
    const QString pretty = path(QStringLiteral("pretty.xml"));
    ToolRun run = runTool({QStringLiteral("format"), bin, QStringLiteral("-o"), pretty, QStringLiteral("--indent"),
                           QStringLiteral("0")});
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, QString());
    EXPECT_TRUE(readBytes(pretty).contains("\n<DockWidgetLocation>FloatingDockWidgetArea </DockWidgetLocation>\n"));
    run = runTool({QStringLiteral("convert"), pretty, path(QStringLiteral("back.bin"))});
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(readBytes(path(QStringLiteral("back.bin"))), demoBinary());
    run = runTool({QStringLiteral("convert"), pretty, path(QStringLiteral("back.xml"))});
    EXPECT_EQ(readBytes(path(QStringLiteral("back.xml"))), demoXml.toUtf8());

    // A refused document writes nothing; bad options are usage errors.
    const QString bad = file(QStringLiteral("bad.xml"), "<TorviGuiModeSettings><OperationModeHandler>x</OperationModeHandler></TorviGuiModeSettings>");
    run = runTool({QStringLiteral("format"), bad, QStringLiteral("-o"), path(QStringLiteral("bad-out.xml"))});
    EXPECT_EQ(run.code, 1);
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("bad-out.xml"))));
    run = runTool({QStringLiteral("format"), xml, QStringLiteral("--indent"), QStringLiteral("17")});
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.err, QStringLiteral("torvixml: --indent: a number of blanks from 0 to 16, not \"17\"\n"
                                      "Try 'torvixml format --help'.\n"));
}

TEST_F(ToolTest, QuietLeavesOnlyDiagnostics)
{
    const QString good = file(QStringLiteral("good.xml"), demoXml.toUtf8());
    const QString bad = file(QStringLiteral("bad.bin"), example153.left(100));
    const QStringList commands[] = {
        {QStringLiteral("check"), good},
        {QStringLiteral("dump"), file(QStringLiteral("good.bin"), example153)},
        {QStringLiteral("convert"), good, path(QStringLiteral("out.bin"))},
        {QStringLiteral("format"), good, QStringLiteral("-o"), path(QStringLiteral("out.xml"))},
        {QStringLiteral("names")},
        {QStringLiteral("demo"), path(QStringLiteral("demo"))},
    };
    for (const QStringList& command : commands) {
        const ToolRun run = runTool(command + QStringList{QStringLiteral("--quiet")});
        EXPECT_EQ(run.code, 0) << command.first().toStdString() << run.err.toStdString();
        EXPECT_EQ(run.out + run.err, QString()) << command.first().toStdString();
    }
    EXPECT_EQ(readBytes(path(QStringLiteral("out.bin"))), demoBinary());
    // A document asked for on standard output is no report: it still comes.
    ToolRun run = runTool({QStringLiteral("format"), QStringLiteral("-q"), good});
    EXPECT_EQ(run.out, QString::fromUtf8(readBytes(path(QStringLiteral("out.xml")))));
    run = runTool({QStringLiteral("check"), QStringLiteral("-q"), good, bad});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.out, QString());
    EXPECT_NE(run.err, QString());
}

TEST_F(ToolTest, ReadsPipesAndStandardInputAndWritesStandardOutput)
{
    // Standard input is a pipe here: "-" and /dev/stdin read it whole, in
    // either form.
    const QByteArray xml = demoXml.toUtf8();
    const QByteArray binary = demoBinary();
    const QByteArray empty;
    const struct {
        QStringList arguments;
        const QByteArray* input;
        int code;
        QByteArray out;
        QString err;
    } runs[] = {
        {{QStringLiteral("check"), QStringLiteral("-")}, &xml, 0, "-: OK (1 mode, 2 components)\n", QString()},
        {{QStringLiteral("check"), QStringLiteral("/dev/stdin")}, &binary, 0, "/dev/stdin: OK\n", QString()},
        {{QStringLiteral("convert"), QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("--to"), QStringLiteral("bin")},
         &xml, 0, binary, QString()},
        {{QStringLiteral("convert"), QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("--to"), QStringLiteral("XML")},
         &binary, 0, xml, QString()},
        {{QStringLiteral("dump"), QStringLiteral("-")}, &binary, 0, "-: plain binary document, 253 bytes\n", QString()},
        {{QStringLiteral("check"), QStringLiteral("-")}, &empty, 1, "", QStringLiteral("-: error: empty input\n")},
        {{QStringLiteral("check"), QStringLiteral("--max-size"), QStringLiteral("500"), QStringLiteral("-")}, &xml, 1, "",
         QStringLiteral("-: error: the input holds more than the maximum document size of 500 bytes\n")},
    };
    for (const auto& r : runs) {
        SCOPED_TRACE(r.arguments.join(QLatin1Char(' ')).toStdString());
        const ToolRun run = runTool(r.arguments, QString(), r.input);
        ASSERT_TRUE(run.finished);
        EXPECT_EQ(run.code, r.code);
        EXPECT_EQ(r.arguments.first() == QLatin1String("dump") ? run.rawOut.left(r.out.size()) : run.rawOut, r.out);
        EXPECT_EQ(run.err, r.err);
    }

    // A file written to standard output that cannot take it: the system's
    // reason, exit 2.
    const ToolRun full = runTool({QStringLiteral("convert"), file(QStringLiteral("in.xml"), xml), QStringLiteral("-"),
                                  QStringLiteral("--to"), QStringLiteral("xml")},
                                 QString(), nullptr, QStringLiteral("/dev/full"));
    EXPECT_EQ(full.code, 2);
    EXPECT_EQ(full.err, QStringLiteral("-: cannot write: No space left on device\n"));
}

TEST_F(ToolTest, HugeAndEndlessInputsAreRefusedByTheMaximumDocumentSize)
{
    // 3 GiB that take no room on disk, and a device without end.
    const QString sparse = path(QStringLiteral("sparse.bin"));
    {
        QFile file(sparse);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_TRUE(file.resize(qint64(3) << 30));
    }
    const QString limit = QStringLiteral("more than the maximum document size of 268435456 bytes\n");
    const struct {
        QStringList arguments;
        QString err;
    } runs[] = {
        {{QStringLiteral("check"), sparse}, sparse + QStringLiteral(": error: the file holds 3221225472 bytes, ") + limit},
        {{QStringLiteral("dump"), sparse}, sparse + QStringLiteral(": the file holds 3221225472 bytes, ") + limit},
        {{QStringLiteral("convert"), sparse, path(QStringLiteral("out.xml"))},
         sparse + QStringLiteral(": the file holds 3221225472 bytes, ") + limit},
        {{QStringLiteral("check"), QStringLiteral("/dev/zero")}, QStringLiteral("/dev/zero: error: the input holds ") + limit},
        {{QStringLiteral("check"), QStringLiteral("--max-size"), QStringLiteral("1K"), QStringLiteral("/dev/zero")},
         QStringLiteral("/dev/zero: error: the input holds more than the maximum document size of 1024 bytes\n")},
    };
    for (const auto& r : runs) {
        SCOPED_TRACE(r.arguments.join(QLatin1Char(' ')).toStdString());
        const ToolRun run = runTool(r.arguments);
        EXPECT_EQ(run.code, 1);
        EXPECT_EQ(run.err, r.err);
        // Before the limit: "empty file", and 9 s for 2 GB of /dev/zero.
    }
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("out.xml"))));
}

TEST_F(ToolTest, ConvertNeverDropsAValueWithoutSayingSo)
{
    // A name holding NUL: checked fine, kept exactly by the binary form,
    // refused for XML with the object and the place of the character.
    QByteArray nul = demoBinary();
    nul.replace(QByteArray("Standard"), QByteArray("Std\0ardx", 8));
    const QString nulBin = file(QStringLiteral("nul.bin"), nul);
    ToolRun run = runTool({QStringLiteral("convert"), nulBin, path(QStringLiteral("nul.xml"))});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.err, nulBin + QStringLiteral(": DataOperationMode: Name holds U+0000 at character 4 (after \"Std\"), "
                                               "which XML 1.0 cannot represent.\n"));
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("nul.xml"))));
    run = runTool({QStringLiteral("convert"), nulBin, path(QStringLiteral("nul2.bin"))});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(readBytes(path(QStringLiteral("nul2.bin"))), nul);

    // Without validation, members that are not set are written with their
    // initial values.
    const QString incomplete = file(QStringLiteral("incomplete.xml"),
                                    "<TorviGuiModeSettings><DataOperationMode><GuiComponentSettings Name=\"C\"/>"
                                    "</DataOperationMode></TorviGuiModeSettings>");
    run = runTool({QStringLiteral("convert"), QStringLiteral("--no-validate"), incomplete, QStringLiteral("-"),
                   QStringLiteral("--to"), QStringLiteral("xml")});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.out, QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?><TorviGuiModeSettings>"
                                      "<DataOperationMode Name=\"\"><GuiComponentSettings Name=\"C\"><GuiComponentUsage>"
                                      "AVAILABLE</GuiComponentUsage><DockWidgetLocation>NoDockWidgetArea"
                                      "</DockWidgetLocation></GuiComponentSettings></DataOperationMode>"
                                      "<OperationModeHandler>TX470ManagementComponent</OperationModeHandler>"
                                      "</TorviGuiModeSettings>\n"));

    // Without validation, texts that name no value: refused with each
    // object, member and text, nothing written. With validation the
    // library's own message.
    QString twoUnknown = demoXml;
    twoUnknown.replace(QStringLiteral(">LeftDockWidgetArea<"), QStringLiteral(">LeftDock<"));
    twoUnknown.replace(QStringLiteral(">PMR830ManagementComponent<"), QStringLiteral(">PMR830<"));
    const QString xmlIn = file(QStringLiteral("unknown.xml"), twoUnknown.toUtf8());
    QByteArray binary = demoBinary();
    binary.replace(QByteArray("LeftDockWidgetArea"), QByteArray("LeftDockWidgetAreX"));
    const QString binIn = file(QStringLiteral("unknown.bin"), binary);
    const QString out = path(QStringLiteral("out.bin"));
    const QString notWritten = out + QStringLiteral(": not written: %1 would be lost\n");
    const QString overview =
        QStringLiteral(": DataOperationMode 1 (\"Standard\"), GuiComponentSettings 1 (\"Overview\"): DockWidgetLocation ");
    const QString cannot = QStringLiteral(" is no name of its enumeration and cannot be written back\n");
    const struct {
        QString in;
        QString err;
    } lost[] = {
        {xmlIn, xmlIn + overview + QStringLiteral("\"LeftDock\" (line 1, column 208)") + cannot + xmlIn
             + QStringLiteral(": TorviGuiModeSettings: OperationModeHandler \"PMR830\" (line 1, column 474)") + cannot
             + notWritten.arg(QStringLiteral("2 values"))},
        {binIn, binIn + overview + QStringLiteral("\"LeftDockWidgetAreX\" (offset 119)") + cannot
             + notWritten.arg(QStringLiteral("1 value"))},
    };
    for (const auto& l : lost) {
        run = runTool({QStringLiteral("convert"), QStringLiteral("--no-validate"), l.in, out});
        EXPECT_EQ(run.code, 1);
        EXPECT_EQ(run.err, l.err);
        EXPECT_FALSE(QFile::exists(out));
        run = runTool({QStringLiteral("convert"), l.in, out});
        EXPECT_EQ(run.code, 1);
        EXPECT_TRUE(run.err.endsWith(QStringLiteral(": enum is not valid (classname=GuiComponentSettings,"
                                                    "membername=m_dockWidgetLocation)\n")))
            << run.err.toStdString();
    }
}

TEST_F(ToolTest, XmlErrorsAreReportedWhereTheyAre)
{
    const QByteArray declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    QByteArray attributes = "<TorviGuiModeSettings><Unknown";
    for (int i = 0; i < 100000; ++i)
        attributes += " a" + QByteArray::number(i) + "=\"\"";
    attributes += "/></TorviGuiModeSettings>";
    QString bomb = QStringLiteral("<!ENTITY l0 \"QLS\">");
    for (int i = 1; i <= 9; ++i)
        bomb += QStringLiteral("<!ENTITY l%1 \"%2\">").arg(i).arg(QStringLiteral("&l%1;").arg(i - 1).repeated(10));
    const struct {
        const char* name;
        QByteArray content;
        QString err;
    } faults[] = {
        {"byte86.xml", declaration + "<TorviGuiModeSettings><DataOperationMode Name=\"\xFF\"/></TorviGuiModeSettings>",
         QStringLiteral(":1:86: error: Encountered incorrectly encoded content.")},
        {"byte318.xml",
         declaration + "\n<TorviGuiModeSettings><DataOperationMode Name=\"" + QByteArray(270, 'x')
             + "\xFE\"/></TorviGuiModeSettings>",
         QStringLiteral(":2:318: error: Encountered incorrectly encoded content.")},
        // The handler's text is cut at the entity limit; the broken document
        // is what is reported, not the text the setter refuses.
        {"laughs.xml",
         (QStringLiteral("<!DOCTYPE TorviGuiModeSettings [") + bomb
          + QStringLiteral("]><TorviGuiModeSettings><OperationModeHandler>&l9;</OperationModeHandler>"
                           "</TorviGuiModeSettings>"))
             .toUtf8(),
         QStringLiteral(":1:595: error: Entity expands to more characters than the entity expansion limit.")},
        // A limit the library measures before reading: reported at its
        // place, and the document is not read again to find one (which took
        // 47 s for this one).
        {"attributes.xml", attributes, QStringLiteral(":1:23: error: the element has more than 1024 attributes")},
    };
    for (const auto& f : faults) {
        const QString name = file(QString::fromLatin1(f.name), f.content);
        const ToolRun run = runTool({QStringLiteral("check"), name});
        EXPECT_EQ(run.code, 1) << f.name;
        EXPECT_EQ(run.err, name + f.err + QLatin1Char('\n'));
    }
}

TEST_F(ToolTest, NamesListsValuesNamesAndDisplayNames)
{
    ToolRun run = runTool({QStringLiteral("names")});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.out, QStringLiteral("OperationModeHandler (TorviGuiModeSettings)\n"
                                      "   0  \"TX470ManagementComponent\"   \"TX470ManagementComponent\"\n"
                                      "   1  \"PMR830ManagementComponent\"  \"PMR830ManagementComponent\"\n"
                                      "   2  \"QLSManagementComponent\"     \"QLSManagementComponent\"\n"
                                      "   3  \"VbkManagementComponent\"     \"VbkManagementComponent\"\n"
                                      "\n"
                                      "GuiComponentUsage (GuiComponentSettings)\n"
                                      "   0  \"AVAILABLE\"        \"AVAILABLE\"\n"
                                      "   1  \"DEFAULT_DISPLAY\"  \"DEFAULT_DISPLAY\"\n"
                                      "\n"
                                      "DockWidgetLocation (GuiComponentSettings)\n"
                                      "   0  \"LeftDockWidgetArea\"       \"LeftDockWidgetArea\"\n"
                                      "   1  \"RightDockWidgetArea\"      \"RightDockWidgetArea\"\n"
                                      "   2  \"TopDockWidgetArea\"        \"TopDockWidgetArea\"\n"
                                      "   3  \"BottomDockWidgetArea\"     \"BottomDockWidgetArea\"\n"
                                      "   4  \"CenterDockWidgetArea\"     \"CenterDockWidgetArea\"\n"
                                      "   5  \"FloatingDockWidgetArea \"  \"FloatingDockWidgetArea \"\n"
                                      "   6  \"NoDockWidgetArea\"         \"NoDockWidgetArea\"\n"));

    run = runTool({QStringLiteral("names"), QStringLiteral("--lang"), QStringLiteral("de")});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.err, QString());
    EXPECT_TRUE(run.out.contains(QStringLiteral("   1  \"PMR830ManagementComponent\"  \"PMR830-Verwaltungskomponente\"\n")));
    EXPECT_TRUE(run.out.contains(QStringLiteral("   0  \"AVAILABLE\"        \"Verfügbar\"\n")));
    EXPECT_TRUE(run.out.contains(QStringLiteral("   5  \"FloatingDockWidgetArea \"  \"Schwebendes Fenster\"\n")));
    EXPECT_TRUE(run.out.contains(QStringLiteral("   6  \"NoDockWidgetArea\"         \"Kein Andockbereich\"\n")));
}

TEST_F(ToolTest, HelpVersionAndUsageErrors)
{
    ToolRun run = runTool({QStringLiteral("--version")});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.out, QStringLiteral("torvixml " TORVIXML_TOOL_VERSION "\n"));

    run = runTool({QStringLiteral("--help")});
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.out.startsWith(QStringLiteral("Usage: torvixml [options] COMMAND [ARGUMENTS...]\n")))
        << run.out.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("  dump FILE ")));

    run = runTool({QStringLiteral("dump"), QStringLiteral("--help")});
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.out.startsWith(QStringLiteral("Usage: torvixml dump [options] FILE\n"))) << run.out.toStdString();

    run = runTool({});
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.err, QStringLiteral("torvixml: no command given\nTry 'torvixml --help'.\n"));
    run = runTool({QStringLiteral("frob")});
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.err, QStringLiteral("torvixml: unknown command \"frob\"\nTry 'torvixml --help'.\n"));
    run = runTool({QStringLiteral("check"), QStringLiteral("--frob")});
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.err, QStringLiteral("torvixml: Unknown option 'frob'.\nTry 'torvixml check --help'.\n"));
    run = runTool({QStringLiteral("dump"), path(QStringLiteral("missing.bin"))});
    EXPECT_EQ(run.code, 2);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
