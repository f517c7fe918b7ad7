#ifndef TORVIXML_FRAMEWORK_MEMBERRECORD_H
#define TORVIXML_FRAMEWORK_MEMBERRECORD_H

#include <QBitArray>
#include <QSharedData>
#include <QSharedDataPointer>
#include <QString>
#include <QVector>

#include <array>
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

/// Selects the duplicating constructor of a settings class: an exact
/// duplicate of an element, its validation flag and logger included, with a
/// record of its own. Records use it to copy their lists, so that taking a
/// private copy of a shared record changes nothing that anyone can see.
struct CloneTag
{
    explicit constexpr CloneTag() = default;
};
inline constexpr CloneTag Clone{};

/// While one of these lives, list fields copied on its thread take their
/// default and work elements but none of the list's elements. That makes a
/// record with another record's defaults and invalid values without copying
/// what it holds (see CreateEmpty in TORVIXML_VALUE_CLASS).
class ElementsLeftOut
{
public:
    ElementsLeftOut() { ++s_depth; }
    ~ElementsLeftOut() { --s_depth; }
    ElementsLeftOut(const ElementsLeftOut&) = delete;
    ElementsLeftOut& operator=(const ElementsLeftOut&) = delete;
    static bool Active() { return s_depth > 0; }

private:
    static inline thread_local int s_depth = 0;
};

/// The fields of a list member: a default element (stored and returned
/// only), the list, and the work element into which the XML reader reads
/// each child before appending it.
template <typename T>
struct ListField
{
    ListField() = default;
    // A copied record owns its elements outright, so that no const operation
    // on one object can ever reach an element of another. The elements are
    // duplicated whole: a record is copied whenever an object stops sharing
    // it, and that must not take the elements' loggers away.
    ListField(const ListField& other)
        : defaultElement(other.defaultElement)
        , readElement(other.readElement)
    {
        if (!ElementsLeftOut::Active())
            Assign(other.list);
    }
    ListField& operator=(const ListField&) = delete;

    /// The list := a duplicate of source, element by element.
    void Assign(const QVector<T>& source)
    {
        QVector<T> copy;
        copy.reserve(source.size());
        for (const T& element : source)
            copy.append(T(Clone, element));
        list.swap(copy);
    }

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
    static_assert(N >= 1 && N <= 8, "one shared bit array per combination of set flags");

public:
    static constexpr int MemberCount = N;

    Record() = default;
    /// A record whose default flags are known from the start.
    explicit Record(const QBitArray& defaultFlags)
        : m_defaultSetFlags(defaultFlags)
    {
    }

    static const QBitArray& NoFlags() { return Flags(0); }

    bool IsSet(int bit) const { return m_setFlags.testBit(bit); }
    void MarkSet(int bit)
    {
        if (!IsSet(bit))
            m_setFlags = Flags(Mask(m_setFlags) | (1u << bit));
    }
    void MarkUnset(int bit)
    {
        if (IsSet(bit))
            m_setFlags = Flags(Mask(m_setFlags) & ~(1u << bit));
    }
    void ClearSetFlags() { m_setFlags = NoFlags(); }

    QBitArray m_setFlags = NoFlags();
    QBitArray m_defaultSetFlags = NoFlags();

private:
    /// Every combination of the N set flags, built once. Records take these
    /// shared arrays instead of changing bits in their own, which would cost
    /// every record a bit array of its own.
    static const QBitArray& Flags(unsigned mask)
    {
        static const std::array<QBitArray, (1u << N)> all = [] {
            std::array<QBitArray, (1u << N)> flags;
            for (unsigned m = 0; m < flags.size(); ++m) {
                flags[m] = QBitArray(N);
                for (int bit = 0; bit < N; ++bit)
                    flags[m].setBit(bit, (m >> bit) & 1u);
            }
            return flags;
        }();
        return all[mask];
    }
    static unsigned Mask(const QBitArray& flags)
    {
        unsigned mask = 0;
        for (int bit = 0; bit < N; ++bit)
            mask |= unsigned(flags.testBit(bit)) << bit;
        return mask;
    }
};

/// Creates a record for an object that has none.
template <typename Data, typename... Args>
Q_NEVER_INLINE void NewRecord(QSharedDataPointer<Data>& d, const Args&... args)
{
    d = new Data(args...);
}

/// First half of every InitData(): takes a private copy of a shared record;
/// creates the record when there is none and returns true in that case.
/// InitData() runs at the start of nearly every operation, mostly on an
/// object that already owns its record, so that case is kept inline.
template <typename Data, typename... Args>
inline bool CreateRecord(QSharedDataPointer<Data>& d, const Args&... args)
{
    d.detach();
    if (d)
        return false;
    NewRecord(d, args...);
    return true;
}

} // namespace Framework
} // namespace TORVIXML

#endif
