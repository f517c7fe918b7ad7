#include "TorviGuiModeSettings.h"
#include "TorviGuiModeSettingsData.h"

#include "BinaryFrame.h"
#include "Validation.h"

// Member records, in writing order: the DataOperationMode list (only when it
// holds elements), then OperationModeHandler (its name as text).

namespace TORVIXML {

namespace {
enum MemberId : qint32 {
    DataOperationModeMember = -1785428698,
    OperationModeHandlerMember = 1861080544
};
}

TORVIXML_BINARY_WRITE_ENTRY(TorviGuiModeSettings)

void TorviGuiModeSettings::WriteBinaryFrame(QDataStream& stream, int id, bool writeId) const
{
    InitData();
    const bool prepared = Validation::ElementsPrepared(GetValidate(), IsDataOperationModeSet());
    Binary::FrameWriter frame(stream, id, writeId);
    frame.List(DataOperationModeMember, d->m_dataOperationMode.list, [&](const DataOperationMode& element) {
        if (prepared)
            element.WriteBinaryFrame(stream, DataOperationModeMember, false);
        else
            element.GetBinary(stream, DataOperationModeMember, false);
    });
    frame.Name(OperationModeHandlerMember, OperationModeHandlerNames().Utf8Name(d->m_operationModeHandler.value));
    frame.Finish();
}

void TorviGuiModeSettings::SetBinary(QDataStream& stream, int length)
{
    Validation::Reapply(*this);
    InitData();
    Binary::ReadRecords(*this, stream, length, [&](Binary::Source& in, qint32 memberId, qint32 recordLength) {
        switch (memberId) {
        case DataOperationModeMember:
            Binary::ReadList(*this, in, recordLength, d->m_dataOperationMode.list,
                             [this](DataOperationMode&& element) { AppendRead(std::move(element)); });
            return true;
        case OperationModeHandlerMember: {
            QString text;
            const int value = Binary::ReadName(in, OperationModeHandlerNames(), text);
            SetOperationModeHandler(value >= 0 ? OperationModeHandler(value) : NameToOperationModeHandler(text));
            return true;
        }
        default:
            return false;
        }
    });
}

} // namespace TORVIXML
