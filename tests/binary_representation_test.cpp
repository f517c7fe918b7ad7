// The binary form of the settings tree: the exact bytes of the worked
// examples, reading back, length accounting, damaged and hostile input, the
// whole-document operations and devices that cannot be written.

#include <TorviXML/TorviXML.h>

#include <gtest/gtest.h>

#include "TestSupport.h"

#include <QBuffer>
#include <QByteArray>
#include <QDataStream>
#include <QFile>
#include <QIODevice>
#include <QTemporaryDir>
#include <QVector>


#include <cstring>
#include <functional>
#include <memory>
#include <ostream>
#include <utility>

using namespace TORVIXML;
using namespace TestSupport;
namespace {
const QString kUsageInvalid = EnumInvalid("GuiComponentSettings", "m_guiComponentUsage");
const QString kLocationInvalid = EnumInvalid("GuiComponentSettings", "m_dockWidgetLocation");
const QString kHandlerInvalid = EnumInvalid("TorviGuiModeSettings", "m_operationModeHandler");
}
using REPORTGENERATOR::IRGObject;


namespace {

using Usage = GuiComponentSettings::GuiComponentUsage;
using Location = GuiComponentSettings::DockWidgetLocation;
using Handler = TorviGuiModeSettings::OperationModeHandler;

QByteArray Hex(const char* hex)
{
    return QByteArray::fromHex(QByteArray(hex).replace(' ', ""));
}

// The component "A" / AVAILABLE / LeftDockWidgetArea with its class id.
const QByteArray kComponent = Hex(
    "AA600C15 00000040"
    " 58D44D66 00000005 00000001 41"
    " 0EDC6084 0000000D 00000009 415641494C41424C45"
    " 17299F64 00000016 00000012 4C656674446F636B57696467657441726561");
// The mode "M" holding that component, as an element frame.
const QByteArray kMode = Hex("0000005D 58D44D66 00000005 00000001 4D C0D4B710 00000048 00000001") + kComponent.mid(4);
// The root holding that mode, handler TX470ManagementComponent.
const QByteArray kRoot = Hex("0DD58E7A 00000091 95948526 00000065 00000001") + kMode
    + Hex("6EEDD5E0 0000001C 00000018 5458343730 4D616E6167656D656E74 436F6D706F6E656E74");


GuiComponentSettings Component(const QString& name, Usage usage, Location location)
{
    GuiComponentSettings component;
    component.SetName(name);
    component.SetGuiComponentUsage(usage);
    component.SetDockWidgetLocation(location);
    return component;
}

GuiComponentSettings ExampleComponent()
{
    return Component(QStringLiteral("A"), GuiComponentSettings::AVAILABLE, GuiComponentSettings::LeftDockWidgetArea);
}

DataOperationMode ExampleMode()
{
    DataOperationMode mode;
    mode.SetName(QStringLiteral("M"));
    mode.AppendGuiComponentSettings(ExampleComponent());
    return mode;
}

TorviGuiModeSettings ExampleRoot()
{
    TorviGuiModeSettings root;
    root.AppendDataOperationMode(ExampleMode());
    root.SetOperationModeHandler(TorviGuiModeSettings::TX470ManagementComponent);
    return root;
}

// GetBinary into bytes; bytes keeps what was written if it throws.
bool WriteTo(QByteArray& bytes, const IRGObject& object, int id, bool writeId,
             QDataStream::ByteOrder order = QDataStream::BigEndian)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QDataStream stream(&buffer);
    stream.setByteOrder(order);
    return object.GetBinary(stream, id, writeId);
}

QByteArray Write(const IRGObject& object, int id, bool writeId,
                 QDataStream::ByteOrder order = QDataStream::BigEndian, bool* result = nullptr)
{
    QByteArray bytes;
    const bool written = WriteTo(bytes, object, id, writeId, order);
    if (result)
        *result = written;
    return bytes;
}

// Reads one frame as a parent does: the object length, then SetBinary.
// Returns the bytes left behind in the input.
qint64 Read(IRGObject& object, const QByteArray& frame, QDataStream::ByteOrder order = QDataStream::BigEndian)
{
    QBuffer buffer;
    buffer.setData(frame);
    buffer.open(QIODevice::ReadOnly);
    QDataStream stream(&buffer);
    stream.setByteOrder(order);
    qint32 length = 0;
    stream >> length;
    object.SetBinary(stream, length);
    return buffer.bytesAvailable();
}


// A device that only appends, like a pipe or a socket.
class SequentialSink : public QIODevice
{
public:
    bool isSequential() const override { return true; }
    QByteArray written;

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char* data, qint64 size) override
    {
        written.append(data, int(size));
        return size;
    }
};

} // namespace

