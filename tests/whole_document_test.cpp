// The whole-document operations of the base class, alike for every form:
// a read replaces the object's content or leaves it exactly as it was, says
// why it failed, honours the maximum document size (also on pipes and
// devices), and XML is never written without characters it cannot hold.

#include <TorviXML/TorviXML.h>

#include <gtest/gtest.h>

#include "TestSupport.h"

#include <QBuffer>
#include <QByteArray>
#include <QDataStream>
#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>

#include <functional>
#include <thread>

using namespace TORVIXML;
using namespace TestSupport;
namespace {
const QString kUsageInvalid = EnumInvalid("GuiComponentSettings", "m_guiComponentUsage");
const QString kLocationInvalid = EnumInvalid("GuiComponentSettings", "m_dockWidgetLocation");
const QString kHandlerInvalid = EnumInvalid("TorviGuiModeSettings", "m_operationModeHandler");
}

namespace {

const QString kXml = QStringLiteral(
    "<TorviGuiModeSettings><DataOperationMode Name=\"Neu\"><GuiComponentSettings Name=\"C\"><GuiComponentUsage>"
    "AVAILABLE</GuiComponentUsage><DockWidgetLocation>TopDockWidgetArea</DockWidgetLocation></GuiComponentSettings>"
    "</DataOperationMode><OperationModeHandler>QLSManagementComponent</OperationModeHandler></TorviGuiModeSettings>");

TorviGuiModeSettings Read(const QString& xml)
{
    TorviGuiModeSettings root;
    EXPECT_TRUE(root.SetXmlString(xml, false)) << root.GetErrorString().toStdString();
    return root;
}

// A root that holds something else, with an invalid value of its own for
// names it does not know.
TorviGuiModeSettings Holding()
{
    TorviGuiModeSettings root;
    DataOperationMode mode;
    mode.SetName(QStringLiteral("Alt"));
    root.AppendDataOperationMode(mode);
    root.SetOperationModeHandler(TorviGuiModeSettings::VbkManagementComponent);
    root.SetInvalidOperationModeHandler(TorviGuiModeSettings::OperationModeHandler(9));
    return root;
}

QByteArray Bytes(const TorviGuiModeSettings& root)
{
    TorviGuiModeSettings copy(root);
    copy.SetValidate(false);
    return copy.GetBinaryRepresentationAsQByteArray();
}

// One whole-document read of the given bytes into root; files are written
// into dir first.
using Form = std::function<bool(TorviGuiModeSettings& root, const QByteArray& bytes, const QString& dir)>;

QString WriteFile(const QString& dir, const QByteArray& bytes)
{
    const QString path = dir + QStringLiteral("/document");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        ADD_FAILURE() << "cannot write " << path.toStdString();
    return path;
}

const struct {
    const char* name;
    bool xml;
    Form read;
} kForms[] = {
    {"SetXmlString", true,
     [](TorviGuiModeSettings& r, const QByteArray& b, const QString&) { return r.SetXmlString(QString::fromUtf8(b), false); }},
    {"SetXmlString with reset", true,
     [](TorviGuiModeSettings& r, const QByteArray& b, const QString&) { return r.SetXmlString(QString::fromUtf8(b), true); }},
    {"LoadXml by name", true,
     [](TorviGuiModeSettings& r, const QByteArray& b, const QString& d) { return r.LoadXml(WriteFile(d, b)); }},
    {"LoadXml", true,
     [](TorviGuiModeSettings& r, const QByteArray& b, const QString& d) {
         QFile file(WriteFile(d, b));
         return r.LoadXml(&file);
     }},
    {"LoadXml(QIODevice*)", true,
     [](TorviGuiModeSettings& r, const QByteArray& b, const QString&) {
         QBuffer buffer;
         buffer.setData(b);
         return r.LoadXml(&buffer);
     }},
    {"SetBinaryRepresentation(QByteArray&)", false,
     [](TorviGuiModeSettings& r, const QByteArray& b, const QString&) {
         QByteArray data(b);
         return r.SetBinaryRepresentation(data);
     }},
    {"SetBinaryRepresentation(QDataStream&)", false,
     [](TorviGuiModeSettings& r, const QByteArray& b, const QString&) {
         QBuffer buffer;
         buffer.setData(b);
         buffer.open(QIODevice::ReadOnly);
         QDataStream stream(&buffer);
         return r.SetBinaryRepresentation(stream);
     }},
    {"LoadBinary", false,
     [](TorviGuiModeSettings& r, const QByteArray& b, const QString& d) {
         QFile file(WriteFile(d, b));
         return r.LoadBinary(&file);
     }},
};

} // namespace

