#ifndef TORVIXML_GUICOMPONENTSETTINGSDATA_H
#define TORVIXML_GUICOMPONENTSETTINGSDATA_H

#include "GuiComponentSettings.h"

#include "EnumNameTable.h"
#include "MemberRecord.h"
#include "MemberTable.h"

namespace TORVIXML {

/// The name tables of the two enumerations, built on first use.
const Framework::EnumNameTable& GuiComponentUsageNames();
const Framework::EnumNameTable& DockWidgetLocationNames();

/// The member values of a GuiComponentSettings.
class GuiComponentSettingsData : public Framework::Record<3>
{
public:
    Framework::EnumField<GuiComponentSettings::GuiComponentUsage> m_guiComponentUsage;
    Framework::EnumField<GuiComponentSettings::DockWidgetLocation> m_dockWidgetLocation;
    Framework::TextField m_name;
};

/// The members of GuiComponentSettings, in member order (see MemberTable.h).
template <>
struct Framework::Members<GuiComponentSettings>
{
    using Class = GuiComponentSettings;
    using Data = GuiComponentSettingsData;
    static constexpr const char* ClassName = "GuiComponentSettings";

    //        name                  bit  field                        field name              names                     default             XML form              binary id   write order
    static constexpr EnumMember<Data, Class::GuiComponentUsage> GuiComponentUsage{
              "GuiComponentUsage",  0,   &Data::m_guiComponentUsage,  "m_guiComponentUsage",  &GuiComponentUsageNames,  "AVAILABLE",        XmlForm::TextElement, 249323652,  1};
    static constexpr EnumMember<Data, Class::DockWidgetLocation> DockWidgetLocation{
              "DockWidgetLocation", 1,   &Data::m_dockWidgetLocation, "m_dockWidgetLocation", &DockWidgetLocationNames, "NoDockWidgetArea", XmlForm::TextElement, 388603748,  2};
    static constexpr TextMember<Data> Name{
              "Name",               2,   &Data::m_name,                                                                                   XmlForm::Attribute,   1490308454, 0};

    static constexpr auto Rows() { return std::tie(GuiComponentUsage, DockWidgetLocation, Name); }
};

} // namespace TORVIXML

#endif
