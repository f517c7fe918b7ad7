#include "SettingsClasses.h"

#include "DataOperationModeData.h"
#include "GuiComponentSettingsData.h"
#include "TorviGuiModeSettingsData.h"

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

} // namespace

QVector<ClassDescription> SettingsClasses()
{
    return {Describe<TorviGuiModeSettings>(), Describe<DataOperationMode>(), Describe<GuiComponentSettings>()};
}

} // namespace TORVIXML