TEST(WholeDocument, ReadsReplaceTheContentAndKeepTheObjectsOwnInvalidValue)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const TorviGuiModeSettings expected = Read(kXml);
    QString unknownHandler = kXml;
    unknownHandler.replace(QStringLiteral(">QLSManagementComponent<"), QStringLiteral(">Unbekannt<"));
    for (const auto& form : kForms) {
        SCOPED_TRACE(form.name);
        const QByteArray document = form.xml ? kXml.toUtf8() : Bytes(expected);
        TorviGuiModeSettings root = Holding();
        ASSERT_TRUE(form.read(root, document, dir.path()));
        EXPECT_TRUE(root == expected);
        EXPECT_EQ(root.GetErrorString(), QString());

        // An unknown name gets the object's own invalid value, as a setter
        // call on the object would.
        TorviGuiModeSettings lax = Holding();
        // (An unknown handler is written as a null text, which reads as no
        // name again.)
        const QByteArray unknown = form.xml ? unknownHandler.toUtf8() : Bytes(Read(unknownHandler));
        ASSERT_TRUE(form.read(lax, unknown, dir.path()));
        EXPECT_TRUE(lax.IsOperationModeHandlerSet());
        EXPECT_EQ(int(lax.GetOperationModeHandler()), 9);
    }
}

TEST(WholeDocument, DevicesAreReadInTheDocumentsOwnEncoding)
{
    // UTF-16 with a byte order mark, and Latin-1 named by the declaration.
    QString named = kXml;
    named.replace(Q("Neu"), Q("M\u00E4rz"));
    QByteArray utf16("\xFF\xFE");
    for (const QChar c : named)
        utf16 += char(c.unicode() & 0xFF) + QByteArray(1, char(c.unicode() >> 8));
    const QByteArray latin1 = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + named.toLatin1();
    for (const QByteArray& bytes : {utf16, latin1}) {
        QBuffer buffer;
        buffer.setData(bytes);
        TorviGuiModeSettings root;
        ASSERT_TRUE(root.LoadXml(&buffer)) << root.GetErrorString().toStdString();
        EXPECT_EQ(root.GetDataOperationMode().at(0).GetName(), Q("M\u00E4rz"));
    }
}

TEST(WholeDocument, FailedReadsChangeNothingAndSayWhy)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QByteArray binary = Bytes(Read(kXml));
    QByteArray badUsage = kXml.toUtf8();
    badUsage.replace(">AVAILABLE<", ">Available<");
    const QString stream = QStringLiteral("SetBinaryRepresentation(QDataStream&)");
    // The handler's record comes last: its length (4 bytes before its text
    // count) and the object length grow by the byte appended.
    const int handler = binary.indexOf(Int(kHandlerId));
    ASSERT_GT(handler, 0);
    QByteArray padded = binary + 'x';
    padded.replace(4, 4, Int(padded.size() - 8));
    padded.replace(handler + 4, 4, Int(padded.size() - handler - 8));
    const struct {
        const char* what;
        QByteArray document;
        bool xml;
        bool onStream; // binary: only on a stream, or only elsewhere
        QString laxError;    // false, with this reason (null: read without validation)
        QString strictError; // the exception's message (null: false with laxError)
    } cases[] = {
        {"truncated XML", kXml.toUtf8().left(200), true, false,
         QStringLiteral("XML error at line 1, column 200: Premature end of document."), QString()},
        {"foreign root", "<DataOperationMode Name=\"x\"/>", true, false,
         QStringLiteral("the document element is <DataOperationMode>, not <TorviGuiModeSettings>"), QString()},
        {"no element", "<!-- nichts -->", true, false,
         QStringLiteral("XML error at line 1, column 15: Premature end of document."), QString()},
        {"unknown usage", badUsage, true, false, QString(), kUsageInvalid},
        // In an array the object length no longer fits; a stream simply ends,
        // inside the handler's name, which validation mode refuses first.
        {"truncated binary", binary.left(binary.size() - 3), false, false,
         QStringLiteral("the object length %1 does not match the %2 bytes behind it")
             .arg(binary.size() - 8)
             .arg(binary.size() - 11),
         QString()},
        {"truncated binary", binary.left(binary.size() - 3), false, true,
         QStringLiteral("the stream ends inside the document"), kHandlerInvalid},
        // The handler's record one byte longer than its text, at the end.
        {"unused byte in a record", padded, false, false,
         QStringLiteral("a record holds bytes its payload does not use"), QString()},
        {"not a document", "Unsinn", false, false,
         QStringLiteral("neither a plain TorviGuiModeSettings document (class id 232099450) nor a compressed one: "
                        "it announces 1433301865 bytes, more than the maximum document size of 268435456 bytes"),
         QString()},
        {"not a document", "Unsinn", false, true,
         QStringLiteral("the compressed document holds 1433301865 bytes, more than the maximum document size of "
                        "268435456 bytes"),
         QString()},
    };
    for (const auto& form : kForms) {
        SCOPED_TRACE(form.name);
        for (const auto& c : cases) {
            if (c.xml != form.xml || (!c.xml && c.onStream != (QLatin1String(form.name) == stream)))
                continue;
            SCOPED_TRACE(c.what);
            for (const bool validate : {false, true}) {
                if (!validate && c.laxError.isNull())
                    continue;
                TorviGuiModeSettings root = Holding();
                root.SetValidate(validate);
                const QByteArray before = Bytes(root);
                const bool throws = validate && !c.strictError.isNull();
                const QString message =
                    MessageOf<ReportException>([&] { EXPECT_FALSE(form.read(root, c.document, dir.path())); });
                EXPECT_EQ(message, throws ? c.strictError : kNothingThrown);
                EXPECT_EQ(root.GetErrorString(), throws ? c.strictError : c.laxError);
                EXPECT_EQ(Bytes(root), before);
                EXPECT_EQ(root.GetDataOperationMode().at(0).GetName(), QStringLiteral("Alt"));
            }
        }
    }
}

