#include "TorviGuiModeSettings.h"
#include "TorviGuiModeSettingsData.h"

#include "Validation.h"

namespace TORVIXML {

void TorviGuiModeSettings::Check(bool flag) const
{
    Validation::Reapply(*this);
    InitData();
    if (IsDataOperationModeSet()) {
        for (const DataOperationMode& element : d->m_dataOperationMode.list)
            element.Check(flag);
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
