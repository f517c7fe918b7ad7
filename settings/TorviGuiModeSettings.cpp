#include "TorviGuiModeSettings.h"
#include "TorviGuiModeSettingsData.h"

#include "MemberAccessors.h"

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
using Data = TorviGuiModeSettingsData;
}

TORVIXML_VALUE_CLASS(TorviGuiModeSettings)
TORVIXML_LIST_MEMBER(TorviGuiModeSettings, DataOperationMode, m_dataOperationMode, Data::DataOperationModeBit)
TORVIXML_ENUM_MEMBER(TorviGuiModeSettings, OperationModeHandler, m_operationModeHandler,
                     Data::OperationModeHandlerBit, OperationModeHandlerNames())
TORVIXML_TRANSLATION_FUNCTIONS(TorviGuiModeSettings, "TORVIXML::TorviGuiModeSettings")

namespace {
// Each new record starts with these default flags.
const QBitArray& DefaultFlags()
{
    static const QBitArray defaultFlags = Framework::MakeFlags<2>({Data::OperationModeHandlerBit});
    return defaultFlags;
}
} // namespace

void TorviGuiModeSettings::InitData() const
{
    if (!Framework::CreateRecord(d, DefaultFlags()))
        return;
    // The default handler is given by name.
    static const auto handlerDefault =
        OperationModeHandler(OperationModeHandlerNames().IndexOf(QLatin1String("TX470ManagementComponent")));
    d->m_operationModeHandler.defaultValue = handlerDefault;
    ConstNoClearReset();
    SetValidate(GetValidate());
    SetLogger(GetLogger());
}

void TorviGuiModeSettings::ConstNoClearReset() const
{
    d->m_dataOperationMode.list.clear();
    d->m_operationModeHandler.value = d->m_operationModeHandler.defaultValue;
}

void TorviGuiModeSettings::ResetToDefault()
{
    InitData();
    Reset();
    Framework::ApplyEnumDefault(*d, d->m_operationModeHandler, Data::OperationModeHandlerBit,
                                OperationModeHandlerNames(),
                                [this](OperationModeHandler v) { SetOperationModeHandler(v); });
}

bool TorviGuiModeSettings::HasData() const
{
    return d && d->IsSet(Data::OperationModeHandlerBit);
}

bool TorviGuiModeSettings::AnyData() const
{
    return d && (!d->m_dataOperationMode.list.isEmpty() || d->IsSet(Data::OperationModeHandlerBit));
}

bool TorviGuiModeSettings::operator==(const TorviGuiModeSettings& other) const
{
    if (!d && !other.d)
        return true;
    const Framework::Comparison<Data> compare(d, other.d);
    if (!compare.Scalar(Data::OperationModeHandlerBit, &Data::m_operationModeHandler))
        return false;
    InitData();
    other.InitData();
    return compare.List(&Data::m_dataOperationMode);
}

void TorviGuiModeSettings::AppendRead(DataOperationMode&& element)
{
    InitData();
    Framework::AppendRead(*d, d->m_dataOperationMode, Data::DataOperationModeBit, std::move(element), GetValidate(),
                          GetObjectName(), "DataOperationMode");
}

} // namespace TORVIXML
