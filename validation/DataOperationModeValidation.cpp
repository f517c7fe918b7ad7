#include "DataOperationMode.h"
#include "DataOperationModeData.h"

#include "Validation.h"

namespace TORVIXML {

TORVIXML_CHECK_ENTRY(DataOperationMode)
TORVIXML_HAND_DOWN(DataOperationMode, m_guiComponentSettings)

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

} // namespace TORVIXML
