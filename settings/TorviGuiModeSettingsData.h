#ifndef TORVIXML_TORVIGUIMODESETTINGSDATA_H
#define TORVIXML_TORVIGUIMODESETTINGSDATA_H

#include "TorviGuiModeSettings.h"

#include "EnumNameTable.h"
#include "MemberRecord.h"

namespace TORVIXML {

/// The name table of OperationModeHandler, built on first use.
const Framework::EnumNameTable& OperationModeHandlerNames();

/// The members of a TorviGuiModeSettings, in member order.
class TorviGuiModeSettingsData : public Framework::Record<2>
{
public:
    enum Bits { DataOperationModeBit = 0, OperationModeHandlerBit = 1 };

    using Framework::Record<2>::Record;

    Framework::ListField<DataOperationMode> m_dataOperationMode;
    Framework::EnumField<TorviGuiModeSettings::OperationModeHandler> m_operationModeHandler;
};

} // namespace TORVIXML

#endif
