#ifndef TORVIXML_PREVIEW_MODEPREVIEW_H
#define TORVIXML_PREVIEW_MODEPREVIEW_H

// The drawing of one data operation mode as the application's main window
// shows it, shared by torvixml-editor and `torvixml preview`.

#include <QImage>

namespace TORVIXML {
class DataOperationMode;

namespace Preview {

/// Draws the main window of the mode on a white image of a fixed size
/// (needs a QGuiApplication for the fonts): a title bar with the mode's
/// name, the dock areas left, right, top, bottom and centre, each captioned
/// with its translated display name and holding the mode's components by
/// name in list order. A component shown by default (DEFAULT_DISPLAY) is
/// drawn solid and filled, a merely available one dashed. Floating
/// components appear as small separate windows beside the main window;
/// components without a dock area (NoDockWidgetArea, or a location outside
/// the name table) are listed apart below it.
QImage renderMode(const DataOperationMode& mode);

} // namespace Preview
} // namespace TORVIXML

#endif
