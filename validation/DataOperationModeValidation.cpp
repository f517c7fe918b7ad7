#include "DataOperationMode.h"
#include "DataOperationModeData.h"

#include "Validation.h"

namespace TORVIXML {

void DataOperationMode::Check(bool flag) const
{
    Validation::Reapply(*this);
    CheckMembers(flag);
}

void DataOperationMode::CheckMembers(bool flag) const
{
    // The elements hold this object's flag and logger already.
    InitData();
    if (IsGuiComponentSettingsSet()) {
        for (const GuiComponentSettings& element : d->m_guiComponentSettings.list)
            element.CheckMembers(flag);
    }
    Validation::Require(*this, IsNameSet() && !d->m_name.value.isNull(), "Name");
}

void DataOperationMode::SetValidate(bool validate) const
{
    IRGObject::SetValidate(validate);
    if (d)
        Validation::HandDownValidate(d->m_guiComponentSettings.list, validate);
}

void DataOperationMode::SetLogger(std::shared_ptr<REPORTGENERATOR::Logger> logger) const
{
    IRGObject::SetLogger(logger);
    if (d)
        Validation::HandDownLogger(d->m_guiComponentSettings.list, logger);
}

} // namespace TORVIXML
