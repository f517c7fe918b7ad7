// Replays the fuzz corpus, so that every input the fuzzers were seeded with
// or found stays a named regression: each file runs through the fuzz
// target with all its oracles (a failing oracle aborts, naming the file
// above), and its outcome of a plain read, validation off and on, is
// compared with a golden file.

#include "TestSupport.h"

#include <QBuffer>
#include <QDir>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

using namespace TestSupport;

QByteArray OutcomeOfRead(const QByteArray& bytes, bool validate)
{
    R root;
    root.SetValidate(validate);
    QByteArray data = bytes;
    QBuffer buffer(&data);
    bool read = false;
    try {
        read = qstrcmp(TORVIXML_FUZZ_FORM, "xml") == 0 ? root.LoadXml(&buffer) : root.SetBinaryRepresentation(data);
    } catch (const ReportException& e) {
        return "exception: " + e.GetMessageText().toUtf8();
    }
    if (!read)
        return "false: " + root.GetErrorString().toUtf8();
    return "true: " + QByteArray::fromStdString(Outline(root));
}

TEST(FuzzCorpus, EveryInputPassesTheOraclesAndReadsAsBefore)
{
    const QDir corpus(QStringLiteral(TORVIXML_FUZZ_CORPUS_DIR "/" TORVIXML_FUZZ_FORM));
    const QStringList files = corpus.entryList(QDir::Files, QDir::Name);
    ASSERT_FALSE(files.isEmpty()) << corpus.path().toStdString();
    QByteArray report;
    for (const QString& name : files) {
        QFile file(corpus.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        const QByteArray bytes = file.readAll();
        fprintf(stderr, "replaying %s\n", qPrintable(name));
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.constData()), size_t(bytes.size()));
        report += name.toUtf8() + "\n  validation off: " + OutcomeOfRead(bytes, false)
            + "\n  validation on:  " + OutcomeOfRead(bytes, true) + '\n';
    }
    EXPECT_TRUE(MatchesGolden(QStringLiteral("fuzz/" TORVIXML_FUZZ_FORM "-corpus.txt"), report));
}

} // namespace
