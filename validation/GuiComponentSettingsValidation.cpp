#include "GuiComponentSettings.h"
#include "GuiComponentSettingsData.h"

#include "Validation.h"

namespace TORVIXML {

void GuiComponentSettings::Check(bool) const
{
    Validation::Reapply(*this);
    InitData();
    Validation::Require(*this, IsGuiComponentUsageSet() && IsValidGuiComponentUsage(GetGuiComponentUsage()),
                        "GuiComponentUsage");
    Validation::Require(*this, IsDockWidgetLocationSet() && IsValidDockWidgetLocation(GetDockWidgetLocation()),
                        "DockWidgetLocation");
    Validation::Require(*this, IsNameSet() && !d->m_name.value.isNull(), "Name");
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