TEST(BinaryRepresentation, WorkedExamplesToTheByte)
{
    ASSERT_EQ(kComponent.size(), 72);
    ASSERT_EQ(kMode.size(), 97);
    ASSERT_EQ(kRoot.size(), 153);

    bool result = false;
    const GuiComponentSettings component = ExampleComponent();
    EXPECT_EQ(Write(component, int(GuiComponentSettings::id), true, QDataStream::BigEndian, &result), kComponent);
    EXPECT_TRUE(result);
    EXPECT_EQ(Write(component, 12345, false), kComponent.mid(4));
    // Frames written one after the other each patch their own lengths.
    QByteArray twice;
    {
        QBuffer buffer(&twice);
        buffer.open(QIODevice::WriteOnly);
        QDataStream stream(&buffer);
        component.GetBinary(stream, int(GuiComponentSettings::id), true);
        component.GetBinary(stream, int(GuiComponentSettings::id), true);
    }
    EXPECT_EQ(twice, kComponent + kComponent);
    const DataOperationMode mode = ExampleMode();
    EXPECT_EQ(Write(mode, 12345, false, QDataStream::BigEndian, &result), kMode);
    EXPECT_TRUE(result);
    const TorviGuiModeSettings root = ExampleRoot();
    root.SetValidate(true);
    EXPECT_EQ(Write(root, int(TorviGuiModeSettings::id), true, QDataStream::BigEndian, &result), kRoot);
    EXPECT_TRUE(result);
    // An unset handler is written with its default.
    TorviGuiModeSettings unsetHandler;
    unsetHandler.AppendDataOperationMode(ExampleMode());
    EXPECT_EQ(Write(unsetHandler, int(TorviGuiModeSettings::id), true), kRoot);

    GuiComponentSettings readComponent;
    readComponent.SetValidate(true);
    EXPECT_EQ(Read(readComponent, kComponent.mid(4)), 0);
    EXPECT_TRUE(readComponent == component);
    DataOperationMode readMode;
    readMode.SetValidate(true);
    EXPECT_EQ(Read(readMode, kMode), 0);
    EXPECT_TRUE(readMode == mode);
    TorviGuiModeSettings readRoot;
    readRoot.SetValidate(true);
    EXPECT_EQ(Read(readRoot, kRoot.mid(4)), 0);
    EXPECT_TRUE(readRoot == root);
    EXPECT_TRUE(readRoot.IsOperationModeHandlerSet());
    EXPECT_FALSE(readRoot == unsetHandler);
}

TEST(BinaryRepresentation, NullTextsAndValuesWithoutName)
{
    DataOperationMode nameless;
    const QByteArray nullName = Hex("0000000C 58D44D66 00000004 FFFFFFFF");
    EXPECT_EQ(Write(nameless, 0, false), nullName);
    for (bool validate : {false, true}) {
        DataOperationMode read;
        read.SetValidate(validate);
        EXPECT_EQ(Read(read, nullName), 0);
        EXPECT_TRUE(read.IsNameSet());
        EXPECT_FALSE(read.GetName().isNull());
        EXPECT_TRUE(read.GetName().isEmpty());
    }
    // In validation mode the whole tree is checked before anything is written.
    TorviGuiModeSettings root = ExampleRoot();
    root.AppendDataOperationMode(nameless);
    root.SetValidate(true);
    QByteArray refused;
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { WriteTo(refused, root, 1, true); }),
              QStringLiteral("DataOperationMode: Please set Name properly."));
    EXPECT_TRUE(refused.isEmpty());
    nameless.SetValidate(true);
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { WriteTo(refused, nameless, 0, false); }),
              QStringLiteral("DataOperationMode: Please set Name properly."));
    EXPECT_TRUE(refused.isEmpty());

    // Enumeration values outside their tables: byte count 0xFFFFFFFF.
    const GuiComponentSettings badUsage = Component(QStringLiteral("A"), Usage(5), GuiComponentSettings::LeftDockWidgetArea);
    const QByteArray badUsageFrame = Write(badUsage, 0, false);
    EXPECT_EQ(badUsageFrame, Hex("00000037 58D44D66 00000005 00000001 41 0EDC6084 00000004 FFFFFFFF") + kComponent.mid(42));
    const GuiComponentSettings badLocation = Component(QStringLiteral("A"), GuiComponentSettings::AVAILABLE, Location(7));
    const QByteArray badLocationFrame = Write(badLocation, 0, false);
    EXPECT_EQ(badLocationFrame, Hex("0000002E") + kComponent.mid(8, 34) + Hex("17299F64 00000004 FFFFFFFF"));
    TorviGuiModeSettings badHandler;
    badHandler.SetOperationModeHandler(Handler(9));
    const QByteArray badHandlerFrame = Write(badHandler, 0, false);
    EXPECT_EQ(badHandlerFrame, Hex("0000000C 6EEDD5E0 00000004 FFFFFFFF"));

    GuiComponentSettings lax;
    lax.SetInvalidGuiComponentUsage(Usage(7));
    Read(lax, badUsageFrame);
    EXPECT_TRUE(lax.IsGuiComponentUsageSet());
    EXPECT_EQ(lax.GetGuiComponentUsage(), Usage(7));
    Read(lax, badLocationFrame);
    EXPECT_EQ(lax.GetDockWidgetLocation(), Location(-1));
    EXPECT_TRUE(lax.IsDockWidgetLocationSet());
    TorviGuiModeSettings laxRoot;
    Read(laxRoot, badHandlerFrame);
    EXPECT_EQ(laxRoot.GetOperationModeHandler(), Handler(-1));
    EXPECT_TRUE(laxRoot.IsOperationModeHandlerSet());

    GuiComponentSettings strict;
    strict.SetValidate(true);
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { Read(strict, badUsageFrame); }), kUsageInvalid);
    EXPECT_EQ(strict.GetName(), QStringLiteral("A"));  // applied before the failure
    EXPECT_FALSE(strict.IsGuiComponentUsageSet());
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { Read(strict, badLocationFrame); }), kLocationInvalid);
    TorviGuiModeSettings strictRoot;
    strictRoot.SetValidate(true);
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { Read(strictRoot, badHandlerFrame); }), kHandlerInvalid);
    EXPECT_FALSE(strictRoot.IsOperationModeHandlerSet());

    // The floating location travels with its trailing blank.
    const GuiComponentSettings floating = Component(QStringLiteral("A"), GuiComponentSettings::AVAILABLE,
                                                    GuiComponentSettings::FloatingDockWidgetArea);
    const QByteArray floatingFrame = Write(floating, 0, false);
    EXPECT_EQ(floatingFrame, Hex("00000045") + kComponent.mid(8, 34)
                  + Hex("17299F64 0000001B 00000017 466C6F6174696E67446F636B576964676574417265 6120"));
    GuiComponentSettings readFloating;
    readFloating.SetValidate(true);
    Read(readFloating, floatingFrame);
    EXPECT_EQ(readFloating.GetDockWidgetLocation(), GuiComponentSettings::FloatingDockWidgetArea);
    const QByteArray withoutBlank = Frame(Record(kLocationId, Text("FloatingDockWidgetArea")));
    GuiComponentSettings laxFloating;
    Read(laxFloating, withoutBlank);
    EXPECT_EQ(laxFloating.GetDockWidgetLocation(), Location(-1));
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { Read(strict, withoutBlank); }), kLocationInvalid);

    // A name is looked up as its bytes decode: the decoder drops a leading
    // byte order mark (once), and a name in another case is unknown.
    GuiComponentSettings marked;
    marked.SetValidate(true);
    Read(marked, Frame(Record(kUsageId, Text("\xEF\xBB\xBF" "DEFAULT_DISPLAY"))));
    EXPECT_EQ(marked.GetGuiComponentUsage(), GuiComponentSettings::DEFAULT_DISPLAY);
    GuiComponentSettings twiceMarked;
    Read(twiceMarked, Frame(Record(kUsageId, Text("\xEF\xBB\xBF\xEF\xBB\xBF" "DEFAULT_DISPLAY"))));
    EXPECT_EQ(twiceMarked.GetGuiComponentUsage(), Usage(-1));
    GuiComponentSettings lowerCase;
    Read(lowerCase, Frame(Record(kUsageId, Text("available"))));
    EXPECT_EQ(lowerCase.GetGuiComponentUsage(), Usage(-1));

    // Elements without data: refused by the parent in validation mode.
    const QByteArray emptyMode = Frame(Record(kModeListId, Int(1) + Frame(QByteArray())));
    TorviGuiModeSettings refusing;
    refusing.SetValidate(true);
    EXPECT_EQ(MessageOf<IncompleteDefinitionException>([&] { Read(refusing, emptyMode); }),
              QStringLiteral("TorviGuiModeSettings: Tried to append not completely defined or invalid item "
                             "DataOperationMode."));
    EXPECT_EQ(refusing.GetDataOperationMode().size(), 0);
    TorviGuiModeSettings accepting;
    EXPECT_EQ(Read(accepting, emptyMode), 0);
    ASSERT_EQ(accepting.GetDataOperationMode().size(), 1);
    EXPECT_TRUE(accepting.GetDataOperationMode().at(0).GetName().isNull());
    DataOperationMode refusingMode;
    refusingMode.SetValidate(true);
    EXPECT_EQ(MessageOf<IncompleteDefinitionException>([&] {
                  Read(refusingMode, Frame(Record(kComponentListId, Int(1) + Frame(kComponent.mid(8, 34)))));
              }),
              QStringLiteral("DataOperationMode: Tried to append not completely defined or invalid item "
                             "GuiComponentSettings."));
}