TEST(WholeDocument, TheMaximumDocumentSizeEndsReadsOfLargerInputs)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QByteArray binary = Bytes(Read(kXml));
    const QString beyond = QStringLiteral(", more than the maximum document size of 100 ");
    const QString xmlSize = QString::number(kXml.size());
    const QString binarySize = QString::number(binary.size());
    const QString expected[] = {
        QStringLiteral("the text holds ") + xmlSize + QStringLiteral(" characters") + beyond + QStringLiteral("characters"),
        QStringLiteral("the text holds ") + xmlSize + QStringLiteral(" characters") + beyond + QStringLiteral("characters"),
        QStringLiteral("the file holds ") + xmlSize + QStringLiteral(" bytes") + beyond + QStringLiteral("bytes"),
        QStringLiteral("the file holds ") + xmlSize + QStringLiteral(" bytes") + beyond + QStringLiteral("bytes"),
        QStringLiteral("the document holds ") + xmlSize + QStringLiteral(" bytes") + beyond + QStringLiteral("bytes"),
        QStringLiteral("the document holds ") + binarySize + QStringLiteral(" bytes") + beyond + QStringLiteral("bytes"),
        QStringLiteral("the document holds ") + binarySize + QStringLiteral(" bytes") + beyond + QStringLiteral("bytes"),
        QStringLiteral("the file holds ") + binarySize + QStringLiteral(" bytes") + beyond + QStringLiteral("bytes"),
    };
    int i = 0;
    for (const auto& form : kForms) {
        SCOPED_TRACE(form.name);
        TorviGuiModeSettings root = Holding();
        root.SetMaxDocumentSize(100);
        EXPECT_EQ(root.GetMaxDocumentSize(), 100);
        EXPECT_FALSE(form.read(root, form.xml ? kXml.toUtf8() : binary, dir.path()));
        EXPECT_EQ(root.GetErrorString(), expected[i++]);
        EXPECT_EQ(Bytes(root), Bytes(Holding()));
    }

    // A compressed document may not inflate beyond the limit either: a
    // name of 1000 characters packs into far fewer than 500 bytes.
    TorviGuiModeSettings root;
    EXPECT_EQ(root.GetMaxDocumentSize(), 256 * 1024 * 1024);
    root.SetMaxDocumentSize(500);
    QByteArray compressed = qCompress(Bytes(Read(QString(kXml).replace(Q("Neu"), QString(1000, QLatin1Char('n'))))));
    ASSERT_LT(compressed.size(), 500);
    EXPECT_FALSE(root.SetBinaryRepresentation(compressed));
    EXPECT_EQ(root.GetErrorString(),
              QStringLiteral("neither a plain TorviGuiModeSettings document (class id 232099450) nor a compressed "
                             "one: it announces %1 bytes, more than the maximum document size of 500 bytes")
                  .arg(binary.size() + 997));
}

