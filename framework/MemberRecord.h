#ifndef TORVIXML_FRAMEWORK_MEMBERRECORD_H
#define TORVIXML_FRAMEWORK_MEMBERRECORD_H

#include <QBitArray>
#include <QSharedData>
#include <QSharedDataPointer>
#include <QString>
#include <QVector>

#include <initializer_list>

namespace TORVIXML {
namespace Framework {

/// The three fields of an enumeration member: the value that stands for
/// "unknown name", the default, and the current value.
template <typename E>
struct EnumField
{
    E invalid = E(-1);
    E defaultValue = E(-1);
    E value = E(-1);
};

/// The fields of a string member. A null string means "no value"; an
/// empty, non-null string is a value.
struct TextField
{
    QString defaultValue;
    QString value;
};

/// The fields of a list member: a default element (stored and returned
/// only), the list, and the work element into which the XML reader reads
/// each child before appending it.
template <typename T>
struct ListField
{
    ListField() = default;
    // A copied record owns its elements outright: the list is detached at
    // once (each element by its copy constructor), so that no const
    // operation on one object can ever reach an element of another.
    ListField(const ListField& other)
        : defaultElement(other.defaultElement)
        , list(other.list)
        , readElement(other.readElement)
    {
        list.detach();
    }
    ListField& operator=(const ListField&) = delete;

    T defaultElement;
    QVector<T> list;
    T readElement;
    /// While the owner's XML content is walked: how many leading elements
    /// already hold the owner's flag and logger (-1 outside a walk). Not part
    /// of the value; a copy starts outside a walk.
    int handedDown = -1;
};

/// A bit array of N bits with the given bits set. Records that keep one
/// such array as a function-local static and assign it share its storage
/// until a bit changes.
template <int N>
QBitArray MakeFlags(std::initializer_list<int> bits)
{
    QBitArray flags(N);
    for (int bit : bits)
        flags.setBit(bit);
    return flags;
}

/// Base of every member-data record: the set flags and default flags, one
/// bit per member in member order.
template <int N>
class Record : public QSharedData
{
public:
    static constexpr int MemberCount = N;

    static const QBitArray& NoFlags()
    {
        static const QBitArray none(N);
        return none;
    }

    bool IsSet(int bit) const { return m_setFlags.testBit(bit); }
    void MarkSet(int bit) { m_setFlags.setBit(bit); }
    void MarkUnset(int bit) { m_setFlags.clearBit(bit); }
    void ClearSetFlags() { m_setFlags = NoFlags(); }

    QBitArray m_setFlags = NoFlags();
    QBitArray m_defaultSetFlags = NoFlags();
};

/// First half of every InitData(): takes a private copy of a shared record;
/// creates the record when there is none and returns true in that case.
template <typename Data>
bool CreateRecord(QSharedDataPointer<Data>& d)
{
    d.detach();
    if (d)
        return false;
    d = new Data;
    return true;
}

} // namespace Framework
} // namespace TORVIXML

#endif
