// The binary form: the worked examples to the byte (annotated golden files
// under tests/data/binary), object frames and whole documents read as the
// tables there give them, byte order, and devices that cannot take a frame.

#include "TestSupport.h"

#include <QBuffer>
#include <QFile>
#include <QMap>
#include <QTemporaryDir>
#include <QtEndian>

#include <cstring>
#include <memory>

using namespace TestSupport;
using REPORTGENERATOR::IRGObject;

namespace {

// A device that hands out its bytes once, in order, or takes what is
// written, like a pipe: nothing can be read again or overwritten.
class Pipe : public QIODevice
{
public:
    explicit Pipe(const QByteArray& bytes = QByteArray(), OpenMode mode = ReadOnly)
        : bytes(bytes)
    {
        open(mode | Unbuffered);
    }
    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override { return bytes.size() - taken; }
    QByteArray bytes;
    qint64 taken = 0;

protected:
    qint64 readData(char* data, qint64 max) override
    {
        max = qMin(max, bytes.size() - taken);
        std::memcpy(data, bytes.constData() + taken, size_t(max));
        taken += max;
        return max;
    }
    qint64 writeData(const char* data, qint64 size) override
    {
        bytes.append(data, int(size));
        return size;
    }
};

QByteArray Golden(const char* name)
{
    return Hex(ReadData(Q("binary/") + Q(name)));
}

std::string StatusName(QDataStream::Status status)
{
    return std::vector<std::string>{"Ok", "ReadPastEnd", "ReadCorruptData", "WriteFailed"}.at(size_t(status));
}

QByteArray Written(const IRGObject& object, int id, bool writeId, QDataStream::ByteOrder order = QDataStream::BigEndian)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(order);
    EXPECT_TRUE(object.GetBinary(stream, id, writeId));
    return bytes;
}

// Bytes of the binary form as the golden files show them: hex, a record to
// a line, indented by nesting, each line annotated.
struct Annotated
{
    QByteArray in;
    bool bigEndian;
    int pos = 0;
    QByteArray hex, out;

    Annotated(const QByteArray& bytes, bool withId, QDataStream::ByteOrder order = QDataStream::BigEndian)
        : in(bytes)
        , bigEndian(order == QDataStream::BigEndian)
    {
        if (withId)
            Line(0, "class id " + QByteArray::number(Int()));
        Object(0);
    }
    operator QByteArray() const { return out; }

    QByteArray Take(int count)
    {
        const QByteArray part = in.mid(pos, qMax(count, 0));
        pos += part.size();
        hex += part.toHex().toUpper() + ' ';
        return part;
    }
    qint32 Int()
    {
        const QByteArray four = Take(4).leftJustified(4, '\0');
        return bigEndian ? qFromBigEndian<qint32>(four.constData()) : qFromLittleEndian<qint32>(four.constData());
    }
    void Line(int depth, const QByteArray& note)
    {
        out += QByteArray(2 * depth, ' ') + hex.trimmed() + "  # " + note + '\n';
        hex.clear();
    }
    void Object(int depth)
    {
        const QMap<qint32, QByteArray> members{{kNameId, "Name"}, {kUsageId, "GuiComponentUsage"},
            {kLocationId, "DockWidgetLocation"}, {kHandlerId, "OperationModeHandler"},
            {kComponentListId, "GuiComponentSettings"}, {kModeListId, "DataOperationMode"}};
        const qint32 length = Int();
        Line(depth, "object length " + QByteArray::number(length));
        for (const int end = pos + length; pos < end && pos < in.size();) {
            const qint32 id = Int();
            const QByteArray record = members.value(id, "?") + ", " + QByteArray::number(Int()) + " bytes: ";
            const qint32 count = Int();
            const bool list = id == kComponentListId || id == kModeListId;
            const QByteArray text = list ? QByteArray("a list of " + QByteArray::number(count)) : '"' + Take(count) + '"';
            Line(depth + 1, record + (count == -1 && !list ? QByteArray("null") : text));
            for (qint32 i = 0; list && i < count && pos < in.size(); ++i)
                Object(depth + 2);
        }
    }
};

// ---- the tables -----------------------------------------------------------
// A table is a file of cases. A line that starts with a word starts that
// field of the case, an indented line continues it; "case" starts a case;
// '#' starts a comment.

using Row = QMap<QByteArray, QByteArray>;

