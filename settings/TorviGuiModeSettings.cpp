#include "TorviGuiModeSettings.h"
#include "TorviGuiModeSettingsData.h"

#include "BinaryForm.h"
#include "MemberState.h"
#include "Validation.h"
#include "XmlForm.h"

using REPORTGENERATOR::IRGObject;

namespace TORVIXML {

const Framework::EnumNameTable& OperationModeHandlerNames()
{
    static const char* const names[] = {"TX470ManagementComponent", "PMR830ManagementComponent",
                                        "QLSManagementComponent", "VbkManagementComponent"};
    static const Framework::EnumNameTable s_operationModeHandlerNames(names);
    return s_operationModeHandlerNames;
}

namespace {
using Members = Framework::Members<TorviGuiModeSettings>;
}

// Identity and special members.

qint64 TorviGuiModeSettings::GetId()
{
    return id;
}

TorviGuiModeSettings::TorviGuiModeSettings()
{
    SetObjectName(QStringLiteral("TorviGuiModeSettings"));
    m_classId = id;
}

// The source's type and validation flag, not its logger. Handing the flag
// over through SetValidate makes the shared record this object's own; its
// copy duplicates the elements whole, so this object's own logger (none)
// is then handed down to them.
TorviGuiModeSettings::TorviGuiModeSettings(const TorviGuiModeSettings& other)
    : IRGObject(other.GetObjectType())
    , d(other.d)
{
    SetObjectName(QStringLiteral("TorviGuiModeSettings"));
    m_classId = id;
    SetValidate(other.GetValidate());
    SetLogger(GetLogger());
}

// Everything moves, flag and logger included; the source keeps its name and
// is left without data.
TorviGuiModeSettings::TorviGuiModeSettings(TorviGuiModeSettings&& other) noexcept
    : IRGObject(std::move(other))
    , d(std::move(other.d))
{
    other.SetObjectName(QStringLiteral("TorviGuiModeSettings"));
}

// Shares the source's record; flag, logger, name and type stay this
// object's own.
TorviGuiModeSettings& TorviGuiModeSettings::operator=(const TorviGuiModeSettings& other)
{
    d = other.d;
    return *this;
}

TorviGuiModeSettings& TorviGuiModeSettings::operator=(TorviGuiModeSettings&& other) noexcept
{
    if (this != &other)
        d = std::move(other.d);
    return *this;
}

TorviGuiModeSettings::~TorviGuiModeSettings() = default;

// Lifecycle.

bool TorviGuiModeSettings::operator==(const TorviGuiModeSettings& other) const { return Framework::Equal(*this, other); }
bool TorviGuiModeSettings::operator!=(const TorviGuiModeSettings& other) const { return !(*this == other); }
bool TorviGuiModeSettings::IsInitialized() const { return Framework::IsInitialized(*this); }
bool TorviGuiModeSettings::HasData() const { return Framework::HasData(*this); }
bool TorviGuiModeSettings::AnyData() const { return Framework::AnyData(*this); }
void TorviGuiModeSettings::Reset() { Framework::Reset(*this); }
std::unique_ptr<IRGObject> TorviGuiModeSettings::CreateEmpty() const { return Framework::CreateEmpty(*this); }
void TorviGuiModeSettings::TakeContent(IRGObject& source) { Framework::TakeContent(*this, source); }
void TorviGuiModeSettings::ResetToDefault() { Framework::ResetToDefault(*this); }
void TorviGuiModeSettings::InitData() const { Framework::InitRecord(*this); }
void TorviGuiModeSettings::ConstNoClearReset() const { Framework::ClearValues<TorviGuiModeSettings>(*d); }

// DataOperationMode.

bool TorviGuiModeSettings::IsDataOperationModeSet() const { return Framework::IsSet(*this, Members::DataOperationMode); }
void TorviGuiModeSettings::ResetDataOperationMode() { Framework::ResetMember(*this, Members::DataOperationMode); }
void TorviGuiModeSettings::SetDefaultDataOperationMode(const DataOperationMode& value) { Framework::SetDefault(*this, Members::DataOperationMode, value); }
const DataOperationMode& TorviGuiModeSettings::GetDefaultDataOperationMode() const { return Framework::GetDefault(*this, Members::DataOperationMode); }
QVector<DataOperationMode>& TorviGuiModeSettings::GetDataOperationMode() { return Framework::GetForChange(*this, Members::DataOperationMode); }
const QVector<DataOperationMode>& TorviGuiModeSettings::GetDataOperationMode() const { return Framework::Get(*this, Members::DataOperationMode); }
void TorviGuiModeSettings::SetDataOperationMode(const QVector<DataOperationMode>& value) { Framework::Set(*this, Members::DataOperationMode, value); }
void TorviGuiModeSettings::AppendDataOperationMode(const DataOperationMode& value) { Framework::Append(*this, Members::DataOperationMode, value); }
bool TorviGuiModeSettings::IsValidDataOperationMode(const DataOperationMode&) const { return Framework::IsValid(Members::DataOperationMode); }
bool TorviGuiModeSettings::IsValidDataOperationMode(const QVector<DataOperationMode>&) const { return Framework::IsValid(Members::DataOperationMode); }

// OperationModeHandler.

bool TorviGuiModeSettings::IsOperationModeHandlerSet() const { return Framework::IsSet(*this, Members::OperationModeHandler); }
void TorviGuiModeSettings::ResetOperationModeHandler() { Framework::ResetMember(*this, Members::OperationModeHandler); }
void TorviGuiModeSettings::SetInvalidOperationModeHandler(const OperationModeHandler& value) { Framework::SetInvalid(*this, Members::OperationModeHandler, value); }
const TorviGuiModeSettings::OperationModeHandler& TorviGuiModeSettings::GetInvalidOperationModeHandler() const { return Framework::GetInvalid(*this, Members::OperationModeHandler); }
void TorviGuiModeSettings::SetDefaultOperationModeHandler(const OperationModeHandler& value) { Framework::SetDefault(*this, Members::OperationModeHandler, value); }
const TorviGuiModeSettings::OperationModeHandler& TorviGuiModeSettings::GetDefaultOperationModeHandler() const { return Framework::GetDefault(*this, Members::OperationModeHandler); }
bool TorviGuiModeSettings::IsValidOperationModeHandler(const OperationModeHandler& value) const { return Framework::IsValid(*this, Members::OperationModeHandler, value); }
const TorviGuiModeSettings::OperationModeHandler& TorviGuiModeSettings::GetOperationModeHandler() const { return Framework::Get(*this, Members::OperationModeHandler); }
void TorviGuiModeSettings::SetOperationModeHandler(const OperationModeHandler& value) { Framework::Set(*this, Members::OperationModeHandler, value); }
QString TorviGuiModeSettings::GetOperationModeHandlerAsString() const { return Framework::GetAsString(*this, Members::OperationModeHandler); }
QString TorviGuiModeSettings::OperationModeHandlerToName(const OperationModeHandler& value) const { return Framework::ToName(*this, Members::OperationModeHandler, value); }
TorviGuiModeSettings::OperationModeHandler TorviGuiModeSettings::NameToOperationModeHandler(const QString& name) const { return Framework::FromName(*this, Members::OperationModeHandler, name); }
QStringList TorviGuiModeSettings::GetOperationModeHandlers() { return Framework::Names(Members::OperationModeHandler); }
QStringList TorviGuiModeSettings::GetGUIOperationModeHandlers() { return Framework::DisplayNames(Members::OperationModeHandler); }

// Translation: source texts are UTF-8, so trUtf8() translates as tr() does.

QString TorviGuiModeSettings::trUtf8(const char* sourceText, const char* disambiguation, int n) { return tr(sourceText, disambiguation, n); }

// Representations and validation.

void TorviGuiModeSettings::Check(bool flag) const { Validation::Check(*this, flag); }
void TorviGuiModeSettings::Check() const { Check(false); }
void TorviGuiModeSettings::GetXml(QXmlStreamWriter& writer) const { Xml::Write(*this, writer); }
bool TorviGuiModeSettings::GetBinary(QDataStream& stream, int id, bool writeId) const { return Binary::Write(*this, stream, id, writeId); }
void TorviGuiModeSettings::SetBinary(QDataStream& stream, int length) { Binary::Read(*this, stream, length); }
void TorviGuiModeSettings::ProcessXml(QXmlStreamReader& reader) { Xml::Read(*this, reader); }
void TorviGuiModeSettings::ProcessXmlStartElement(QXmlStreamReader& reader) { Xml::ReadChild(*this, reader); }
void TorviGuiModeSettings::SetValidate(bool validate) const { Validation::SetValidate(*this, validate); }
void TorviGuiModeSettings::SetLogger(std::shared_ptr<REPORTGENERATOR::Logger> logger) const { Validation::SetLogger(*this, logger); }
void TorviGuiModeSettings::SetObjectType(REPORTGENERATOR::ObjectTypes) {}

} // namespace TORVIXML
