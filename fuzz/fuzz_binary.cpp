// libFuzzer target: whole-document binary reading of a TorviGuiModeSettings.
//
// The input is tried, with validation off and on:
//  - as it is, through SetBinaryRepresentation(QByteArray&) (plain when it
//    starts with the class id and its object length matches, otherwise taken
//    as qCompress() form), through SetBinaryRepresentation(QDataStream&), and
//    through LoadBinary(QFile*) into an object that already holds a tree;
//  - as the member records of a plain document: with the class id and the
//    object length put in front (an input that already starts with the class
//    id has its own eight-byte header replaced), so that the fuzzer reaches
//    the record readers without first having to guess a consistent header;
//  - that plain document after qCompress(), which must read exactly as the
//    plain one does;
//  - both, input and plain document, through SetBinaryRepresentation(
//    QDataStream&) from a QBuffer and from a file device, which must agree.
// The records of every plain document are read by the root's own reader
// (SetBinary), which keeps what it read up to a failure, and by the
// independent model of BinaryModel.h; both must agree on result, exception
// and object, and the whole-document read must end with the same result and,
// on success, the same object, on failure an unchanged one. Every object
// read goes through the oracles of FuzzSupport.h; besides, validation mode
// may only add refusals, and a read into an object that already holds a tree
// ends like a read into a fresh one, or leaves the tree as it was.

#include "BinaryModel.h"
#include "FuzzSupport.h"

#include <QBuffer>
#include <QDataStream>

#include <cstddef>
#include <cstdint>

using namespace TorviFuzz;