TEST(BinaryRepresentation, UnknownRecordsOrderAndRepetition)
{
    // Records of other classes' members and of no member are skipped.
    const QByteArray component = Frame(
        Record(kHandlerId, Text("QLSManagementComponent")) + Record(0x12345678, Hex("010203"))
        + Record(kLocationId, Text("TopDockWidgetArea")) + Record(kComponentListId, Hex("7FFFFFFF 00"))
        + Record(kUsageId, Text("DEFAULT_DISPLAY")) + Record(-1, QByteArray()) + Record(kNameId, Text("first"))
        + Record(kNameId, Text("second")));
    GuiComponentSettings read;
    read.SetValidate(true);
    EXPECT_EQ(Read(read, component + Hex("99")), 1);
    EXPECT_TRUE(read == Component(QStringLiteral("second"), GuiComponentSettings::DEFAULT_DISPLAY,
                                  GuiComponentSettings::TopDockWidgetArea));

    TorviGuiModeSettings root;
    root.SetValidate(true);
    EXPECT_EQ(Read(root, Frame(Record(kNameId, Text("x")) + Record(kHandlerId, Text("VbkManagementComponent"))
                                + Record(kComponentListId, Int(1) + kComponent.mid(4)))),
              0);
    EXPECT_EQ(root.GetOperationModeHandler(), TorviGuiModeSettings::VbkManagementComponent);
    EXPECT_FALSE(root.IsDataOperationModeSet());

    // A repeated list record appends; lists are read behind what is there.
    const QByteArray second = Frame(Record(kNameId, Text("B")) + kComponent.mid(21));
    DataOperationMode mode = ExampleMode();
    EXPECT_EQ(Read(mode, Frame(Record(kComponentListId, Int(1) + kComponent.mid(4))
                               + Record(kUsageId, Text("AVAILABLE"))
                               + Record(kComponentListId, Int(2) + second + kComponent.mid(4))
                               + Record(kNameId, Text("N")))),
              0);
    EXPECT_EQ(mode.GetName(), QStringLiteral("N"));
    ASSERT_EQ(mode.GetGuiComponentSettings().size(), 4);
    EXPECT_EQ(mode.GetGuiComponentSettings().at(2).GetName(), QStringLiteral("B"));
    EXPECT_TRUE(mode.GetGuiComponentSettings().at(3) == ExampleComponent());

    // A frame without a list record leaves the list alone.
    EXPECT_EQ(Read(mode, Frame(Record(kNameId, Text("O")))), 0);
    EXPECT_EQ(mode.GetGuiComponentSettings().size(), 4);
    EXPECT_EQ(mode.GetName(), QStringLiteral("O"));
}

