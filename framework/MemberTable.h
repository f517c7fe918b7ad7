#ifndef TORVIXML_FRAMEWORK_MEMBERTABLE_H
#define TORVIXML_FRAMEWORK_MEMBERTABLE_H

// How a settings class describes its members: one row per member, in a
// table beside its record. Everything that is the same for every member of
// a kind (lifecycle, accessors, check, writers, readers, introspection) is
// written once, over these rows.
//
// A table is a specialisation of Members<Class> with
//   using Class, Data       the class and its record,
//   ClassName               the class name, as enumeration messages name it,
//   one static constexpr row per member (EnumMember, TextMember, ListMember),
//   Rows()                  all rows, in member order.
// Member order is the order of the bits in the set flags and default flags,
// of equality, of the check and of the XML reader's dispatch; the row's
// write order places it in both stored forms.

#include "EnumNameTable.h"
#include "MemberRecord.h"

#include <QString>
#include <QVector>
#include <QtGlobal>

#include <tuple>
#include <type_traits>
#include <utility>

namespace TORVIXML {
namespace Framework {

/// How a member appears in the XML form.
enum class XmlForm {
    /// An attribute of the object's element, named as the member; reading
    /// also takes a child element of that name holding the text.
    Attribute,
    /// A child element named as the member, holding the text.
    TextElement,
    /// One child element per list element, named by the element's class.
    ChildElements
};

/// An enumeration member. Its name is that of the accessor family, of the
/// XML element and of the label in check messages; fieldName names the
/// record's field in the enumeration message; defaultName is the name whose
/// value InitData makes the default (nullptr: no default).
template <typename Data, typename E>
struct EnumMember
{
    using Value = E;
    const char* name;
    int bit;
    EnumField<E> Data::*field;
    const char* fieldName;
    const EnumNameTable& (*names)();
    const char* defaultName;
    XmlForm xml;
    qint32 binaryId;
    int writeOrder;
};

/// A string member; its name is also its label in messages.
template <typename Data>
struct TextMember
{
    const char* name;
    int bit;
    TextField Data::*field;
    XmlForm xml;
    qint32 binaryId;
    int writeOrder;
};

/// A list member; its name is also the class of its elements.
template <typename Data, typename T>
struct ListMember
{
    using Element = T;
    const char* name;
    int bit;
    ListField<T> Data::*field;
    XmlForm xml;
    qint32 binaryId;
    int writeOrder;
};

template <typename Row>
struct IsListRow : std::false_type
{
};
template <typename Data, typename T>
struct IsListRow<ListMember<Data, T>> : std::true_type
{
};
/// Whether a row (of any const/reference qualification) is a list member.
template <typename Row>
constexpr bool IsList = IsListRow<std::decay_t<Row>>::value;

/// The member table of a class; see the top of this file.
template <typename Class>
struct Members;

/// Calls fn(row) for every row, in member order.
template <typename Rows, typename Fn>
void ForEachMember(const Rows& rows, Fn&& fn)
{
    std::apply([&](const auto&... row) { (fn(row), ...); }, rows);
}

/// Calls fn(row) for every row, in write order.
template <typename Rows, typename Fn>
void ForEachInWriteOrder(const Rows& rows, Fn&& fn)
{
    for (int position = 0; position < int(std::tuple_size<Rows>::value); ++position) {
        ForEachMember(rows, [&](const auto& row) {
            if (row.writeOrder == position)
                fn(row);
        });
    }
}

/// Whether a table is laid out as generic code expects: one row per bit of
/// the record's flags, each row's bit its position, and the write orders a
/// permutation of the positions.
template <typename Class>
constexpr bool IsWellFormed()
{
    constexpr auto rows = Members<Class>::Rows();
    constexpr int count = int(std::tuple_size<decltype(rows)>::value);
    if (count != Members<Class>::Data::MemberCount)
        return false;
    bool ordered = true;
    int position = 0;
    unsigned writeOrders = 0;
    std::apply(
        [&](const auto&... row) {
            ((ordered = ordered && row.bit == position++), ...);
            ((writeOrders |= (row.writeOrder >= 0 && row.writeOrder < count) ? 1u << row.writeOrder : 0u), ...);
        },
        rows);
    return ordered && writeOrders == (1u << count) - 1;
}

/// Whether the class has a list member.
template <typename Class>
bool HasListMember()
{
    bool any = false;
    ForEachMember(Members<Class>::Rows(), [&](const auto& row) { any = any || IsList<decltype(row)>; });
    return any;
}

/// The name of the member with the given bit as a QString, built once per
/// class, for the XML writer's element and attribute names.
template <typename Class>
const QString& MemberName(int bit)
{
    static const QVector<QString> names = [] {
        QVector<QString> all(std::tuple_size<decltype(Members<Class>::Rows())>::value);
        ForEachMember(Members<Class>::Rows(), [&](const auto& row) { all[row.bit] = QString::fromLatin1(row.name); });
        return all;
    }();
    return names.at(bit);
}

/// The object's record, created if it has none, through the detaching
/// access: the record is the object's own afterwards.
template <typename Class>
auto& RecordOf(const Class& object)
{
    Access<Class>::InitData(object);
    return *Access<Class>::Record(object);
}

} // namespace Framework
} // namespace TORVIXML

#endif
