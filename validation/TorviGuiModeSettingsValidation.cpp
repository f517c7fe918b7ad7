#include "TorviGuiModeSettings.h"
#include "TorviGuiModeSettingsData.h"

#include "Validation.h"

namespace TORVIXML {

void TorviGuiModeSettings::Check(bool flag) const
{
    Validation::Reapply(*this);
    CheckMembers(flag);
}

void TorviGuiModeSettings::CheckMembers(bool flag) const
{
    // The elements hold this object's flag and logger already.
    InitData();
    if (IsDataOperationModeSet()) {
        for (const DataOperationMode& element : d->m_dataOperationMode.list)
            element.CheckMembers(flag);
    }
    Validation::Require(*this,
                        IsOperationModeHandlerSet() && IsValidOperationModeHandler(GetOperationModeHandler()),
                        "OperationModeHandler");
}

void TorviGuiModeSettings::SetValidate(bool validate) const
{
    IRGObject::SetValidate(validate);
    if (d)
        Validation::HandDownValidate(d->m_dataOperationMode.list, validate);
}

void TorviGuiModeSettings::SetLogger(std::shared_ptr<REPORTGENERATOR::Logger> logger) const
{
    IRGObject::SetLogger(logger);
    if (d)
        Validation::HandDownLogger(d->m_dataOperationMode.list, logger);
}

} // namespace TORVIXML
