// The XML form and the whole-document operations that every form shares:
// the writer's exact output (golden documents in tests/data/xml), what the
// reader makes of documents (tests/data/xml/read-cases.txt), files, the
// flag and logger of what was read; reads in every form replace the content
// or change nothing and say why, within the maximum document size, and no
// form is written without characters it cannot hold.

#include "TestSupport.h"

#include <QBuffer>
#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <sys/stat.h>

#include <functional>
#include <memory>
#include <thread>

using namespace TestSupport;
using REPORTGENERATOR::Logger;

namespace {

// What reads go into: a root that holds something else, with 9 as its
// invalid value for handler names it does not know, and the reason of a
// failed read left behind.
R Prior(bool validate = false)
{
    R r = Root(R::VbkManagementComponent, {Mode("Old")});
    r.SetInvalidOperationModeHandler(R::OperationModeHandler(9));
    r.SetXmlString(Q("Unsinn"), false);
    r.SetValidate(validate);
    return r;
}

// The outcome of a read: "true TREE" (Outline()), "false MESSAGE" (the
// error string) or "throws MESSAGE".
QString Outcome(R& root, const std::function<bool()>& read)
{
    bool ok = false;
    const QString thrown = MessageOf<ReportException>([&] { ok = read(); });
    if (thrown != kNothingThrown)
        return Q("throws ") + thrown;
    return ok ? Q("true ") + QString::fromStdString(Outline(root)) : Q("false ") + root.GetErrorString();
}

// Reads into Prior() without validation, with it or both (modes "lax",
// "strict", "both"); expects the outcome, the reason of a failure as the
// error string (none after success), and a failure to change nothing.
void ExpectRead(const QString& modes, const QString& expected, const std::function<bool(R&)>& read)
{
    for (const bool validate : {false, true}) {
        if (modes != Q("both") && (modes == Q("strict")) != validate)
            continue;
        SCOPED_TRACE(validate ? "in validation mode" : "without validation");
        R root = Prior(validate);
        EXPECT_EQ(Outcome(root, [&] { return read(root); }), expected);
        const bool succeeds = expected.startsWith(Q("true "));
        EXPECT_EQ(root.GetErrorString(), succeeds ? QString() : expected.section(QLatin1Char(' '), 1));
        if (!succeeds) {
            EXPECT_EQ(Outline(root), Outline(Prior()));
        }
    }
}

R EveryName()
{
    M named = Mode("  Spaced & <escaped> \"\u00dcn\u00efc\u00f6d\u00e9\" \u263a ");
    const char* names[] = {"left", "right", "top", "bottom", "center", "floating", "none"};
    for (int i = 0; i < 7; ++i)
        named.AppendGuiComponentSettings(Component(names[i], G::GuiComponentUsage(i % 2), G::DockWidgetLocation(i)));
    return Root(R::VbkManagementComponent, {Mode(""), named});
}

QByteArray Contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

// One whole-document read of bytes into root; a file form writes them into
// file first, and two forms read a device opened before, behind other
// bytes. Forms are of three kinds: xml, array (a binary document whole) and
// stream. Beyond the maximum document size "<holder> holds ..." says why.
struct Form
{
    const char* name;
    const char* kind;
    const char* holder;
    std::function<bool(R& root, const QByteArray& bytes, const QString& file)> read;
};
const Form kForms[] = {
    {"SetXmlString", "xml", "the text",
     [](R& r, const QByteArray& b, const QString&) { return r.SetXmlString(QString::fromUtf8(b), true); }},
    {"LoadXml(QString)", "xml", "the file",
     [](R& r, const QByteArray& b, const QString& f) { return WriteFile(f, b) && r.LoadXml(f); }},
    {"LoadXml(QFile*)", "xml", "the file",
     [](R& r, const QByteArray& b, const QString& f) { QFile file(f); return WriteFile(f, b) && r.LoadXml(&file); }},
    {"LoadXml(QIODevice*) from its position", "xml", "the document",
     [](R& r, const QByteArray& b, const QString&) {
         QBuffer buffer;
         buffer.setData("junk" + b);
         // A read consumes the buffer, as it consumes any other device.
         return buffer.open(QIODevice::ReadOnly) && buffer.seek(4) && r.LoadXml(&buffer) && buffer.atEnd();
     }},
    {"SetBinaryRepresentation(QByteArray&)", "array", "the document",
     [](R& r, const QByteArray& b, const QString&) { QByteArray data(b); return r.SetBinaryRepresentation(data); }},
    {"SetBinaryRepresentation(QDataStream&)", "stream", "the document",
     [](R& r, const QByteArray& b, const QString&) { QDataStream in(b); return r.SetBinaryRepresentation(in); }},
    {"LoadBinary from the file's position", "array", "the file",
     [](R& r, const QByteArray& b, const QString& f) {
         QFile file(f);
         return WriteFile(f, "junk" + b) && file.open(QIODevice::ReadOnly) && file.seek(4) && r.LoadBinary(&file);
     }},
};

} // namespace

