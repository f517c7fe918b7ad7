#ifndef TORVIXML_DATAOPERATIONMODEDATA_H
#define TORVIXML_DATAOPERATIONMODEDATA_H

#include "DataOperationMode.h"
#include "GuiComponentSettingsData.h"

#include "MemberRecord.h"
#include "MemberTable.h"

namespace TORVIXML {

/// The member values of a DataOperationMode.
class DataOperationModeData : public Framework::Record<2>
{
public:
    Framework::ListField<GuiComponentSettings> m_guiComponentSettings;
    Framework::TextField m_name;
};

/// The members of DataOperationMode, in member order (see MemberTable.h).
template <>
struct Framework::Members<DataOperationMode>
{
    using Class = DataOperationMode;
    using Data = DataOperationModeData;
    static constexpr const char* ClassName = "DataOperationMode";

    //        name                    bit  field                          XML form                binary id    write order
    static constexpr ListMember<Data, TORVIXML::GuiComponentSettings> GuiComponentSettings{
              "GuiComponentSettings", 0,   &Data::m_guiComponentSettings, XmlForm::ChildElements, -1059801328, 1};
    static constexpr TextMember<Data> Name{
              "Name",                 1,   &Data::m_name,                 XmlForm::Attribute,     1490308454,  0};

    static constexpr auto Rows() { return std::tie(GuiComponentSettings, Name); }
};

} // namespace TORVIXML

#endif
