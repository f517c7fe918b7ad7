#ifndef TORVIXML_REPRESENTATION_BINARYFRAME_H
#define TORVIXML_REPRESENTATION_BINARYFRAME_H

// The length-prefixed binary form shared by all settings classes.
//
// An object frame is [id] objectLength memberRecord*, a member record is
// memberId recordLength payload; all integers are 32-bit in the stream's
// byte order. Lengths are written as placeholders and patched in place once
// the content is written, which needs a device that can seek.

#include "BinaryParsingException.h"
#include "IRGObject.h"

#include "BinarySource.h"
#include "EnumNameTable.h"
#include "Messages.h"
#include "Validation.h"

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>
#include <QString>
#include <QVector>

#include <memory>
#include <utility>

namespace TORVIXML {
namespace Binary {

/// Whether the stream's device allows patching lengths: present, writable
/// and random-access; in append mode only a plain QBuffer, which merely
/// starts at its end and then seeks and overwrites like any other buffer. A
/// file opened for appending writes every byte at its end whatever its
/// position, so the patched lengths would land behind the frame. A stream
/// that fails this gets its status set to WriteFailed and nothing is
/// written.
bool CanWrite(QDataStream& stream);

/// Text payload: UTF-8 as a byte array, a null text as count 0xFFFFFFFF.
void WriteText(QDataStream& stream, const QString& text);
/// The same for text already encoded as UTF-8; null stands for a null text.
void WriteUtf8(QDataStream& stream, const QByteArray* utf8);
/// Reads a text payload. A null or empty array, and a short read, give an
/// empty, non-null text.
QString ReadText(Source& in);
/// Reads the text payload of an enumeration member. When its bytes are
/// exactly the UTF-8 name of a value of the table, returns that value
/// without decoding anything; otherwise returns -1 and sets text to what
/// ReadText() gives for the payload, for the member's own name lookup.
int ReadName(Source& in, const Framework::EnumNameTable& table, QString& text);

/// Writes one object frame: the constructor writes the id (if asked) and
/// the object length placeholder, Finish() patches it.
class FrameWriter
{
public:
    FrameWriter(QDataStream& stream, int id, bool writeId);

    void Text(qint32 memberId, const QString& text);
    /// An enumeration member: the UTF-8 name of its value, or null for a
    /// value without a name.
    void Name(qint32 memberId, const QByteArray* utf8);

    /// A list record (nothing for an empty list): the element count, then
    /// each element's frame without id, written by writeElement(element).
    template <typename T, typename WriteElement>
    void List(qint32 memberId, const QVector<T>& list, WriteElement&& writeElement)
    {
        if (list.isEmpty())
            return;
        const qint64 start = BeginRecord(memberId);
        m_stream << qint32(list.size());
        for (const T& element : list)
            writeElement(element);
        EndRecord(start);
    }

    void Finish();

private:
    qint64 BeginRecord(qint32 memberId);
    void EndRecord(qint64 start);
    void Patch(qint64 start);

    QDataStream& m_stream;
    QIODevice* m_device;
    /// The bytes of the device when it is a plain QBuffer: lengths are then
    /// patched in the array itself instead of seeking there and back.
    QByteArray* m_bytes;
    qint64 m_start;
};

[[noreturn]] void ThrowLengthError(const REPORTGENERATOR::IRGObject& object);

/// The record loop of SetBinary(): reads member records until the object
/// length is used up or the stream ends, handing each to read(in, memberId,
/// recordLength), which returns false for a member id its class does not
/// know; such records are skipped. Throws the length error unless the
/// records add up to exactly the object length.
template <typename ReadMember>
void ReadRecords(const REPORTGENERATOR::IRGObject& object, QDataStream& stream, int length,
                 ReadMember&& read)
{
    Source in(stream);
    qint64 remaining = length;
    while (remaining > 0 && !in.AtEnd()) {
        const qint32 memberId = in.ReadInt32();
        const qint32 recordLength = in.ReadInt32();
        remaining -= 8 + qint64(recordLength);
        if (!read(in, memberId, recordLength)) {
            const Source::HandOn lent(in);
            object.skipCurrentElement(lent.Stream(), recordLength, memberId);
        }
    }
    if (remaining != 0)
        ThrowLengthError(object);
}

/// How many elements to make room for when a list record announces count
/// elements: never more than the record length, or the bytes the device
/// still holds, can carry at four bytes per element frame.
int ReservationFor(const Source& in, qint32 count, qint32 recordLength);

/// A list payload: the element count, then for each element its object
/// length, a fresh element that carries the owner's flag and logger reads
/// its records, and append(T&&) takes it.
///
/// An element announced beyond the end of the stream gets the object length
/// 0 of the short read and so reads nothing. In validation mode the append
/// refuses such an element, which ends the list at the first one. Outside
/// validation mode every one of them would be appended, up to 2^31 empty
/// elements for four bytes of count; the owner's length error ends the read
/// instead as soon as an element is announced after the stream has ended.
template <typename T, typename AppendElement>
void ReadList(const REPORTGENERATOR::IRGObject& owner, Source& in, qint32 recordLength, QVector<T>& list,
              AppendElement&& append)
{
    const qint32 count = in.ReadInt32();
    if (count <= 0)
        return;
    list.reserve(list.size() + ReservationFor(in, count, recordLength));
    const bool validate = owner.GetValidate();
    const std::shared_ptr<REPORTGENERATOR::Logger> logger = owner.GetLogger();
    for (qint32 i = 0; i < count; ++i) {
        if (!validate && in.AtEnd())
            ThrowLengthError(owner);
        const qint32 elementLength = in.ReadInt32();
        T element;
        element.SetValidate(validate);
        element.SetLogger(logger);
        {
            const Source::HandOn lent(in);
            element.SetBinary(lent.Stream(), elementLength);
        }
        append(std::move(element));
    }
}

} // namespace Binary
} // namespace TORVIXML

// GetBinary() of every class: the write prologue first (flag and logger
// handed down, and in validation mode the check, whose failure propagates,
// and nothing written for an object without data), then a device that
// cannot be patched is refused before anything is written, then the frame.
#define TORVIXML_BINARY_WRITE_ENTRY(Class)                                                     \
    bool Class::GetBinary(QDataStream& stream, int id, bool writeId) const                     \
    {                                                                                          \
        if (!Validation::WritePrologue(*this) || !Binary::CanWrite(stream))                    \
            return false;                                                                      \
        WriteBinaryFrame(stream, id, writeId);                                                 \
        return true;                                                                           \
    }

#endif