TEST(BinaryRepresentation, LengthAccounting)
{
    auto readWithLength = [](IRGObject& object, const QByteArray& records, int length) {
        QBuffer buffer;
        buffer.setData(records);
        buffer.open(QIODevice::ReadOnly);
        QDataStream stream(&buffer);
        object.SetBinary(stream, length);
        return buffer.pos();
    };
    GuiComponentSettings component;
    EXPECT_EQ(readWithLength(component, kComponent.mid(8), 0), 0);
    EXPECT_FALSE(component.AnyData());
    DataOperationMode mode;
    TorviGuiModeSettings root;
    EXPECT_EQ(MessageOf<BinaryParsingException>([&] { readWithLength(component, kComponent.mid(8), -1); }),
              LengthError("GuiComponentSettings"));
    EXPECT_EQ(MessageOf<BinaryParsingException>([&] { readWithLength(mode, kMode.mid(4), -8); }),
              LengthError("DataOperationMode"));
    EXPECT_EQ(MessageOf<BinaryParsingException>([&] { readWithLength(root, kRoot.mid(8), -145); }),
              LengthError("TorviGuiModeSettings"));
    EXPECT_FALSE(component.AnyData());
    EXPECT_FALSE(mode.AnyData());

    // A record length one larger than its payload: the object holding the
    // record reports it, through every enclosing frame.
    struct Patch
    {
        int offset;
        char value;
        const char* owner;
    };
    for (const Patch& patch : {Patch{60, 0x06, "GuiComponentSettings"}, Patch{31, 0x06, "DataOperationMode"},
                               Patch{44, 0x49, "DataOperationMode"}, Patch{124, 0x1D, "TorviGuiModeSettings"}}) {
        SCOPED_TRACE(patch.offset);
        QByteArray damaged = kRoot;
        damaged[patch.offset] = patch.value;
        TorviGuiModeSettings target;
        EXPECT_EQ(MessageOf<BinaryParsingException>([&] { Read(target, damaged.mid(4)); }), LengthError(patch.owner));
        TorviGuiModeSettings whole;
        EXPECT_EQ(MessageOf<BinaryParsingException>([&] { whole.SetBinaryRepresentation(damaged); }),
                  LengthError(patch.owner));
    }

    // Element counts of 0 or less read no elements.
    for (qint32 count : {0, -1, -300}) {
        DataOperationMode counted = ExampleMode();
        EXPECT_EQ(Read(counted, Frame(Record(kComponentListId, Int(count)) + Record(kNameId, Text("Z")))), 0);
        EXPECT_EQ(counted.GetGuiComponentSettings().size(), 1);
        EXPECT_EQ(counted.GetName(), QStringLiteral("Z"));
    }

    // A stream that ends between two records.
    GuiComponentSettings cut;
    EXPECT_EQ(MessageOf<BinaryParsingException>([&] { Read(cut, kComponent.mid(4, 4 + 13)); }),
              LengthError("GuiComponentSettings"));
    EXPECT_EQ(cut.GetName(), QStringLiteral("A"));
    TorviGuiModeSettings cutRoot;
    EXPECT_EQ(MessageOf<BinaryParsingException>([&] { Read(cutRoot, kRoot.mid(4, 113)); }),
              LengthError("TorviGuiModeSettings"));
    ASSERT_EQ(cutRoot.GetDataOperationMode().size(), 1);
    EXPECT_TRUE(cutRoot.GetDataOperationMode().at(0) == ExampleMode());

    // A stream that ends inside the last record's payload passes the length
    // check; the member gets what the short read gives.
    GuiComponentSettings shortRead;
    EXPECT_EQ(Read(shortRead, kComponent.mid(4, 56)), 0);
    EXPECT_EQ(shortRead.GetName(), QStringLiteral("A"));
    EXPECT_TRUE(shortRead.IsDockWidgetLocationSet());
    EXPECT_EQ(shortRead.GetDockWidgetLocation(), Location(-1));

    // More elements announced than the stream holds. In validation mode the
    // first element beyond the end reads nothing and its append is refused;
    // outside it the owner ends with its length error. Either way only the
    // elements that were there are appended.
    const QByteArray threeModes = Frame(Record(kModeListId, Int(3) + kMode));
    const QByteArray twoComponents =
        Frame(Record(kNameId, Text("M")) + Record(kComponentListId, Int(2) + kComponent.mid(4)));
    for (const bool validate : {false, true}) {
        SCOPED_TRACE(validate);
        TorviGuiModeSettings tooFew;
        tooFew.SetValidate(validate);
        DataOperationMode tooFewComponents;
        tooFewComponents.SetValidate(validate);
        if (validate) {
            EXPECT_EQ(MessageOf<IncompleteDefinitionException>([&] { Read(tooFew, threeModes); }),
                      QStringLiteral("TorviGuiModeSettings: Tried to append not completely defined or invalid "
                                     "item DataOperationMode."));
            EXPECT_EQ(MessageOf<IncompleteDefinitionException>([&] { Read(tooFewComponents, twoComponents); }),
                      QStringLiteral("DataOperationMode: Tried to append not completely defined or invalid "
                                     "item GuiComponentSettings."));
        } else {
            EXPECT_EQ(MessageOf<BinaryParsingException>([&] { Read(tooFew, threeModes); }),
                      LengthError("TorviGuiModeSettings"));
            EXPECT_EQ(MessageOf<BinaryParsingException>([&] { Read(tooFewComponents, twoComponents); }),
                      LengthError("DataOperationMode"));
        }
        ASSERT_EQ(tooFew.GetDataOperationMode().size(), 1);
        EXPECT_TRUE(tooFew.GetDataOperationMode().at(0) == ExampleMode());
        EXPECT_EQ(tooFewComponents.GetName(), QStringLiteral("M"));
        ASSERT_EQ(tooFewComponents.GetGuiComponentSettings().size(), 1);
        EXPECT_TRUE(tooFewComponents.GetGuiComponentSettings().at(0) == ExampleComponent());
    }
}

