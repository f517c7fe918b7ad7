// Runs the torvixml program as a separate process. Most cases are rows of a
// table: arguments, standard input, exit status, with standard output and
// standard error compared to golden files tests/data/tool/expected/NAME.out
// and NAME.err (a missing file: no output). The inputs are the files of
// tests/data/tool, the tool's working directory; @TMP@ stands for a scratch
// directory. TORVIXML_REGENERATE_GOLDEN=1 rewrites the golden files (review
// the change before committing it).

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtEndian>

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

struct Case
{
    const char* name;      // of the golden files
    const char* arguments; // split at blanks
    const char* input;     // a file of tests/data/tool for standard input, or null
    int code;
};

void PrintTo(const Case& c, std::ostream* os)
{
    *os << c.name;
}

// clang-format off
const Case cases[] = {
    {"help", "--help", nullptr, 0},
    {"version", "--version", nullptr, 0},
    {"no-command", "", nullptr, 2},
    {"unknown-command", "frob", nullptr, 2},
    {"unknown-option", "check --frob", nullptr, 2},
    {"demo", "demo @TMP@/out/nested", nullptr, 0},
    {"demo-de", "demo --lang de @TMP@/de", nullptr, 0},
    {"names", "names", nullptr, 0},
    {"names-de", "names --lang de", nullptr, 0},
    {"convert-bad-extension", "convert demo.xml @TMP@/e.txt", nullptr, 2},
    {"convert-compress-xml", "convert demo.xml @TMP@/e.xml --compress 1", nullptr, 2},
    {"convert-stdout-without-to", "convert demo.xml -", nullptr, 2},
    {"convert-bad-to", "convert demo.xml @TMP@/e.bin --to json", nullptr, 2},
    {"convert-bad-max-size", "convert demo.xml @TMP@/e.bin --max-size 12X", nullptr, 2},
    {"convert-bad-level", "convert demo.xml @TMP@/e.bin --compress 10", nullptr, 2},
    {"convert-one-file", "convert demo.xml", nullptr, 2},
    {"convert-nul-to-xml", "convert nul.bin @TMP@/nul.xml", nullptr, 1},
    {"convert-incomplete", "convert --no-validate incomplete.xml - --to xml", nullptr, 0},
    {"convert-nameless-xml", "convert --no-validate unknown-names.xml @TMP@/out.bin", nullptr, 1},
    {"convert-nameless-bin", "convert --no-validate unknown-name.bin @TMP@/out.bin", nullptr, 1},
    {"convert-unknown-name", "convert unknown-names.xml @TMP@/out.bin", nullptr, 1},
    {"convert-no-handler", "convert no-handler.xml @TMP@/out.bin", nullptr, 1},
    {"convert-sparse", "convert @TMP@/sparse.bin @TMP@/out.xml", nullptr, 1},
    {"check-faults", "check demo.xml example.bin no-handler.xml bad-handler.xml no-blank.xml nameless-mode.xml "
                     "repeated.xml broken.xml long-record.bin floating.bin truncated.bin other-root.xml empty.xml",
     nullptr, 1},
    {"check-repeated", "check repeated.xml repeated.bin", nullptr, 0},
    {"check-strict", "check --strict repeated.bin", nullptr, 1},
    {"check-framing", "check framing.bin null-name.bin example.z.bin", nullptr, 1},
    {"check-missing", "check demo.xml missing.xml broken.xml", nullptr, 2},
    {"check-json", "check --json --strict demo.xml repeated.bin bad-handler.xml truncated.bin missing.xml", nullptr, 2},
    {"check-xml-errors", "check byte86.xml byte318.xml laughs.xml attributes.xml", nullptr, 1},
    {"check-stdin", "check -", "demo.xml", 0},
    {"check-dev-stdin", "check /dev/stdin", "demo.bin", 0},
    {"check-empty-stdin", "check -", "empty.xml", 1},
    {"check-stdin-too-large", "check --max-size 500 -", "demo.xml", 1},
    {"check-huge", "check @TMP@/sparse.bin /dev/zero", nullptr, 1},
    {"check-huge-1k", "check --max-size 1K /dev/zero", nullptr, 1},
    {"dump", "dump example.bin", nullptr, 0},
    {"dump-compressed", "dump --limit 3 example.z.bin", nullptr, 0},
    {"dump-stdin", "dump --limit 1 -", "demo.bin", 0},
    {"dump-long-record", "dump long-record.bin", nullptr, 1},
    {"dump-long-object", "dump --limit 15 long-object.bin", nullptr, 1},
    {"dump-unknown", "dump --limit 21 unknown.bin", nullptr, 0},
    {"dump-null-name", "dump --limit 17 null-name.bin", nullptr, 1},
    {"dump-json", "dump --json --limit 2 long-record.bin", nullptr, 1},
    {"dump-xml", "dump expected/format-compressed.out", nullptr, 0},
    {"dump-xml-outline", "dump outline.xml", nullptr, 1},
    {"dump-xml-json", "dump --json --limit 1 broken.xml", nullptr, 1},
    {"dump-sparse", "dump @TMP@/sparse.bin", nullptr, 1},
    {"dump-missing", "dump missing.bin", nullptr, 2},
    {"dump-bad-limit", "dump --limit -1 example.bin", nullptr, 2},
    {"format-compressed", "format demo.z.bin", nullptr, 0},
    {"format-refused", "format bad-handler.xml -o @TMP@/bad.xml", nullptr, 1},
    {"format-bad-indent", "format demo.xml --indent 17", nullptr, 2},
    {"diff-equal", "diff demo.xml demo.z.bin", nullptr, 0},
    {"diff", "diff diff-a.xml diff-b.bin", nullptr, 1},
    {"diff-json", "diff --json diff-a.xml diff-b.bin", nullptr, 1},
    {"diff-json-equal", "diff --json - demo.bin", "demo.xml", 0},
    {"diff-unreadable", "diff broken.xml unknown-names.xml", nullptr, 2},
    {"diff-one-file", "diff demo.xml", nullptr, 2},
    {"diff-two-stdin", "diff - -", nullptr, 2},
    {"diff-help", "diff --help", nullptr, 0},
    {"quiet-check", "check --quiet demo.xml", nullptr, 0},
    {"quiet-check-bad", "check -q demo.xml truncated.bin", nullptr, 1},
    {"quiet-dump", "dump --quiet example.bin", nullptr, 0},
    {"quiet-convert", "convert --quiet demo.xml @TMP@/out.bin", nullptr, 0},
    {"quiet-format", "format -q min.xml", nullptr, 0},
    {"quiet-names", "names --quiet", nullptr, 0},
    {"quiet-demo", "demo --quiet @TMP@/demo", nullptr, 0},
    {"quiet-diff", "diff --quiet diff-a.xml diff-b.bin", nullptr, 1},
};
// clang-format on