TEST(XmlWriter, GoldenDocumentsAreWrittenExactlyAndReadBackEqual)
{
    const std::pair<const char*, R> goldens[] = {
        {"xml/example.xml", Example()}, {"xml/two-modes.xml", TwoModes()}, {"xml/every-name.xml", EveryName()}};
    for (const auto& [file, tree] : goldens) {
        for (const bool validate : {false, true}) {
            SCOPED_TRACE(file + std::string(validate ? " in validation mode" : ""));
            tree.SetValidate(validate);
            EXPECT_TRUE(MatchesGolden(Q(file), tree.GetXmlString().toUtf8()));
            R read;
            read.SetValidate(validate);
            ASSERT_TRUE(read.SetXmlString(QString::fromUtf8(ReadData(Q(file))), false));
            EXPECT_TRUE(read == tree);
            EXPECT_EQ(Outline(read), Outline(tree));
        }
    }
    // Unset members, and values without a name as empty elements.
    G invalid;
    invalid.SetGuiComponentUsage(G::GuiComponentUsage(2));
    invalid.SetDockWidgetLocation(G::DockWidgetLocation(-1));
    EXPECT_TRUE(MatchesGolden(Q("xml/unset-and-invalid.txt"),
                              (G().GetXmlString() + M().GetXmlString() + R().GetXmlString() + invalid.GetXmlString()
                               + Root(7, {Mode("Standard")}).GetXmlString()).toUtf8()));
}

TEST(XmlWriter, ValidationModeWritesNothingOfAnIncompleteTree)
{
    const auto refused = [](const auto& object) {
        object.SetValidate(true);
        QString text;
        QXmlStreamWriter writer(&text);
        const QString message = MessageOf<OutOfRangeException>([&] { object.GetXml(writer); });
        EXPECT_EQ(text, QString());
        EXPECT_EQ(MessageOf<OutOfRangeException>([&] { object.GetXmlString(); }), message);
        EXPECT_EQ(object.GetErrorString(), message);
        return message;
    };
    // The elements are checked first, depth first, then the object's own
    // members.
    EXPECT_EQ(refused(Root(kNoHandler, {Mode("Standard"), Mode(nullptr)})), PleaseSet("DataOperationMode", "Name"));
    EXPECT_EQ(refused(Root(kNoHandler, {Mode("Standard")})), PleaseSet("TorviGuiModeSettings", "OperationModeHandler"));
    G noLocation = Component("c");
    noLocation.ResetDockWidgetLocation();
    EXPECT_EQ(refused(Root(R::TX470ManagementComponent, {Mode("M", {Component("b"), noLocation})})),
              PleaseSet("GuiComponentSettings", "DockWidgetLocation"));
    EXPECT_EQ(refused(G()), PleaseSet("GuiComponentSettings", "GuiComponentUsage"));
    EXPECT_EQ(refused(M()), PleaseSet("DataOperationMode", "Name"));
}

