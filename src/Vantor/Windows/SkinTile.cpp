#include "Vantor/Windows/SkinTile.h"

#include <QCoreApplication>
#include <QPainter>
#include <QWidget>

namespace vantor {

namespace {

constexpr int padding = 8;
constexpr int gap = 6; // between picture and name
constexpr int markSize = 7;
constexpr double radius = 6;
const QColor partialColor(0xd8, 0x94, 0x1c);

QColor faint(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

void drawPicture(QPainter &painter, const QRect &place, const SkinTile &tile, const QPalette &colors) {
    if (!tile.picture.isNull()) {
        painter.drawPixmap(place, tile.picture);
        return;
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(faint(colors.color(QPalette::Text), 0.06));
    painter.drawRoundedRect(place, 3, 3);
    if (tile.skin && tile.skin->status == SkinStatus::failed) {
        painter.setPen(faint(colors.color(QPalette::Text), 0.6));
        painter.drawText(place, Qt::AlignCenter, QCoreApplication::translate("SkinTile", "Cannot be read"));
    }
}

void drawName(QPainter &painter, QRect line, const SkinTile &tile, const QPalette &colors) {
    QFont font = painter.font();
    font.setBold(tile.worn);
    painter.setFont(font);
    const bool isPartial = tile.skin->status == SkinStatus::partial;
    const int markRoom = isPartial ? markSize + 5 : 0;
    const QFontMetrics metrics(font);
    const QString name = metrics.elidedText(tile.skin->name, Qt::ElideRight, line.width() - markRoom);
    const int width = metrics.horizontalAdvance(name) + markRoom;
    line.setLeft(line.left() + (line.width() - width) / 2);
    if (isPartial) {
        painter.setPen(QPen(partialColor, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(
            QRectF(line.left() + 0.5, line.center().y() - markSize / 2 + 0.5, markSize - 1, markSize - 1));
        line.setLeft(line.left() + markRoom);
    }
    const bool isFailed = tile.skin->status == SkinStatus::failed;
    painter.setPen(faint(colors.color(QPalette::Text), isFailed ? 0.6 : 1));
    painter.drawText(line, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, name);
}

} // namespace

QSize SkinTile::minimumSize(const QWidget &view) {
    return {pictureSize.width() + 2 * padding + 4,
            pictureSize.height() + gap + view.fontMetrics().height() + 2 * padding};
}

void SkinTile::draw(QPainter &painter, const QRect &cell, const QWidget &view) const {
    const QPalette &colors = view.palette();
    const QColor accent = colors.color(QPalette::Highlight);
    const QRectF frame = QRectF(cell).adjusted(2.5, 2.5, -2.5, -2.5);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (selected || hovered) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(selected ? faint(accent, view.hasFocus() ? 0.30 : 0.20)
                                  : faint(colors.color(QPalette::Text), 0.06));
        painter.drawRoundedRect(frame, radius, radius);
    }
    if (focused) {
        painter.setPen(QPen(accent, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(frame, radius, radius);
    }
    const QRect picturePlace(
        QPoint(cell.left() + (cell.width() - pictureSize.width()) / 2, cell.top() + padding), pictureSize);
    drawPicture(painter, picturePlace, *this, colors);
    if (worn) {
        painter.setPen(QPen(accent, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(picturePlace).adjusted(-2, -2, 2, 2), 3, 3);
    }
    if (skin) {
        const int top = picturePlace.bottom() + 1 + gap;
        drawName(painter,
                 QRect(cell.left() + padding, top, cell.width() - 2 * padding, view.fontMetrics().height()),
                 *this, colors);
    }
    painter.restore();
}

} // namespace vantor