QVector<Row> Table(const char* name)
{
    QVector<Row> rows;
    QByteArray key;
    for (QByteArray line : ReadData(Q(name)).split('\n')) {
        line = line.split('#').first();
        if (line.trimmed().isEmpty())
            continue;
        if (line.at(0) != ' ') {
            key = line.split(' ').first();
            line = line.mid(key.size());
            if (key == "case")
                rows.append(Row());
            EXPECT_TRUE(QByteArray(" case read from bytes zeros compressed patch limit then error tree left status ")
                            .contains(QByteArray(' ' + key + ' ')))
                << "unknown field " << key.toStdString();
        }
        if (!rows.isEmpty()) {
            QByteArray& field = rows.last()[key];
            field += QByteArray(field.isEmpty() ? "" : "\n") + line.trimmed();
        }
    }
    EXPECT_FALSE(rows.isEmpty()) << "no case in " << name;
    return rows;
}

std::string Field(const Row& row, const char* key, const char* otherwise = "")
{
    return row.value(key, otherwise).toStdString();
}

// "bytes" in hex, a line "<binary/x.hex>" standing for that file's bytes;
// then "zeros" more zero bytes, all of it compressed with qCompress() when
// the case says "compressed", and "patch" lines "offset hex" applied.
QByteArray BytesOf(const Row& row)
{
    QByteArray bytes;
    for (const QByteArray& part : row["bytes"].split('\n'))
        bytes += part.startsWith('<') ? Hex(ReadData(QString::fromUtf8(part.mid(1).chopped(1)))) : Hex(part);
    bytes += QByteArray(row["zeros"].toInt(), '\0');
    if (row.contains("compressed"))
        bytes = qCompress(bytes);
    for (const QByteArray& patch : row["patch"].split('\n')) {
        const QByteArray with = Hex(patch.mid(patch.indexOf(' ') + 1));
        bytes.replace(patch.split(' ').first().toInt(), with.size(), with);
    }
    return bytes;
}

// The object a case reads into: new, or "into example" the README
// example's object of that class.
void Preload(R& r) { r = Example(); }
void Preload(M& m) { m = Example().GetDataOperationMode().at(0); }
void Preload(G& g) { g = Example().GetDataOperationMode().at(0).GetGuiComponentSettings().at(0); }

// body(object, flag) for each validation flag that the case's "read"
// names ("lax", "validating"), on an object of the class it names.
template <typename F>
void ForEachRead(const Row& row, F&& body)
{
    const QList<QByteArray> read = row["read"].split(' ');
    EXPECT_TRUE(read.contains("lax") || read.contains("validating")) << "the case reads nothing";
    const auto run = [&](auto object, const char* flag) {
        if (row["read"].contains("into example"))
            Preload(object);
        object.SetValidate(flag == std::string("validating"));
        body(object, std::string(flag));
    };
    for (const char* flag : {"lax", "validating"}) {
        if (!read.contains(flag))
            continue;
        if (read.first() == "GuiComponentSettings")
            run(G(), flag);
        else
            read.first() == "DataOperationMode" ? run(M(), flag) : run(R(), flag);
    }
}

// An object frame read as a list owner reads it: the object length (the
// first four bytes), then SetBinary on the rest, from a buffer or a pipe,
// with the stream's status preset.
template <typename T>
std::string ReadFrame(T object, const QByteArray& bytes, bool pipe = false, QDataStream::Status preset = QDataStream::Ok,
                      QDataStream::ByteOrder order = QDataStream::BigEndian)
{
    QBuffer buffer;
    buffer.setData(bytes.mid(4));
    buffer.open(QIODevice::ReadOnly);
    Pipe source(bytes.mid(4));
    QDataStream stream(pipe ? static_cast<QIODevice*>(&source) : &buffer);
    stream.setByteOrder(order);
    stream.setStatus(preset);
    const qint32 length = order == QDataStream::BigEndian ? qFromBigEndian<qint32>(bytes.constData())
                                                          : qFromLittleEndian<qint32>(bytes.constData());
    const std::string outcome = OutcomeOf([&] { object.SetBinary(stream, length); });
    return outcome + "\n" + Outline(object) + "\nleft "
        + std::to_string(pipe ? source.bytesAvailable() : buffer.bytesAvailable()) + ", " + StatusName(stream.status());
}

