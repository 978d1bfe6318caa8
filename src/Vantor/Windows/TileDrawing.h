#pragma once

#include <QColor>
#include <QRect>
#include <QSize>

class QPainter;
class QWidget;

/// What the tiles of all grids of skins have in common: a picture with a name below. In the view's colours
/// and font; painters draw smooth edges.
namespace vantor::TileDrawing {

struct State {
    bool selected = false;
    bool hovered = false;
    bool focused = false; ///< shows the focus ring
};

[[nodiscard]] QColor faint(QColor color, double opacity);

/// The least room that a tile needs.
[[nodiscard]] QSize minimumSize(QSize picture, const QWidget &view);
[[nodiscard]] QRect picturePlace(const QRect &cell, QSize picture);
[[nodiscard]] QRect nameLine(const QRect &cell, const QRect &picture, const QWidget &view);

void drawBack(QPainter &painter, const QRect &cell, const State &state, const QWidget &view);
/// Around the picture of the skin that is worn.
void drawWornFrame(QPainter &painter, const QRect &picture, const QWidget &view);

} // namespace vantor::TileDrawing