TEST(BinaryRepresentation, StreamByteOrderIsUsed)
{
    const QByteArray little = Hex(
        "150C60AA 40000000"
        " 664DD458 05000000 01000000 41"
        " 8460DC0E 0D000000 09000000 415641494C41424C45"
        " 649F2917 16000000 12000000 4C656674446F636B57696467657441726561");
    EXPECT_EQ(Write(ExampleComponent(), int(GuiComponentSettings::id), true, QDataStream::LittleEndian), little);
    GuiComponentSettings read;
    EXPECT_EQ(Read(read, little.mid(4), QDataStream::LittleEndian), 0);
    EXPECT_TRUE(read == ExampleComponent());

    // Whole documents are big-endian whatever the stream says, and the
    // stream keeps its byte order.
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    ExampleRoot().GetBinaryRepresentation(stream);
    EXPECT_EQ(bytes, kRoot);
    EXPECT_EQ(stream.byteOrder(), QDataStream::LittleEndian);
}

TEST(BinaryRepresentation, WholeDocuments)
{
    const TorviGuiModeSettings example = ExampleRoot();
    EXPECT_EQ(example.GetBinaryRepresentationAsQByteArray(), kRoot);

    QByteArray plain = kRoot;
    TorviGuiModeSettings read;
    read.SetValidate(true);
    ASSERT_TRUE(read.SetBinaryRepresentation(plain));
    EXPECT_TRUE(read == example);

    // Another class's document, or a damaged class id.
    DataOperationMode mode;
    EXPECT_FALSE(mode.SetBinaryRepresentation(plain));
    EXPECT_FALSE(mode.AnyData());
    GuiComponentSettings component;
    EXPECT_FALSE(component.SetBinaryRepresentation(plain));
    QByteArray foreign = kComponent;
    TorviGuiModeSettings root;
    EXPECT_FALSE(root.SetBinaryRepresentation(foreign));
    EXPECT_FALSE(root.AnyData());
    QByteArray wrongId = kRoot;
    wrongId[3] = char(0x7B);
    EXPECT_FALSE(root.SetBinaryRepresentation(wrongId));
    EXPECT_FALSE(root.AnyData());
    QByteArray trailing = kRoot + Hex("00");
    EXPECT_FALSE(root.SetBinaryRepresentation(trailing));

    for (int level : {0, 9}) {
        SCOPED_TRACE(level);
        QByteArray compressed = qCompress(kRoot, level);
        EXPECT_EQ(example.GetCompressedBinaryRepresentationAsQByteArray(level), compressed);
        TorviGuiModeSettings fromArray;
        fromArray.SetValidate(true);
        ASSERT_TRUE(fromArray.SetBinaryRepresentation(compressed));
        EXPECT_TRUE(fromArray == example);

        QByteArray streamed;
        QDataStream out(&streamed, QIODevice::WriteOnly);
        example.GetCompressedBinaryRepresentation(out, level);
        EXPECT_EQ(streamed, Int(compressed.size()) + compressed);
        QDataStream in(streamed);
        TorviGuiModeSettings fromStream;
        ASSERT_TRUE(fromStream.SetBinaryRepresentation(in));
        EXPECT_TRUE(fromStream == example);
        EXPECT_TRUE(in.atEnd());
    }
    QDataStream plainStream(kRoot);
    TorviGuiModeSettings fromPlainStream;
    ASSERT_TRUE(fromPlainStream.SetBinaryRepresentation(plainStream));
    EXPECT_TRUE(fromPlainStream == example);

    // Truncated anywhere: false or an exception of the library, never true.
    const QByteArray compressed = qCompress(kRoot, 9);
    for (const QByteArray& document : {kRoot, compressed}) {
        for (int length = 0; length < document.size(); ++length) {
            SCOPED_TRACE(length);
            for (bool validate : {false, true}) {
                QByteArray prefix = document.left(length);
                TorviGuiModeSettings fromArray;
                fromArray.SetValidate(validate);
                bool result = true;
                try {
                    result = fromArray.SetBinaryRepresentation(prefix);
                } catch (const ReportException&) {
                    result = false;
                }
                EXPECT_FALSE(result);

                QByteArray framed = prefix;
                if (document == compressed)
                    framed.prepend(Int(compressed.size()));
                QDataStream in(framed);
                TorviGuiModeSettings fromStream;
                fromStream.SetValidate(validate);
                result = true;
                try {
                    result = fromStream.SetBinaryRepresentation(in);
                } catch (const ReportException&) {
                    result = false;
                }
                EXPECT_FALSE(result);
            }
        }
    }
}

