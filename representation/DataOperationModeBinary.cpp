#include "DataOperationMode.h"
#include "DataOperationModeData.h"

#include "BinaryFrame.h"
#include "Validation.h"

// Member records, in writing order: Name (text), then the
// GuiComponentSettings list (only when it holds elements).

namespace TORVIXML {

namespace {
enum MemberId : qint32 {
    NameMember = 1490308454,
    GuiComponentSettingsMember = -1059801328
};
}

TORVIXML_BINARY_WRITE_ENTRY(DataOperationMode)

void DataOperationMode::WriteBinaryFrame(QDataStream& stream, int id, bool writeId) const
{
    InitData();
    const bool prepared = Validation::ElementsPrepared(GetValidate(), IsGuiComponentSettingsSet());
    // UTF-8 has no form for an unpaired surrogate: refused, not replaced.
    RequireUtf8Text(d->m_name.value, "Name");
    Binary::FrameWriter frame(stream, id, writeId);
    frame.Text(NameMember, d->m_name.value);
    frame.List(GuiComponentSettingsMember, d->m_guiComponentSettings.list, [&](const GuiComponentSettings& element) {
        if (prepared)
            element.WriteBinaryFrame(stream, GuiComponentSettingsMember, false);
        else
            element.GetBinary(stream, GuiComponentSettingsMember, false);
    });
    frame.Finish();
}

void DataOperationMode::SetBinary(QDataStream& stream, int length)
{
    Validation::Reapply(*this);
    InitData();
    Binary::ReadRecords(*this, stream, length, [&](Binary::Source& in, qint32 memberId, qint32 recordLength) {
        switch (memberId) {
        case NameMember:
            SetName(Binary::ReadText(in));
            return true;
        case GuiComponentSettingsMember:
            Binary::ReadList(*this, in, recordLength, d->m_guiComponentSettings.list,
                             [this](GuiComponentSettings&& element) { AppendRead(std::move(element)); });
            return true;
        default:
            return false;
        }
    });
}

} // namespace TORVIXML