// A whole-document read from bytes given as an array, on a stream (a
// buffer) or in a file.
template <typename T>
std::string ReadDocument(T& object, const QByteArray& bytes, const std::string& from)
{
    QByteArray data(bytes);
    QBuffer buffer(&data);
    QDataStream stream(&buffer);
    buffer.open(QIODevice::ReadOnly);
    std::string outcome = "<no way to read from " + from + ">";
    if (from == "array") {
        outcome = OutcomeOf([&] { return object.SetBinaryRepresentation(data); });
    } else if (from == "stream") {
        outcome = OutcomeOf([&] { return object.SetBinaryRepresentation(stream); });
    } else if (from.find("file") != std::string::npos) {
        QTemporaryDir dir;
        QFile file(dir.filePath(Q("document.bin")));
        EXPECT_TRUE(from != "file" || WriteFile(file.fileName(), bytes));
        outcome = OutcomeOf([&] { return object.LoadBinary(from == "no-file" ? nullptr : &file); });
    }
    const std::string left = "\nleft " + std::to_string(buffer.bytesAvailable()) + ", " + StatusName(stream.status());
    return outcome + "\nerror: " + object.GetErrorString().toStdString() + "\n" + Outline(object)
        + (from == "stream" ? left : "");
}

// The cases of a table of whole documents, each read "from" every one of
// array, stream and file that it names, under the limit of the document
// size it gives. A tree "unchanged" is the object's before the read.
void ReadDocuments(const char* table)
{
    for (const Row& row : Table(table)) {
        SCOPED_TRACE(Field(row, "case"));
        for (const QByteArray& from : row["from"].split(' ')) {
            ForEachRead(row, [&](auto object, const std::string& flag) {
                if (row.contains("limit"))
                    object.SetMaxDocumentSize(row["limit"].toLongLong());
                std::string expected = Field(row, "then") + "\nerror: " + Field(row, "error") + "\n"
                    + (row["tree"] == "unchanged" ? Outline(object) : Field(row, "tree"));
                if (from == "stream")
                    expected += "\nleft " + Field(row, "left", "0") + ", " + Field(row, "status", "Ok");
                EXPECT_EQ(ReadDocument(object, BytesOf(row), from.toStdString()), expected)
                    << flag << " from " << from.toStdString();
            });
        }
    }
}

} // namespace

// Each case read from a buffer and from a pipe, each time with the status
// Ok and ReadCorruptData at the start: the readers never consult the
// status, so all four give the same, and a corrupt status stays.
TEST(BinaryForm, ObjectFramesAsTheTableGivesThem)
{
    for (const Row& row : Table("binary/frames.txt")) {
        SCOPED_TRACE(Field(row, "case"));
        const std::string expected =
            Field(row, "then") + "\n" + Field(row, "tree") + "\nleft " + Field(row, "left", "0") + ", ";
        ForEachRead(row, [&](const auto& object, const std::string& flag) {
            for (const bool pipe : {false, true}) {
                const std::string way = flag + (pipe ? " from a pipe" : " from a buffer");
                EXPECT_EQ(ReadFrame(object, BytesOf(row), pipe), expected + Field(row, "status", "Ok")) << way;
                const std::string corrupt = ReadFrame(object, BytesOf(row), pipe, QDataStream::ReadCorruptData);
                EXPECT_EQ(corrupt, expected + "ReadCorruptData") << way;
            }
        });
    }
}

TEST(BinaryForm, WholeDocumentsAsTheTableGivesThem)
{
    ReadDocuments("binary/documents.txt");
}

TEST(BinaryForm, HostileDocumentsAsTheTableGivesThem)
{
    ReadDocuments("binary/hostile.txt");
}