// Each case of read-cases.txt (its head tells the format), read with
// SetXmlString and with LoadXml from a file.
TEST(XmlReader, CasesOfTheTable)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(Q("case.xml"));
    const QStringList cases = QString::fromUtf8(ReadData(Q("xml/read-cases.txt"))).split(Q("\n== ")).mid(1);
    EXPECT_EQ(cases.size(), 33);
    for (const QString& text : cases) {
        QStringList lines = text.split(QLatin1Char('\n')), outcomes, document;
        SCOPED_TRACE(lines.takeFirst().toStdString());
        for (const QString& line : lines) {
            if (line.contains(QRegularExpression(Q("^(lax|strict|both): "))))
                outcomes << line;
            else if (!line.isEmpty() && !line.startsWith(QLatin1Char('#')))
                document << line;
        }
        const QString xml = document.join(QLatin1Char('\n'));
        ASSERT_TRUE(WriteFile(path, xml.toUtf8()));
        ASSERT_FALSE(outcomes.isEmpty());
        for (const QString& outcome : outcomes) {
            const QString modes = outcome.section(Q(": "), 0, 0), expected = outcome.section(Q(": "), 1);
            ExpectRead(modes, expected, [&](R& root) { return root.SetXmlString(xml, false); });
            ExpectRead(modes, expected, [&](R& root) { return root.LoadXml(path); });
        }
    }
}

TEST(XmlReader, EveryPrefixOfADocumentIsRefusedAndChangesNothing)
{
    const QString declared = QString::fromUtf8(ReadData(Q("xml/example.xml"))).trimmed();
    for (const QString& document : {declared, declared.mid(declared.indexOf(Q("?>")) + 2)}) {
        for (int length = 0; length < document.size(); ++length) {
            ExpectRead(Q("both"), Q("false XML error at line 1, column %1: Premature end of document.").arg(length),
                       [&](R& root) { return root.SetXmlString(document.left(length), false); });
        }
    }
}

TEST(XmlFiles, SavesReplaceTheFileWholeAndLoadsSayWhyTheyFail)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(Q("settings.xml"));
    const R example = Example();
    ASSERT_TRUE(example.SaveXml(path));
    EXPECT_TRUE(MatchesGolden(Q("xml/example.xml"), Contents(path)));

    // A failed save leaves the previous file; a good one replaces it and
    // says nothing failed. Nothing is left beside the file.
    R incomplete = Root(kNoHandler, {Mode("Standard")});
    incomplete.SetValidate(true);
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { incomplete.SaveXml(path); }),
              PleaseSet("TorviGuiModeSettings", "OperationModeHandler"));
    EXPECT_FALSE(example.SaveXml(dir.filePath(Q("missing/settings.xml"))));
    EXPECT_EQ(example.GetErrorString(), Q("cannot open for writing: No such file or directory"));
    EXPECT_TRUE(MatchesGolden(Q("xml/example.xml"), Contents(path)));
    ASSERT_TRUE(example.SaveXml(path));
    EXPECT_EQ(example.GetErrorString(), QString());
    ASSERT_TRUE(TwoModes().SaveXml(path));
    EXPECT_TRUE(MatchesGolden(Q("xml/two-modes.xml"), Contents(path)));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot),
              QStringList{Q("settings.xml")});

    // A file the read opens is closed again, one opened before stays open.
    R root = Prior();
    QFile file(path);
    ASSERT_TRUE(root.LoadXml(&file));
    EXPECT_FALSE(file.isOpen());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    ASSERT_TRUE(root.LoadXml(&file));
    EXPECT_TRUE(file.isOpen());
    EXPECT_EQ(Outline(root), Outline(TwoModes()));

    QFile writeOnly(dir.filePath(Q("write-only.xml")));
    ASSERT_TRUE(writeOnly.open(QIODevice::WriteOnly));
    ExpectRead(Q("lax"), Q("false cannot open for reading: No such file or directory"),
               [&](R& r) { return r.LoadXml(dir.filePath(Q("none.xml"))); });
    ExpectRead(Q("lax"), Q("false no file given"), [&](R& r) { return r.LoadXml(static_cast<QFile*>(nullptr)); });
    ExpectRead(Q("lax"), Q("false cannot read: the file is open for writing only"),
               [&](R& r) { return r.LoadXml(&writeOnly); });
}