namespace {

Outcome ReadArray(TorviGuiModeSettings& object, const QByteArray& bytes)
{
    QByteArray data(bytes);
    return Attempt([&] { return object.SetBinaryRepresentation(data); });
}

Outcome ReadStream(TorviGuiModeSettings& object, const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QDataStream stream(&buffer);
    stream.setByteOrder(QDataStream::LittleEndian); // must be overridden for the read
    const Outcome outcome = Attempt([&] { return object.SetBinaryRepresentation(stream); });
    Require(stream.byteOrder() == QDataStream::LittleEndian, "the stream's byte order was not restored");
    return outcome;
}

/// Reads through SetBinaryRepresentation(QDataStream&) from a QBuffer, which
/// the readers take bytes from directly, or from a file device, which they
/// read through the stream; both must end alike, down to the stream's status
/// and the device's position.
struct StreamRead
{
    Outcome outcome;
    QDataStream::Status status = QDataStream::Ok;
    qint64 position = 0;
};

StreamRead ReadStreamFrom(QIODevice& device, TorviGuiModeSettings& object)
{
    QDataStream stream(&device);
    StreamRead read;
    read.outcome = Attempt([&] { return object.SetBinaryRepresentation(stream); });
    read.status = stream.status();
    read.position = device.pos();
    return read;
}

void CheckBufferAndFileAgree(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    TorviGuiModeSettings fromBuffer;
    const StreamRead a = ReadStreamFrom(buffer, fromBuffer);
    MemoryFile file(bytes);
    file.open(QIODevice::ReadOnly);
    TorviGuiModeSettings fromFile;
    const StreamRead b = ReadStreamFrom(file, fromFile);
    Require(a.outcome == b.outcome, "a buffer and a file device give different results",
            a.outcome.Describe() + " / " + b.outcome.Describe());
    Require(a.status == b.status, "a buffer and a file device end with different stream status");
    Require(a.position == b.position, "a buffer and a file device end at different positions",
            QByteArray::number(a.position) + " / " + QByteArray::number(b.position));
    Require(StateKey(fromBuffer) == StateKey(fromFile), "a buffer and a file device read different objects");
}

Outcome Load(TorviGuiModeSettings& object, const QByteArray& bytes)
{
    MemoryFile file(bytes);
    return Attempt([&] { return object.LoadBinary(&file); });
}

/// The root's own reader on the records of a plain document, as the model
/// reads them: what it read stays in the object also after a failure.
Outcome ReadRecords(TorviGuiModeSettings& object, const QByteArray& plain)
{
    QBuffer buffer;
    buffer.setData(plain);
    buffer.open(QIODevice::ReadOnly);
    QDataStream stream(&buffer);
    qint32 id = 0;
    qint32 length = 0;
    stream >> id >> length;
    return Attempt([&] {
        object.SetBinary(stream, length);
        return stream.status() == QDataStream::Ok && stream.atEnd();
    });
}

QByteArray PlainDocument(const QByteArray& input)
{
    const qint32 classId = qint32(TorviGuiModeSettings::id);
    QByteArray body = input;
    if (input.size() >= 8) {
        const auto* u = reinterpret_cast<const uchar*>(input.constData());
        const qint32 first = qint32((quint32(u[0]) << 24) | (quint32(u[1]) << 16) | (quint32(u[2]) << 8) | u[3]);
        if (first == classId)
            body = input.mid(8);
    }
    QByteArray plain;
    QDataStream stream(&plain, QIODevice::WriteOnly);
    stream << classId << qint32(body.size());
    stream.writeRawData(body.constData(), body.size());
    return plain;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Checker check;
    const QByteArray input(reinterpret_cast<const char*>(data), int(size));
    const QByteArray plain = PlainDocument(input);
    const QByteArray compressed = qCompress(plain, 1);

    TorviGuiModeSettings raw[2];
    Outcome rawOutcome[2];
    TorviGuiModeSettings fromPlain[2];
    Outcome plainOutcome[2];
    for (const bool validate : {false, true}) {
        raw[validate].SetValidate(validate);
        rawOutcome[validate] = ReadArray(raw[validate], input);
        check(raw[validate]);

        TorviGuiModeSettings loaded = Preloaded(validate);
        const Outcome loadOutcome = Load(loaded, input);
        CheckAllOrNothing(rawOutcome[validate], raw[validate], loadOutcome, loaded, Preloaded(validate));

        fromPlain[validate].SetValidate(validate);
        plainOutcome[validate] = ReadArray(fromPlain[validate], plain);
        check(fromPlain[validate]);

        TorviGuiModeSettings records;
        records.SetValidate(validate);
        const Outcome recordsOutcome = ReadRecords(records, plain);
        check(records);
        Model::Root model;
        const Outcome modelOutcome = Model::ReadPlainDocument(plain, validate, model);
        Require(recordsOutcome == modelOutcome, "the library and the model read a document differently",
                recordsOutcome.Describe() + " / model: " + modelOutcome.Describe());
        Require(Model::Same(model, records), "the library and the model read different objects");
        Require(plainOutcome[validate] == modelOutcome, "the whole-document read ends unlike the records' reader",
                plainOutcome[validate].Describe() + " / model: " + modelOutcome.Describe());
        Require(plainOutcome[validate].result ? StateKey(fromPlain[validate]) == StateKey(records)
                                              : StateKey(fromPlain[validate]) == StateKey(TorviGuiModeSettings()),
                "the whole-document read kept something other than the whole document or nothing");

        TorviGuiModeSettings fromCompressed;
        fromCompressed.SetValidate(validate);
        const Outcome compressedOutcome = ReadArray(fromCompressed, compressed);
        Require(plainOutcome[validate] == compressedOutcome,
                "the compressed form of a document reads differently from the plain form",
                plainOutcome[validate].Describe() + " / " + compressedOutcome.Describe());
        Require(StateKey(fromPlain[validate]) == StateKey(fromCompressed),
                "the compressed form of a document reads to a different object");
    }
    CheckValidationOnlyRefuses(rawOutcome[0], raw[0], rawOutcome[1], raw[1]);
    CheckValidationOnlyRefuses(plainOutcome[0], fromPlain[0], plainOutcome[1], fromPlain[1]);

    TorviGuiModeSettings fromStream;
    ReadStream(fromStream, input);
    check(fromStream);

    CheckBufferAndFileAgree(plain);
    CheckBufferAndFileAgree(input);
    return 0;
}
