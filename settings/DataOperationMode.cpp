#include "DataOperationMode.h"
#include "DataOperationModeData.h"

#include "BinaryForm.h"
#include "MemberState.h"
#include "Validation.h"
#include "XmlForm.h"

using REPORTGENERATOR::IRGObject;

namespace TORVIXML {

namespace {
using Members = Framework::Members<DataOperationMode>;
}

// Identity and special members.

qint64 DataOperationMode::GetId()
{
    return id;
}

DataOperationMode::DataOperationMode()
{
    SetObjectName(QStringLiteral("DataOperationMode"));
    m_classId = id;
}

// The source's type and validation flag, not its logger. Handing the flag
// over through SetValidate makes the shared record this object's own; its
// copy duplicates the elements whole, so this object's own logger (none)
// is then handed down to them.
DataOperationMode::DataOperationMode(const DataOperationMode& other)
    : IRGObject(other.GetObjectType())
    , d(other.d)
{
    SetObjectName(QStringLiteral("DataOperationMode"));
    m_classId = id;
    SetValidate(other.GetValidate());
    SetLogger(GetLogger());
}

// Everything moves, flag and logger included; the source keeps its name and
// is left without data. Containers move elements when they grow.
DataOperationMode::DataOperationMode(DataOperationMode&& other) noexcept
    : IRGObject(std::move(other))
    , d(std::move(other.d))
{
    other.SetObjectName(QStringLiteral("DataOperationMode"));
}

// Shares the source's record; flag, logger, name and type stay this
// object's own.
DataOperationMode& DataOperationMode::operator=(const DataOperationMode& other)
{
    d = other.d;
    return *this;
}

DataOperationMode& DataOperationMode::operator=(DataOperationMode&& other) noexcept
{
    if (this != &other)
        d = std::move(other.d);
    return *this;
}

DataOperationMode::~DataOperationMode() = default;

// Lifecycle.

bool DataOperationMode::operator==(const DataOperationMode& other) const { return Framework::Equal(*this, other); }
bool DataOperationMode::operator!=(const DataOperationMode& other) const { return !(*this == other); }
bool DataOperationMode::IsInitialized() const { return Framework::IsInitialized(*this); }
bool DataOperationMode::HasData() const { return Framework::HasData(*this); }
bool DataOperationMode::AnyData() const { return Framework::AnyData(*this); }
void DataOperationMode::Reset() { Framework::Reset(*this); }
std::unique_ptr<IRGObject> DataOperationMode::CreateEmpty() const { return Framework::CreateEmpty(*this); }
void DataOperationMode::TakeContent(IRGObject& source) { Framework::TakeContent(*this, source); }
void DataOperationMode::ResetToDefault() { Framework::ResetToDefault(*this); }
void DataOperationMode::InitData() const { Framework::InitRecord(*this); }
void DataOperationMode::ConstNoClearReset() const { Framework::ClearValues<DataOperationMode>(*d); }

// GuiComponentSettings.

bool DataOperationMode::IsGuiComponentSettingsSet() const { return Framework::IsSet(*this, Members::GuiComponentSettings); }
void DataOperationMode::ResetGuiComponentSettings() { Framework::ResetMember(*this, Members::GuiComponentSettings); }
void DataOperationMode::SetDefaultGuiComponentSettings(const GuiComponentSettings& value) { Framework::SetDefault(*this, Members::GuiComponentSettings, value); }
const GuiComponentSettings& DataOperationMode::GetDefaultGuiComponentSettings() const { return Framework::GetDefault(*this, Members::GuiComponentSettings); }
QVector<GuiComponentSettings>& DataOperationMode::GetGuiComponentSettings() { return Framework::GetForChange(*this, Members::GuiComponentSettings); }
const QVector<GuiComponentSettings>& DataOperationMode::GetGuiComponentSettings() const { return Framework::Get(*this, Members::GuiComponentSettings); }
void DataOperationMode::SetGuiComponentSettings(const QVector<GuiComponentSettings>& value) { Framework::Set(*this, Members::GuiComponentSettings, value); }
void DataOperationMode::AppendGuiComponentSettings(const GuiComponentSettings& value) { Framework::Append(*this, Members::GuiComponentSettings, value); }
bool DataOperationMode::IsValidGuiComponentSettings(const GuiComponentSettings&) const { return Framework::IsValid(Members::GuiComponentSettings); }
bool DataOperationMode::IsValidGuiComponentSettings(const QVector<GuiComponentSettings>&) const { return Framework::IsValid(Members::GuiComponentSettings); }

// Name.

bool DataOperationMode::IsNameSet() const { return Framework::IsSet(*this, Members::Name); }
void DataOperationMode::ResetName() { Framework::ResetMember(*this, Members::Name); }
void DataOperationMode::SetDefaultName(const QString& value) { Framework::SetDefault(*this, Members::Name, value); }
const QString& DataOperationMode::GetDefaultName() const { return Framework::GetDefault(*this, Members::Name); }
bool DataOperationMode::IsValidName(const QString& value) const { return Framework::IsValid(Members::Name, value); }
QString DataOperationMode::GetName() const { return Framework::Get(*this, Members::Name); }
void DataOperationMode::SetName(QString value) { Framework::Set(*this, Members::Name, std::move(value)); }

// Representations and validation.

void DataOperationMode::Check(bool flag) const { Validation::Check(*this, flag); }
void DataOperationMode::Check() const { Check(false); }
void DataOperationMode::GetXml(QXmlStreamWriter& writer) const { Xml::Write(*this, writer); }
bool DataOperationMode::GetBinary(QDataStream& stream, int id, bool writeId) const { return Binary::Write(*this, stream, id, writeId); }
void DataOperationMode::SetBinary(QDataStream& stream, int length) { Binary::Read(*this, stream, length); }
void DataOperationMode::ProcessXml(QXmlStreamReader& reader) { Xml::Read(*this, reader); }
void DataOperationMode::ProcessXmlStartElement(QXmlStreamReader& reader) { Xml::ReadChild(*this, reader); }
void DataOperationMode::SetValidate(bool validate) const { Validation::SetValidate(*this, validate); }
void DataOperationMode::SetLogger(std::shared_ptr<REPORTGENERATOR::Logger> logger) const { Validation::SetLogger(*this, logger); }
void DataOperationMode::SetObjectType(REPORTGENERATOR::ObjectTypes) {}

} // namespace TORVIXML