// Each child of the root re-applies the root's flag and logger to the
// modes appended before it. A mode appended last, with no child behind it,
// is a moved copy without a logger until something re-applies it, as a
// write does.
TEST(XmlReader, ReadElementsCarryTheFlagAndLoggerOfTheObjectReadInto)
{
    const auto logger = std::make_shared<Logger>();
    // v or - for the flag, L for the logger given, N for none.
    const auto mark = [&](const REPORTGENERATOR::IRGObject& o) {
        return std::string(o.GetValidate() ? "v" : "-") + (o.GetLogger() == logger ? "L" : o.GetLogger() ? "?" : "N");
    };
    const auto carried = [&](const R& root) {
        std::string out = mark(root) + "{";
        for (const M& m : root.GetDataOperationMode()) {
            out += mark(m) + "[";
            for (const G& g : m.GetGuiComponentSettings())
                out += mark(g);
            out += "]";
        }
        return QString::fromStdString(out + "}");
    };
    const QString component = Q("<GuiComponentSettings Name=\"c\"><GuiComponentUsage>AVAILABLE</GuiComponentUsage>"
                                "<DockWidgetLocation>TopDockWidgetArea</DockWidgetLocation></GuiComponentSettings>");
    const QString mode = Q("<DataOperationMode Name=\"%1\">%2</DataOperationMode>");
    const QString twoModes = Q("<TorviGuiModeSettings>") + mode.arg(Q("A"), component + component)
        + mode.arg(Q("B"), component) + Q("%1</TorviGuiModeSettings>");
    const QString handler = Q("<OperationModeHandler>TX470ManagementComponent</OperationModeHandler>");
    for (const bool validate : {false, true}) {
        SCOPED_TRACE(validate);
        const QString v = validate ? Q("v") : Q("-");
        R root;
        root.SetValidate(validate);
        root.SetLogger(logger);
        ASSERT_TRUE(root.SetXmlString(twoModes.arg(QString()), false));
        EXPECT_EQ(carried(root), Q("%1L{%1L[%1L%1L]%1N[%1N]}").arg(v));
        root.SetOperationModeHandler(R::QLSManagementComponent);
        root.GetXmlString();
        EXPECT_EQ(carried(root), Q("%1L{%1L[%1L%1L]%1L[%1L]}").arg(v));
        ASSERT_TRUE(root.SetXmlString(twoModes.arg(handler), false));
        EXPECT_EQ(carried(root), Q("%1L{%1L[%1L%1L]%1L[%1L]}").arg(v));
    }
}

namespace {

// A settings class that notes the calls of its SetValidate (V for true)
// and SetLogger (L for its own logger, l for another), and each child its
// ProcessXmlStartElement is handed.
template <typename Base>
class Noting : public Base
{
public:
    mutable QStringList calls;
    const std::shared_ptr<Logger> own = std::make_shared<Logger>();

    void SetValidate(bool on) const override { calls << Q(on ? "V" : "v"); Base::SetValidate(on); }
    void SetLogger(std::shared_ptr<Logger> to) const override { calls << Q(to == own ? "L" : "l"); Base::SetLogger(to); }
    // Reads xml in validation mode with its own logger and its own reader
    // (a whole-document read would read into a new object of the base
    // class); the calls noted while reading.
    QString Read(const char* xml)
    {
        SetValidate(true);
        SetLogger(own);
        calls.clear();
        QXmlStreamReader reader(Q(xml));
        reader.readNextStartElement();
        Base::ProcessXml(reader);
        EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
        return calls.join(QLatin1Char(' '));
    }

protected:
    void ProcessXmlStartElement(QXmlStreamReader& reader) override
    {
        calls << reader.name().toString();
        Base::ProcessXmlStartElement(reader);
    }
};

} // namespace

