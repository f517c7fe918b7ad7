#ifndef TORVIXML_REPRESENTATION_BINARYFORM_H
#define TORVIXML_REPRESENTATION_BINARYFORM_H

// GetBinary() and SetBinary() of every settings class, over its member
// table: each member is a record tagged with the row's binary id, in the
// row's write order; a list record holds the element count and the
// elements' frames (without id).

#include "IRGObject.h"

#include "BinaryFrame.h"
#include "MemberState.h"
#include "MemberTable.h"
#include "Validation.h"
#include "WriteWalk.h"

#include <QDataStream>

#include <utility>

namespace TORVIXML {
namespace Binary {

/// The write walk's sink for the binary form.
class FrameSink
{
public:
    explicit FrameSink(Output& out)
        : m_out(out)
    {
    }

    qint64 Begin(const REPORTGENERATOR::IRGObject&) { return m_out.OpenLength(); }
    void End(qint64 start) { m_out.CloseLength(start); }

    template <typename Class, typename Data, typename E>
    void Scalar(const Class&, const Framework::EnumMember<Data, E>& row, E value)
    {
        const qint64 start = OpenRecord(row.binaryId);
        m_out.Utf8(row.names().Utf8Name(value));
        m_out.CloseLength(start);
    }
    template <typename Class, typename Data>
    void Scalar(const Class& object, const Framework::TextMember<Data>& row, const QString& value)
    {
        // UTF-8 has no form for an unpaired surrogate: refused, not replaced.
        object.RequireUtf8Text(value, row.name);
        const qint64 start = OpenRecord(row.binaryId);
        m_out.Text(value);
        m_out.CloseLength(start);
    }

    template <typename Row>
    qint64 BeginList(const Row& row, int count)
    {
        const qint64 start = OpenRecord(row.binaryId);
        m_out.Int(count);
        return start;
    }
    void EndList(qint64 start) { m_out.CloseLength(start); }

private:
    qint64 OpenRecord(qint32 memberId)
    {
        m_out.Int(memberId);
        return m_out.OpenLength();
    }

    Output& m_out;
};

/// GetBinary(): the write prologue, a device that cannot be written to
/// refused, then the frame, built in memory and handed to the stream in one
/// piece. When a list element's check fails on the way, what was built up
/// to there is handed over before the failure propagates, lengths not yet
/// filled in left at 0, as a writer going straight to the device would
/// leave it.
template <typename Class>
bool Write(const Class& object, QDataStream& stream, int id, bool writeId)
{
    if (!Validation::WritePrologue(object) || !CanWrite(stream))
        return false;
    Output out(stream.byteOrder());
    if (writeId)
        out.Int(id);
    FrameSink sink(out);
    try {
        Representation::WriteMembers(object, sink);
    } catch (...) {
        out.HandTo(stream);
        throw;
    }
    out.HandTo(stream);
    return true;
}

template <typename Class>
void ReadMembers(Class& object, Source& in, qint64 length);

/// An enumeration: the value whose name the payload decodes to, or the
/// object's invalid value, through the setter.
template <typename Class, typename Data, typename E>
void ReadMember(Class& object, const Framework::EnumMember<Data, E>& row, Source& in, qint32)
{
    const Utf8 name = ReadUtf8(in);
    const int index = row.names().IndexOfUtf8(name.bytes, name.size);
    Framework::Set(object, row, index >= 0 ? E(index) : Framework::GetInvalid(object, row));
}

template <typename Class, typename Data>
void ReadMember(Class& object, const Framework::TextMember<Data>& row, Source& in, qint32)
{
    Framework::Set(object, row, ReadText(in));
}

/// A list payload: the element count, then for each element its object
/// length, a fresh element that carries the owner's flag and logger reads
/// its records, and the owner appends it.
///
/// An element announced beyond the end of the stream gets the object length
/// 0 of the short read and so reads nothing. In validation mode the append
/// refuses such an element, which ends the list at the first one. Outside
/// validation mode every one of them would be appended, up to 2^31 empty
/// elements for four bytes of count; the owner's length error ends the read
/// instead as soon as an element is announced after the stream has ended.
template <typename Class, typename Data, typename T>
void ReadMember(Class& object, const Framework::ListMember<Data, T>& row, Source& in, qint32 recordLength)
{
    const qint32 count = in.ReadInt32();
    if (count <= 0)
        return;
    QVector<T>& list = (Framework::RecordOf(object).*row.field).list;
    list.reserve(list.size() + ReservationFor(in, count, recordLength));
    const bool validate = object.GetValidate();
    const std::shared_ptr<REPORTGENERATOR::Logger> logger = object.GetLogger();
    for (qint32 i = 0; i < count; ++i) {
        if (!validate && in.AtEnd())
            ThrowLengthError(object);
        const qint32 elementLength = in.ReadInt32();
        T element;
        element.SetValidate(validate);
        element.SetLogger(logger);
        ReadMembers(element, in, elementLength);
        Framework::Append(object, row, std::move(element));
    }
}

/// The records of one object frame (what SetBinary() reads): the read
/// prologue, then records until the object length is used up or the stream
/// ends, each applied through its member's setter or append, records of
/// other member ids skipped through the base. Throws the length error
/// unless the records add up to exactly the object length. A list element
/// is read the same way from the same source.
template <typename Class>
void ReadMembers(Class& object, Source& in, qint64 length)
{
    Validation::Reapply(object);
    Framework::Access<Class>::InitData(object);
    qint64 remaining = length;
    while (remaining > 0 && !in.AtEnd()) {
        const qint32 memberId = in.ReadInt32();
        const qint32 recordLength = in.ReadInt32();
        remaining -= 8 + qint64(recordLength);
        bool known = false;
        Framework::ForEachMember(Framework::Members<Class>::Rows(), [&](const auto& row) {
            if (!known && row.binaryId == memberId) {
                known = true;
                ReadMember(object, row, in, recordLength);
            }
        });
        if (!known)
            object.skipCurrentElement(in.Lend(), recordLength, memberId);
    }
    if (remaining != 0)
        ThrowLengthError(object);
}

/// SetBinary().
template <typename Class>
void Read(Class& object, QDataStream& stream, int length)
{
    Source in(stream);
    ReadMembers(object, in, length);
}

} // namespace Binary
} // namespace TORVIXML

#endif