TEST(BinaryForm, WorkedExamplesToTheByteAndBack)
{
    const R root = Small();
    const M mode = root.GetDataOperationMode().at(0);
    const G component = mode.GetGuiComponentSettings().at(0);
    const R example = Example();
    root.SetValidate(true);
    const QByteArray compressed = example.GetCompressedBinaryRepresentationAsQByteArray(9);
    QByteArray zlib = compressed.left(4).toHex().toUpper() + "  # inflates to "
        + QByteArray::number(qFromBigEndian<quint32>(compressed.constData())) + " bytes\n";
    for (int i = 4; i < compressed.size(); i += 32)
        zlib += compressed.mid(i, 32).toHex().toUpper() + (i == 4 ? "  # the zlib stream, level 9\n" : "\n");
    EXPECT_TRUE(MatchesGolden(Q("binary/component.hex"), Annotated(Written(component, int(G::id), true), true)));
    EXPECT_TRUE(MatchesGolden(Q("binary/component-little-endian.hex"),
                              Annotated(Written(component, int(G::id), true, QDataStream::LittleEndian), true,
                                        QDataStream::LittleEndian)));
    // A list element is written without an id, whatever id is given.
    EXPECT_TRUE(MatchesGolden(Q("binary/mode-element.hex"), Annotated(Written(mode, 12345, false), false)));
    EXPECT_TRUE(MatchesGolden(Q("binary/root.hex"), Annotated(root.GetBinaryRepresentationAsQByteArray(), true)));
    EXPECT_TRUE(MatchesGolden(Q("binary/example.hex"), Annotated(example.GetBinaryRepresentationAsQByteArray(), true)));
    EXPECT_TRUE(MatchesGolden(Q("binary/example-compressed.hex"), zlib));
    EXPECT_EQ(QVector<int>({Golden("component.hex").size(), Golden("root.hex").size()}), QVector<int>({72, 153}));
    // Levels beyond 9 compress as 9 does. An unset handler is written as its
    // default.
    EXPECT_EQ(example.GetCompressedBinaryRepresentationAsQByteArray(12), compressed);
    EXPECT_EQ(Root(kNoHandler, {Mode("M", {Component("A")})}).GetBinaryRepresentationAsQByteArray(), Golden("root.hex"));
    EXPECT_EQ(ReadFrame(G(), Golden("component-little-endian.hex").mid(4), false, QDataStream::Ok, QDataStream::LittleEndian),
              "done\n" + Outline(component) + "\nleft 0, Ok");

    // Whole documents are big-endian on any stream, which keeps its own
    // order; a compressed one goes with its byte count first.
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    root.GetBinaryRepresentation(out);
    example.GetCompressedBinaryRepresentation(out, 9);
    EXPECT_EQ(bytes, Golden("root.hex") + Int(compressed.size()) + compressed);
    QDataStream in(bytes);
    in.setByteOrder(QDataStream::LittleEndian);
    R first, second;
    EXPECT_TRUE(first.SetBinaryRepresentation(in) && second.SetBinaryRepresentation(in) && in.atEnd());
    EXPECT_EQ(Outline(first) + Outline(second), Outline(root) + Outline(example));
    EXPECT_EQ(QVector<int>({out.byteOrder(), in.byteOrder()}), QVector<int>(2, QDataStream::LittleEndian));

    // A compressed document longer than one read step (1 MiB) arrives whole.
    M longName = Mode(nullptr, {Component("A")});
    longName.SetName(QString(3 << 19, QLatin1Char('x')));
    const R large = Root(R::TX470ManagementComponent, {longName});
    QByteArray stored;
    QDataStream toStored(&stored, QIODevice::WriteOnly);
    large.GetCompressedBinaryRepresentation(toStored, 0);
    QDataStream fromStored(stored);
    R readLarge;
    EXPECT_GT(stored.size(), 3 << 19);
    EXPECT_TRUE(readLarge.SetBinaryRepresentation(fromStored) && readLarge == large && fromStored.atEnd());

    // Null texts and enumeration values outside their tables are written
    // with the byte count 0xFFFFFFFF (and read as binary/frames.txt shows);
    // the floating location with its blank.
    QByteArray shown;
    const auto show = [&](const char* what, const IRGObject& object) {
        shown += QByteArray("# ") + what + '\n' + QByteArray(Annotated(Written(object, 1, false), false));
    };
    show("a mode without a name", M());
    show("usage 5", Component("A", G::GuiComponentUsage(5)));
    show("location 7", Component("A", G::AVAILABLE, G::DockWidgetLocation(7)));
    show("handler 9", Root(9));
    show("the floating location", Component("A", G::AVAILABLE, G::FloatingDockWidgetArea));
    EXPECT_TRUE(MatchesGolden(Q("binary/values.hex"), shown));
}

TEST(BinaryForm, TruncatedDocumentsNeverRead)
{
    // Cut anywhere, a document read is false or an exception, never true.
    const QByteArray plain = Golden("root.hex");
    const QByteArray compressed = qCompress(plain);
    for (const QByteArray& document : {plain, compressed, QByteArray(Int(compressed.size()) + compressed)})
        for (int length = 0; length < document.size(); ++length)
            for (const std::string from : {"array", "stream"})
                for (const bool validate : {false, true}) {
                    R read;
                    read.SetValidate(validate);
                    EXPECT_NE(ReadDocument(read, document.left(length), from).substr(0, 5), "true\n") << length;
                }
}

