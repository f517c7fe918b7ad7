// Hostile input through the whole-document operations: every case must end
// in a clear failure (false, or an exception of the library) or in exactly
// the object the format rules give, quickly and without allocating out of
// proportion to the input. Where a failed read promises to leave the object
// alone (a foreign document), the object is compared with its state before.

#include <TorviXML/TorviXML.h>

#include <gtest/gtest.h>

#include "TestSupport.h"

#include <QBuffer>
#include <QByteArray>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include <sys/resource.h>

#include <csignal>
#include <functional>
#include <ostream>

using namespace TORVIXML;
using namespace TestSupport;
namespace {
const QString kUsageInvalid = EnumInvalid("GuiComponentSettings", "m_guiComponentUsage");
const QString kLocationInvalid = EnumInvalid("GuiComponentSettings", "m_dockWidgetLocation");
const QString kHandlerInvalid = EnumInvalid("TorviGuiModeSettings", "m_operationModeHandler");
}

namespace {

QByteArray Document(const QByteArray& records) { return Int(kRootId) + Frame(records); }

const QByteArray kHandlerQls = Record(kHandlerId, Text("QLSManagementComponent"));

QByteArray ComponentFrame(const QByteArray& name)
{
    return Frame(Record(kNameId, Text(name)) + Record(kUsageId, Text("AVAILABLE"))
                 + Record(kLocationId, Text("TopDockWidgetArea")));
}
QByteArray ModeFrame(const QByteArray& name) { return Frame(Record(kNameId, Text(name))); }

// The outcome of one read: the result, or the message of the library's
// exception that ended it.
struct Outcome
{
    bool result = false;
    QString exception;
};

bool operator==(const Outcome& a, const Outcome& b)
{
    return a.result == b.result && a.exception == b.exception;
}

void PrintTo(const Outcome& outcome, std::ostream* os)
{
    *os << (outcome.exception.isNull() ? (outcome.result ? "true" : "false")
                                       : "exception \"" + outcome.exception.toStdString() + "\"");
}

Outcome Throws(const QString& message)
{
    return Outcome{false, message};
}
const Outcome kTrue{true, QString()};
const Outcome kFalse{false, QString()};

Outcome Attempt(const std::function<bool()>& read)
{
    Outcome outcome;
    try {
        outcome.result = read();
    } catch (const ReportException& e) {
        outcome.exception = e.GetMessageText();
    }
    return outcome;
}

Outcome ReadArray(TorviGuiModeSettings& root, const QByteArray& bytes)
{
    QByteArray data(bytes);
    return Attempt([&] { return root.SetBinaryRepresentation(data); });
}

Outcome ReadStream(TorviGuiModeSettings& root, const QByteArray& bytes, QDataStream::Status* status = nullptr)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QDataStream stream(&buffer);
    const Outcome outcome = Attempt([&] { return root.SetBinaryRepresentation(stream); });
    if (status)
        *status = stream.status();
    return outcome;
}

Outcome ReadXml(TorviGuiModeSettings& root, const QString& xml)
{
    return Attempt([&] { return root.SetXmlString(xml, false); });
}

// A root that already holds something, to see whether a failed read
// touched it.
TorviGuiModeSettings Preloaded()
{
    TorviGuiModeSettings root;
    DataOperationMode mode;
    mode.SetName(QStringLiteral("Vorher"));
    root.AppendDataOperationMode(mode);
    root.SetOperationModeHandler(TorviGuiModeSettings::VbkManagementComponent);
    return root;
}

QByteArray Bytes(const TorviGuiModeSettings& root)
{
    TorviGuiModeSettings copy(root);
    copy.SetValidate(false);
    return copy.GetBinaryRepresentationAsQByteArray();
}

} // namespace

TEST(HostileBinary, ElementCount7FFFFFFFEndsAtTheStreamsEndWithABoundedReservation)
{
    // One real mode, then the stream ends although 0x7FFFFFFF were
    // announced and the record length claims room for all of them. The
    // next element reads nothing: in validation mode its append is refused,
    // outside it the root ends with its length error instead of appending
    // empty elements.
    const QByteArray records = Int(kModeListId) + Int(0x7FFFFFFF) + Int(0x7FFFFFFF) + ModeFrame("M");
    const QByteArray plain = Document(records);
    ASSERT_EQ(plain.size(), 37);
    const QString refusedMode = QStringLiteral(
        "TorviGuiModeSettings: Tried to append not completely defined or invalid item DataOperationMode.");
    for (const bool validate : {false, true}) {
        SCOPED_TRACE(validate);
        const Outcome expected = Throws(validate ? refusedMode : LengthError("TorviGuiModeSettings"));
        for (const QByteArray& input : {plain, qCompress(plain)}) {
            TorviGuiModeSettings root = Preloaded();
            root.SetValidate(validate);
            const QByteArray before = Bytes(root);
            EXPECT_EQ(ReadArray(root, input), expected);
            EXPECT_EQ(Bytes(root), before);
        }
        TorviGuiModeSettings fromStream = Preloaded();
        fromStream.SetValidate(validate);
        const QByteArray before = Bytes(fromStream);
        EXPECT_EQ(ReadStream(fromStream, plain), expected);
        EXPECT_EQ(Bytes(fromStream), before);
    }
    // Room is made for what the bytes behind the count can carry at four
    // bytes per element frame, not for 2^31 elements: one mode, then the
    // end, read by the object's own reader.
    {
        TorviGuiModeSettings root;
        QBuffer buffer;
        buffer.setData(records);
        ASSERT_TRUE(buffer.open(QIODevice::ReadOnly));
        QDataStream stream(&buffer);
        EXPECT_EQ(MessageOf<ReportException>([&] { root.SetBinary(stream, records.size()); }),
                  LengthError("TorviGuiModeSettings"));
        ASSERT_EQ(root.GetDataOperationMode().size(), 1);
        EXPECT_EQ(root.GetDataOperationMode().at(0).GetName(), QStringLiteral("M"));
        EXPECT_LE(root.GetDataOperationMode().capacity(), 4);
    }

    // The same count one level down: the mode's failure leaves the mode
    // unappended.
    const QByteArray nested = Document(Record(
        kModeListId, Int(1) + Frame(Record(kNameId, Text("M")) + Int(kComponentListId) + Int(0x7FFFFFFF)
                                    + Int(0x7FFFFFFF) + ComponentFrame("C"))));
    for (const bool validate : {false, true}) {
        SCOPED_TRACE(validate);
        TorviGuiModeSettings root;
        root.SetValidate(validate);
        EXPECT_EQ(ReadArray(root, nested),
                  Throws(validate ? QStringLiteral("DataOperationMode: Tried to append not completely defined or "
                                                   "invalid item GuiComponentSettings.")
                                  : LengthError("DataOperationMode")));
        EXPECT_FALSE(root.AnyData());
    }
}

