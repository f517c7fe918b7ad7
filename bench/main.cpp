// torvixml_bench: the library's writers, readers, copy, check and equality
// on trees of 10 to 100,000 component settings, each next to its anchors.
//
// Benchmark names are <operation>/<implementation>/<modes>x<components>.
// Every benchmark reports
//   ns_per_leaf       CPU time per iteration divided by the number of leaves,
//   bytes_per_second  the size of the document it writes or reads (for copy,
//                     check and equality: the size of the binary document of
//                     the tree) over CPU time,
//   leaves, doc_bytes the tree size and that document size.
// Memory/... benchmarks run once and report heap figures per leaf instead.
//
// Extra options (before the Google Benchmark ones):
//   --sizes=1x10,10x100,...          tree shapes (default 1x10,10x100,100x100,1000x100)
//   --instructions=REGEX             instead of timing, run each matching benchmark
//                                    --instruction_iterations times (default 5)
//                                    with callgrind collecting, dumping one profile
//                                    per benchmark (run under valgrind --tool=callgrind
//                                    --collect-atstart=no)
#include "AllocationCounter.h"
#include "BenchTrees.h"
#include "DocumentCodecs.h"
#include "StreamCodecs.h"

#include <benchmark/benchmark.h>

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#ifdef TORVIXML_BENCH_CALLGRIND
#include <valgrind/callgrind.h>
#endif

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <regex>
#include <string>
#include <vector>

using namespace TORVIXML;

namespace Bench {
namespace {

[[noreturn]] void Fail(const QString& what)
{
    std::fprintf(stderr, "torvixml_bench: %s\n", qPrintable(what));
    std::abort();
}

// Everything the benchmarks of one tree shape need, built and cross-checked
// once: the anchors must produce and accept exactly what the library does.
struct Fixture
{
    explicit Fixture(const TreeShape& s)
        : shape(s)
        , leaves(s.Leaves())
        , plain(BuildPlainTree(s))
        , tree(BuildSettingsTree(s))
        , twin(BuildSettingsTree(s))
    {
        const QString label = s.Label();
        binary = tree.GetBinaryRepresentationAsQByteArray();
        xml = tree.GetXmlString();
        xmlUtf8Bytes = xml.toUtf8().size();
        if (EncodeBinary(plain) != binary)
            Fail(QStringLiteral("%1: the QDataStream codec does not write the library's bytes").arg(label));
        if (EncodeXml(plain) != xml)
            Fail(QStringLiteral("%1: the QXmlStream codec does not write the library's XML").arg(label));

        PlainTree decoded;
        if (!DecodeBinary(binary, decoded) || !(decoded == plain))
            Fail(QStringLiteral("%1: the QDataStream codec does not read the library's bytes").arg(label));
        decoded = PlainTree();
        if (!DecodeXml(xml, decoded) || !(decoded == plain))
            Fail(QStringLiteral("%1: the QXmlStream codec does not read the library's XML").arg(label));

        json = EncodeJson(plain);
        decoded = PlainTree();
        if (!DecodeJson(json, decoded) || !(decoded == plain))
            Fail(QStringLiteral("%1: JSON round trip differs").arg(label));
        cbor = EncodeCbor(plain);
        decoded = PlainTree();
        if (!DecodeCbor(cbor, decoded) || !(decoded == plain))
            Fail(QStringLiteral("%1: CBOR round trip differs").arg(label));
#ifdef TORVIXML_BENCH_PROTOBUF
        protobuf = EncodeProtobuf(plain);
        decoded = PlainTree();
        if (!DecodeProtobuf(protobuf, decoded) || !(decoded == plain))
            Fail(QStringLiteral("%1: Protobuf round trip differs").arg(label));
#endif

        if (!(tree == twin))
            Fail(QStringLiteral("%1: two trees built alike are not equal").arg(label));
        TorviGuiModeSettings fromBinary;
        fromBinary.SetValidate(true);
        if (!fromBinary.SetBinaryRepresentation(binary) || !(fromBinary == tree))
            Fail(QStringLiteral("%1: the binary document does not read back to the tree").arg(label));
        TorviGuiModeSettings fromXml;
        fromXml.SetValidate(true);
        if (!fromXml.SetXmlString(xml, true) || !(fromXml == tree))
            Fail(QStringLiteral("%1: the XML document does not read back to the tree").arg(label));
    }

