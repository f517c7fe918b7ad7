#include "GuiComponentSettings.h"
#include "GuiComponentSettingsData.h"

#include "BinaryFrame.h"
#include "Validation.h"

// Member records, in writing order: Name (text), GuiComponentUsage and
// DockWidgetLocation (enumeration names as text).

namespace TORVIXML {

namespace {
enum MemberId : qint32 {
    NameMember = 1490308454,
    GuiComponentUsageMember = 249323652,
    DockWidgetLocationMember = 388603748
};
}

TORVIXML_BINARY_WRITE_ENTRY(GuiComponentSettings)

void GuiComponentSettings::WriteBinaryFrame(QDataStream& stream, int id, bool writeId) const
{
    InitData();
    // UTF-8 has no form for an unpaired surrogate: refused, not replaced.
    RequireUtf8Text(d->m_name.value, "Name");
    Binary::FrameWriter frame(stream, id, writeId);
    frame.Text(NameMember, d->m_name.value);
    frame.Name(GuiComponentUsageMember, GuiComponentUsageNames().Utf8Name(d->m_guiComponentUsage.value));
    frame.Name(DockWidgetLocationMember, DockWidgetLocationNames().Utf8Name(d->m_dockWidgetLocation.value));
    frame.Finish();
}

void GuiComponentSettings::SetBinary(QDataStream& stream, int length)
{
    Validation::Reapply(*this);
    InitData();
    Binary::ReadRecords(*this, stream, length, [&](Binary::Source& in, qint32 memberId, qint32) {
        QString text;
        switch (memberId) {
        case NameMember:
            SetName(Binary::ReadText(in));
            return true;
        case GuiComponentUsageMember: {
            const int value = Binary::ReadName(in, GuiComponentUsageNames(), text);
            SetGuiComponentUsage(value >= 0 ? GuiComponentUsage(value) : NameToGuiComponentUsage(text));
            return true;
        }
        case DockWidgetLocationMember: {
            const int value = Binary::ReadName(in, DockWidgetLocationNames(), text);
            SetDockWidgetLocation(value >= 0 ? DockWidgetLocation(value) : NameToDockWidgetLocation(text));
            return true;
        }
        default:
            return false;
        }
    });
}

} // namespace TORVIXML