TEST(HostileBinary, ByteCountsNear4GiBCostOnlyWhatArrives)
{
    // A mode name announcing 0xFFFFFFFE bytes of which three arrive; the
    // lengths of record, frame and list agree, so only the stream's short
    // read tells: the document is refused and the object stays as it was.
    // An enumeration name cut short the same way is no name: refused by
    // the setter in validation mode.
    const QByteArray nameRecord = Int(kNameId) + Int(4 + 3) + Int(qint32(0xFFFFFFFE)) + "abc";
    const QByteArray shortName = Document(Record(kModeListId, Int(1) + Frame(nameRecord)));
    const QByteArray shortHandler =
        Document(Int(kHandlerId) + Int(4 + 5) + Int(qint32(0xFFFFFFFE)) + QByteArray("TX470"));
    for (const bool validate : {false, true}) {
        SCOPED_TRACE(validate);
        for (const QByteArray& input : {shortName, shortHandler}) {
            TorviGuiModeSettings root = Preloaded();
            root.SetValidate(validate);
            const QByteArray before = Bytes(root);
            const bool refusedName = validate && input == shortHandler;
            EXPECT_EQ(ReadArray(root, input), refusedName ? Throws(kHandlerInvalid) : kFalse);
            EXPECT_EQ(root.GetErrorString(), refusedName
                          ? kHandlerInvalid
                          : QStringLiteral("the document ends inside a text or list its records announce"));
            EXPECT_EQ(Bytes(root), before);
        }
    }

    // Counts beyond what any byte array can hold, as the last bytes of the
    // document: the stream ends inside the payload, so the document is
    // truncated, whether the bytes come from a buffer or from a file.
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    for (const quint32 count : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu}) {
        SCOPED_TRACE(count);
        const QByteArray handlerLast = Document(Int(kHandlerId) + Int(4) + Int(qint32(count)));
        const QByteArray nameLast =
            Document(Record(kModeListId, Int(1) + Frame(Int(kNameId) + Int(4) + Int(qint32(count)))));
        for (const QByteArray& input : {handlerLast, nameLast}) {
            TorviGuiModeSettings root = Preloaded();
            const QByteArray before = Bytes(root);
            EXPECT_EQ(ReadArray(root, input), kFalse);
            QDataStream::Status status = QDataStream::Ok;
            EXPECT_EQ(ReadStream(root, input, &status), kFalse);
            EXPECT_EQ(status, QDataStream::ReadPastEnd);

            QFile file(dir.filePath(QStringLiteral("document.bin")));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
            file.write(input);
            file.close();
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            QDataStream fileStream(&file);
            EXPECT_FALSE(root.SetBinaryRepresentation(fileStream));
            EXPECT_EQ(fileStream.status(), QDataStream::ReadPastEnd);
            file.close();
            EXPECT_FALSE(root.LoadBinary(&file));
            EXPECT_EQ(Bytes(root), before);
        }
    }

    // A compressed document that announces an uncompressed size near 4 GiB
    // or 2 GiB, or a stream that announces a compressed document of nearly
    // 2 GiB: refused before anything is read or inflated.
    const QByteArray plain = Document(kHandlerQls);
    QByteArray huge = qCompress(plain);
    huge.replace(0, 4, Int(qint32(0xFFFFFFFE)));
    QByteArray big = qCompress(plain);
    big.replace(0, 4, Int(0x7FFFFFF0));
    const QString neither = QStringLiteral(
        "neither a plain TorviGuiModeSettings document (class id 232099450) nor a compressed one: ");
    TorviGuiModeSettings root = Preloaded();
    const QByteArray before = Bytes(root);
    EXPECT_EQ(ReadArray(root, huge), kFalse);
    EXPECT_EQ(root.GetErrorString(), neither + QStringLiteral("the announced size 4294967294 is more than a byte "
                                                              "array holds"));
    EXPECT_EQ(ReadArray(root, big), kFalse);
    EXPECT_EQ(root.GetErrorString(), neither + QStringLiteral("it announces 2147483632 bytes, more than the maximum "
                                                              "document size of 268435456 bytes"));
    QDataStream::Status status = QDataStream::Ok;
    EXPECT_EQ(ReadStream(root, Int(0x7FFFFFF0) + qCompress(plain), &status), kFalse);
    EXPECT_EQ(root.GetErrorString(), QStringLiteral("the compressed document holds 2147483632 bytes, more than the "
                                                    "maximum document size of 268435456 bytes"));
    EXPECT_EQ(status, QDataStream::Ok);
    EXPECT_EQ(Bytes(root), before);
}

