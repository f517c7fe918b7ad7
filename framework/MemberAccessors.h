#ifndef TORVIXML_FRAMEWORK_MEMBERACCESSORS_H
#define TORVIXML_FRAMEWORK_MEMBERACCESSORS_H

// The rules every member of a settings class follows, written once. A
// settings class keeps its members in a record derived from
// Framework::Record<N> (reached through its mutable QSharedDataPointer d)
// and states each member with one of the TORVIXML_*_MEMBER macros below,
// which define the member's whole accessor family on top of these rules.
//
// Every accessor reaches the record through d's detaching access, so even
// const operations first take a private copy of a shared record.

#include "EnumNameTable.h"
#include "MemberRecord.h"
#include "Messages.h"
#include "QtCompat.h"

#include "IncompleteDefinitionException.h"
#include "OutOfRangeException.h"

#include <memory>
#include <utility>

namespace TORVIXML {
namespace Framework {

/// Enumeration setter: a value outside the name table is refused in
/// validation mode and stored (and marked set) otherwise.
template <typename Data, typename E>
void SetEnum(Data& data, EnumField<E>& field, int bit, E value, const EnumNameTable& table,
             bool validate, const char* className, const char* fieldName)
{
    if (validate && !table.Contains(value))
        throw OutOfRangeException(EnumNotValidMessage(className, fieldName));
    field.value = value;
    data.MarkSet(bit);
}

/// String setter: a null string is refused in validation mode.
template <typename Data>
void SetText(Data& data, TextField& field, int bit, QString&& value, bool validate,
             const QString& objectName, const char* label)
{
    if (validate && value.isNull())
        throw OutOfRangeException(PleaseSetMessage(objectName, label));
    field.value = std::move(value);
    data.MarkSet(bit);
}

/// List append: an element without data is refused in validation mode.
/// The element is copied (or moved, for elements the readers built).
template <typename Data, typename T, typename V>
void Append(Data& data, ListField<T>& field, int bit, V&& element, bool validate,
            const QString& objectName, const char* elementClass)
{
    if (validate && !element.HasData())
        throw IncompleteDefinitionException(AppendRefusedMessage(objectName, elementClass));
    field.list.append(std::forward<V>(element));
    data.MarkSet(bit);
}

/// Appends an element that a reader built and no longer needs. It is moved
/// into the list rather than copied, and then given exactly what a copy
/// would have: its own validation flag handed down, and no logger.
template <typename Data, typename T>
void AppendRead(Data& data, ListField<T>& field, int bit, T&& element, bool validate,
                const QString& objectName, const char* elementClass)
{
    Append(data, field, bit, std::move(element), validate, objectName, elementClass);
    const T& added = field.list.last();
    added.SetValidate(added.GetValidate());
    added.SetLogger(nullptr);
}

/// operator== of two records, member by member. A scalar member agrees when
/// it is set in both objects with equal values, or set in neither (the
/// values of unset members are not compared); an object without a record has
/// every member unset. Lists are compared pairwise in order, after both
/// objects have been initialised.
template <typename Data>
class Comparison
{
public:
    Comparison(QSharedDataPointer<Data>& here, QSharedDataPointer<Data>& there)
        : m_here(here)
        , m_there(there)
    {
    }

    template <typename Field>
    bool Scalar(int bit, Field Data::*field) const
    {
        const bool setHere = m_here && m_here->IsSet(bit);
        const bool setThere = m_there && m_there->IsSet(bit);
        return setHere == setThere && (!setHere || ((*m_here).*field).value == ((*m_there).*field).value);
    }

    template <typename T>
    bool List(ListField<T> Data::*field) const
    {
        return ((*m_here).*field).list == ((*m_there).*field).list;
    }

private:
    QSharedDataPointer<Data>& m_here;
    QSharedDataPointer<Data>& m_there;
};

/// ResetToDefault() of an enumeration member: the default is applied
/// through the setter when it has one and it is valid.
template <typename Data, typename E, typename Setter>
void ApplyEnumDefault(const Data& data, const EnumField<E>& field, int bit,
                      const EnumNameTable& table, Setter&& set)
{
    if (data.m_defaultSetFlags.testBit(bit) && table.Contains(field.defaultValue))
        set(field.defaultValue);
}

/// ResetToDefault() of a string member: a non-null default is applied.
template <typename Data, typename Setter>
void ApplyTextDefault(const Data& data, const TextField& field, int bit, Setter&& set)
{
    if (data.m_defaultSetFlags.testBit(bit) && !field.defaultValue.isNull())
        set(QString(field.defaultValue));
}

} // namespace Framework
} // namespace TORVIXML

