#include "GuiComponentSettings.h"
#include "GuiComponentSettingsData.h"

#include "MemberAccessors.h"
#include "QtCompat.h"

using REPORTGENERATOR::IRGObject;

namespace TORVIXML {

const Framework::EnumNameTable& GuiComponentUsageNames()
{
    static const char* const names[] = {"AVAILABLE", "DEFAULT_DISPLAY"};
    static const Framework::EnumNameTable s_guiComponentUsageNames(names);
    return s_guiComponentUsageNames;
}

const Framework::EnumNameTable& DockWidgetLocationNames()
{
    static const char* const names[] = {
        "LeftDockWidgetArea",   "RightDockWidgetArea",     "TopDockWidgetArea", "BottomDockWidgetArea",
        "CenterDockWidgetArea", "FloatingDockWidgetArea ", "NoDockWidgetArea"};
    static const Framework::EnumNameTable s_dockWidgetLocationNames(names);
    return s_dockWidgetLocationNames;
}

namespace {
using Data = GuiComponentSettingsData;
}

TORVIXML_VALUE_CLASS(GuiComponentSettings)
TORVIXML_ENUM_MEMBER(GuiComponentSettings, GuiComponentUsage, m_guiComponentUsage, Data::GuiComponentUsageBit,
                     GuiComponentUsageNames())
TORVIXML_ENUM_MEMBER(GuiComponentSettings, DockWidgetLocation, m_dockWidgetLocation, Data::DockWidgetLocationBit,
                     DockWidgetLocationNames())
TORVIXML_TEXT_MEMBER(GuiComponentSettings, Name, m_name, Data::NameBit)
TORVIXML_TRANSLATION_FUNCTIONS(GuiComponentSettings, "TORVIXML::GuiComponentSettings")

namespace {
// Each new record starts with these default flags.
const QBitArray& DefaultFlags()
{
    static const QBitArray defaultFlags =
        Framework::MakeFlags<3>({Data::GuiComponentUsageBit, Data::DockWidgetLocationBit});
    return defaultFlags;
}
} // namespace

void GuiComponentSettings::InitData() const
{
    if (!Framework::CreateRecord(d, DefaultFlags()))
        return;
    // The defaults are given by name.
    static const auto usageDefault = GuiComponentUsage(GuiComponentUsageNames().IndexOf(QLatin1String("AVAILABLE")));
    static const auto dockDefault = DockWidgetLocation(DockWidgetLocationNames().IndexOf(QLatin1String("NoDockWidgetArea")));
    d->m_guiComponentUsage.defaultValue = usageDefault;
    d->m_dockWidgetLocation.defaultValue = dockDefault;
    ConstNoClearReset();
    SetValidate(GetValidate());
    SetLogger(GetLogger());
}

void GuiComponentSettings::ConstNoClearReset() const
{
    d->m_guiComponentUsage.value = d->m_guiComponentUsage.defaultValue;
    d->m_dockWidgetLocation.value = d->m_dockWidgetLocation.defaultValue;
    d->m_name.value = QString();
}

void GuiComponentSettings::ResetToDefault()
{
    InitData();
    Reset();
    Framework::ApplyEnumDefault(*d, d->m_guiComponentUsage, Data::GuiComponentUsageBit, GuiComponentUsageNames(),
                                [this](GuiComponentUsage v) { SetGuiComponentUsage(v); });
    Framework::ApplyEnumDefault(*d, d->m_dockWidgetLocation, Data::DockWidgetLocationBit, DockWidgetLocationNames(),
                                [this](DockWidgetLocation v) { SetDockWidgetLocation(v); });
    Framework::ApplyTextDefault(*d, d->m_name, Data::NameBit, [this](QString v) { SetName(std::move(v)); });
}

bool GuiComponentSettings::HasData() const
{
    return d && d->IsSet(Data::GuiComponentUsageBit) && d->IsSet(Data::DockWidgetLocationBit)
        && !d->m_name.value.isNull();
}

bool GuiComponentSettings::AnyData() const
{
    return d
        && (d->IsSet(Data::GuiComponentUsageBit) || d->IsSet(Data::DockWidgetLocationBit)
            || !d->m_name.value.isNull());
}

bool GuiComponentSettings::operator==(const GuiComponentSettings& other) const
{
    if (!d && !other.d)
        return true;
    const Framework::Comparison<Data> compare(d, other.d);
    return compare.Scalar(Data::GuiComponentUsageBit, &Data::m_guiComponentUsage)
        && compare.Scalar(Data::DockWidgetLocationBit, &Data::m_dockWidgetLocation)
        && compare.Scalar(Data::NameBit, &Data::m_name);
}

} // namespace TORVIXML