TEST(HostileBinary, CompressedBombsAreRefusedBeforeTheyInflate)
{
    // What a compressed document announces is held to the maximum document
    // size and to 16 times its own size plus 32 MiB before anything is
    // inflated; and inflating stops once the first 8 bytes show no document
    // of the object's class.
    const QByteArray header = Int(kRootId) + Int((40 << 20) - 8);
    QByteArray gigabyte = qCompress(QByteArray(4096, '\0'));
    gigabyte.replace(0, 4, Int(1 << 30));
    // What the two bombs announce is all that is looked at before inflating, so
    // their zlib streams need not hold the 40 MiB they announce.
    const auto announcing40MiB = [](const QByteArray& start) {
        QByteArray bomb = qCompress(start + QByteArray(4096, '\0'));
        bomb.replace(0, 4, Int(40 << 20));
        return bomb;
    };
    const QByteArray zeros = announcing40MiB(QByteArray());
    const QByteArray records = announcing40MiB(header);
    QByteArray foreign = header + QByteArray(4096, 'x');
    foreign.replace(0, 4, Int(kModeId));
    foreign.replace(4, 4, Int(4096));
    const QString neither = QStringLiteral(
        "neither a plain TorviGuiModeSettings document (class id 232099450) nor a compressed one: ");
    const auto budget = [](const QByteArray& compressed) {
        return QStringLiteral("it announces 41943040 bytes, more than the %1 that %2 bytes may inflate to (16 times "
                              "as many plus 33554432)")
            .arg(16 * qint64(compressed.size()) + (32 << 20))
            .arg(compressed.size());
    };
    const struct {
        const char* what;
        QByteArray input;
        QString error;
    } cases[] = {
        {"1 GiB announced", gigabyte,
         neither + QStringLiteral("it announces 1073741824 bytes, more than the maximum document size of 268435456 bytes")},
        {"40 MiB of zeros", zeros, neither + budget(zeros)},
        {"a header, then 40 MiB of empty records", records, neither + budget(records)},
        {"a mode where the root belongs", qCompress(foreign),
         neither + QStringLiteral("its inflated bytes begin with -447125075, not with the class id 232099450")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        TorviGuiModeSettings root = Preloaded();
        const QByteArray before = Bytes(root);
        EXPECT_EQ(ReadArray(root, c.input), kFalse);
        EXPECT_EQ(root.GetErrorString(), c.error);
        EXPECT_EQ(ReadStream(root, Int(c.input.size()) + c.input), kFalse);
        EXPECT_EQ(root.GetErrorString(), c.error);
        EXPECT_EQ(Bytes(root), before);
    }

    // Within the budget a document of unknown, empty records is a document:
    // they are skipped and the tree read is empty.
    QByteArray empty = qCompress(Int(kRootId) + Int(256 << 10) + QByteArray(256 << 10, '\0'), 1);
    TorviGuiModeSettings root = Preloaded();
    EXPECT_EQ(ReadArray(root, empty), kTrue);
    EXPECT_FALSE(root.AnyData());
}

TEST(HostileBinary, NegativeAndLyingLengths)
{
    // Each ends in a refusal that leaves the object as it was. A negative
    // object length: in an array it does not match the array's size, so the
    // bytes are no plain document, and they do not inflate; on a stream it
    // is the length error; inside a compressed document the inflated header
    // does not fit the announced size. Negative record lengths of unknown
    // members skip nothing and give their length back: the records no
    // longer add up. An unknown record claiming 0x7FFFFFFF bytes runs into
    // the end; an object length of 0x7FFFFFFF exceeds the document size. A
    // negative element length is the element's length error; an element
    // whose length overstates its records swallows the records behind it.
    const QByteArray negative = Int(kRootId) + Int(-1) + kHandlerQls;
    const QByteArray mode = ModeFrame("M");
    const QString rootLength = LengthError("TorviGuiModeSettings");
    const struct {
        const char* what;
        QByteArray input;
        bool stream;
        Outcome outcome;
        QString error;
    } cases[] = {
        {"negative object length", negative, false, kFalse,
         QStringLiteral("the object length -1 does not match the 34 bytes behind it")},
        {"negative object length on a stream", negative, true, Throws(rootLength), rootLength},
        {"negative object length, compressed", qCompress(negative), false, kFalse,
         QStringLiteral("neither a plain TorviGuiModeSettings document (class id 232099450) nor a compressed one: "
                        "its inflated object length -1 is not the announced size minus 8 (34)")},
        {"negative record lengths", Document(Int(0x1234) + Int(-8) + Int(0x1234) + Int(-100) + kHandlerQls), false,
         Throws(rootLength), rootLength},
        {"record of 0x7FFFFFFF bytes", Document(Int(0x1234) + Int(0x7FFFFFFF) + kHandlerQls), false,
         Throws(rootLength), rootLength},
        {"object of 0x7FFFFFFF bytes", Int(kRootId) + Int(0x7FFFFFFF) + kHandlerQls, true, kFalse,
         QStringLiteral("the document holds 2147483655 bytes, more than the maximum document size of 268435456 "
                        "bytes")},
        {"negative element length",
         Document(Record(kModeListId, Int(1) + Int(-5) + mode.mid(4)) + kHandlerQls), false,
         Throws(LengthError("DataOperationMode")), LengthError("DataOperationMode")},
        {"element swallowing the handler",
         Document(Record(kModeListId, Int(1) + Int(mode.size() - 4 + kHandlerQls.size()) + mode.mid(4))
                  + kHandlerQls),
         false, Throws(rootLength), rootLength},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        TorviGuiModeSettings root = Preloaded();
        const QByteArray before = Bytes(root);
        EXPECT_EQ(c.stream ? ReadStream(root, c.input) : ReadArray(root, c.input), c.outcome);
        EXPECT_EQ(root.GetErrorString(), c.error);
        EXPECT_EQ(Bytes(root), before);
    }
}

TEST(HostileBinary, RecordsInTheWrongClass)
{
    // A document of another class is refused in every form, untouched.
    const QByteArray component = Int(kComponentId) + ComponentFrame("C");
    for (const QByteArray& input : {component, qCompress(component)}) {
        TorviGuiModeSettings root = Preloaded();
        const QByteArray before = Bytes(root);
        EXPECT_EQ(ReadArray(root, input), kFalse);
        EXPECT_EQ(Bytes(root), before);
        EXPECT_EQ(ReadStream(root, input), kFalse);
        EXPECT_EQ(Bytes(root), before);
    }

    // Component frames where mode frames belong: their usage and location
    // records are unknown to a mode and skipped, so each mode comes without
    // a name. Validation mode refuses the first; otherwise both are
    // appended, nameless, and the handler behind them is read.
    const QByteArray componentsAsModes = Document(
        Record(kModeListId, Int(2)
                                + Frame(Record(kUsageId, Text("AVAILABLE")) + Record(kLocationId, Text("TopDockWidgetArea")))
                                + Frame(Record(kLocationId, Text("NoDockWidgetArea"))))
        + kHandlerQls);
    TorviGuiModeSettings lax;
    EXPECT_EQ(ReadArray(lax, componentsAsModes), kTrue);
    ASSERT_EQ(lax.GetDataOperationMode().size(), 2);
    for (const DataOperationMode& mode : lax.GetDataOperationMode()) {
        EXPECT_FALSE(mode.IsNameSet());
        EXPECT_TRUE(mode.GetName().isNull());
        EXPECT_TRUE(mode.GetGuiComponentSettings().isEmpty());
    }
    EXPECT_EQ(lax.GetOperationModeHandler(), TorviGuiModeSettings::QLSManagementComponent);
    TorviGuiModeSettings strict;
    strict.SetValidate(true);
    EXPECT_EQ(ReadArray(strict, componentsAsModes),
              Throws(QStringLiteral("TorviGuiModeSettings: Tried to append not completely defined or invalid item "
                                    "DataOperationMode.")));
    EXPECT_TRUE(strict.GetDataOperationMode().isEmpty());

    // Members of the lower classes directly in the root, and the root's
    // mode list inside a component: skipped without effect.
    const QByteArray misplaced = Document(
        Record(kComponentListId, Int(1) + ComponentFrame("X")) + Record(kNameId, Text("Wurzel"))
        + Record(kModeListId,
                 Int(1)
                     + Frame(Record(kNameId, Text("M"))
                             + Record(kComponentListId,
                                      Int(1)
                                          + Frame(Record(kNameId, Text("C"))
                                                  + Record(kModeListId, Int(1) + ModeFrame("innen"))
                                                  + Record(kUsageId, Text("AVAILABLE"))
                                                  + Record(kLocationId, Text("NoDockWidgetArea"))))))
        + kHandlerQls);
    TorviGuiModeSettings root;
    root.SetValidate(true);
    EXPECT_EQ(ReadArray(root, misplaced), kTrue);
    TorviGuiModeSettings expected;
    DataOperationMode mode;
    mode.SetName(QStringLiteral("M"));
    GuiComponentSettings inner;
    inner.SetName(QStringLiteral("C"));
    inner.SetGuiComponentUsage(GuiComponentSettings::AVAILABLE);
    inner.SetDockWidgetLocation(GuiComponentSettings::NoDockWidgetArea);
    mode.AppendGuiComponentSettings(inner);
    expected.AppendDataOperationMode(mode);
    expected.SetOperationModeHandler(TorviGuiModeSettings::QLSManagementComponent);
    EXPECT_TRUE(root == expected);
    EXPECT_EQ(Bytes(root), Bytes(expected));
}

namespace {

QString Bomb(int levels)
{
    // Each level expands to ten of the level below: 10^levels times "QLS".
    QString dtd = QStringLiteral("<!ENTITY l0 \"QLS\">");
    for (int i = 1; i <= levels; ++i) {
        dtd += QStringLiteral("<!ENTITY l%1 \"").arg(i);
        for (int k = 0; k < 10; ++k)
            dtd += QStringLiteral("&l%1;").arg(i - 1);
        dtd += QStringLiteral("\">");
    }
    return QStringLiteral("<?xml version=\"1.0\"?><!DOCTYPE TorviGuiModeSettings [") + dtd
        + QStringLiteral("]><TorviGuiModeSettings><DataOperationMode Name=\"vor\"/>"
                         "<OperationModeHandler>&l%1;</OperationModeHandler></TorviGuiModeSettings>")
              .arg(levels);
}

} // namespace

TEST(HostileXml, EntityBombStopsAtTheReadersExpansionLimit)
{
    // 10^9 copies of "QLS" if it were expanded. The stream reader refuses
    // an entity that expands to more than 4096 characters, which ends the
    // document as malformed; the text it leaves the handler is no name, and
    // in validation mode the setter refuses it, but the broken document is
    // what is reported. Below the limit (1000 x "QLS" = 3000 characters)
    // entities expand as XML says, which is no name either.
    const QString broken = QStringLiteral(
        "XML error at line 1, column 647: Entity expands to more characters than the entity expansion limit.");
    for (const bool validate : {false, true}) {
        SCOPED_TRACE(validate);
        TorviGuiModeSettings root = Preloaded();
        root.SetValidate(validate);
        const QByteArray before = Bytes(root);
        EXPECT_EQ(ReadXml(root, Bomb(9)), kFalse);
        EXPECT_EQ(root.GetErrorString(), broken);
        EXPECT_EQ(Bytes(root), before);
        EXPECT_EQ(ReadXml(root, Bomb(3)), validate ? Throws(kHandlerInvalid) : kTrue);
    }
}

TEST(HostileXml, EntityExpansionHasABudgetInProportionToTheInput)
{
    // References may add as many characters as the document has (bytes in
    // a file, characters in a string) plus 1 MiB, wherever they stand:
    // attribute values, texts, skipped elements, and the default values a
    // DTD gives attributes. A document that would spend more is refused
    // where the budget runs out, before the reader builds any of it.
    const QString entity = QStringLiteral("<!DOCTYPE TorviGuiModeSettings [<!ENTITY e \"%1\">%2]>")
                               .arg(QString(4000, QLatin1Char('x')));
    const QString refs = QStringLiteral("&e;").repeated(250000);
    const QString root = QStringLiteral("<TorviGuiModeSettings>%1<OperationModeHandler>QLSManagementComponent"
                                        "</OperationModeHandler></TorviGuiModeSettings>");
    // The message for a document of size characters (bytes for the file,
    // all ASCII) whose budget runs out at the column.
    const auto spent = [](int column, int size, const char* unit) {
        return QStringLiteral("at line 1, column %1: the entity references and default attributes expand to more "
                              "than %2 characters, the most allowed for a document of %3 %4")
            .arg(column)
            .arg(size + (1 << 20))
            .arg(size)
            .arg(QLatin1String(unit));
    };
    const struct {
        const char* what;
        QString document;
        int column; // where the reference or element stands that overspends
    } cases[] = {
        // The 451st reference: 450 x 4000 fit into 754188 + 1048576.
        {"in a name", entity.arg(QString()) + root.arg(QStringLiteral("<DataOperationMode Name=\"%1\"/>").arg(refs)),
         5446},
        {"in a skipped element's text",
         entity.arg(QString()) + root.arg(QStringLiteral("<Unknown>%1</Unknown>").arg(refs)), 5430},
        {"in a skipped element's attribute",
         entity.arg(QString()) + root.arg(QStringLiteral("<Unknown a=\"%1\"/>").arg(refs)), 5433},
        // 2 MB of empty elements, each given a name of 4000 characters.
        {"in default attributes",
         entity.arg(QStringLiteral("<!ATTLIST DataOperationMode Name CDATA \"&e;\">"))
             + root.arg(QStringLiteral("<DataOperationMode/>").repeated(100000)),
         19376},
    };
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QFile file(dir.filePath(QStringLiteral("expanding.xml")));
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(c.document.toUtf8());
        file.close();
        TorviGuiModeSettings root = Preloaded();
        const QByteArray before = Bytes(root);
        EXPECT_EQ(ReadXml(root, c.document), kFalse);
        EXPECT_EQ(root.GetErrorString(), spent(c.column, c.document.size(), "characters"));
        EXPECT_FALSE(root.LoadXml(file.fileName()));
        EXPECT_EQ(root.GetErrorString(), spent(c.column, c.document.size(), "bytes"));
        EXPECT_EQ(Bytes(root), before);
        // Before the budget, each took 8 to 20 s and 2 to 4 GB.
    }

    // Within the budget references expand as XML says: 200 references to
    // 4000 characters in a name.
    TorviGuiModeSettings within;
    within.SetValidate(true);
    ASSERT_EQ(ReadXml(within, entity.arg(QString())
                                  + root.arg(QStringLiteral("<DataOperationMode Name=\"%1\"/>")
                                                 .arg(QStringLiteral("&e;").repeated(200)))),
              kTrue);
    EXPECT_EQ(within.GetDataOperationMode().at(0).GetName(), QString(800000, QLatin1Char('x')));
}