    TreeShape shape;
    int leaves;
    PlainTree plain;
    TorviGuiModeSettings tree;
    TorviGuiModeSettings twin;
    QByteArray binary;
    QString xml;
    qint64 xmlUtf8Bytes = 0;
    QByteArray json;
    QByteArray cbor;
    std::string protobuf;
};

Fixture& FixtureFor(const TreeShape& shape)
{
    static std::map<std::pair<int, int>, std::unique_ptr<Fixture>> fixtures;
    std::unique_ptr<Fixture>& slot = fixtures[{shape.modes, shape.components}];
    if (!slot)
        slot = std::make_unique<Fixture>(shape);
    return *slot;
}

// One timed benchmark: its body runs once per iteration; size gives the
// document bytes it stands for.
struct Case
{
    std::string operation;
    std::string implementation;
    std::function<void(Fixture&)> body;
    std::function<qint64(const Fixture&)> size;
};

qint64 BinarySize(const Fixture& f) { return f.binary.size(); }
qint64 XmlSize(const Fixture& f) { return f.xmlUtf8Bytes; }

std::vector<Case> TimedCases()
{
    std::vector<Case> cases;
    auto add = [&](const char* operation, const char* implementation, std::function<void(Fixture&)> body,
                   std::function<qint64(const Fixture&)> size) {
        cases.push_back(Case{operation, implementation, std::move(body), std::move(size)});
    };

    // Binary form.
    add("BinaryWrite", "TorviXML", [](Fixture& f) {
        QByteArray bytes = f.tree.GetBinaryRepresentationAsQByteArray();
        benchmark::DoNotOptimize(bytes.data());
    }, BinarySize);
    add("BinaryWrite", "QDataStream", [](Fixture& f) {
        QByteArray bytes = EncodeBinary(f.plain);
        benchmark::DoNotOptimize(bytes.data());
    }, BinarySize);
    add("BinaryRead", "TorviXML", [](Fixture& f) {
        TorviGuiModeSettings read;
        read.SetValidate(true);
        bool ok = read.SetBinaryRepresentation(f.binary);
        benchmark::DoNotOptimize(ok);
    }, BinarySize);
    add("BinaryRead", "QDataStream", [](Fixture& f) {
        PlainTree read;
        bool ok = DecodeBinary(f.binary, read);
        benchmark::DoNotOptimize(ok);
    }, BinarySize);

    // XML form.
    add("XmlWrite", "TorviXML", [](Fixture& f) {
        QString xml = f.tree.GetXmlString();
        benchmark::DoNotOptimize(xml.data());
    }, XmlSize);
    add("XmlWrite", "QXmlStream", [](Fixture& f) {
        QString xml = EncodeXml(f.plain);
        benchmark::DoNotOptimize(xml.data());
    }, XmlSize);
    add("XmlRead", "TorviXML", [](Fixture& f) {
        TorviGuiModeSettings read;
        read.SetValidate(true);
        bool ok = read.SetXmlString(f.xml, true);
        benchmark::DoNotOptimize(ok);
    }, XmlSize);
    add("XmlRead", "QXmlStream", [](Fixture& f) {
        PlainTree read;
        bool ok = DecodeXml(f.xml, read);
        benchmark::DoNotOptimize(ok);
    }, XmlSize);

    // General-purpose formats of the same tree.
    add("Write", "QJsonDocument", [](Fixture& f) {
        QByteArray bytes = EncodeJson(f.plain);
        benchmark::DoNotOptimize(bytes.data());
    }, [](const Fixture& f) { return qint64(f.json.size()); });
    add("Read", "QJsonDocument", [](Fixture& f) {
        PlainTree read;
        bool ok = DecodeJson(f.json, read);
        benchmark::DoNotOptimize(ok);
    }, [](const Fixture& f) { return qint64(f.json.size()); });
    add("Write", "QCborValue", [](Fixture& f) {
        QByteArray bytes = EncodeCbor(f.plain);
        benchmark::DoNotOptimize(bytes.data());
    }, [](const Fixture& f) { return qint64(f.cbor.size()); });
    add("Read", "QCborValue", [](Fixture& f) {
        PlainTree read;
        bool ok = DecodeCbor(f.cbor, read);
        benchmark::DoNotOptimize(ok);
    }, [](const Fixture& f) { return qint64(f.cbor.size()); });
#ifdef TORVIXML_BENCH_PROTOBUF
    add("Write", "Protobuf", [](Fixture& f) {
        std::string bytes = EncodeProtobuf(f.plain);
        benchmark::DoNotOptimize(bytes.data());
    }, [](const Fixture& f) { return qint64(f.protobuf.size()); });
    add("Read", "Protobuf", [](Fixture& f) {
        PlainTree read;
        bool ok = DecodeProtobuf(f.protobuf, read);
        benchmark::DoNotOptimize(ok);
    }, [](const Fixture& f) { return qint64(f.protobuf.size()); });
#endif

    // Value semantics and validation.
    add("CopyChange", "TorviXML", [](Fixture& f) {
        TorviGuiModeSettings copy;
        copy.SetValidate(true);
        copy = f.tree;
        copy.GetDataOperationMode()[0].SetName(QStringLiteral("Changed"));
        benchmark::DoNotOptimize(&copy);
    }, BinarySize);
    add("CopyConstruct", "TorviXML", [](Fixture& f) {
        TorviGuiModeSettings copy(f.tree);
        benchmark::DoNotOptimize(&copy);
    }, BinarySize);
    add("Check", "TorviXML", [](Fixture& f) {
        f.tree.Check();
    }, BinarySize);
    add("Equality", "TorviXML", [](Fixture& f) {
        bool equal = f.tree == f.twin;
        benchmark::DoNotOptimize(equal);
    }, BinarySize);
    return cases;
}

std::string BenchName(const Case& c, const TreeShape& shape)
{
    return c.operation + "/" + c.implementation + "/" + shape.Label().toStdString();
}

void RegisterTimed(const std::vector<Case>& cases, const std::vector<TreeShape>& shapes)
{
    for (const Case& c : cases) {
        for (const TreeShape& shape : shapes) {
            benchmark::RegisterBenchmark(BenchName(c, shape).c_str(), [c, shape](benchmark::State& state) {
                Fixture& f = FixtureFor(shape);
                for (auto _ : state)
                    c.body(f);
                const qint64 bytes = c.size(f);
                state.SetBytesProcessed(int64_t(state.iterations()) * bytes);
                // Inverted rate of leaves * 1e-9 per iteration: nanoseconds per leaf.
                state.counters["ns_per_leaf"] = benchmark::Counter(
                    f.leaves * 1e-9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
                state.counters["leaves"] = f.leaves;
                state.counters["doc_bytes"] = double(bytes);
            });
        }
    }
}

// Heap figures, per leaf, of one measured step; the counts of the step are
// taken while its result is still alive.
void ReportHeap(benchmark::State& state, const HeapCounts& counts, int leaves)
{
    state.counters["allocs_per_leaf"] = double(counts.allocations) / leaves;
    state.counters["alloc_bytes_per_leaf"] = double(counts.allocatedBytes) / leaves;
    state.counters["retained_bytes_per_leaf"] = double(counts.liveBytes) / leaves;
    state.counters["retained_blocks_per_leaf"] = double(counts.liveBlocks) / leaves;
    state.counters["leaves"] = leaves;
}

void RegisterMemory(const std::vector<TreeShape>& shapes)
{
    using Step = std::function<HeapCounts(Fixture&)>;
    const std::vector<std::pair<std::string, Step>> steps = {
        {"BinaryRead/TorviXML", [](Fixture& f) {
             TorviGuiModeSettings read;
             read.SetValidate(true);
             Heap::Start();
             read.SetBinaryRepresentation(f.binary);
             return Heap::Stop();
         }},
        {"XmlRead/TorviXML", [](Fixture& f) {
             TorviGuiModeSettings read;
             read.SetValidate(true);
             Heap::Start();
             read.SetXmlString(f.xml, true);
             return Heap::Stop();
         }},
        {"BinaryRead/QDataStream", [](Fixture& f) {
             PlainTree read;
             Heap::Start();
             DecodeBinary(f.binary, read);
             return Heap::Stop();
         }},
        {"XmlRead/QXmlStream", [](Fixture& f) {
             PlainTree read;
             Heap::Start();
             DecodeXml(f.xml, read);
             return Heap::Stop();
         }},
        {"Copy/TorviXML/BeforeChange", [](Fixture& f) {
             TorviGuiModeSettings copy;
             copy.SetValidate(true);
             Heap::Start();
             copy = f.tree;
             return Heap::Stop();
         }},
        {"Copy/TorviXML/AfterChange", [](Fixture& f) {
             TorviGuiModeSettings copy;
             copy.SetValidate(true);
             Heap::Start();
             copy = f.tree;
             copy.GetDataOperationMode()[0].SetName(QStringLiteral("Changed"));
             return Heap::Stop();
         }},
    };
    for (const auto& step : steps) {
        for (const TreeShape& shape : shapes) {
            const std::string name = "Memory/" + step.first + "/" + shape.Label().toStdString();
            Step run = step.second;
            benchmark::RegisterBenchmark(name.c_str(), [run, shape](benchmark::State& state) {
                Fixture& f = FixtureFor(shape);
                HeapCounts counts;
                for (auto _ : state)
                    counts = run(f);
                ReportHeap(state, counts, f.leaves);
            })->Iterations(1)->Repetitions(1);
        }
    }
}

int RunInstructions(const std::vector<Case>& cases, const std::vector<TreeShape>& shapes,
                    const std::string& pattern, int iterations)
{
#ifdef TORVIXML_BENCH_CALLGRIND
    const std::regex filter(pattern);
    for (const Case& c : cases) {
        for (const TreeShape& shape : shapes) {
            const std::string name = BenchName(c, shape);
            if (!std::regex_search(name, filter))
                continue;
            Fixture& f = FixtureFor(shape);
            c.body(f); // warm-up: first-use statics, lazily built tables
            CALLGRIND_ZERO_STATS;
            CALLGRIND_TOGGLE_COLLECT;
            for (int i = 0; i < iterations; ++i)
                c.body(f);
            CALLGRIND_TOGGLE_COLLECT;
            CALLGRIND_DUMP_STATS_AT(name.c_str());
            std::printf("%s leaves=%d iterations=%d\n", name.c_str(), f.leaves, iterations);
        }
    }
    return 0;
#else
    (void)cases;
    (void)shapes;
    (void)pattern;
    (void)iterations;
    std::fprintf(stderr, "torvixml_bench: built without valgrind/callgrind.h\n");
    return 2;
#endif
}

std::vector<TreeShape> ParseSizes(const QString& text)
{
    std::vector<TreeShape> shapes;
    for (const QString& item : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QStringList parts = item.split(QLatin1Char('x'));
        bool okModes = false;
        bool okComponents = false;
        TreeShape shape;
        if (parts.size() == 2) {
            shape.modes = parts.at(0).toInt(&okModes);
            shape.components = parts.at(1).toInt(&okComponents);
        }
        if (!okModes || !okComponents || shape.modes < 1 || shape.components < 1)
            Fail(QStringLiteral("bad size '%1' (expected MODESxCOMPONENTS)").arg(item));
        shapes.push_back(shape);
    }
    return shapes;
}

} // namespace
} // namespace Bench

int main(int argc, char** argv)
{
    using namespace Bench;
    QString sizes = QStringLiteral("1x10,10x100,100x100,1000x100");
    std::string instructions;
    int instructionIterations = 5;

    // Take our own options out before Google Benchmark sees the rest.
    std::vector<char*> rest;
    for (int i = 0; i < argc; ++i) {
        const char* arg = argv[i];
        if (std::strncmp(arg, "--sizes=", 8) == 0)
            sizes = QString::fromUtf8(arg + 8);
        else if (std::strncmp(arg, "--instructions=", 15) == 0)
            instructions = arg + 15;
        else if (std::strncmp(arg, "--instruction_iterations=", 25) == 0)
            instructionIterations = std::atoi(arg + 25);
        else
            rest.push_back(argv[i]);
    }
    int restCount = int(rest.size());
    rest.push_back(nullptr);

    const std::vector<TreeShape> shapes = ParseSizes(sizes);
    const std::vector<Case> cases = TimedCases();
    if (!instructions.empty())
        return RunInstructions(cases, shapes, instructions, qMax(1, instructionIterations));

    benchmark::Initialize(&restCount, rest.data());
    if (benchmark::ReportUnrecognizedArguments(restCount, rest.data()))
        return 1;
    benchmark::AddCustomContext("qt_version", qVersion());
    benchmark::AddCustomContext("compiler", __VERSION__);
#ifdef NDEBUG
    benchmark::AddCustomContext("torvixml_bench_build", "optimised (NDEBUG)");
#else
    benchmark::AddCustomContext("torvixml_bench_build", "assertions on");
#endif
#ifdef TORVIXML_BENCH_PROTOBUF
    benchmark::AddCustomContext("protobuf_anchor", "yes");
#else
    benchmark::AddCustomContext("protobuf_anchor", "no (Protocol Buffers not found at configure time)");
#endif
    RegisterTimed(cases, shapes);
    RegisterMemory(shapes);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
