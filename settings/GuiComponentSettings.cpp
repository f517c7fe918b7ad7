#include "GuiComponentSettings.h"
#include "GuiComponentSettingsData.h"

#include "BinaryForm.h"
#include "MemberState.h"
#include "Validation.h"
#include "XmlForm.h"

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
using Members = Framework::Members<GuiComponentSettings>;
}

// Identity and special members.

qint64 GuiComponentSettings::GetId()
{
    return id;
}

GuiComponentSettings::GuiComponentSettings()
{
    SetObjectName(QStringLiteral("GuiComponentSettings"));
    m_classId = id;
}

// The source's type and validation flag, not its logger. Handing the flag
// over through SetValidate makes the shared record this object's own.
GuiComponentSettings::GuiComponentSettings(const GuiComponentSettings& other)
    : IRGObject(other.GetObjectType())
    , d(other.d)
{
    SetObjectName(QStringLiteral("GuiComponentSettings"));
    m_classId = id;
    SetValidate(other.GetValidate());
}

// Everything moves, flag and logger included; the source keeps its name and
// is left without data. Containers move elements when they grow.
GuiComponentSettings::GuiComponentSettings(GuiComponentSettings&& other) noexcept
    : IRGObject(std::move(other))
    , d(std::move(other.d))
{
    other.SetObjectName(QStringLiteral("GuiComponentSettings"));
}

// Shares the source's record; flag, logger, name and type stay this
// object's own.
GuiComponentSettings& GuiComponentSettings::operator=(const GuiComponentSettings& other)
{
    d = other.d;
    return *this;
}

GuiComponentSettings& GuiComponentSettings::operator=(GuiComponentSettings&& other) noexcept
{
    if (this != &other)
        d = std::move(other.d);
    return *this;
}

GuiComponentSettings::~GuiComponentSettings() = default;

// Lifecycle.

bool GuiComponentSettings::operator==(const GuiComponentSettings& other) const { return Framework::Equal(*this, other); }
bool GuiComponentSettings::operator!=(const GuiComponentSettings& other) const { return !(*this == other); }
bool GuiComponentSettings::IsInitialized() const { return Framework::IsInitialized(*this); }
bool GuiComponentSettings::HasData() const { return Framework::HasData(*this); }
bool GuiComponentSettings::AnyData() const { return Framework::AnyData(*this); }
void GuiComponentSettings::Reset() { Framework::Reset(*this); }
std::unique_ptr<IRGObject> GuiComponentSettings::CreateEmpty() const { return Framework::CreateEmpty(*this); }
void GuiComponentSettings::TakeContent(IRGObject& source) { Framework::TakeContent(*this, source); }
void GuiComponentSettings::ResetToDefault() { Framework::ResetToDefault(*this); }
void GuiComponentSettings::InitData() const { Framework::InitRecord(*this); }
void GuiComponentSettings::ConstNoClearReset() const { Framework::ClearValues<GuiComponentSettings>(*d); }

// GuiComponentUsage.

bool GuiComponentSettings::IsGuiComponentUsageSet() const { return Framework::IsSet(*this, Members::GuiComponentUsage); }
void GuiComponentSettings::ResetGuiComponentUsage() { Framework::ResetMember(*this, Members::GuiComponentUsage); }
void GuiComponentSettings::SetInvalidGuiComponentUsage(const GuiComponentUsage& value) { Framework::SetInvalid(*this, Members::GuiComponentUsage, value); }
const GuiComponentSettings::GuiComponentUsage& GuiComponentSettings::GetInvalidGuiComponentUsage() const { return Framework::GetInvalid(*this, Members::GuiComponentUsage); }
void GuiComponentSettings::SetDefaultGuiComponentUsage(const GuiComponentUsage& value) { Framework::SetDefault(*this, Members::GuiComponentUsage, value); }
bool GuiComponentSettings::IsValidGuiComponentUsage(const GuiComponentUsage& value) const { return Framework::IsValid(*this, Members::GuiComponentUsage, value); }
const GuiComponentSettings::GuiComponentUsage& GuiComponentSettings::GetDefaultGuiComponentUsage() const { return Framework::GetDefault(*this, Members::GuiComponentUsage); }
const GuiComponentSettings::GuiComponentUsage& GuiComponentSettings::GetGuiComponentUsage() const { return Framework::Get(*this, Members::GuiComponentUsage); }
QString GuiComponentSettings::GetGuiComponentUsageAsString() const { return Framework::GetAsString(*this, Members::GuiComponentUsage); }
void GuiComponentSettings::SetGuiComponentUsage(const GuiComponentUsage& value) { Framework::Set(*this, Members::GuiComponentUsage, value); }
QString GuiComponentSettings::GuiComponentUsageToName(const GuiComponentUsage& value) const { return Framework::ToName(*this, Members::GuiComponentUsage, value); }
GuiComponentSettings::GuiComponentUsage GuiComponentSettings::NameToGuiComponentUsage(const QString& name) const { return Framework::FromName(*this, Members::GuiComponentUsage, name); }
QStringList GuiComponentSettings::GetGuiComponentUsages() { return Framework::Names(Members::GuiComponentUsage); }
QStringList GuiComponentSettings::GetGUIGuiComponentUsages() { return Framework::DisplayNames(Members::GuiComponentUsage); }