TEST(HostileXml, ElementsCarryAtMost1024Attributes)
{
    // Qt's reader compares an element's attributes pairwise: 100 000 of them
    // on one unknown element (1.3 MB) took 21 to 39 s. More than 1024 are
    // refused before the reader sees them; 1024 read as usual.
    const auto document = [](int attributes) -> QString {
        QString unknown = QStringLiteral("<Unknown");
        for (int i = 0; i < attributes; ++i)
            unknown += QStringLiteral(" a%1=\"\"").arg(i);
        return QStringLiteral("<TorviGuiModeSettings>") + unknown
            + QStringLiteral("/><OperationModeHandler>QLSManagementComponent</OperationModeHandler>"
                             "</TorviGuiModeSettings>");
    };
    TorviGuiModeSettings root = Preloaded();
    EXPECT_EQ(ReadXml(root, document(100000)), kFalse);
    EXPECT_EQ(root.GetErrorString(), QStringLiteral("at line 1, column 23: the element has more than 1024 attributes"));
    EXPECT_EQ(Bytes(root), Bytes(Preloaded()));
    EXPECT_EQ(ReadXml(root, document(1024)), kTrue);
    EXPECT_EQ(root.GetOperationModeHandler(), TorviGuiModeSettings::QLSManagementComponent);

    // In a UTF-8 file the place is counted in characters as the reader
    // counts them (UTF-16 units): "\u00E4" is one, "\U0001F600" two.
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QFile file(dir.filePath(QStringLiteral("attributes.xml")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(document(1025).replace(QStringLiteral("<Unknown"),
                                      QStringLiteral("<DataOperationMode Name=\"\u00E4\U0001F600\"/><Unknown"))
                   .toUtf8());
    file.close();
    EXPECT_FALSE(root.LoadXml(file.fileName()));
    EXPECT_EQ(root.GetErrorString(), QStringLiteral("at line 1, column 54: the element has more than 1024 attributes"));
    EXPECT_EQ(root.GetOperationModeHandler(), TorviGuiModeSettings::QLSManagementComponent);
}

TEST(HostileXml, ExternalEntitiesAreNeverFetched)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString secretPath = dir.filePath(QStringLiteral("secret.txt"));
    QFile secret(secretPath);
    ASSERT_TRUE(secret.open(QIODevice::WriteOnly));
    secret.write("PMR830ManagementComponent");
    secret.close();
    const QString dtdPath = dir.filePath(QStringLiteral("outside.dtd"));
    QFile dtd(dtdPath);
    ASSERT_TRUE(dtd.open(QIODevice::WriteOnly));
    dtd.write("<!ENTITY h \"PMR830ManagementComponent\">");
    dtd.close();
    const QString secretUrl = QUrl::fromLocalFile(secretPath).toString();
    const QString dtdUrl = QUrl::fromLocalFile(dtdPath).toString();

    // An external entity in content is passed over: the elements read as
    // empty, the file's text appears nowhere.
    const QString inContent = QStringLiteral("<!DOCTYPE TorviGuiModeSettings [<!ENTITY x SYSTEM \"%1\">]>"
                                             "<TorviGuiModeSettings><DataOperationMode><Name>&x;</Name>"
                                             "</DataOperationMode><OperationModeHandler>&x;</OperationModeHandler>"
                                             "</TorviGuiModeSettings>")
                                  .arg(secretUrl);
    TorviGuiModeSettings lax;
    EXPECT_EQ(ReadXml(lax, inContent), kTrue);
    ASSERT_EQ(lax.GetDataOperationMode().size(), 1);
    EXPECT_EQ(lax.GetDataOperationMode().at(0).GetName(), QStringLiteral(""));
    EXPECT_TRUE(lax.IsOperationModeHandlerSet());
    EXPECT_EQ(int(lax.GetOperationModeHandler()), -1);
    EXPECT_FALSE(lax.GetXmlString().contains(QStringLiteral("PMR830")));
    TorviGuiModeSettings strict;
    strict.SetValidate(true);
    EXPECT_EQ(ReadXml(strict, inContent), Throws(kHandlerInvalid));

    // In an attribute value it is an error of the document.
    const QString inAttribute = QStringLiteral("<!DOCTYPE TorviGuiModeSettings [<!ENTITY x SYSTEM \"%1\">]>"
                                               "<TorviGuiModeSettings><DataOperationMode Name=\"&x;\"/>"
                                               "</TorviGuiModeSettings>")
                                    .arg(secretUrl);
    TorviGuiModeSettings attribute;
    EXPECT_EQ(ReadXml(attribute, inAttribute), kFalse);
    EXPECT_TRUE(attribute.GetDataOperationMode().isEmpty());

    // An external DTD is not loaded either, so its entity stays undeclared.
    const QString outsideDtd = QStringLiteral("<!DOCTYPE TorviGuiModeSettings SYSTEM \"%1\">"
                                              "<TorviGuiModeSettings><OperationModeHandler>&h;"
                                              "</OperationModeHandler></TorviGuiModeSettings>")
                                   .arg(dtdUrl);
    TorviGuiModeSettings undeclared;
    const Outcome outcome = ReadXml(undeclared, outsideDtd);
    EXPECT_NE(undeclared.GetOperationModeHandler(), TorviGuiModeSettings::PMR830ManagementComponent);
    EXPECT_EQ(outcome, kTrue);
    EXPECT_EQ(int(undeclared.GetOperationModeHandler()), -1);
}

TEST(HostileXml, HundredThousandLevelsOfNesting)
{
    constexpr int Levels = 100000;
    QString open;
    QString close;
    for (int i = 0; i < Levels; ++i) {
        open += QStringLiteral("<e%1>").arg(i);
        close += QStringLiteral("</e%1>").arg(Levels - 1 - i);
    }

    // Unknown elements with distinct names are passed over as a whole;
    // the members behind them are read.
    const QString skipped = QStringLiteral("<TorviGuiModeSettings><DataOperationMode Name=\"M\">"
                                           "<GuiComponentSettings Name=\"C\"><GuiComponentUsage>AVAILABLE"
                                           "</GuiComponentUsage>")
        + open + close
        + QStringLiteral("<DockWidgetLocation>NoDockWidgetArea</DockWidgetLocation></GuiComponentSettings>"
                         "</DataOperationMode><OperationModeHandler>")
        + open + close
        + QStringLiteral("VbkManagementComponent</OperationModeHandler></TorviGuiModeSettings>");
    TorviGuiModeSettings root;
    root.SetValidate(true);
    EXPECT_EQ(ReadXml(root, skipped), kTrue);
    ASSERT_EQ(root.GetDataOperationMode().size(), 1);
    ASSERT_EQ(root.GetDataOperationMode().at(0).GetGuiComponentSettings().size(), 1);
    const GuiComponentSettings& component = root.GetDataOperationMode().at(0).GetGuiComponentSettings().at(0);
    EXPECT_EQ(component.GetDockWidgetLocation(), GuiComponentSettings::NoDockWidgetArea);
    EXPECT_EQ(component.GetGuiComponentUsage(), GuiComponentSettings::AVAILABLE);
    // Text inside the nesting is not the element's text.
    EXPECT_EQ(root.GetOperationModeHandler(), TorviGuiModeSettings::VbkManagementComponent);

    // Never closed: malformed, refused.
    TorviGuiModeSettings unclosed;
    EXPECT_EQ(ReadXml(unclosed, QStringLiteral("<TorviGuiModeSettings>") + open), kFalse);
    EXPECT_FALSE(unclosed.AnyData());

    // 100000 nested DataOperationMode elements. The root reads the first
    // as a mode; inside a mode the name is unknown, and skipping an unknown
    // element stops at the next token of the same name, the third level. The
    // mode's walk passes over the rest of the nesting, counting start and end
    // tags, and returns at the first level's end tag: one nameless mode
    // without components, and the handler behind the nesting is read.
    // Levels elements of one name, each inside the one before.
    const auto nest = [](const QString& name) -> QString {
        return QStringLiteral("<%1>").arg(name).repeated(Levels) + QStringLiteral("</%1>").arg(name).repeated(Levels);
    };
    const QString modes = QStringLiteral("<TorviGuiModeSettings>") + nest(QStringLiteral("DataOperationMode"))
        + QStringLiteral("<OperationModeHandler>QLSManagementComponent</OperationModeHandler>"
                         "</TorviGuiModeSettings>");
    TorviGuiModeSettings nested;
    EXPECT_EQ(ReadXml(nested, modes), kTrue);
    ASSERT_EQ(nested.GetDataOperationMode().size(), 1);
    EXPECT_TRUE(nested.GetDataOperationMode().at(0).GetName().isNull());
    EXPECT_TRUE(nested.GetDataOperationMode().at(0).GetGuiComponentSettings().isEmpty());
    EXPECT_TRUE(nested.IsOperationModeHandlerSet());
    EXPECT_EQ(nested.GetOperationModeHandler(), TorviGuiModeSettings::QLSManagementComponent);
    TorviGuiModeSettings nestedStrict;
    nestedStrict.SetValidate(true);
    EXPECT_EQ(ReadXml(nestedStrict, modes),
              Throws(QStringLiteral("TorviGuiModeSettings: Tried to append not completely defined or invalid item "
                                    "DataOperationMode.")));
    EXPECT_TRUE(nestedStrict.GetDataOperationMode().isEmpty());
    EXPECT_FALSE(nestedStrict.IsOperationModeHandlerSet());

    // The same with GuiComponentSettings nested in a named mode: inside a
    // component the name is unknown. The first level is appended, with the
    // handler behind the nesting read; with validation the component,
    // without data, is refused.
    const QString components = QStringLiteral("<TorviGuiModeSettings><DataOperationMode Name=\"M\">")
        + nest(QStringLiteral("GuiComponentSettings"))
        + QStringLiteral("</DataOperationMode><OperationModeHandler>VbkManagementComponent"
                         "</OperationModeHandler></TorviGuiModeSettings>");
    TorviGuiModeSettings nestedComponents;
    EXPECT_EQ(ReadXml(nestedComponents, components), kTrue);
    ASSERT_EQ(nestedComponents.GetDataOperationMode().size(), 1);
    EXPECT_EQ(nestedComponents.GetDataOperationMode().at(0).GetName(), QStringLiteral("M"));
    ASSERT_EQ(nestedComponents.GetDataOperationMode().at(0).GetGuiComponentSettings().size(), 1);
    EXPECT_FALSE(nestedComponents.GetDataOperationMode().at(0).GetGuiComponentSettings().at(0).AnyData());
    EXPECT_EQ(nestedComponents.GetOperationModeHandler(), TorviGuiModeSettings::VbkManagementComponent);
    TorviGuiModeSettings componentsStrict;
    componentsStrict.SetValidate(true);
    EXPECT_EQ(ReadXml(componentsStrict, components),
              Throws(QStringLiteral("DataOperationMode: Tried to append not completely defined or invalid item "
                                    "GuiComponentSettings.")));
}

TEST(HostileXml, InvalidUtf8InAFileIsRefused)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const auto write = [&](const QString& name, const QByteArray& bytes) {
        QFile file(dir.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName();
    };
    const QByteArray good = "<TorviGuiModeSettings><DataOperationMode Name=\"M\xC3\xA4rz\"/>"
                            "<OperationModeHandler>QLSManagementComponent</OperationModeHandler>"
                            "</TorviGuiModeSettings>";
    TorviGuiModeSettings root = Preloaded();
    ASSERT_TRUE(root.LoadXml(write(QStringLiteral("good.xml"), good)));
    EXPECT_EQ(root.GetDataOperationMode().at(0).GetName(), QStringLiteral("M\u00E4rz"));

    // Bytes that are no UTF-8 (a lone continuation byte, 0xFF, a truncated
    // sequence, an overlong form of '/'), each in place of the umlaut: the
    // file is refused at the place of the first such byte, the object stays
    // as it was.
    const QString encoding = QStringLiteral("XML error at line %1, column %2: Encountered incorrectly encoded content.");
    const QList<QByteArray> broken = {"\xA4", "\xFF", "\xC3", "\xC0\xAF"};
    for (const QByteArray& bad : broken) {
        SCOPED_TRACE(bad.toHex().toStdString());
        QByteArray bytes = good;
        bytes.replace("\xC3\xA4", bad);
        TorviGuiModeSettings loaded = Preloaded();
        EXPECT_FALSE(loaded.LoadXml(write(QStringLiteral("bad.xml"), bytes)));
        EXPECT_EQ(loaded.GetErrorString(), encoding.arg(1).arg(49));
        EXPECT_EQ(Bytes(loaded), Bytes(Preloaded()));
    }

    // Behind an XML declaration the reader itself names the place where it
    // began decoding (line 1, column 38) for every such byte.
    const QByteArray declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    const QByteArray start = "<TorviGuiModeSettings><DataOperationMode Name=\"";
    const QByteArray end = "\"/></TorviGuiModeSettings>";
    const struct {
        QByteArray bytes;
        int line;
        int column;
    } places[] = {
        {declaration + start + "\xFF" + end, 1, 86},
        {declaration + "\n" + start + QByteArray(270, 'x') + "\xFE" + end, 2, 318},
        {declaration + start + "\xE2\x82\xAC\xF0\x9F\x98\x80" + "\xC3" + end, 1, 89},
    };
    for (const auto& place : places) {
        TorviGuiModeSettings loaded;
        EXPECT_FALSE(loaded.LoadXml(write(QStringLiteral("placed.xml"), place.bytes)));
        EXPECT_EQ(loaded.GetErrorString(), encoding.arg(place.line).arg(place.column));
    }
}

TEST(HostileXml, TenMegabyteAttribute)
{
    const QString name(10 * 1000 * 1000, QLatin1Char('x'));
    const QString document = QStringLiteral("<TorviGuiModeSettings><DataOperationMode Name=\"") + name
        + QStringLiteral("\"/><OperationModeHandler>QLSManagementComponent</OperationModeHandler>"
                         "</TorviGuiModeSettings>");
    // No limit on a name's length: it is read and written back whole.
    TorviGuiModeSettings root;
    root.SetValidate(true);
    EXPECT_EQ(ReadXml(root, document), kTrue);
    ASSERT_EQ(root.GetDataOperationMode().size(), 1);
    EXPECT_EQ(root.GetDataOperationMode().at(0).GetName().size(), name.size());
    EXPECT_TRUE(root.GetDataOperationMode().at(0).GetName() == name);
    const QString written = root.GetXmlString();
    const QString expected = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>") + document + QLatin1Char('\n');
    EXPECT_EQ(written.size(), expected.size());
    EXPECT_TRUE(written == expected);

    // Never closed: refused, nothing appended, the handler behind it unread.
    TorviGuiModeSettings unclosed = Preloaded();
    EXPECT_EQ(ReadXml(unclosed, document.left(document.indexOf(QLatin1String("\"/>")))), kFalse);
    EXPECT_EQ(unclosed.GetDataOperationMode().size(), 1);
    EXPECT_EQ(unclosed.GetOperationModeHandler(), TorviGuiModeSettings::VbkManagementComponent);
}

namespace {

// Limits the size of files this process writes while it lives, so that a
// write beyond the limit fails (EFBIG) instead of raising SIGXFSZ.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        m_ok = getrlimit(RLIMIT_FSIZE, &m_saved) == 0;
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limited = m_saved;
        limited.rlim_cur = bytes;
        m_ok = m_ok && setrlimit(RLIMIT_FSIZE, &limited) == 0;
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_saved);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    bool ok() const { return m_ok; }

private:
    rlimit m_saved{};
    void (*m_handler)(int) = SIG_DFL;
    bool m_ok = false;
};

} // namespace

