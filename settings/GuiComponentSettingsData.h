#ifndef TORVIXML_GUICOMPONENTSETTINGSDATA_H
#define TORVIXML_GUICOMPONENTSETTINGSDATA_H

#include "GuiComponentSettings.h"

#include "EnumNameTable.h"
#include "MemberRecord.h"

namespace TORVIXML {

/// The name tables of the two enumerations, built on first use.
const Framework::EnumNameTable& GuiComponentUsageNames();
const Framework::EnumNameTable& DockWidgetLocationNames();

/// The members of a GuiComponentSettings, in member order; the order fixes
/// each member's bit in the set flags and the default flags.
class GuiComponentSettingsData : public Framework::Record<3>
{
public:
    enum Bits { GuiComponentUsageBit = 0, DockWidgetLocationBit = 1, NameBit = 2 };

    using Framework::Record<3>::Record;

    Framework::EnumField<GuiComponentSettings::GuiComponentUsage> m_guiComponentUsage;
    Framework::EnumField<GuiComponentSettings::DockWidgetLocation> m_dockWidgetLocation;
    Framework::TextField m_name;
};

} // namespace TORVIXML

#endif