// The record is made (InitData re-applies flag and logger), then every
// child, whatever it is, first re-applies both through the virtual
// operations.
TEST(XmlReader, EveryChildReappliesFlagAndLoggerThroughTheVirtualOperations)
{
    Noting<R> root;
    EXPECT_EQ(root.Read("<TorviGuiModeSettings><DataOperationMode Name=\"M\"/><Extra><x/></Extra>"
                        "<OperationModeHandler>VbkManagementComponent</OperationModeHandler></TorviGuiModeSettings>"),
              Q("V L DataOperationMode V L Extra V L OperationModeHandler V L"));
    EXPECT_EQ(Outline(root), "3*{'M'*[]}*");
    EXPECT_EQ(root.GetDataOperationMode().at(0).GetLogger(), root.own);

    Noting<M> mode;
    EXPECT_EQ(mode.Read("<DataOperationMode><GuiComponentSettings Name=\"c\"><GuiComponentUsage>AVAILABLE"
                        "</GuiComponentUsage><DockWidgetLocation>TopDockWidgetArea</DockWidgetLocation>"
                        "</GuiComponentSettings><Name>M</Name><Extra/></DataOperationMode>"),
              Q("V L GuiComponentSettings V L Name V L Extra V L"));
    EXPECT_EQ(Outline(mode), "'M'*['c'*(0*,2*)]*");
    EXPECT_EQ(mode.GetGuiComponentSettings().at(0).GetLogger(), mode.own);
}

TEST(WholeDocument, EveryFormReplacesTheContentOrChangesNothingAndSaysWhy)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString file = dir.filePath(Q("d"));
    const QByteArray xml = ReadData(Q("xml/example.xml")), binary = Example().GetBinaryRepresentationAsQByteArray();
    R unknown = Example(); // its handler is written as an empty name
    unknown.SetOperationModeHandler(R::OperationModeHandler(-1));
    // The handler's record comes last: it and the object grow by a byte
    // their payload does not use.
    const int handler = binary.indexOf(Int(kHandlerId));
    QByteArray padded = binary + 'x';
    padded.replace(4, 4, Int(padded.size() - 8)).replace(handler + 4, 4, Int(padded.size() - handler - 8));
    const QByteArray cut = binary.left(binary.size() - 3);
    const QString example = Q("true ") + QString::fromStdString(Outline(Example()));
    const QString nine = Q("true 9*{'Standard'*['Overview'*(1*,0*),'Details'*(0*,5*)]*}*");
    const QString tooLarge = Q("1433301865 bytes, more than the maximum document size of 268435456 bytes");
    const struct { const char* kinds; const char* modes; QByteArray document; QString outcome; } cases[] = {
        {"xml", "both", xml, example},
        {"array stream", "both", binary, example},
        {"xml", "lax", unknown.GetXmlString().toUtf8(), nine},
        {"array stream", "lax", unknown.GetBinaryRepresentationAsQByteArray(), nine},
        {"xml", "both", xml.left(200), Q("false XML error at line 1, column 200: Premature end of document.")},
        {"xml", "strict", QByteArray(xml).replace(">AVAILABLE<", ">Available<"),
         Q("throws ") + EnumInvalid("GuiComponentSettings", "m_guiComponentUsage")},
        // An array must be as long as its object length says; a stream
        // simply ends, inside the handler's name, which validation refuses.
        {"array", "both", cut, Q("false the object length %1 does not match the %2 bytes behind it")
                                   .arg(binary.size() - 8).arg(cut.size() - 8)},
        {"stream", "lax", cut, Q("false the stream ends inside the document")},
        {"stream", "strict", cut, Q("throws ") + EnumInvalid("TorviGuiModeSettings", "m_operationModeHandler")},
        {"array", "both", padded, Q("false a record holds bytes its payload does not use")},
        {"array", "both", "Unsinn",
         Q("false neither a plain TorviGuiModeSettings document (class id 232099450) nor a compressed one: "
           "it announces ") + tooLarge},
        {"stream", "both", "Unsinn", Q("false the compressed document holds ") + tooLarge},
    };
    for (const Form& form : kForms) {
        SCOPED_TRACE(form.name);
        for (const auto& c : cases) {
            if (QByteArray(c.kinds).split(' ').contains(form.kind))
                ExpectRead(Q(c.modes), c.outcome, [&](R& root) { return form.read(root, c.document, file); });
        }
    }
}