// The operations every settings class has in the same form: identity,
// construction, copy (the copy constructor takes the source's validation
// flag and, through SetValidate, a private copy of its record), assignment
// (shares the record; flag and logger stay the target's, also when the
// source is a temporary), the move constructor (used by containers to
// relocate elements and by the readers to hand over what they read; it
// carries everything along, and the source keeps its object name), the
// duplicating constructor (an exact duplicate with a record of its own, for
// the lists of a record that is being copied), the reset and the type that
// cannot be changed.
#define TORVIXML_VALUE_CLASS(Class)                                                            \
    qint64 Class::GetId() { return id; }                                                       \
    Class::Class()                                                                             \
    {                                                                                          \
        SetObjectName(QStringLiteral(#Class));                                                 \
        m_classId = id;                                                                        \
    }                                                                                          \
    Class::Class(const Class& other)                                                           \
        : IRGObject(other.GetObjectType())                                                     \
        , d(other.d)                                                                           \
    {                                                                                          \
        SetObjectName(QStringLiteral(#Class));                                                 \
        m_classId = id;                                                                        \
        SetValidate(other.GetValidate());                                                      \
        /* The record was duplicated whole, element loggers included; the */                   \
        /* copy takes none of the source's, so its own goes down the tree. */                  \
        SetLogger(GetLogger());                                                                \
    }                                                                                          \
    Class::Class(Class&& other) noexcept                                                       \
        : IRGObject(std::move(other))                                                          \
        , d(std::move(other.d))                                                                \
    {                                                                                          \
        /* The source stays an object of its class: the XML readers move */                    \
        /* their work element into the list and read the next child into it. */                \
        other.SetObjectName(QStringLiteral(#Class));                                           \
    }                                                                                          \
    Class::Class(Framework::CloneTag, const Class& other)                                      \
        : IRGObject(other)                                                                     \
        , d(other.d)                                                                           \
    {                                                                                          \
        d.detach();                                                                            \
    }                                                                                          \
    Class& Class::operator=(const Class& other)                                                \
    {                                                                                          \
        d = other.d;                                                                           \
        return *this;                                                                          \
    }                                                                                          \
    Class& Class::operator=(Class&& other) noexcept                                            \
    {                                                                                          \
        /* Like the copy assignment: only the data moves, */                                   \
        /* flag, logger, name and type stay the target's. */                                   \
        if (this != &other)                                                                    \
            d = std::move(other.d);                                                            \
        return *this;                                                                          \
    }                                                                                          \
    Class::~Class() = default;                                                                 \
    bool Class::operator!=(const Class& other) const { return !(*this == other); }             \
    bool Class::IsInitialized() const                                                          \
    {                                                                                          \
        d.detach();                                                                            \
        return bool(d);                                                                        \
    }                                                                                          \
    void Class::Reset()                                                                        \
    {                                                                                          \
        if (!d)                                                                                \
            return;                                                                            \
        d->ClearSetFlags();                                                                    \
        ConstNoClearReset();                                                                   \
    }                                                                                          \
    void Class::Check() const { Check(false); }                                                \
    void Class::SetObjectType(REPORTGENERATOR::ObjectTypes) {}                                 \
    std::unique_ptr<REPORTGENERATOR::IRGObject> Class::CreateEmpty() const                     \
    {                                                                                          \
        /* Without values, but with this object's defaults and invalid */                       \
        /* values, which decide what a read stores. */                                         \
        auto empty = std::make_unique<Class>();                                                \
        if (d) {                                                                               \
            const Framework::ElementsLeftOut elementsLeftOut;                                  \
            empty->d = new Class##Data(*d);                                                    \
        }                                                                                      \
        empty->Reset();                                                                        \
        return empty;                                                                          \
    }                                                                                          \
    void Class::TakeContent(REPORTGENERATOR::IRGObject& source)                                \
    {                                                                                          \
        if (Class* read = dynamic_cast<Class*>(&source))                                       \
            *this = std::move(*read);                                                          \
    }

// What every member has, whatever its kind: the set test, the member's reset
// (CLEAR puts the value back), and the default, of type T in field DEFAULT.
#define TORVIXML_MEMBER_BASICS(Class, Member, BIT, CLEAR, T, DEFAULT)                          \
    bool Class::Is##Member##Set() const { return d && d->IsSet(BIT); }                         \
    void Class::Reset##Member()                                                                \
    {                                                                                          \
        if (!d)                                                                                \
            return;                                                                            \
        d->MarkUnset(BIT);                                                                     \
        CLEAR;                                                                                 \
    }                                                                                          \
    void Class::SetDefault##Member(const T& value)                                             \
    {                                                                                          \
        InitData();                                                                            \
        d->DEFAULT = value;                                                                    \
        d->m_defaultSetFlags.setBit(BIT);                                                      \
    }                                                                                          \
    const T& Class::GetDefault##Member() const                                                 \
    {                                                                                          \
        InitData();                                                                            \
        return d->DEFAULT;                                                                     \
    }

// The accessor family of an enumeration member. Member is both the member's
// and its enumeration type's name; FIELD is the record's EnumField, BIT its
// flag, TABLE an expression giving its EnumNameTable.
#define TORVIXML_ENUM_MEMBER(Class, Member, FIELD, BIT, TABLE)                                 \
    TORVIXML_MEMBER_BASICS(Class, Member, BIT, d->FIELD.value = d->FIELD.defaultValue,         \
                           Class::Member, FIELD.defaultValue)                                  \
    void Class::SetInvalid##Member(const Member& value)                                        \
    {                                                                                          \
        InitData();                                                                            \
        d->FIELD.invalid = value;                                                              \
    }                                                                                          \
    const Class::Member& Class::GetInvalid##Member() const                                     \
    {                                                                                          \
        InitData();                                                                            \
        return d->FIELD.invalid;                                                               \
    }                                                                                          \
    bool Class::IsValid##Member(const Member& value) const                                     \
    {                                                                                          \
        InitData();                                                                            \
        return TABLE.Contains(value);                                                          \
    }                                                                                          \
    const Class::Member& Class::Get##Member() const                                            \
    {                                                                                          \
        InitData();                                                                            \
        return d->FIELD.value;                                                                 \
    }                                                                                          \
    QString Class::Get##Member##AsString() const                                               \
    {                                                                                          \
        InitData();                                                                            \
        return Member##ToName(d->FIELD.value);                                                 \
    }                                                                                          \
    void Class::Set##Member(const Member& value)                                               \
    {                                                                                          \
        InitData();                                                                            \
        Framework::SetEnum(*d, d->FIELD, BIT, value, TABLE, GetValidate(), #Class, #FIELD);    \
    }                                                                                          \
    QString Class::Member##ToName(const Member& value) const                                   \
    {                                                                                          \
        InitData();                                                                            \
        return TABLE.Name(value);                                                              \
    }                                                                                          \
    Class::Member Class::NameTo##Member(const QString& name) const                             \
    {                                                                                          \
        const int index = TABLE.IndexOf(name);                                                 \
        if (index >= 0)                                                                        \
            return Member(index);                                                              \
        InitData();                                                                            \
        return d->FIELD.invalid;                                                               \
    }                                                                                          \
    QStringList Class::Get##Member##s() { return TABLE.Names(); }                              \
    QStringList Class::GetGUI##Member##s() { return TABLE.DisplayNames(); }

// The accessor family of a string member; Member is also its label in
// messages.
#define TORVIXML_TEXT_MEMBER(Class, Member, FIELD, BIT)                                        \
    TORVIXML_MEMBER_BASICS(Class, Member, BIT, d->FIELD.value = QString(), QString,            \
                           FIELD.defaultValue)                                                 \
    bool Class::IsValid##Member(const QString& value) const { return !value.isNull(); }        \
    QString Class::Get##Member() const                                                         \
    {                                                                                          \
        InitData();                                                                            \
        return d->FIELD.value;                                                                 \
    }                                                                                          \
    void Class::Set##Member(QString value)                                                     \
    {                                                                                          \
        InitData();                                                                            \
        Framework::SetText(*d, d->FIELD, BIT, std::move(value), GetValidate(), GetObjectName(), \
                           #Member);                                                           \
    }

// The accessor family of a list member; Member is also the element class.
#define TORVIXML_LIST_MEMBER(Class, Member, FIELD, BIT)                                        \
    TORVIXML_MEMBER_BASICS(Class, Member, BIT, d->FIELD.list.clear(), Member,                  \
                           FIELD.defaultElement)                                               \
    QVector<Member>& Class::Get##Member()                                                      \
    {                                                                                          \
        InitData();                                                                            \
        d->MarkSet(BIT);                                                                       \
        return d->FIELD.list;                                                                  \
    }                                                                                          \
    const QVector<Member>& Class::Get##Member() const                                          \
    {                                                                                          \
        InitData();                                                                            \
        return d->FIELD.list;                                                                  \
    }                                                                                          \
    void Class::Set##Member(const QVector<Member>& value)                                      \
    {                                                                                          \
        InitData();                                                                            \
        d->FIELD.Assign(value);                                                                \
        d->MarkSet(BIT);                                                                       \
    }                                                                                          \
    void Class::Append##Member(const Member& value)                                            \
    {                                                                                          \
        InitData();                                                                            \
        Framework::Append(*d, d->FIELD, BIT, value, GetValidate(), GetObjectName(), #Member);  \
    }                                                                                          \
    bool Class::IsValid##Member(const Member&) const { return true; }                          \
    bool Class::IsValid##Member(const QVector<Member>&) const { return true; }

// tr() and trUtf8() in the class's translation context.
#define TORVIXML_TRANSLATION_FUNCTIONS(Class, Context)                                         \
    QString Class::tr(const char* sourceText, const char* disambiguation)                      \
    {                                                                                          \
        return Framework::Translate(Context, sourceText, disambiguation, -1, false);           \
    }                                                                                          \
    QString Class::tr(const char* sourceText, const char* disambiguation, int n)               \
    {                                                                                          \
        return Framework::Translate(Context, sourceText, disambiguation, n, false);            \
    }                                                                                          \
    QString Class::trUtf8(const char* sourceText, const char* disambiguation)                  \
    {                                                                                          \
        return Framework::Translate(Context, sourceText, disambiguation, -1, true);            \
    }                                                                                          \
    QString Class::trUtf8(const char* sourceText, const char* disambiguation, int n)           \
    {                                                                                          \
        return Framework::Translate(Context, sourceText, disambiguation, n, true);             \
    }

#endif
