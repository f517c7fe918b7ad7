#ifndef TORVIXML_FRAMEWORK_MEMBERSTATE_H
#define TORVIXML_FRAMEWORK_MEMBERSTATE_H

// The rules every member follows, written once over the member tables:
// the record's creation and resets, HasData, AnyData, equality, and the
// accessor families. A settings class defines each of its operations as a
// one-line call into these templates.
//
// Every operation reaches the record through the object's detaching access
// (QSharedDataPointer's non-const operators), so even const operations
// first take a private copy of a shared record.

#include "EnumNameTable.h"
#include "MemberRecord.h"
#include "MemberTable.h"
#include "Messages.h"

#include "IncompleteDefinitionException.h"
#include "OutOfRangeException.h"

#include <QLatin1String>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>
#include <type_traits>
#include <utility>

namespace TORVIXML {
namespace Framework {

// ---------------------------------------------------------------------------
// One member of a record, by kind.

template <typename Data, typename E>
void SetInitialDefault(Data& data, const EnumMember<Data, E>& row)
{
    if (!row.defaultName)
        return;
    (data.*row.field).defaultValue = E(row.names().IndexOf(QLatin1String(row.defaultName)));
    data.m_defaultSetFlags.setBit(row.bit);
}
template <typename Data, typename Row>
void SetInitialDefault(Data&, const Row&)
{
}

/// ConstNoClearReset() of one member: back to its default, null, or empty.
template <typename Data, typename E>
void ClearValue(Data& data, const EnumMember<Data, E>& row)
{
    auto& field = data.*row.field;
    field.value = field.defaultValue;
}
template <typename Data>
void ClearValue(Data& data, const TextMember<Data>& row)
{
    (data.*row.field).value = QString();
}
template <typename Data, typename T>
void ClearValue(Data& data, const ListMember<Data, T>& row)
{
    (data.*row.field).Clear();
}

/// Whether a member holds a value: an enumeration when it is set, a string
/// when it is not null, a list when it has elements.
template <typename Data, typename E>
bool HoldsValue(Data& data, const EnumMember<Data, E>& row)
{
    return data.IsSet(row.bit);
}
template <typename Data>
bool HoldsValue(Data& data, const TextMember<Data>& row)
{
    return !(data.*row.field).value.isNull();
}
template <typename Data, typename T>
bool HoldsValue(Data& data, const ListMember<Data, T>& row)
{
    return !(data.*row.field).list.isEmpty();
}

/// The default of a member: a value, or the default element of a list.
template <typename Data, typename Row>
auto& DefaultOf(Data& data, const Row& row)
{
    auto& field = data.*row.field;
    if constexpr (IsList<Row>)
        return field.defaultElement;
    else
        return field.defaultValue;
}

// ---------------------------------------------------------------------------
// The record as a whole.

/// ConstNoClearReset(): every member back to its default, null, or empty;
/// flags, defaults, invalid values and default elements stay.
template <typename Class, typename Data>
void ClearValues(Data& data)
{
    ForEachMember(Members<Class>::Rows(), [&](const auto& row) { ClearValue(data, row); });
}

/// What every new record starts as: the enumeration members' defaults, found
/// by name in their tables, with their default bits set; every value at its
/// default, null or empty. Built once per class; the tables never change.
template <typename Class>
const typename Members<Class>::Data& InitialRecord()
{
    static_assert(IsWellFormed<Class>(), "a member table needs one row per bit, in bit order, and distinct write orders");
    using Data = typename Members<Class>::Data;
    static const Data initial = [] {
        Data data;
        ForEachMember(Members<Class>::Rows(), [&](const auto& row) { SetInitialDefault(data, row); });
        ClearValues<Class>(data);
        return data;
    }();
    return initial;
}

/// InitData(): makes the record the object's own; an object without one
/// gets a new record, to whose lists its flag and logger are then handed
/// down through its virtual operations.
template <typename Class>
void InitRecord(const Class& object)
{
    auto& d = Access<Class>::Record(object);
    d.detach();
    if (d)
        return;
    d = new typename Members<Class>::Data(InitialRecord<Class>());
    object.SetValidate(object.GetValidate());
    object.SetLogger(object.GetLogger());
}

/// Reset(): without a record nothing; otherwise every set flag cleared and
/// ConstNoClearReset().
template <typename Class>
void Reset(const Class& object)
{
    auto& d = Access<Class>::Record(object);
    if (!d)
        return;
    d->ClearSetFlags();
    Access<Class>::ConstNoClearReset(object);
}

/// CreateEmpty(): a new object of the class without values, but with this
/// object's defaults and invalid values, which decide what a read stores.
/// The list elements are left out of the record's copy, not copied and
/// dropped.
template <typename Class>
std::unique_ptr<REPORTGENERATOR::IRGObject> CreateEmpty(const Class& object)
{
    auto empty = std::make_unique<Class>();
    const auto& d = Access<Class>::Record(object);
    if (d) {
        const ElementsLeftOut elementsLeftOut;
        Access<Class>::Record(*empty) = new typename Members<Class>::Data(*d.constData());
    }
    empty->Reset();
    return empty;
}

/// TakeContent(): the content of source, an object that CreateEmpty() made,
/// moved over as the class's move assignment does (flag and logger stay).
template <typename Class>
void TakeContent(Class& object, REPORTGENERATOR::IRGObject& source)
{
    if (auto* read = dynamic_cast<Class*>(&source))
        object = std::move(*read);
}

template <typename Class>
bool IsInitialized(const Class& object)
{
    auto& d = Access<Class>::Record(object);
    d.detach();
    return bool(d);
}

/// HasData(): every scalar member holds a value; lists do not count.
template <typename Class>
bool HasData(const Class& object)
{
    auto& d = Access<Class>::Record(object);
    if (!d)
        return false;
    bool all = true;
    ForEachMember(Members<Class>::Rows(), [&](const auto& row) {
        if constexpr (!IsList<decltype(row)>)
            all = all && HoldsValue(*d, row);
    });
    return all;
}

/// AnyData(): at least one member holds a value.
template <typename Class>
bool AnyData(const Class& object)
{
    auto& d = Access<Class>::Record(object);
    if (!d)
        return false;
    bool any = false;
    ForEachMember(Members<Class>::Rows(), [&](const auto& row) { any = any || HoldsValue(*d, row); });
    return any;
}

/// operator==: a scalar member agrees when it is set in both objects with
/// equal values, or set in neither (the values of unset members are not
/// compared; an object without a record has every member unset). Then both
/// objects are initialised and their lists compared pairwise, in order.
template <typename Class>
bool Equal(const Class& here, const Class& there)
{
    auto& a = Access<Class>::Record(here);
    auto& b = Access<Class>::Record(there);
    if (!a && !b)
        return true;
    bool equal = true;
    ForEachMember(Members<Class>::Rows(), [&](const auto& row) {
        if constexpr (!IsList<decltype(row)>) {
            if (!equal)
                return;
            const bool setHere = a && a->IsSet(row.bit);
            const bool setThere = b && b->IsSet(row.bit);
            equal = setHere == setThere && (!setHere || ((*a).*row.field).value == ((*b).*row.field).value);
        }
    });
    if (!equal || !HasListMember<Class>())
        return equal;
    Access<Class>::InitData(here);
    Access<Class>::InitData(there);
    ForEachMember(Members<Class>::Rows(), [&](const auto& row) {
        if constexpr (IsList<decltype(row)>)
            equal = equal && ((*a).*row.field).list == ((*b).*row.field).list;
    });
    return equal;
}

// ---------------------------------------------------------------------------
// Accessors of every kind of member.

template <typename Class, typename Row>
bool IsSet(const Class& object, const Row& row)
{
    auto& d = Access<Class>::Record(object);
    return d && d->IsSet(row.bit);
}

/// The member's reset: without a record nothing; otherwise unset and back
/// to its default, null, or empty.
template <typename Class, typename Row>
void ResetMember(const Class& object, const Row& row)
{
    auto& d = Access<Class>::Record(object);
    if (!d)
        return;
    d->MarkUnset(row.bit);
    ClearValue(*d, row);
}

template <typename Class, typename Row, typename V>
void SetDefault(const Class& object, const Row& row, const V& value)
{
    auto& data = RecordOf(object);
    DefaultOf(data, row) = value;
    data.m_defaultSetFlags.setBit(row.bit);
}

template <typename Class, typename Row>
const auto& GetDefault(const Class& object, const Row& row)
{
    return DefaultOf(RecordOf(object), row);
}

// Enumeration members.

template <typename Class, typename Data, typename E>
void SetInvalid(const Class& object, const EnumMember<Data, E>& row, E value)
{
    (RecordOf(object).*row.field).invalid = value;
}

template <typename Class, typename Data, typename E>
const E& GetInvalid(const Class& object, const EnumMember<Data, E>& row)
{
    return (RecordOf(object).*row.field).invalid;
}

/// A value is valid when it lies in the enumeration's name table.
template <typename Class, typename Data, typename E>
bool IsValid(const Class& object, const EnumMember<Data, E>& row, E value)
{
    Access<Class>::InitData(object);
    return row.names().Contains(value);
}

template <typename Class, typename Data, typename E>
const E& Get(const Class& object, const EnumMember<Data, E>& row)
{
    return (RecordOf(object).*row.field).value;
}

/// The name of a value, or a null string for a value outside the table.
template <typename Class, typename Data, typename E>
QString ToName(const Class& object, const EnumMember<Data, E>& row, E value)
{
    Access<Class>::InitData(object);
    return row.names().Name(value);
}

template <typename Class, typename Data, typename E>
QString GetAsString(const Class& object, const EnumMember<Data, E>& row)
{
    return ToName(object, row, Get(object, row));
}

/// The value of a name, or the object's invalid value for a name that is
/// not in the table.
template <typename Class, typename Data, typename E>
E FromName(const Class& object, const EnumMember<Data, E>& row, const QString& name)
{
    const int index = row.names().IndexOf(name);
    if (index >= 0)
        return E(index);
    return GetInvalid(object, row);
}

/// The enumeration setter: a value outside the name table is refused in
/// validation mode and stored (and marked set) otherwise.
template <typename Class, typename Data, typename E>
void Set(const Class& object, const EnumMember<Data, E>& row, E value)
{
    Data& data = RecordOf(object);
    if (object.GetValidate() && !row.names().Contains(value))
        throw OutOfRangeException(EnumNotValidMessage(Members<Class>::ClassName, row.fieldName));
    (data.*row.field).value = value;
    data.MarkSet(row.bit);
}

template <typename Data, typename E>
QStringList Names(const EnumMember<Data, E>& row)
{
    return row.names().Names();
}

template <typename Data, typename E>
QStringList DisplayNames(const EnumMember<Data, E>& row)
{
    return row.names().DisplayNames();
}

// String members.

template <typename Data>
bool IsValid(const TextMember<Data>&, const QString& value)
{
    return !value.isNull();
}

template <typename Class, typename Data>
QString Get(const Class& object, const TextMember<Data>& row)
{
    return (RecordOf(object).*row.field).value;
}

/// The string setter: a null string is refused in validation mode.
template <typename Class, typename Data>
void Set(const Class& object, const TextMember<Data>& row, QString value)
{
    Data& data = RecordOf(object);
    if (object.GetValidate() && value.isNull())
        throw OutOfRangeException(PleaseSetMessage(object.GetObjectName(), row.name));
    (data.*row.field).value = std::move(value);
    data.MarkSet(row.bit);
}

// List members.

/// The list for reading. The const reference reaches the elements' const
/// operations, among them SetValidate and SetLogger, so the count of
/// elements already handed down is forgotten.
template <typename Class, typename Data, typename T>
const QVector<T>& Get(const Class& object, const ListMember<Data, T>& row)
{
    auto& field = RecordOf(object).*row.field;
    field.handedDown.Forget();
    return field.list;
}

/// The list for changing in place: the member is marked set.
template <typename Class, typename Data, typename T>
QVector<T>& GetForChange(const Class& object, const ListMember<Data, T>& row)
{
    Data& data = RecordOf(object);
    data.MarkSet(row.bit);
    auto& field = data.*row.field;
    field.handedDown.Forget();
    return field.list;
}

/// Replaces the list, its elements unexamined, and marks it set.
template <typename Class, typename Data, typename T>
void Set(const Class& object, const ListMember<Data, T>& row, const QVector<T>& value)
{
    Data& data = RecordOf(object);
    (data.*row.field).Assign(value);
    data.MarkSet(row.bit);
}

/// The append: an element without data is refused in validation mode.
/// A copy of the element is appended, made by its copy constructor, so it
/// has the element's flag but no logger. An element that a reader built and
/// no longer needs is moved into the list instead, and then given exactly
/// that: its own flag handed down, and no logger.
template <typename Class, typename Data, typename T, typename V>
void Append(const Class& object, const ListMember<Data, T>& row, V&& element)
{
    Data& data = RecordOf(object);
    if (object.GetValidate() && !element.HasData())
        throw IncompleteDefinitionException(AppendRefusedMessage(object.GetObjectName(), row.name));
    auto& field = data.*row.field;
    field.list.append(std::forward<V>(element));
    data.MarkSet(row.bit);
    if constexpr (!std::is_lvalue_reference<V>::value) {
        const T& added = field.list.last();
        added.SetValidate(added.GetValidate());
        added.SetLogger(nullptr);
    }
}

template <typename Data, typename T>
bool IsValid(const ListMember<Data, T>&)
{
    return true;
}

// ---------------------------------------------------------------------------

/// Whether ResetToDefault applies a default: an enumeration's when it is
/// valid, a string's when it is not null.
template <typename Data, typename E>
bool HasDefault(const EnumMember<Data, E>& row, E value)
{
    return row.names().Contains(value);
}
template <typename Data>
bool HasDefault(const TextMember<Data>&, const QString& value)
{
    return !value.isNull();
}

/// ResetToDefault(): InitData, Reset() through the virtual table, then each
/// member whose default bit is set gets its default through its setter:
/// an enumeration when the default is valid, a string when it is not null,
/// a list never.
template <typename Class>
void ResetToDefault(Class& object)
{
    Access<Class>::InitData(object);
    object.Reset();
    ForEachMember(Members<Class>::Rows(), [&](const auto& row) {
        if constexpr (!IsList<decltype(row)>) {
            auto& data = RecordOf(object);
            const auto& value = (data.*row.field).defaultValue;
            if (data.m_defaultSetFlags.testBit(row.bit) && HasDefault(row, value))
                Set(object, row, std::decay_t<decltype(value)>(value));
        }
    });
}

} // namespace Framework
} // namespace TORVIXML

#endif