TEST(WholeDocument, DevicesAreReadInTheDocumentsOwnEncoding)
{
    for (const char* name : {"xml/encoded/utf-16.xml", "xml/encoded/latin-1.xml"}) {
        R root;
        EXPECT_TRUE(root.LoadXml(DataPath(Q(name)))) << root.GetErrorString().toStdString();
        EXPECT_EQ(Outline(root), "2*{'M\u00e4rz'*[]}*");
    }
}

TEST(WholeDocument, TheMaximumDocumentSizeEndsReadsOfLargerInputs)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString file = dir.filePath(Q("d"));
    for (const Form& form : kForms) {
        SCOPED_TRACE(form.name);
        const QByteArray document = QByteArray(form.kind) == "xml" ? ReadData(Q("xml/example.xml"))
                                                                   : Example().GetBinaryRepresentationAsQByteArray();
        const QString unit = QByteArray(form.holder) == "the text" ? Q("characters") : Q("bytes");
        for (const int limit : {document.size() - 1, document.size()}) {
            ExpectRead(Q("lax"), limit == document.size() ? Q("true ") + QString::fromStdString(Outline(Example()))
                           : Q("false %1 holds %2 %3, more than the maximum document size of %4 %3")
                                 .arg(Q(form.holder)).arg(document.size()).arg(unit).arg(limit),
                       [&](R& root) { root.SetMaxDocumentSize(limit); return form.read(root, document, file); });
        }
    }
    R root;
    EXPECT_EQ(root.GetMaxDocumentSize(), 256 * 1024 * 1024);
    root.SetMaxDocumentSize(0);
    EXPECT_EQ(root.GetMaxDocumentSize(), 1);

    // A compressed document may not inflate beyond the limit either: a
    // name of 1000 characters packs into far fewer than 500 bytes.
    const QByteArray plain = Root(R::TX470ManagementComponent, {Mode(QByteArray(1000, 'n').constData())})
                                 .GetBinaryRepresentationAsQByteArray();
    QByteArray compressed = qCompress(plain);
    ASSERT_LT(compressed.size(), 500);
    root.SetMaxDocumentSize(500);
    EXPECT_FALSE(root.SetBinaryRepresentation(compressed));
    EXPECT_EQ(root.GetErrorString(), Q("neither a plain TorviGuiModeSettings document (class id 232099450) nor a "
                                       "compressed one: it announces %1 bytes, more than the maximum document size "
                                       "of 500 bytes").arg(plain.size()));
}

TEST(WholeDocument, HugeFilesDevicesAndPipesAreReadNoFurtherThanTheLimit)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    // 3 GiB that take no room on disk: refused by their size, at once.
    QFile sparse(dir.filePath(Q("sparse")));
    ASSERT_TRUE(sparse.open(QIODevice::WriteOnly) && sparse.resize(qint64(3) << 30));
    sparse.close();
    ExpectRead(Q("lax"), Q("false the file holds 3221225472 bytes, more than the maximum document size of 268435456 "
                           "bytes"), [&](R& root) { return root.LoadBinary(&sparse); });

    // A device without end: read up to the limit, then refused.
    QFile zero(Q("/dev/zero"));
    ExpectRead(Q("lax"), Q("false the input holds more than the maximum document size of 1048576 bytes"), [&](R& root) {
        root.SetMaxDocumentSize(1 << 20);
        return root.LoadXml(&zero);
    });

    // A pipe: read whole within the limit, refused beyond it.
    const QString fifo = dir.filePath(Q("fifo"));
    ASSERT_EQ(mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    const auto throughPipe = [&](qint64 limit) {
        return [&, limit](R& root) {
            root.SetMaxDocumentSize(limit);
            std::thread writer([&] {
                QFile end(fifo);
                if (end.open(QIODevice::WriteOnly))
                    end.write(ReadData(Q("xml/example.xml")));
            });
            const bool result = root.LoadXml(fifo);
            writer.join();
            return result;
        };
    };
    ExpectRead(Q("lax"), Q("true ") + QString::fromStdString(Outline(Example())), throughPipe(1000));
    ExpectRead(Q("lax"), Q("false the input holds more than the maximum document size of 100 bytes"), throughPipe(100));
}

