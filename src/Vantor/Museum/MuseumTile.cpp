#include "Vantor/Museum/MuseumTile.h"

#include <QCoreApplication>
#include <QPainter>
#include <QWidget>

namespace vantor {

using TileDrawing::faint;

namespace {

constexpr double badgeSize = 20;
constexpr double badgeMargin = 6;
constexpr double barHeight = 5;
const QColor troubleColor(0xd0, 0x3a, 0x2f);

/// Where a picture of some other shape stands in the middle of its place.
QRectF fitted(const QRect &place, QSize picture) {
    const QSizeF size = QSizeF(picture).scaled(place.size(), Qt::KeepAspectRatio);
    const QPointF corner = QRectF(place).center() - QPointF(size.width(), size.height()) / 2;
    return {corner, size};
}

/// What stands for a picture: the outlines of the three windows.
void drawOutlines(QPainter &painter, const QRect &place, const QColor &text) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(faint(text, 0.05));
    painter.drawRoundedRect(place, 3, 3);
    painter.setBrush(faint(text, 0.05));
    const double height = place.height() / 3.0;
    for (int window = 0; window < 3; ++window)
        painter.drawRect(QRectF(place.left() + 6, place.top() + window * height + 6, place.width() - 12, 8));
}

QRectF badgePlace(const QRect &place) {
    return {place.right() + 1 - badgeSize - badgeMargin, place.top() + badgeMargin, badgeSize, badgeSize};
}

void drawBadge(QPainter &painter, const QRectF &badge, const QColor &color) {
    painter.setPen(QPen(QColor(0, 0, 0, 90), 1));
    painter.setBrush(color);
    painter.drawEllipse(badge);
    painter.setPen(QPen(Qt::white, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

void drawTick(QPainter &painter, const QRectF &badge, const QColor &color) {
    drawBadge(painter, badge, color);
    const QPointF corner = badge.topLeft();
    painter.drawPolyline(
        QPolygonF{corner + QPointF(5.5, 10.5), corner + QPointF(8.8, 13.8), corner + QPointF(14.5, 7)});
}

void drawTrouble(QPainter &painter, const QRectF &badge) {
    drawBadge(painter, badge, troubleColor);
    const double middle = badge.center().x();
    painter.drawLine(QPointF(middle, badge.top() + 5.5), QPointF(middle, badge.top() + 11));
    painter.drawPoint(QPointF(middle, badge.top() + 14.5));
}

void drawProgress(QPainter &painter, const QRect &place, double progress, const QColor &color) {
    const QRectF shade(place.left(), place.bottom() + 1 - 22, place.width(), 22);
    painter.fillRect(shade, QColor(0, 0, 0, 150));
    const QRectF bar(shade.left() + 10, shade.center().y() - barHeight / 2, shade.width() - 20, barHeight);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 70));
    painter.drawRoundedRect(bar, barHeight / 2, barHeight / 2);
    painter.setBrush(color.lighter(120));
    const double width = std::max(barHeight, bar.width() * progress);
    painter.drawRoundedRect(QRectF(bar.topLeft(), QSizeF(width, barHeight)), barHeight / 2, barHeight / 2);
}

} // namespace

QSize MuseumTile::minimumSize(const QWidget &view) {
    return TileDrawing::minimumSize(pictureSize, view);
}

void MuseumTile::draw(QPainter &painter, const QRect &cell, const QWidget &view) const {
    const QColor text = view.palette().color(QPalette::Text);
    const QColor accent = view.palette().color(QPalette::Highlight);
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    TileDrawing::drawBack(painter, cell, state, view);
    const QRect place = TileDrawing::picturePlace(cell, pictureSize);
    if (!picture.isNull())
        painter.drawImage(fitted(place, picture.size()), picture);
    else
        drawOutlines(painter, place, text);
    if (hasNoPicture) {
        painter.setPen(faint(text, 0.6));
        painter.drawText(place, Qt::AlignCenter, QCoreApplication::translate("MuseumTile", "No picture"));
    }
    if (isWorn)
        TileDrawing::drawWornFrame(painter, place, view);
    if (progress)
        drawProgress(painter, place, *progress, accent);
    if (isOwned)
        drawTick(painter, badgePlace(place), accent);
    else if (hasFailed)
        drawTrouble(painter, badgePlace(place));
    const QRect line = TileDrawing::nameLine(cell, place, view);
    if (name) {
        QFont font = painter.font();
        font.setBold(isWorn);
        painter.setFont(font);
        painter.setPen(text);
        const QString cut = QFontMetrics(font).elidedText(*name, Qt::ElideRight, line.width());
        painter.drawText(line, static_cast<int>(Qt::AlignCenter) | Qt::TextSingleLine, cut);
    } else {
        painter.setPen(Qt::NoPen);
        painter.setBrush(faint(text, 0.05));
        painter.drawRoundedRect(QRect(place.left() + 30, line.center().y() - 4, place.width() - 60, 9), 4, 4);
    }
    painter.restore();
}

} // namespace vantor
