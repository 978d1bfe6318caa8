#pragma once

#include <QPoint>
#include <QRect>
#include <QString>

class QPainter;

namespace vantor {

struct Skin;

/// Draws a skin's sprites onto a painter whose coordinates are skin pixels (the caller sets the scale, and no
/// smoothing is used). Borrows both for its lifetime. A sprite that does not resolve draws nothing; one that
/// reaches past its sheet is clipped. The painter's state is left as it was.
class SpriteDrawer {
  public:
    SpriteDrawer(const Skin &skin, QPainter &painter) : m_skin(skin), m_painter(painter) {}

    void draw(const QString &sprite, QPoint at) const;
    /// Draws `part`, given relative to the sprite's top-left corner, clipped to the sprite; its top-left
    /// corner comes to lie at `at`.
    void drawPart(const QString &sprite, const QRect &part, QPoint at) const;

  private:
    const Skin &m_skin;
    QPainter &m_painter;
};

} // namespace vantor
