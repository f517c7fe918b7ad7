#ifndef TORVIXML_TORVIGUIMODESETTINGSDATA_H
#define TORVIXML_TORVIGUIMODESETTINGSDATA_H

#include "TorviGuiModeSettings.h"
#include "DataOperationModeData.h"

#include "EnumNameTable.h"
#include "MemberRecord.h"
#include "MemberTable.h"

namespace TORVIXML {

/// The name table of OperationModeHandler, built on first use.
const Framework::EnumNameTable& OperationModeHandlerNames();

/// The member values of a TorviGuiModeSettings.
class TorviGuiModeSettingsData : public Framework::Record<2>
{
public:
    Framework::ListField<DataOperationMode> m_dataOperationMode;
    Framework::EnumField<TorviGuiModeSettings::OperationModeHandler> m_operationModeHandler;
};

/// The members of TorviGuiModeSettings, in member order (see MemberTable.h).
template <>
struct Framework::Members<TorviGuiModeSettings>
{
    using Class = TorviGuiModeSettings;
    using Data = TorviGuiModeSettingsData;
    static constexpr const char* ClassName = "TorviGuiModeSettings";

    //        name                    bit  field                          field name                names                       default                     XML form                binary id    write order
    static constexpr ListMember<Data, TORVIXML::DataOperationMode> DataOperationMode{
              "DataOperationMode",    0,   &Data::m_dataOperationMode,                                                                                  XmlForm::ChildElements, -1785428698, 0};
    static constexpr EnumMember<Data, Class::OperationModeHandler> OperationModeHandler{
              "OperationModeHandler", 1,   &Data::m_operationModeHandler, "m_operationModeHandler", &OperationModeHandlerNames, "TX470ManagementComponent", XmlForm::TextElement,   1861080544,  1};

    static constexpr auto Rows() { return std::tie(DataOperationMode, OperationModeHandler); }
};

} // namespace TORVIXML

#endif