TEST(AtomicSave, WriteThatFailsHalfwayLeavesThePreviousFile)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("settings.xml"));
    const TorviGuiModeSettings small = Preloaded();
    ASSERT_TRUE(small.SaveXml(path));
    QFile saved(path);
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    const QByteArray before = saved.readAll();
    saved.close();
    ASSERT_EQ(before, small.GetXmlString().toUtf8());

    // A document of about 100 KB, written while no file may grow beyond
    // 4 KB: the write fails part way, in the temporary file.
    TorviGuiModeSettings big = Preloaded();
    DataOperationMode mode;
    mode.SetName(QString(100 * 1000, QLatin1Char('n')));
    big.AppendDataOperationMode(mode);
    bool result = true;
    {
        FileSizeLimit limit(4096);
        ASSERT_TRUE(limit.ok());
        result = big.SaveXml(path);
    }
    EXPECT_FALSE(result);
    // The reason reaches the caller, as the system gave it.
    EXPECT_EQ(big.GetErrorString(), QStringLiteral("cannot write: File too large"));
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    EXPECT_EQ(saved.readAll(), before);
    saved.close();
    // No partial or temporary file is left beside it.
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("settings.xml")});

    // Without the limit the same save replaces the file.
    EXPECT_TRUE(big.SaveXml(path));
    EXPECT_EQ(big.GetErrorString(), QString());
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    EXPECT_EQ(saved.readAll(), big.GetXmlString().toUtf8());
}
