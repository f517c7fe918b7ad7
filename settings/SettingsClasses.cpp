#include "SettingsClasses.h"

#include "DataOperationModeData.h"
#include "GuiComponentSettingsData.h"
#include "TorviGuiModeSettingsData.h"

#include "MemberState.h"
#include "MemberTable.h"

namespace TORVIXML {

namespace {

template <typename Data, typename E>
void DescribeKind(MemberDescription& member, const Framework::EnumMember<Data, E>& row)
{
    member.kind = MemberDescription::Enumeration;
    member.enumerationNames = row.names().Names();
}
template <typename Data>
void DescribeKind(MemberDescription& member, const Framework::TextMember<Data>&)
{
    member.kind = MemberDescription::String;
}
template <typename Data, typename T>
void DescribeKind(MemberDescription& member, const Framework::ListMember<Data, T>&)
{
    member.kind = MemberDescription::List;
}

MemberDescription::XmlForm Describe(Framework::XmlForm form)
{
    switch (form) {
    case Framework::XmlForm::Attribute:
        return MemberDescription::Attribute;
    case Framework::XmlForm::TextElement:
        return MemberDescription::TextElement;
    case Framework::XmlForm::ChildElements:
        break;
    }
    return MemberDescription::ChildElements;
}

template <typename Class>
ClassDescription Describe()
{
    ClassDescription description;
    description.name = QLatin1String(Framework::Members<Class>::ClassName);
    description.id = Class::id;
    Framework::ForEachMember(Framework::Members<Class>::Rows(), [&](const auto& row) {
        MemberDescription member;
        member.name = QLatin1String(row.name);
        member.bit = row.bit;
        member.xmlForm = Describe(row.xml);
        member.binaryId = row.binaryId;
        member.writeOrder = row.writeOrder;
        DescribeKind(member, row);
        description.members.append(member);
    });
    return description;
}

// The index of a class in SettingsClasses().
template <typename Class>
constexpr int ClassIndex();
template <>
constexpr int ClassIndex<TorviGuiModeSettings>()
{
    return 0;
}
template <>
constexpr int ClassIndex<DataOperationMode>()
{
    return 1;
}
template <>
constexpr int ClassIndex<GuiComponentSettings>()
{
    return 2;
}

template <typename Class>
int Collect(const Class& object, QVector<ObjectValues>& tree);

template <typename Class, typename Data, typename E>
void ValueOf(MemberValue& value, const Class& object, const Framework::EnumMember<Data, E>& row, QVector<ObjectValues>&)
{
    value.value = Framework::Get(object, row);
    value.text = Framework::ToName(object, row, E(value.value));
}
template <typename Class, typename Data>
void ValueOf(MemberValue& value, const Class& object, const Framework::TextMember<Data>& row, QVector<ObjectValues>&)
{
    value.text = Framework::Get(object, row);
}
template <typename Class, typename Data, typename T>
void ValueOf(MemberValue& value, const Class& object, const Framework::ListMember<Data, T>& row,
             QVector<ObjectValues>& tree)
{
    for (const T& element : Framework::Get(object, row))
        value.elements.append(Collect(element, tree));
}

// Appends the object and, after it, its list elements; returns its index.
template <typename Class>
int Collect(const Class& object, QVector<ObjectValues>& tree)
{
    const int index = tree.size();
    tree.append(ObjectValues{ClassIndex<Class>(), {}});
    QVector<MemberValue> members;
    Framework::ForEachMember(Framework::Members<Class>::Rows(), [&](const auto& row) {
        MemberValue value;
        value.set = Framework::IsSet(object, row);
        ValueOf(value, object, row, tree);
        members.append(value);
    });
    tree[index].members = members;
    return index;
}

} // namespace

QVector<ClassDescription> SettingsClasses()
{
    return {Describe<TorviGuiModeSettings>(), Describe<DataOperationMode>(), Describe<GuiComponentSettings>()};
}

QVector<ObjectValues> SettingsValues(const TorviGuiModeSettings& root)
{
    QVector<ObjectValues> tree;
    Collect(root, tree);
    return tree;
}

} // namespace TORVIXML
