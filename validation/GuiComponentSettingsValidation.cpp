#include "GuiComponentSettings.h"
#include "GuiComponentSettingsData.h"

#include "Validation.h"

namespace TORVIXML {

TORVIXML_CHECK_ENTRY(GuiComponentSettings)

void GuiComponentSettings::CheckMembers(bool) const
{
    InitData();
    // The record exists and is this object's own now: the members are read
    // from it directly rather than through accessors that would each make
    // sure of that again.
    const GuiComponentSettingsData& data = *d;
    Validation::Require(*this,
                        data.IsSet(GuiComponentSettingsData::GuiComponentUsageBit)
                            && GuiComponentUsageNames().Contains(data.m_guiComponentUsage.value),
                        "GuiComponentUsage");
    Validation::Require(*this,
                        data.IsSet(GuiComponentSettingsData::DockWidgetLocationBit)
                            && DockWidgetLocationNames().Contains(data.m_dockWidgetLocation.value),
                        "DockWidgetLocation");
    Validation::Require(*this, data.IsSet(GuiComponentSettingsData::NameBit) && !data.m_name.value.isNull(),
                        "Name");
}

void GuiComponentSettings::SetValidate(bool validate) const
{
    IRGObject::SetValidate(validate);
    // No lists to hand the flag to; the record is made the object's own.
    d.detach();
}

void GuiComponentSettings::SetLogger(std::shared_ptr<REPORTGENERATOR::Logger> logger) const
{
    IRGObject::SetLogger(std::move(logger));
}

} // namespace TORVIXML