TEST(WholeDocument, TextsAFormCannotHoldAreRefusedByItsWritersNeverDropped)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(Q("settings.xml"));
    const QString after = Q(" (after \"%1\")");
    const struct { QString modeName, componentName, message; } cases[] = {
        {Q("Std") + QChar(0) + Q("ard"), Q("C"),
         Q("DataOperationMode: Name holds U+0000 at character 4") + after.arg(Q("Std"))},
        {Q("M"), QString(QChar(1)), Q("GuiComponentSettings: Name holds U+0001 at character 1")},
        {Q("ab\u00E4") + QChar(0xFFFE), Q("C"),
         Q("DataOperationMode: Name holds U+FFFE at character 4") + after.arg(Q("ab\u00E4"))},
        {Q("M"), Q("\U0001F600x") + QChar(0xD800) + Q("y"),
         Q("GuiComponentSettings: Name holds U+D800 at character 3") + after.arg(Q("\U0001F600x"))},
        {QString(QChar(0xDC00)), Q("C"), Q("DataOperationMode: Name holds U+DC00 at character 1")},
        {Q("M"), Q("tab\tok\nok\rvertical\vtab"),
         Q("GuiComponentSettings: Name holds U+000B at character 19") + after.arg(Q("tab\tok\nok\rvertical"))},
        {QString(40, QLatin1Char('n')) + QChar(0x1F), Q("C"),
         Q("DataOperationMode: Name holds U+001F at character 41") + after.arg(Q("...") + QString(32, QLatin1Char('n')))},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message.toStdString());
        R root = Small();
        root.GetDataOperationMode()[0].SetName(c.modeName);
        root.GetDataOperationMode()[0].GetGuiComponentSettings()[0].SetName(c.componentName);
        const QString message = c.message + Q(", which XML 1.0 cannot represent.");
        for (const bool validate : {false, true}) {
            root.SetValidate(validate);
            EXPECT_EQ(MessageOf<OutOfRangeException>([&] { root.GetXmlString(); }), message);
            EXPECT_EQ(root.GetErrorString(), message);
            EXPECT_EQ(MessageOf<OutOfRangeException>([&] { root.SaveXml(path); }), message);
            EXPECT_FALSE(QFile::exists(path));
        }
        // The binary form holds every character as it is, but unpaired
        // surrogates are no characters: UTF-8 has no form for them either.
        if (c.message.contains(Q("U+D"))) {
            EXPECT_EQ(MessageOf<OutOfRangeException>([&] { root.GetBinaryRepresentationAsQByteArray(); }),
                      QString(message).replace(Q("XML 1.0"), Q("UTF-8")));
            continue;
        }
        R back;
        QByteArray bytes = root.GetBinaryRepresentationAsQByteArray();
        ASSERT_TRUE(back.SetBinaryRepresentation(bytes));
        EXPECT_EQ(Outline(back), Outline(root));
    }
    EXPECT_EQ(REPORTGENERATOR::IRGObject::FindNonXmlCharacter(Q("\U0001F600 \t\n\r\uFFFD")), -1);
    EXPECT_EQ(REPORTGENERATOR::IRGObject::FindUnpairedSurrogate(Q("\U0001F600") + QChar(0) + QChar(0xFFFF)), -1);
}