TEST(BinaryRepresentation, FilesAreWrittenAndLoaded)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const TorviGuiModeSettings example = ExampleRoot();
    const QString plainPath = dir.filePath(QStringLiteral("plain.bin"));
    {
        // A file is patched by seeking on it.
        QFile file(plainPath);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        QDataStream stream(&file);
        example.GetBinaryRepresentation(stream);
        EXPECT_EQ(stream.status(), QDataStream::Ok);
    }
    {
        QFile file(plainPath);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), kRoot);
    }
    const QString compressedPath = dir.filePath(QStringLiteral("compressed.bin"));
    {
        QFile file(compressedPath);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(qCompress(kRoot, 9)), qCompress(kRoot, 9).size());
    }
    for (const QString& path : {plainPath, compressedPath}) {
        TorviGuiModeSettings loaded;
        loaded.SetOperationModeHandler(TorviGuiModeSettings::VbkManagementComponent);
        loaded.AppendDataOperationMode(ExampleMode());
        QFile file(path);
        ASSERT_TRUE(loaded.LoadBinary(&file));
        EXPECT_TRUE(loaded == example);
    }
    QFile missing(dir.filePath(QStringLiteral("none.bin")));
    TorviGuiModeSettings root;
    EXPECT_FALSE(root.LoadBinary(&missing));
    EXPECT_FALSE(root.LoadBinary(nullptr));
}

TEST(BinaryRepresentation, DevicesThatCannotBePatchedAreRefused)
{
    const TorviGuiModeSettings root = ExampleRoot();
    const DataOperationMode mode = ExampleMode();
    const GuiComponentSettings component = ExampleComponent();
    const QVector<const IRGObject*> objects = {&root, &mode, &component};

    for (const IRGObject* object : objects) {
        SCOPED_TRACE(object->GetObjectName().toStdString());
        SequentialSink sink;
        ASSERT_TRUE(sink.open(QIODevice::WriteOnly));
        QDataStream sequential(&sink);
        EXPECT_FALSE(object->GetBinary(sequential, 1, true));
        EXPECT_EQ(sequential.status(), QDataStream::WriteFailed);
        EXPECT_TRUE(sink.written.isEmpty());

        QDataStream deviceless;
        EXPECT_FALSE(object->GetBinary(deviceless, 1, true));
        EXPECT_EQ(deviceless.status(), QDataStream::WriteFailed);

        QByteArray fixed = Hex("0102");
        QBuffer readOnly(&fixed);
        ASSERT_TRUE(readOnly.open(QIODevice::ReadOnly));
        QDataStream toReadOnly(&readOnly);
        EXPECT_FALSE(object->GetBinary(toReadOnly, 1, true));
        EXPECT_EQ(toReadOnly.status(), QDataStream::WriteFailed);

        EXPECT_EQ(fixed, Hex("0102"));
    }

    // A file opened for appending would put every patched length behind the
    // frame, so it is refused; a buffer opened for appending only starts at
    // its end, and the frame follows what it holds.
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QFile appendingFile(dir.filePath(QStringLiteral("appending.bin")));
    ASSERT_TRUE(appendingFile.open(QIODevice::WriteOnly));
    ASSERT_EQ(appendingFile.write(Hex("0102")), 2);
    appendingFile.close();
    ASSERT_TRUE(appendingFile.open(QIODevice::WriteOnly | QIODevice::Append));
    QDataStream toAppendingFile(&appendingFile);
    EXPECT_FALSE(component.GetBinary(toAppendingFile, int(GuiComponentSettings::id), true));
    EXPECT_EQ(toAppendingFile.status(), QDataStream::WriteFailed);
    appendingFile.close();
    ASSERT_TRUE(appendingFile.open(QIODevice::ReadOnly));
    EXPECT_EQ(appendingFile.readAll(), Hex("0102"));

    // Each written with the component's class id as its id, so the
    // component gives exactly the 72 bytes of the example.
    const QByteArray id = Hex("AA600C15");
    const QVector<std::pair<const IRGObject*, QByteArray>> frames = {
        {&root, id + kRoot.mid(4)}, {&mode, id + kMode}, {&component, kComponent}};
    for (const auto& [object, frame] : frames) {
        SCOPED_TRACE(object->GetObjectName().toStdString());
        QByteArray held = Hex("0102");
        QBuffer appending(&held);
        ASSERT_TRUE(appending.open(QIODevice::WriteOnly | QIODevice::Append));
        QDataStream toAppending(&appending);
        EXPECT_TRUE(object->GetBinary(toAppending, int(GuiComponentSettings::id), true));
        EXPECT_EQ(toAppending.status(), QDataStream::Ok);
        EXPECT_EQ(held, Hex("0102") + frame);
    }

    // The write prologue comes first: the check of an incomplete object in
    // validation mode fails on any device, and flag and logger reach the
    // elements even when the device is then refused.
    GuiComponentSettings incomplete;
    incomplete.SetName(QStringLiteral("A"));
    incomplete.SetValidate(true);
    QByteArray fixed = Hex("0102");
    QBuffer readOnly(&fixed);
    ASSERT_TRUE(readOnly.open(QIODevice::ReadOnly));
    QDataStream toReadOnly(&readOnly);
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { incomplete.GetBinary(toReadOnly, 1, true); }),
              QStringLiteral("GuiComponentSettings: Please set GuiComponentUsage properly."));
    EXPECT_EQ(toReadOnly.status(), QDataStream::Ok);
    QDataStream deviceless;
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { incomplete.GetBinary(deviceless, 1, true); }),
              QStringLiteral("GuiComponentSettings: Please set GuiComponentUsage properly."));
    incomplete.SetValidate(false);
    EXPECT_FALSE(incomplete.GetBinary(toReadOnly, 1, true));
    EXPECT_EQ(toReadOnly.status(), QDataStream::WriteFailed);
    EXPECT_EQ(fixed, Hex("0102"));

    // An appended element keeps the flag of the object it was copied from
    // and no logger until the parent hands both down.
    TorviGuiModeSettings parent = ExampleRoot();
    const auto logger = std::make_shared<REPORTGENERATOR::Logger>();
    parent.SetLogger(logger);
    DataOperationMode strictMode = ExampleMode();
    strictMode.SetValidate(true);
    parent.AppendDataOperationMode(strictMode);
    ASSERT_TRUE(parent.GetDataOperationMode().at(1).GetValidate());
    ASSERT_NE(parent.GetDataOperationMode().at(1).GetLogger(), logger);
    QDataStream refused;
    EXPECT_FALSE(parent.GetBinary(refused, 1, true));
    for (const DataOperationMode& element : parent.GetDataOperationMode()) {
        EXPECT_FALSE(element.GetValidate());
        EXPECT_EQ(element.GetLogger(), logger);
        EXPECT_EQ(element.GetGuiComponentSettings().at(0).GetLogger(), logger);
    }

    SequentialSink sink;
    ASSERT_TRUE(sink.open(QIODevice::WriteOnly));
    QDataStream document(&sink);
    root.GetBinaryRepresentation(document);
    EXPECT_EQ(document.status(), QDataStream::WriteFailed);
    EXPECT_TRUE(sink.written.isEmpty());
}

