#include "SkinKit/Layout/PlaylistWindowLayout.h"

#include <algorithm>
#include <cmath>

namespace vantor::PlaylistWindowLayout {

namespace {

using Control = PlaylistWindowControl;

constexpr int bottomRightWidth = 150;
constexpr int visualizerWidth = 75;
constexpr int titleWidth = 100;
constexpr int rowsTop = topHeight + 3;
constexpr QSize scrollHandleSize{8, 18};
constexpr QSize menuButton{22, 18};
constexpr QSize transportButton{9, 10};

int snappedLength(int wanted, int minimum, int stepLength, int maximum) {
    const int steps = (std::clamp(wanted, minimum, maximum) - minimum + stepLength / 2) / stepLength;
    return minimum + steps * stepLength;
}

/// Where the lower edge begins.
int bottom(QSize size) {
    return size.height() - bottomHeight;
}

QRect menuButtonAt(int x, QSize size) {
    return {{x, bottom(size) + 8}, menuButton};
}

QRect transportAt(int index, QSize size) {
    return {bottomRightPiece(size) + QPoint(4 + index * transportButton.width(), 22), transportButton};
}

QRect rows(QSize size) {
    return {leftWidth, topHeight, size.width() - leftWidth - rightWidth, bottom(size) - topHeight};
}

QRect fullRect(Control control, QSize size) {
    const int right = size.width();
    const QPoint corner = bottomRightPiece(size);
    switch (control) {
    case Control::rows:
        return rows(size);
    case Control::scrollBar:
        return {right - 15, topHeight, scrollHandleSize.width(), bottom(size) - topHeight};
    case Control::scrollUp:
        return {right - 15, bottom(size) + 2, 8, 5};
    case Control::scrollDown:
        return {right - 15, bottom(size) + 7, 8, 5};
    case Control::add:
        return menuButtonAt(14, size);
    case Control::remove:
        return menuButtonAt(43, size);
    case Control::select:
        return menuButtonAt(72, size);
    case Control::misc:
        return menuButtonAt(101, size);
    case Control::list:
        return menuButtonAt(corner.x() + 106, size);
    case Control::previous:
    case Control::play:
    case Control::pause:
    case Control::stop:
    case Control::next:
    case Control::eject:
        return transportAt(static_cast<int>(control) - static_cast<int>(Control::previous), size);
    case Control::time:
        return {corner + QPoint(66, 23), QSize(30, 6)};
    case Control::visualizer:
        return hasVisualizer(size) ? QRect(visualizerPiece(size) + QPoint(2, 12), QSize(72, 16)) : QRect();
    case Control::resize:
        return {right - 20, size.height() - 20, 20, 20};
    default:
        return {};
    }
}

} // namespace

QSize snapped(QSize wanted) {
    return {snappedLength(wanted.width(), minimumSize.width(), step.width(), maximumSize.width()),
            snappedLength(wanted.height(), minimumSize.height(), step.height(), maximumSize.height())};
}

QSize windowSize(QSize size, bool shaded) {
    return {size.width(), shaded ? shadeHeight : size.height()};
}

QRect rect(PlaylistWindowControl control, QSize size, bool shaded) {
    const int right = size.width();
    if (control == Control::shade)
        return {right - 21, 3, 9, 9};
    if (control == Control::close)
        return {right - 11, 3, 9, 9};
    if (!shaded)
        return fullRect(control, size);
    return control == Control::resize ? QRect(right - 29, 3, 8, 9) : QRect();
}

QRect titleBar(QSize size) {
    return {0, 0, size.width(), titleHeight};
}

QPoint titlePiece(QSize size) {
    return {(size.width() - titleWidth) / 2, 0};
}

bool hasVisualizer(QSize size) {
    return size.width() >= minimumSize.width() + visualizerWidth;
}

QPoint visualizerPiece(QSize size) {
    return bottomRightPiece(size) - QPoint(visualizerWidth, 0);
}

QPoint bottomRightPiece(QSize size) {
    return {size.width() - bottomRightWidth, bottom(size)};
}

QRect runningTime(QSize size) {
    return {bottomRightPiece(size) + QPoint(7, 10), QSize(90, 6)};
}

QRect shadeTitle(QSize size) {
    return {6, 4, size.width() - 39, 6};
}

int visibleRows(QSize size) {
    return (bottom(size) - rowsTop) / rowHeight;
}

QRect row(int line, QSize size) {
    const QRect area = rows(size);
    return {area.left(), rowsTop + line * rowHeight, area.width(), rowHeight};
}

int lineAt(int y, QSize) {
    const int below = y - rowsTop;
    return below >= 0 ? below / rowHeight : -((-below + rowHeight - 1) / rowHeight);
}

int gapAt(int y, QSize size) {
    return std::clamp(lineAt(y + rowHeight / 2, size), 0, visibleRows(size));
}

int lastFirstRow(int count, QSize size) {
    return std::max(0, count - visibleRows(size));
}

QRect scrollHandle(double fraction, QSize size) {
    const QRect groove = fullRect(Control::scrollBar, size);
    const int way = groove.height() - scrollHandleSize.height();
    const int top = groove.top() + static_cast<int>(std::round(std::clamp(fraction, 0.0, 1.0) * way));
    return {{groove.left(), top}, scrollHandleSize};
}

double scrollFraction(int handleTop, QSize size) {
    const QRect groove = fullRect(Control::scrollBar, size);
    const int way = groove.height() - scrollHandleSize.height();
    return std::clamp(static_cast<double>(handleTop - groove.top()) / way, 0.0, 1.0);
}

} // namespace vantor::PlaylistWindowLayout