TEST(BinaryForm, OnlyDevicesThatCanBePatchedTakeAFrame)
{
    // A file is patched by seeking on it; a buffer opened for appending
    // starts at its end and the frame follows what it holds.
    QTemporaryDir dir;
    QFile file(dir.filePath(Q("root.bin")));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    QByteArray held = Hex("0102");
    QBuffer appendingBuffer(&held);
    appendingBuffer.open(QIODevice::WriteOnly | QIODevice::Append);
    QDataStream toFile(&file), toBuffer(&appendingBuffer);
    EXPECT_TRUE(Small().GetBinary(toFile, int(R::id), true));
    EXPECT_TRUE(Small().GetBinary(toBuffer, int(R::id), true));
    EXPECT_TRUE(file.seek(0));
    EXPECT_EQ(file.readAll(), Golden("root.hex"));
    EXPECT_EQ(held, Hex("0102") + Golden("root.hex"));

    // A file opened for appending would put every length behind the frame.
    file.close();
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Append));
    QByteArray fixed = Hex("0102");
    QBuffer readOnly(&fixed);
    readOnly.open(QIODevice::ReadOnly);
    Pipe pipe(QByteArray(), QIODevice::WriteOnly);
    QDataStream toAppendingFile(&file), toReadOnly(&readOnly), toPipe(&pipe), deviceless;
    for (QDataStream* stream : {&toAppendingFile, &toReadOnly, &toPipe, &deviceless}) {
        EXPECT_FALSE(Component("A").GetBinary(*stream, 1, true));
        EXPECT_EQ(stream->status(), QDataStream::WriteFailed);
    }
    EXPECT_EQ(QVector<qint64>({file.size(), fixed.size(), pipe.bytes.size()}), QVector<qint64>({153, 2, 0}));

    // The write prologue comes first: in validation mode the whole tree is
    // checked on any device, and flag and logger reach the elements though
    // the device is then refused.
    R incomplete = Root(R::QLSManagementComponent, {Mode("M", {Component("A")}), Mode(nullptr)});
    incomplete.SetValidate(true);
    QDataStream fresh;
    EXPECT_EQ(OutcomeOf([&] { return incomplete.GetBinary(fresh, 1, true); }),
              "OutOfRangeException: " + PleaseSet("DataOperationMode", "Name").toStdString());
    EXPECT_EQ(fresh.status(), QDataStream::Ok);
    R parent = Example();
    const auto logger = std::make_shared<REPORTGENERATOR::Logger>();
    parent.SetLogger(logger);
    M strict = Mode("S", {Component("B")});
    strict.SetValidate(true);
    parent.AppendDataOperationMode(strict);
    ASSERT_TRUE(parent.GetDataOperationMode().at(1).GetValidate());
    EXPECT_FALSE(parent.GetBinary(deviceless, 1, true));
    EXPECT_FALSE(parent.GetDataOperationMode().at(1).GetValidate());
    EXPECT_EQ(parent.GetDataOperationMode().at(1).GetGuiComponentSettings().at(0).GetLogger(), logger);
}

TEST(BinaryForm, AnElementCountMakesRoomOnlyForWhatTheBytesCanHold)
{
    // 0x7FFFFFFF modes announced, one there, then zeros, the length of an
    // empty mode, which validation mode refuses: room is made for what the
    // bytes behind the count hold at four bytes a frame (300000 bytes, more
    // than the reader reads ahead), or the record length (21) where that is
    // less.
    const QByteArray mode = Frame(Record(kNameId, Text("M")));
    const QByteArray counted = Int(0x7FFFFFFF) + mode;
    const QByteArray zeros(299983, '\0');
    for (const QByteArray& records : {QByteArray(Int(kModeListId) + Int(0x7FFFFFFF) + counted + zeros),
                                      QByteArray(Record(kModeListId, counted) + zeros.left(40))}) {
        QDataStream stream(records);
        R root;
        root.SetValidate(true);
        EXPECT_EQ(OutcomeOf([&] { root.SetBinary(stream, records.size()); }), "IncompleteDefinitionException: "
                      + IncompleteAppend("TorviGuiModeSettings", "DataOperationMode").toStdString());
        EXPECT_EQ(Outline(root), "0{'M'*[]}*");
        EXPECT_EQ(root.GetDataOperationMode().capacity(), records.size() > 300000 ? 75000 : 4);
    }
}

TEST(BinaryForm, ATextLongerThanAnArrayHoldsPassesOverTheWholeStream)
{
    // A text of 2 GiB announced in front of 1.5 MiB: all of it is passed
    // over, however many read steps that takes.
    const QByteArray bytes = Frame(Record(kNameId, Int(qint32(0x80000000u)) + QByteArray(3 << 19, 'x')));
    for (const bool pipe : {false, true})
        EXPECT_EQ(ReadFrame(M(), bytes, pipe), "done\n''*[]\nleft 0, ReadPastEnd") << pipe;
}
