// Runs the torvixml program as a separate process. Most cases are rows of
// tests/data/tool/cases.txt: arguments, standard input, exit status, with
// standard output and standard error compared to golden files
// tests/data/tool/expected/NAME.out and NAME.err (a missing file: no
// output). The inputs are the files of tests/data/tool, the tool's working
// directory; @TMP@ stands for a scratch directory.
// TORVIXML_REGENERATE_GOLDEN=1 rewrites the golden files (review the change
// before committing it).

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtEndian>

#include <vector>

namespace {

const QString dataDir = QStringLiteral(TORVIXML_TOOL_DATA "/tool");

QTemporaryDir& scratch()
{
    static QTemporaryDir dir;
    return dir;
}

QString scratchPath(const QString& name)
{
    return scratch().filePath(name);
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

QStringList entries(const QString& directory)
{
    return QDir(directory).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

struct ToolRun
{
    bool finished = false; // exited normally, neither crashed nor hung
    int code = -1;
    QByteArray out;
    QByteArray err;
};

// Runs the tool in tests/data/tool; input (if given) comes through a pipe,
// and outputFile (if given) takes its standard output.
ToolRun runTool(QStringList arguments, const QByteArray& input = QByteArray(), const QString& outputFile = QString())
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    environment.remove(QStringLiteral("LANGUAGE"));
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(dataDir);
    if (!outputFile.isEmpty())
        process.setStandardOutputFile(outputFile);
    for (QString& argument : arguments)
        argument.replace(QStringLiteral("@TMP@"), scratch().path());
    process.start(QStringLiteral(TORVIXML_TOOL_PATH), arguments);
    process.write(input);
    process.closeWriteChannel();
    ToolRun run;
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.finished = process.exitStatus() == QProcess::NormalExit;
    run.code = process.exitCode();
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

// Compares an output with its golden file. On a mismatch the output is
// written beside it as NAME.actual and the difference printed.
void expectGolden(const QString& name, QByteArray actual)
{
    actual.replace(scratch().path().toUtf8(), "@TMP@");
    actual.replace("torvixml " TORVIXML_TOOL_VERSION "\n", "torvixml @VERSION@\n");
    const QString golden = dataDir + QStringLiteral("/expected/") + name;
    if (qEnvironmentVariableIntValue("TORVIXML_REGENERATE_GOLDEN") == 1) {
        QFile::remove(golden);
        if (!actual.isEmpty())
            writeBytes(golden, actual);
        return;
    }
    const QByteArray expected = QFile::exists(golden) ? readBytes(golden) : QByteArray();
    QFile::remove(golden + QStringLiteral(".actual"));
    if (actual == expected)
        return;
    writeBytes(golden + QStringLiteral(".actual"), actual);
    QProcess diff;
    diff.start(QStringLiteral("diff"), {QStringLiteral("-u"), QFile::exists(golden) ? golden : QStringLiteral("/dev/null"),
                                        golden + QStringLiteral(".actual")});
    diff.waitForFinished();
    ADD_FAILURE() << name.toStdString() << " differs from its golden file:\n" << diff.readAllStandardOutput().toStdString();
}

// Splits at blanks.
QStringList args(const char* text)
{
    return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

struct Case
{
    QString name; // of the golden files
    int code = 0;
    QString input; // a file of tests/data/tool for standard input, or empty
    QStringList arguments;
};

void PrintTo(const Case& c, std::ostream* os)
{
    *os << c.name.toStdString();
}

// The rows of tests/data/tool/cases.txt.
std::vector<Case> cases()
{
    std::vector<Case> rows;
    for (const QByteArray& line : readBytes(dataDir + QStringLiteral("/cases.txt")).split('\n')) {
        QStringList fields = args(line.constData());
        if (fields.size() < 3 || fields[0].startsWith(QLatin1Char('#')))
            continue;
        rows.push_back({fields[0], fields[1].toInt(), fields[2] == QLatin1String("-") ? QString() : fields[2],
                        fields.mid(3)});
    }
    return rows;
}

class Golden : public ::testing::TestWithParam<Case>
{
};

TEST_P(Golden, PrintsAndExitsAsRecorded)
{
    const Case& c = GetParam();
    const ToolRun run = runTool(c.arguments, c.input.isEmpty() ? QByteArray() : readBytes(dataDir + QLatin1Char('/') + c.input));
    ASSERT_TRUE(run.finished);
    EXPECT_EQ(run.code, c.code);
    expectGolden(c.name + QStringLiteral(".out"), run.out);
    expectGolden(c.name + QStringLiteral(".err"), run.err);
}

INSTANTIATE_TEST_SUITE_P(Tool, Golden, ::testing::ValuesIn(cases()), [](const ::testing::TestParamInfo<Case>& info) {
    return QString(info.param.name).replace(QLatin1Char('-'), QLatin1Char('_')).toStdString();
});

QByteArray data(const char* name)
{
    return readBytes(dataDir + QLatin1Char('/') + QLatin1String(name));
}

TEST(Tool, WritesTheDocumentsItPromises)
{
    // XML, plain and compressed binary, each converted to the others; a
    // byte order mark and blanks before the first tag still make XML.
    const struct {
        const char* arguments;
        const char* output;
        QByteArray expected;
    } steps[] = {
        {"bom-demo.xml @TMP@/a.bin", "a.bin", data("demo.bin")},
        {"@TMP@/a.bin @TMP@/b.xml", "b.xml", data("demo.xml")},
        {"@TMP@/b.xml @TMP@/c.BIN --compress 9", "c.BIN", qCompress(data("demo.bin"), 9)},
        {"@TMP@/c.BIN @TMP@/d.xml", "d.xml", data("demo.xml")},
        {"nul.bin @TMP@/nul.bin", "nul.bin", data("nul.bin")},
    };
    for (const auto& step : steps) {
        const ToolRun run = runTool(args("convert") + args(step.arguments));
        EXPECT_EQ(run.code, 0) << run.err.toStdString();
        EXPECT_EQ(readBytes(scratchPath(QLatin1String(step.output))), step.expected) << step.output;
    }
    // Through pipes, both ways; indented XML converts back to the same bytes.
    EXPECT_EQ(runTool(args("convert - - --to bin"), data("demo.xml")).out, data("demo.bin"));
    EXPECT_EQ(runTool(args("convert - - --to XML"), data("demo.bin")).out, data("demo.xml"));
    runTool(args("format demo.xml -o @TMP@/p.xml --indent 0"));
    EXPECT_TRUE(readBytes(scratchPath(QStringLiteral("p.xml"))).contains("\n<DockWidgetLocation>FloatingDockWidgetArea </"));
    runTool(args("convert @TMP@/p.xml @TMP@/p.bin"));
    EXPECT_EQ(readBytes(scratchPath(QStringLiteral("p.bin"))), data("demo.bin"));
    // The demo writes both forms and nothing else.
    runTool(args("demo @TMP@/demo"));
    EXPECT_EQ(entries(scratchPath(QStringLiteral("demo"))), QStringList({QStringLiteral("settings.bin"), QStringLiteral("settings.xml")}));
    EXPECT_EQ(readBytes(scratchPath(QStringLiteral("demo/settings.bin"))), data("demo.bin"));
    EXPECT_EQ(readBytes(scratchPath(QStringLiteral("demo/settings.xml"))), data("demo.xml"));
}

TEST(Tool, FailedWritesLeaveTheOldOutputAlone)
{
    const QByteArray previous("previous content\n");
    writeBytes(scratchPath(QStringLiteral("old.bin")), previous);
    writeBytes(scratchPath(QStringLiteral("old.xml")), previous);
    const QStringList before = entries(scratch().path());
    for (const char* arguments :
         {"convert no-handler.xml @TMP@/old.bin", "convert truncated.bin @TMP@/old.xml", "convert missing.xml @TMP@/old.xml",
          "convert --no-validate unknown-names.xml @TMP@/old.bin", "format bad-handler.xml -o @TMP@/old.xml",
          "convert demo.xml @TMP@/e.xml --compress 1"})
        EXPECT_NE(runTool(args(arguments)).code, 0) << arguments;
    EXPECT_EQ(readBytes(scratchPath(QStringLiteral("old.bin"))), previous);
    EXPECT_EQ(readBytes(scratchPath(QStringLiteral("old.xml"))), previous);
    EXPECT_EQ(entries(scratch().path()), before);

    // A directory that does not exist, and a full device for standard output.
    ToolRun run = runTool(args("convert demo.xml @TMP@/none/out.bin"));
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.err.startsWith(scratchPath(QStringLiteral("none/out.bin: cannot open for writing: ")).toUtf8()));
    run = runTool(args("convert demo.xml - --to xml"), QByteArray(), QStringLiteral("/dev/full"));
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.err, QByteArray("-: cannot write: No space left on device\n"));
}

TEST(Tool, SurvivesTruncatedAndRandomBytes)
{
    // Every prefix of a plain and of a compressed document, and random bytes
    // with and without the root's class id in front, checked in one run:
    // each file gets its error, none a crash or an OK.
    const QByteArray plain = data("example.bin");
    const QByteArray packed = data("example.z.bin");
    QVector<QByteArray> inputs;
    for (int size = 0; size < plain.size(); ++size)
        inputs << plain.left(size);
    for (int size = 0; size < packed.size(); ++size)
        inputs << packed.left(size);
    QRandomGenerator random(20240611);
    for (int round = 0; round < 40; ++round) {
        QByteArray bytes(int(random.bounded(1, 300)), '\0');
        for (char& c : bytes)
            c = char(random.bounded(256));
        QByteArray length(4, '\0');
        qToBigEndian<quint32>(quint32(bytes.size()), length.data());
        inputs << bytes << plain.left(4) + length + bytes;
    }
    QStringList files{QStringLiteral("check")};
    for (int i = 0; i < inputs.size(); ++i) {
        files << scratchPath(QStringLiteral("t%1.bin").arg(i));
        writeBytes(files.last(), inputs[i]);
    }
    const ToolRun check = runTool(files);
    ASSERT_TRUE(check.finished);
    EXPECT_EQ(check.code, 1);
    EXPECT_EQ(check.out, QByteArray());
    for (int i = 1; i < files.size(); ++i)
        EXPECT_TRUE(check.err.contains(QByteArray(files[i].toUtf8() + ": "))) << files[i].toStdString();

    // dump and convert on prefixes that end inside a word or at a field of
    // the plain walk, where the byte accounting changes.
    for (int size : {0, 3, 4, 8, 16, 20, 37, 49, 66, 99, 117, 152}) {
        const QString file = files[size + 1];
        for (const QStringList& arguments : {QStringList{QStringLiteral("dump"), file},
                                             QStringList{QStringLiteral("convert"), file, QStringLiteral("@TMP@/t.xml")}}) {
            const ToolRun run = runTool(arguments);
            ASSERT_TRUE(run.finished) << arguments.join(QLatin1Char(' ')).toStdString();
            EXPECT_EQ(run.code, 1) << arguments.join(QLatin1Char(' ')).toStdString();
            EXPECT_TRUE(run.err.startsWith(QByteArray(file.toUtf8() + ": "))) << run.err.toStdString();
        }
    }
    EXPECT_FALSE(QFile::exists(scratchPath(QStringLiteral("t.xml"))));
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    // 3 GiB that take no room on disk, for the cases about the maximum size.
    QFile sparse(scratchPath(QStringLiteral("sparse.bin")));
    if (!sparse.open(QIODevice::WriteOnly) || !sparse.resize(qint64(3) << 30))
        return 1;
    sparse.close();
    return RUN_ALL_TESTS();
}
