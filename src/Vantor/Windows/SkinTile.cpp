#include "Vantor/Windows/SkinTile.h"

#include "Vantor/Windows/TileDrawing.h"

#include <QCoreApplication>
#include <QPainter>
#include <QWidget>

namespace vantor {

using TileDrawing::faint;

namespace {

constexpr int markSize = 7;
const QColor partialColor(0xd8, 0x94, 0x1c);

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
    return TileDrawing::minimumSize(pictureSize, view);
}

void SkinTile::draw(QPainter &painter, const QRect &cell, const QWidget &view) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    TileDrawing::drawBack(painter, cell, {selected, hovered, focused}, view);
    const QRect place = TileDrawing::picturePlace(cell, pictureSize);
    drawPicture(painter, place, *this, view.palette());
    if (worn)
        TileDrawing::drawWornFrame(painter, place, view);
    if (skin)
        drawName(painter, TileDrawing::nameLine(cell, place, view), *this, view.palette());
    painter.restore();
}

} // namespace vantor
