#include "ModePreview.h"

#include <TorviXML/TorviXML.h>

#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <QVector>

#include <algorithm>

namespace TORVIXML {
namespace Preview {

namespace {

// The image and its parts, in pixels.
constexpr int imageWidth = 720;
constexpr int imageHeight = 400;
constexpr int margin = 12;
const QRect mainWindow(margin, margin, 470, 300);
constexpr int titleHeight = 22;
constexpr int bandHeight = 64;  // top and bottom dock areas
constexpr int columnWidth = 124; // left and right dock areas
constexpr int captionHeight = 16;
constexpr int boxHeight = 20;
constexpr int gap = 4;
const QRect floatingArea(mainWindow.right() + 2 * margin, margin,
                         imageWidth - mainWindow.right() - 3 * margin, mainWindow.height());
const QRect undockedArea(margin, mainWindow.bottom() + margin, imageWidth - 2 * margin,
                         imageHeight - mainWindow.bottom() - 2 * margin);

const QColor ink(0x20, 0x2a, 0x36);
const QColor captionInk(0x5a, 0x66, 0x74);
const QColor frameFill(0xd0, 0xd6, 0xde);
const QColor areaFill(0xf3, 0xf5, 0xf8);
const QColor shownFill(0xc8, 0xdc, 0xf4);
const QColor shownLine(0x1c, 0x4e, 0x8c);
const QColor availableLine(0x6a, 0x74, 0x80);

QFont previewFont(int pixelSize, bool bold = false)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(pixelSize);
    font.setBold(bold);
    font.setHintingPreference(QFont::PreferFullHinting);
    return font;
}

struct Component
{
    QString name;
    bool shown;
};

// Text that fits into the rectangle, elided at the right.
void drawFittedText(QPainter& painter, const QRect& rect, const QString& text, int flags = Qt::AlignCenter)
{
    const QString fitted = painter.fontMetrics().elidedText(text, Qt::ElideRight, rect.width());
    painter.drawText(rect, flags, fitted);
}

// A component: solid and filled when shown by default, dashed when merely
// available.
void drawComponent(QPainter& painter, const QRect& rect, const Component& component)
{
    painter.setPen(QPen(component.shown ? shownLine : availableLine, 1,
                        component.shown ? Qt::SolidLine : Qt::DashLine));
    painter.setBrush(component.shown ? QBrush(shownFill) : QBrush(Qt::white));
    painter.drawRect(rect.adjusted(0, 0, -1, -1));
    painter.setPen(ink);
    painter.setFont(previewFont(11));
    drawFittedText(painter, rect.adjusted(3, 0, -3, 0), component.name);
}

// A dock area: a caption and its components, stacked or side by side.
void drawArea(QPainter& painter, const QRect& rect, const QString& caption,
              const QVector<Component>& components, Qt::Orientation orientation)
{
    painter.setPen(QPen(frameFill, 1));
    painter.setBrush(areaFill);
    painter.drawRect(rect.adjusted(0, 0, -1, -1));
    painter.setPen(captionInk);
    painter.setFont(previewFont(10));
    drawFittedText(painter, QRect(rect.left() + gap, rect.top() + 1, rect.width() - 2 * gap, captionHeight),
                   caption, Qt::AlignLeft | Qt::AlignVCenter);
    if (components.isEmpty())
        return;
    const QRect inner(rect.left() + gap, rect.top() + captionHeight + 2, rect.width() - 2 * gap,
                      rect.height() - captionHeight - 2 - gap);
    const int n = components.size();
    for (int i = 0; i < n; ++i) {
        QRect box;
        if (orientation == Qt::Horizontal) {
            const int width = std::min(120, (inner.width() - (n - 1) * gap) / n);
            box = QRect(inner.left() + i * (width + gap), inner.top(), width, boxHeight);
        } else {
            const int height = std::min(boxHeight, (inner.height() - (n - 1) * 2) / n);
            box = QRect(inner.left(), inner.top() + i * (height + 2), inner.width(), height);
        }
        drawComponent(painter, box, components.at(i));
    }
}

// A floating component: a small window of its own with a title bar.
void drawFloatingWindow(QPainter& painter, const QRect& rect, const Component& component)
{
    painter.setPen(QPen(component.shown ? shownLine : availableLine, 1,
                        component.shown ? Qt::SolidLine : Qt::DashLine));
    painter.setBrush(frameFill);
    painter.drawRect(QRect(rect.left(), rect.top(), rect.width(), 16).adjusted(0, 0, -1, -1));
    painter.setBrush(component.shown ? QBrush(shownFill) : QBrush(Qt::white));
    painter.drawRect(QRect(rect.left(), rect.top() + 16, rect.width(), rect.height() - 16).adjusted(0, 0, -1, -1));
    painter.setPen(ink);
    painter.setFont(previewFont(10, true));
    drawFittedText(painter, QRect(rect.left() + 4, rect.top(), rect.width() - 8, 16), component.name,
                   Qt::AlignLeft | Qt::AlignVCenter);
}

} // namespace

QImage renderMode(const DataOperationMode& mode)
{
    // The components of each location in list order; the entry of
    // NoDockWidgetArea also gathers locations outside the name table.
    const int undocked = GuiComponentSettings::NoDockWidgetArea;
    QVector<QVector<Component>> byLocation(undocked + 1);
    for (const GuiComponentSettings& component : mode.GetGuiComponentSettings()) {
        const int location = component.GetDockWidgetLocation();
        const bool known = location >= 0 && location < undocked;
        byLocation[known ? location : undocked].append(
            {component.GetName(), component.GetGuiComponentUsage() == GuiComponentSettings::DEFAULT_DISPLAY});
    }
    const QStringList areaNames = GuiComponentSettings::GetGUIDockWidgetLocations();

    QImage image(imageWidth, imageHeight, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);

    // The main window: frame, title bar with the mode's name, dock areas.
    painter.setPen(QPen(ink, 1));
    painter.setBrush(frameFill);
    painter.drawRect(mainWindow.adjusted(0, 0, -1, -1));
    painter.setFont(previewFont(12, true));
    drawFittedText(painter, QRect(mainWindow.left() + 8, mainWindow.top(), mainWindow.width() - 16, titleHeight),
                   mode.GetName(), Qt::AlignLeft | Qt::AlignVCenter);
    const QRect client = mainWindow.adjusted(gap, titleHeight, -gap, -gap);
    const QRect top(client.left(), client.top(), client.width(), bandHeight);
    const QRect bottom(client.left(), client.bottom() - bandHeight + 1, client.width(), bandHeight);
    const int middleTop = top.bottom() + 1 + gap;
    const int middleHeight = bottom.top() - gap - middleTop;
    const QRect left(client.left(), middleTop, columnWidth, middleHeight);
    const QRect right(client.right() - columnWidth + 1, middleTop, columnWidth, middleHeight);
    const QRect centre(left.right() + 1 + gap, middleTop, right.left() - gap - left.right() - 1 - gap, middleHeight);
    drawArea(painter, top, areaNames.at(GuiComponentSettings::TopDockWidgetArea),
             byLocation.at(GuiComponentSettings::TopDockWidgetArea), Qt::Horizontal);
    drawArea(painter, bottom, areaNames.at(GuiComponentSettings::BottomDockWidgetArea),
             byLocation.at(GuiComponentSettings::BottomDockWidgetArea), Qt::Horizontal);
    drawArea(painter, left, areaNames.at(GuiComponentSettings::LeftDockWidgetArea),
             byLocation.at(GuiComponentSettings::LeftDockWidgetArea), Qt::Vertical);
    drawArea(painter, right, areaNames.at(GuiComponentSettings::RightDockWidgetArea),
             byLocation.at(GuiComponentSettings::RightDockWidgetArea), Qt::Vertical);
    drawArea(painter, centre, areaNames.at(GuiComponentSettings::CenterDockWidgetArea),
             byLocation.at(GuiComponentSettings::CenterDockWidgetArea), Qt::Vertical);

    // Floating components: small windows of their own beside the main one.
    painter.setPen(captionInk);
    painter.setFont(previewFont(10));
    drawFittedText(painter, QRect(floatingArea.left(), floatingArea.top(), floatingArea.width(), captionHeight),
                   areaNames.at(GuiComponentSettings::FloatingDockWidgetArea).trimmed(),
                   Qt::AlignLeft | Qt::AlignVCenter);
    const QVector<Component>& floating = byLocation.at(GuiComponentSettings::FloatingDockWidgetArea);
    for (int i = 0; i < floating.size(); ++i) {
        const int x = floatingArea.left() + (i % 2) * 12;
        const QRect window(x, floatingArea.top() + captionHeight + 4 + i * 48, floatingArea.width() - 24, 42);
        drawFloatingWindow(painter, window, floating.at(i));
    }

    // Components without a dock area: listed apart below the main window.
    painter.setPen(captionInk);
    painter.setFont(previewFont(10));
    drawFittedText(painter, QRect(undockedArea.left(), undockedArea.top(), undockedArea.width(), captionHeight),
                   areaNames.at(GuiComponentSettings::NoDockWidgetArea), Qt::AlignLeft | Qt::AlignVCenter);
    const QVector<Component>& apart = byLocation.at(undocked);
    const int perRow = 5;
    const int width = (undockedArea.width() - (perRow - 1) * gap) / perRow;
    for (int i = 0; i < apart.size(); ++i) {
        const QRect box(undockedArea.left() + (i % perRow) * (width + gap),
                        undockedArea.top() + captionHeight + 2 + (i / perRow) * (boxHeight + gap), width, boxHeight);
        drawComponent(painter, box, apart.at(i));
    }
    painter.end();
    return image;
}

} // namespace Preview
} // namespace TORVIXML
