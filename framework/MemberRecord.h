#ifndef TORVIXML_FRAMEWORK_MEMBERRECORD_H
#define TORVIXML_FRAMEWORK_MEMBERRECORD_H

// The fields a member-data record is made of, one kind per kind of member,
// and the record's base with the set flags and default flags.

#include "IRGObject.h"

#include <QBitArray>
#include <QSharedData>
#include <QString>
#include <QVector>

class QXmlStreamReader;

namespace TORVIXML {
namespace Framework {

/// What generic code needs of a settings object beyond its public
/// interface: its record pointer, its private InitData() and
/// ConstNoClearReset(), and the base's protected XML reading steps. Each
/// settings class makes Access<Class> its friend, and nothing else.
template <typename Class>
struct Access
{
    static auto& Record(const Class& object) { return object.d; }
    static void InitData(const Class& object) { object.InitData(); }
    static void ConstNoClearReset(const Class& object) { object.ConstNoClearReset(); }
    static QString TextValue(Class& object, QXmlStreamReader& reader) { return object.GetTextValue(reader); }
    static void SkipElement(Class& object, QXmlStreamReader& reader) { object.SkipXmlElement(reader); }
};

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

/// An exact duplicate of a settings object with a record of its own: the
/// same values, validation flag, logger, name and type, and likewise for
/// every element of its lists. Records copy their lists this way, so that
/// taking a private copy of a shared record changes nothing anyone can see.
template <typename T>
T Duplicate(const T& original)
{
    T copy;
    static_cast<REPORTGENERATOR::IRGObject&>(copy) = original;
    auto& record = Access<T>::Record(copy);
    record = Access<T>::Record(original);
    record.detach();
    return copy;
}

/// While the owner's XML content is walked, how many leading elements of a
/// list are known to hold the owner's validation flag and logger: the
/// owner re-applies both at every child element, and without this count
/// that would make reading a list quadratic. Outside a walk (count -1) the
/// hand-down always covers the whole list.
struct HandedDown
{
    int validateCount = -1;
    bool validate = false;
    int loggerCount = -1;
    const REPORTGENERATOR::Logger* logger = nullptr;

    bool Active() const { return validateCount >= 0; }
    void Start() { validateCount = loggerCount = 0; }
    void Stop() { validateCount = loggerCount = -1; }
    /// The list is handed out or changed in a way the count cannot follow.
    void Forget()
    {
        if (Active())
            Start();
    }
};

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
    // on one object can ever reach an element of another; the elements are
    // duplicated whole (Duplicate), loggers included.
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
            copy.append(Duplicate(element));
        list.swap(copy);
        handedDown.Forget();
    }

    void Clear()
    {
        list.clear();
        handedDown.Forget();
    }

    T defaultElement;
    QVector<T> list;
    T readElement;
    /// Not part of the value: a copy starts outside a walk.
    HandedDown handedDown;
};

/// Base of every member-data record: the set flags and the default flags,
/// one bit per member in member order.
template <int N>
class Record : public QSharedData
{
public:
    static constexpr int MemberCount = N;

    bool IsSet(int bit) const { return m_setFlags.testBit(bit); }
    void MarkSet(int bit) { m_setFlags.setBit(bit); }
    void MarkUnset(int bit) { m_setFlags.clearBit(bit); }
    void ClearSetFlags() { m_setFlags.fill(false); }

    QBitArray m_setFlags = QBitArray(N);
    QBitArray m_defaultSetFlags = QBitArray(N);
};

} // namespace Framework
} // namespace TORVIXML

#endif