TEST(WholeDocument, HugeFilesDevicesAndPipesAreReadNoFurtherThanTheLimit)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());

    // 3 GiB that take no room on disk: refused by their size, at once.
    const QString sparse = dir.filePath(QStringLiteral("sparse"));
    {
        QFile file(sparse);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_TRUE(file.resize(qint64(3) << 30));
    }
    const QString tooLarge =
        QStringLiteral("the file holds 3221225472 bytes, more than the maximum document size of 268435456 bytes");
    TorviGuiModeSettings root;
    EXPECT_FALSE(root.LoadXml(sparse));
    EXPECT_EQ(root.GetErrorString(), tooLarge);
    QFile file(sparse);
    EXPECT_FALSE(root.LoadBinary(&file));
    EXPECT_EQ(root.GetErrorString(), tooLarge);

    // A device without end: read up to the limit, then refused.
    root.SetMaxDocumentSize(1 << 20);
    QFile zero(QStringLiteral("/dev/zero"));
    EXPECT_FALSE(root.LoadBinary(&zero));
    EXPECT_EQ(root.GetErrorString(),
              QStringLiteral("the input holds more than the maximum document size of 1048576 bytes"));
    EXPECT_FALSE(root.LoadXml(&zero));
    EXPECT_EQ(root.GetErrorString(),
              QStringLiteral("the input holds more than the maximum document size of 1048576 bytes"));
    EXPECT_FALSE(root.AnyData());

    // A pipe: read whole when within the limit, refused beyond it.
    const QString fifo = dir.filePath(QStringLiteral("fifo"));
    ASSERT_EQ(mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    const auto throughPipe = [&](const QByteArray& bytes, const std::function<bool()>& read) {
        std::thread writer([&] {
            QFile end(fifo);
            if (end.open(QIODevice::WriteOnly))
                end.write(bytes);
        });
        const bool result = read();
        writer.join();
        return result;
    };
    TorviGuiModeSettings piped;
    EXPECT_TRUE(throughPipe(kXml.toUtf8(), [&] { return piped.LoadXml(fifo); }));
    EXPECT_TRUE(piped == Read(kXml));
    TorviGuiModeSettings pipedBinary;
    QFile fifoFile(fifo);
    EXPECT_TRUE(throughPipe(Bytes(Read(kXml)), [&] { return pipedBinary.LoadBinary(&fifoFile); }));
    EXPECT_TRUE(pipedBinary == Read(kXml));
    piped.SetMaxDocumentSize(100);
    EXPECT_FALSE(throughPipe(kXml.toUtf8(), [&] { return piped.LoadXml(fifo); }));
    EXPECT_EQ(piped.GetErrorString(),
              QStringLiteral("the input holds more than the maximum document size of 100 bytes"));
    EXPECT_TRUE(piped == Read(kXml));
}

TEST(WholeDocument, TextsAFormCannotHoldAreRefusedByItsWritersNeverDropped)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("settings.xml"));
    const QString after = QStringLiteral(" (after \"%1\")");
    const struct {
        QString modeName;
        QString componentName;
        QString message;
    } cases[] = {
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
         Q("DataOperationMode: Name holds U+001F at character 41 (after \"...") + QString(32, QLatin1Char('n'))
             + Q("\")")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message.toStdString());
        GuiComponentSettings component;
        component.SetName(c.componentName);
        component.SetGuiComponentUsage(GuiComponentSettings::AVAILABLE);
        component.SetDockWidgetLocation(GuiComponentSettings::NoDockWidgetArea);
        DataOperationMode mode;
        mode.SetName(c.modeName);
        mode.AppendGuiComponentSettings(component);
        TorviGuiModeSettings root;
        root.AppendDataOperationMode(mode);
        root.SetOperationModeHandler(TorviGuiModeSettings::TX470ManagementComponent);
        const QString message = c.message + Q(", which XML 1.0 cannot represent.");
        for (const bool validate : {false, true}) {
            root.SetValidate(validate);
            EXPECT_EQ(MessageOf<OutOfRangeException>([&] { root.GetXmlString(); }), message);
            EXPECT_EQ(root.GetErrorString(), message);
            EXPECT_EQ(MessageOf<OutOfRangeException>([&] { root.SaveXml(path); }), message);
            EXPECT_FALSE(QFile::exists(path));
        }
        // The binary form holds every character as it is. Unpaired
        // surrogates are no characters: UTF-8 has no form for them either.
        if (c.message.contains(Q("U+D"))) {
            EXPECT_EQ(MessageOf<OutOfRangeException>([&] { root.GetBinaryRepresentationAsQByteArray(); }),
                      QString(message).replace(Q("XML 1.0"), Q("UTF-8")));
            continue;
        }
        TorviGuiModeSettings back;
        QByteArray bytes = root.GetBinaryRepresentationAsQByteArray();
        ASSERT_TRUE(back.SetBinaryRepresentation(bytes));
        EXPECT_TRUE(back == root);
        EXPECT_EQ(back.GetDataOperationMode().at(0).GetName(), c.modeName);
        EXPECT_EQ(back.GetDataOperationMode().at(0).GetGuiComponentSettings().at(0).GetName(), c.componentName);
    }
    EXPECT_EQ(REPORTGENERATOR::IRGObject::FindNonXmlCharacter(Q("\U0001F600 \t\n\r\uFFFD")), -1);
    EXPECT_EQ(REPORTGENERATOR::IRGObject::FindUnpairedSurrogate(Q("\U0001F600") + QChar(0) + QChar(0xFFFF)), -1);
}
