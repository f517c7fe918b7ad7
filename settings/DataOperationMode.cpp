#include "DataOperationMode.h"
#include "DataOperationModeData.h"

#include "MemberAccessors.h"

using REPORTGENERATOR::IRGObject;

namespace TORVIXML {

namespace {
using Data = DataOperationModeData;
}

TORVIXML_VALUE_CLASS(DataOperationMode)
TORVIXML_LIST_MEMBER(DataOperationMode, GuiComponentSettings, m_guiComponentSettings, Data::GuiComponentSettingsBit)
TORVIXML_TEXT_MEMBER(DataOperationMode, Name, m_name, Data::NameBit)

void DataOperationMode::InitData() const
{
    if (!Framework::CreateRecord(d))
        return;
    // No enumeration member, so no default to set.
    ConstNoClearReset();
    SetValidate(GetValidate());
    SetLogger(GetLogger());
}

void DataOperationMode::ConstNoClearReset() const
{
    d->m_guiComponentSettings.list.clear();
    d->m_name.value = QString();
}

void DataOperationMode::ResetToDefault()
{
    InitData();
    Reset();
    Framework::ApplyTextDefault(*d, d->m_name, Data::NameBit, [this](QString v) { SetName(std::move(v)); });
}

bool DataOperationMode::HasData() const
{
    return d && !d->m_name.value.isNull();
}

bool DataOperationMode::AnyData() const
{
    return d && (!d->m_guiComponentSettings.list.isEmpty() || !d->m_name.value.isNull());
}

bool DataOperationMode::operator==(const DataOperationMode& other) const
{
    if (!d && !other.d)
        return true;
    const Framework::Comparison<Data> compare(d, other.d);
    if (!compare.Scalar(Data::NameBit, &Data::m_name))
        return false;
    InitData();
    other.InitData();
    return compare.List(&Data::m_guiComponentSettings);
}

void DataOperationMode::AppendRead(GuiComponentSettings&& element)
{
    InitData();
    Framework::AppendRead(*d, d->m_guiComponentSettings, Data::GuiComponentSettingsBit, std::move(element),
                          GetValidate(), GetObjectName(), "GuiComponentSettings");
}

} // namespace TORVIXML