class Golden : public ::testing::TestWithParam<Case>
{
};

TEST_P(Golden, PrintsAndExitsAsRecorded)
{
    const Case& c = GetParam();
    const ToolRun run = runTool(QString::fromUtf8(c.arguments).split(QLatin1Char(' '), Qt::SkipEmptyParts),
                                c.input ? readBytes(dataDir + QLatin1Char('/') + QLatin1String(c.input)) : QByteArray());
    ASSERT_TRUE(run.finished);
    EXPECT_EQ(run.code, c.code);
    expectGolden(QLatin1String(c.name) + QStringLiteral(".out"), run.out);
    expectGolden(QLatin1String(c.name) + QStringLiteral(".err"), run.err);
}

INSTANTIATE_TEST_SUITE_P(Tool, Golden, ::testing::ValuesIn(cases), [](const ::testing::TestParamInfo<Case>& info) {
    return QString::fromLatin1(info.param.name).replace(QLatin1Char('-'), QLatin1Char('_')).toStdString();
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
        QStringList arguments;
        QString output;
        QByteArray expected;
    } steps[] = {
        {{QStringLiteral("bom-demo.xml"), QStringLiteral("@TMP@/a.bin")}, QStringLiteral("a.bin"), data("demo.bin")},
        {{QStringLiteral("@TMP@/a.bin"), QStringLiteral("@TMP@/b.xml")}, QStringLiteral("b.xml"), data("demo.xml")},
        {{QStringLiteral("@TMP@/b.xml"), QStringLiteral("@TMP@/c.BIN"), QStringLiteral("--compress"), QStringLiteral("9")},
         QStringLiteral("c.BIN"), qCompress(data("demo.bin"), 9)},
        {{QStringLiteral("@TMP@/c.BIN"), QStringLiteral("@TMP@/d.xml")}, QStringLiteral("d.xml"), data("demo.xml")},
        {{QStringLiteral("nul.bin"), QStringLiteral("@TMP@/nul.bin")}, QStringLiteral("nul.bin"), data("nul.bin")},
    };
    for (const auto& step : steps) {
        const ToolRun run = runTool(QStringList{QStringLiteral("convert")} + step.arguments);
        EXPECT_EQ(run.code, 0) << run.err.toStdString();
        EXPECT_EQ(readBytes(scratchPath(step.output)), step.expected) << step.output.toStdString();
    }
    // Through pipes, both ways; indented XML converts back to the same bytes.
    EXPECT_EQ(runTool({QStringLiteral("convert"), QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("--to"),
                       QStringLiteral("bin")}, data("demo.xml")).out, data("demo.bin"));
    EXPECT_EQ(runTool({QStringLiteral("convert"), QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("--to"),
                       QStringLiteral("XML")}, data("demo.bin")).out, data("demo.xml"));
    runTool({QStringLiteral("format"), QStringLiteral("demo.xml"), QStringLiteral("-o"), QStringLiteral("@TMP@/p.xml"),
             QStringLiteral("--indent"), QStringLiteral("0")});
    EXPECT_TRUE(readBytes(scratchPath(QStringLiteral("p.xml"))).contains("\n<DockWidgetLocation>FloatingDockWidgetArea </"));
    runTool({QStringLiteral("convert"), QStringLiteral("@TMP@/p.xml"), QStringLiteral("@TMP@/p.bin")});
    EXPECT_EQ(readBytes(scratchPath(QStringLiteral("p.bin"))), data("demo.bin"));
    // The demo writes both forms and nothing else.
    runTool({QStringLiteral("demo"), QStringLiteral("@TMP@/demo")});
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
    const QStringList failing[] = {
        {QStringLiteral("convert"), QStringLiteral("no-handler.xml"), QStringLiteral("@TMP@/old.bin")},
        {QStringLiteral("convert"), QStringLiteral("truncated.bin"), QStringLiteral("@TMP@/old.xml")},
        {QStringLiteral("convert"), QStringLiteral("missing.xml"), QStringLiteral("@TMP@/old.xml")},
        {QStringLiteral("convert"), QStringLiteral("--no-validate"), QStringLiteral("unknown-names.xml"), QStringLiteral("@TMP@/old.bin")},
        {QStringLiteral("format"), QStringLiteral("bad-handler.xml"), QStringLiteral("-o"), QStringLiteral("@TMP@/old.xml")},
        {QStringLiteral("convert"), QStringLiteral("demo.xml"), QStringLiteral("@TMP@/e.xml"), QStringLiteral("--compress"), QStringLiteral("1")},
    };
    for (const QStringList& arguments : failing)
        EXPECT_NE(runTool(arguments).code, 0) << arguments.join(QLatin1Char(' ')).toStdString();
    EXPECT_EQ(readBytes(scratchPath(QStringLiteral("old.bin"))), previous);
    EXPECT_EQ(readBytes(scratchPath(QStringLiteral("old.xml"))), previous);
    EXPECT_EQ(entries(scratch().path()), before);

    // A directory that does not exist, and a full device for standard output.
    ToolRun run = runTool({QStringLiteral("convert"), QStringLiteral("demo.xml"), QStringLiteral("@TMP@/none/out.bin")});
    EXPECT_EQ(run.code, 2);
    EXPECT_TRUE(run.err.startsWith(scratchPath(QStringLiteral("none/out.bin: cannot open for writing: ")).toUtf8()));
    run = runTool({QStringLiteral("convert"), QStringLiteral("demo.xml"), QStringLiteral("-"), QStringLiteral("--to"),
                   QStringLiteral("xml")}, QByteArray(), QStringLiteral("/dev/full"));
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