// A device that hands out its bytes once, in order, like a pipe or a
// socket: what is read from it cannot be put back.
class SequentialSource : public QIODevice
{
public:
    explicit SequentialSource(const QByteArray& bytes)
        : m_bytes(bytes)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }
    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override { return m_bytes.size() - consumed + QIODevice::bytesAvailable(); }
    qint64 consumed = 0;

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        const qint64 count = qMin(maxSize, m_bytes.size() - consumed);
        std::memcpy(data, m_bytes.constData() + consumed, size_t(count));
        consumed += count;
        return count;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray m_bytes;
};

// One read of member records from a stream handed in with a given status,
// from a buffer (which the reader reads ahead in and seeks back) or from a
// sequential device (which it reads exactly as far as it parses).
template <typename T>
struct StatusRead
{
    T object;
    QString message;
    qint64 position = 0;
    QDataStream::Status status = QDataStream::Ok;
};

template <typename T>
StatusRead<T> ReadWithStatus(const QByteArray& records, int length, bool validate, QDataStream::Status preset,
                             bool sequential)
{
    QBuffer buffer;
    buffer.setData(records);
    buffer.open(QIODevice::ReadOnly);
    SequentialSource pipe(records);
    QDataStream stream(sequential ? static_cast<QIODevice*>(&pipe) : &buffer);
    stream.setStatus(preset);
    StatusRead<T> read;
    read.object.SetValidate(validate);
    try {
        read.object.SetBinary(stream, length);
        read.message = kNothingThrown;
    } catch (const BinaryParsingException& e) {
        read.message = QStringLiteral("BinaryParsingException: ") + e.GetMessageText();
    } catch (const IncompleteDefinitionException& e) {
        read.message = QStringLiteral("IncompleteDefinitionException: ") + e.GetMessageText();
    } catch (const OutOfRangeException& e) {
        read.message = QStringLiteral("OutOfRangeException: ") + e.GetMessageText();
    }
    read.position = sequential ? pipe.consumed : buffer.pos();
    read.status = stream.status();
    return read;
}

