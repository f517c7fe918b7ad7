#include "TorviGuiModeSettings.h"
#include "TorviGuiModeSettingsData.h"

#include "Validation.h"

namespace TORVIXML {

TORVIXML_CHECK_ENTRY(TorviGuiModeSettings)
TORVIXML_HAND_DOWN(TorviGuiModeSettings, m_dataOperationMode)

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

} // namespace TORVIXML
