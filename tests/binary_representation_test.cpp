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


#include <functional>
#include <ostream>

using namespace TORVIXML;
using namespace TestSupport;
using REPORTGENERATOR::IRGObject;

inline void PrintTo(const QByteArray& bytes, std::ostream* os)
{
    *os << bytes.size() << " bytes: " << bytes.toHex(' ').toStdString();
}

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

    // More elements announced than the stream holds: the owner's length error.
    TorviGuiModeSettings tooFew;
    EXPECT_EQ(MessageOf<BinaryParsingException>(
                  [&] { Read(tooFew, Frame(Record(kModeListId, Int(3) + kMode))); }),
              LengthError("TorviGuiModeSettings"));
    ASSERT_EQ(tooFew.GetDataOperationMode().size(), 1);
    EXPECT_TRUE(tooFew.GetDataOperationMode().at(0) == ExampleMode());
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

        QBuffer appending(&fixed);
        ASSERT_TRUE(appending.open(QIODevice::WriteOnly | QIODevice::Append));
        QDataStream toAppending(&appending);
        EXPECT_FALSE(object->GetBinary(toAppending, 1, true));
        EXPECT_EQ(toAppending.status(), QDataStream::WriteFailed);
        EXPECT_EQ(fixed, Hex("0102"));
    }

    SequentialSink sink;
    ASSERT_TRUE(sink.open(QIODevice::WriteOnly));
    QDataStream document(&sink);
    root.GetBinaryRepresentation(document);
    EXPECT_EQ(document.status(), QDataStream::WriteFailed);
    EXPECT_TRUE(sink.written.isEmpty());
}

// The readers take the bytes of a plain QBuffer directly and read any other
// device through the stream. Both must leave the same object, the same
// stream position and status, and throw the same message, for every prefix
// and every single-byte corruption of the example, in both byte orders.
class ThroughTheStream : public QBuffer
{
    Q_OBJECT
};

TEST(BinaryRepresentation, DirectAndStreamReadingAgree)
{
    struct Outcome
    {
        QString message;
        qint64 position = 0;
        int status = 0;
        QString xml;
    };
    const auto readRoot = [](const QByteArray& bytes, QDataStream::ByteOrder order, bool direct) {
        QBuffer plain;
        ThroughTheStream derived;
        QBuffer& device = direct ? plain : derived;
        device.setData(bytes);
        device.open(QIODevice::ReadOnly);
        QDataStream stream(&device);
        stream.setByteOrder(order);
        TorviGuiModeSettings root;
        Outcome outcome;
        try {
            root.SetBinary(stream, 145);
        } catch (const ReportException& e) {
            outcome.message = e.GetMessageText();
        }
        outcome.position = device.pos();
        outcome.status = int(stream.status());
        outcome.xml = root.GetXmlString();
        return outcome;
    };
    QByteArray littleEndian;
    {
        QBuffer buffer(&littleEndian);
        buffer.open(QIODevice::WriteOnly);
        QDataStream stream(&buffer);
        stream.setByteOrder(QDataStream::LittleEndian);
        ExampleRoot().GetBinary(stream, 0, false);
    }
    for (const auto& [document, order] : {std::make_pair(kRoot.mid(8), QDataStream::BigEndian),
                                           std::make_pair(littleEndian.mid(4), QDataStream::LittleEndian)}) {
        std::vector<QByteArray> inputs;
        for (int length = 0; length <= document.size(); ++length)
            inputs.push_back(document.left(length));
        for (int offset = 0; offset < document.size(); ++offset) {
            QByteArray damaged = document;
            damaged[offset] = char(damaged[offset] ^ 0x41);
            inputs.push_back(damaged);
        }
        for (const QByteArray& input : inputs) {
            SCOPED_TRACE(input.toHex().toStdString());
            const Outcome direct = readRoot(input, order, true);
            const Outcome streamed = readRoot(input, order, false);
            EXPECT_EQ(direct.message, streamed.message);
            EXPECT_EQ(direct.position, streamed.position);
            EXPECT_EQ(direct.status, streamed.status);
            EXPECT_EQ(direct.xml, streamed.xml);
        }
    }
    const Outcome whole = readRoot(kRoot.mid(8), QDataStream::BigEndian, true);
    EXPECT_EQ(whole.message, QString());
    EXPECT_EQ(whole.position, 145);
    EXPECT_EQ(whole.status, int(QDataStream::Ok));
}

#include "binary_representation_test.moc"