// The readers never look at the stream's status: handed in as
// ReadCorruptData, a stream gives the same object, the same position and
// the same failure as with Ok, and short reads give what they give. A status
// that was bad from the start stays as it was.
TEST(BinaryRepresentation, ReadStatusIsNotConsulted)
{
    for (const bool sequential : {false, true}) {
        SCOPED_TRACE(sequential ? "sequential device" : "buffer");
        for (const bool validate : {false, true}) {
            SCOPED_TRACE(validate);
            // The 64 bytes of member records of the example component.
            const auto okComponent =
                ReadWithStatus<GuiComponentSettings>(kComponent.mid(8), 64, validate, QDataStream::Ok, sequential);
            const auto badComponent = ReadWithStatus<GuiComponentSettings>(kComponent.mid(8), 64, validate,
                                                                           QDataStream::ReadCorruptData, sequential);
            for (const auto* read : {&okComponent, &badComponent}) {
                EXPECT_EQ(read->message, kNothingThrown);
                EXPECT_EQ(read->position, 64);
                EXPECT_TRUE(read->object == ExampleComponent());
                EXPECT_EQ(read->object.GetName(), QStringLiteral("A"));
                EXPECT_EQ(read->object.GetGuiComponentUsage(), GuiComponentSettings::AVAILABLE);
                EXPECT_EQ(read->object.GetDockWidgetLocation(), GuiComponentSettings::LeftDockWidgetArea);
            }
            EXPECT_EQ(okComponent.status, QDataStream::Ok);
            EXPECT_EQ(badComponent.status, QDataStream::ReadCorruptData);

            // Reading stops where the records end, or where a failure ends
            // it, whatever comes after them.
            const auto followed = ReadWithStatus<GuiComponentSettings>(kComponent.mid(8) + Hex("0102030405"), 64,
                                                                       validate, QDataStream::Ok, sequential);
            EXPECT_EQ(followed.message, kNothingThrown);
            EXPECT_EQ(followed.position, 64);
            EXPECT_EQ(followed.status, QDataStream::Ok);
            const QByteArray bogusFirst = Record(kUsageId, Text("BOGUS")) + kComponent.mid(8);
            const auto bogus = ReadWithStatus<GuiComponentSettings>(bogusFirst, 81, validate, QDataStream::Ok,
                                                                    sequential);
            EXPECT_EQ(bogus.message, validate ? QStringLiteral("OutOfRangeException: ") + kUsageInvalid
                                              : kNothingThrown);
            EXPECT_EQ(bogus.position, validate ? 17 : 81);

            // The whole tree with its lists, and a record that is skipped.
            const QByteArray rootRecords = kRoot.mid(8) + Record(0x12345678, Hex("010203"));
            for (const QDataStream::Status preset : {QDataStream::Ok, QDataStream::ReadCorruptData}) {
                const auto root = ReadWithStatus<TorviGuiModeSettings>(rootRecords, 156, validate, preset, sequential);
                EXPECT_EQ(root.message, kNothingThrown);
                EXPECT_EQ(root.position, 156);
                EXPECT_EQ(root.status, preset);
                EXPECT_TRUE(root.object == ExampleRoot());
            }
        }

        // Short reads: of the last record's payload (an unknown name), of a
        // byte count (0, so an empty text), and of list elements beyond the
        // end. With status Ok they leave ReadPastEnd behind, otherwise the
        // status stays as it was; everything else is alike.
        const QByteArray cutLocation = kComponent.mid(8, 52);
        const QByteArray cutCount = Record(kNameId, Text("A")) + Int(kUsageId) + Int(13);
        const QByteArray cutName = Record(kUsageId, Text("AVAILABLE")) + Int(kNameId) + Int(7) + Int(3) + "x";
        for (const QDataStream::Status preset : {QDataStream::Ok, QDataStream::ReadCorruptData}) {
            SCOPED_TRACE(int(preset));
            const QDataStream::Status after = preset == QDataStream::Ok ? QDataStream::ReadPastEnd : preset;

            const auto location = ReadWithStatus<GuiComponentSettings>(cutLocation, 64, false, preset, sequential);
            EXPECT_EQ(location.message, kNothingThrown);
            EXPECT_EQ(location.position, 52);
            EXPECT_EQ(location.status, after);
            EXPECT_EQ(location.object.GetGuiComponentUsage(), GuiComponentSettings::AVAILABLE);
            EXPECT_TRUE(location.object.IsDockWidgetLocationSet());
            EXPECT_EQ(location.object.GetDockWidgetLocation(), Location(-1));

            const auto count = ReadWithStatus<GuiComponentSettings>(cutCount, 34, false, preset, sequential);
            EXPECT_EQ(count.message, kNothingThrown);
            EXPECT_EQ(count.position, 21);
            EXPECT_EQ(count.status, after);
            EXPECT_EQ(count.object.GetName(), QStringLiteral("A"));
            EXPECT_TRUE(count.object.IsGuiComponentUsageSet());
            EXPECT_EQ(count.object.GetGuiComponentUsage(), Usage(-1));
            const auto strictCount = ReadWithStatus<GuiComponentSettings>(cutCount, 34, true, preset, sequential);
            EXPECT_EQ(strictCount.message, QStringLiteral("OutOfRangeException: ") + kUsageInvalid);
            EXPECT_EQ(strictCount.status, after);

            const auto name = ReadWithStatus<DataOperationMode>(cutName, 36, false, preset, sequential);
            EXPECT_EQ(name.message, kNothingThrown);
            EXPECT_EQ(name.position, 34);
            EXPECT_EQ(name.status, after);
            EXPECT_TRUE(name.object.IsNameSet());
            EXPECT_FALSE(name.object.GetName().isNull());
            EXPECT_EQ(name.object.GetName(), QStringLiteral(""));

            const QByteArray threeModes = Record(kModeListId, Int(3) + kMode);
            const auto lax =
                ReadWithStatus<TorviGuiModeSettings>(threeModes, threeModes.size(), false, preset, sequential);
            EXPECT_EQ(lax.message, QStringLiteral("BinaryParsingException: ") + LengthError("TorviGuiModeSettings"));
            EXPECT_EQ(lax.position, threeModes.size());
            EXPECT_EQ(lax.status, preset);
            ASSERT_EQ(lax.object.GetDataOperationMode().size(), 1);
            EXPECT_TRUE(lax.object.GetDataOperationMode().at(0) == ExampleMode());
            const auto strict =
                ReadWithStatus<TorviGuiModeSettings>(threeModes, threeModes.size(), true, preset, sequential);
            EXPECT_EQ(strict.message, QStringLiteral("IncompleteDefinitionException: TorviGuiModeSettings: Tried to "
                                                     "append not completely defined or invalid item "
                                                     "DataOperationMode."));
            EXPECT_EQ(strict.position, threeModes.size());
            EXPECT_EQ(strict.status, after);
            ASSERT_EQ(strict.object.GetDataOperationMode().size(), 1);
            EXPECT_TRUE(strict.object.GetDataOperationMode().at(0) == ExampleMode());
        }
    }
}

