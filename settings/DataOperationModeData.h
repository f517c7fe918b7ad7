#ifndef TORVIXML_DATAOPERATIONMODEDATA_H
#define TORVIXML_DATAOPERATIONMODEDATA_H

#include "DataOperationMode.h"

#include "MemberRecord.h"

namespace TORVIXML {

/// The members of a DataOperationMode, in member order.
class DataOperationModeData : public Framework::Record<2>
{
public:
    enum Bits { GuiComponentSettingsBit = 0, NameBit = 1 };

    Framework::ListField<GuiComponentSettings> m_guiComponentSettings;
    Framework::TextField m_name;
};

} // namespace TORVIXML

#endif