// DockWidgetLocation.

bool GuiComponentSettings::IsDockWidgetLocationSet() const { return Framework::IsSet(*this, Members::DockWidgetLocation); }
void GuiComponentSettings::ResetDockWidgetLocation() { Framework::ResetMember(*this, Members::DockWidgetLocation); }
void GuiComponentSettings::SetInvalidDockWidgetLocation(const DockWidgetLocation& value) { Framework::SetInvalid(*this, Members::DockWidgetLocation, value); }
const GuiComponentSettings::DockWidgetLocation& GuiComponentSettings::GetInvalidDockWidgetLocation() const { return Framework::GetInvalid(*this, Members::DockWidgetLocation); }
void GuiComponentSettings::SetDefaultDockWidgetLocation(const DockWidgetLocation& value) { Framework::SetDefault(*this, Members::DockWidgetLocation, value); }
bool GuiComponentSettings::IsValidDockWidgetLocation(const DockWidgetLocation& value) const { return Framework::IsValid(*this, Members::DockWidgetLocation, value); }
const GuiComponentSettings::DockWidgetLocation& GuiComponentSettings::GetDefaultDockWidgetLocation() const { return Framework::GetDefault(*this, Members::DockWidgetLocation); }
const GuiComponentSettings::DockWidgetLocation& GuiComponentSettings::GetDockWidgetLocation() const { return Framework::Get(*this, Members::DockWidgetLocation); }
QString GuiComponentSettings::GetDockWidgetLocationAsString() const { return Framework::GetAsString(*this, Members::DockWidgetLocation); }
void GuiComponentSettings::SetDockWidgetLocation(const DockWidgetLocation& value) { Framework::Set(*this, Members::DockWidgetLocation, value); }
QString GuiComponentSettings::DockWidgetLocationToName(const DockWidgetLocation& value) const { return Framework::ToName(*this, Members::DockWidgetLocation, value); }
GuiComponentSettings::DockWidgetLocation GuiComponentSettings::NameToDockWidgetLocation(const QString& name) const { return Framework::FromName(*this, Members::DockWidgetLocation, name); }
QStringList GuiComponentSettings::GetDockWidgetLocations() { return Framework::Names(Members::DockWidgetLocation); }
QStringList GuiComponentSettings::GetGUIDockWidgetLocations() { return Framework::DisplayNames(Members::DockWidgetLocation); }

// Name.

bool GuiComponentSettings::IsNameSet() const { return Framework::IsSet(*this, Members::Name); }
void GuiComponentSettings::ResetName() { Framework::ResetMember(*this, Members::Name); }
void GuiComponentSettings::SetDefaultName(const QString& value) { Framework::SetDefault(*this, Members::Name, value); }
const QString& GuiComponentSettings::GetDefaultName() const { return Framework::GetDefault(*this, Members::Name); }
bool GuiComponentSettings::IsValidName(const QString& value) const { return Framework::IsValid(Members::Name, value); }
QString GuiComponentSettings::GetName() const { return Framework::Get(*this, Members::Name); }
void GuiComponentSettings::SetName(QString value) { Framework::Set(*this, Members::Name, std::move(value)); }

// Translation: source texts are UTF-8, so trUtf8() translates as tr() does.

QString GuiComponentSettings::trUtf8(const char* sourceText, const char* disambiguation, int n) { return tr(sourceText, disambiguation, n); }

// Representations and validation.

void GuiComponentSettings::Check(bool flag) const { Validation::Check(*this, flag); }
void GuiComponentSettings::Check() const { Check(false); }
void GuiComponentSettings::GetXml(QXmlStreamWriter& writer) const { Xml::Write(*this, writer); }
bool GuiComponentSettings::GetBinary(QDataStream& stream, int id, bool writeId) const { return Binary::Write(*this, stream, id, writeId); }
void GuiComponentSettings::SetBinary(QDataStream& stream, int length) { Binary::Read(*this, stream, length); }
void GuiComponentSettings::ProcessXml(QXmlStreamReader& reader) { Xml::Read(*this, reader); }
void GuiComponentSettings::ProcessXmlStartElement(QXmlStreamReader& reader) { Xml::ReadChild(*this, reader); }
void GuiComponentSettings::SetValidate(bool validate) const { Validation::SetValidate(*this, validate); }
void GuiComponentSettings::SetLogger(std::shared_ptr<REPORTGENERATOR::Logger> logger) const { Validation::SetLogger(*this, logger); }
void GuiComponentSettings::SetObjectType(REPORTGENERATOR::ObjectTypes) {}

} // namespace TORVIXML
