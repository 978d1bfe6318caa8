#include "Vantor/Windows/TileDrawing.h"

#include <QPainter>
#include <QWidget>

namespace vantor::TileDrawing {

namespace {

constexpr int padding = 8;
constexpr int gap = 6; // between picture and name
constexpr double radius = 6;

} // namespace

QColor faint(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

QSize minimumSize(QSize picture, const QWidget &view) {
    return {picture.width() + 2 * padding + 4,
            picture.height() + gap + view.fontMetrics().height() + 2 * padding};
}

QRect picturePlace(const QRect &cell, QSize picture) {
    return {QPoint(cell.left() + (cell.width() - picture.width()) / 2, cell.top() + padding), picture};
}

QRect nameLine(const QRect &cell, const QRect &picture, const QWidget &view) {
    return {cell.left() + padding, picture.bottom() + 1 + gap, cell.width() - 2 * padding,
            view.fontMetrics().height()};
}

void drawBack(QPainter &painter, const QRect &cell, const State &state, const QWidget &view) {
    const QColor accent = view.palette().color(QPalette::Highlight);
    const QRectF frame = QRectF(cell).adjusted(2.5, 2.5, -2.5, -2.5);
    if (state.selected || state.hovered) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(state.selected ? faint(accent, view.hasFocus() ? 0.30 : 0.20)
                                        : faint(view.palette().color(QPalette::Text), 0.06));
        painter.drawRoundedRect(frame, radius, radius);
    }
    if (state.focused) {
        painter.setPen(QPen(accent, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(frame, radius, radius);
    }
}

void drawWornFrame(QPainter &painter, const QRect &picture, const QWidget &view) {
    painter.setPen(QPen(view.palette().color(QPalette::Highlight), 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(picture).adjusted(-2, -2, 2, 2), 3, 3);
}

} // namespace vantor::TileDrawing
