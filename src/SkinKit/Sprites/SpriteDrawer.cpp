#include "SkinKit/Sprites/SpriteDrawer.h"

#include "SkinKit/Loading/Skin.h"

#include <QPainter>

namespace vantor {

namespace {

void drawUnsmoothed(QPainter &painter, QPoint at, const QImage &sheet, const QRect &source) {
    const bool smooth = painter.testRenderHint(QPainter::SmoothPixmapTransform);
    if (smooth)
        painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.drawImage(at, sheet, source);
    if (smooth)
        painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
}

} // namespace

void SpriteDrawer::draw(const QString &sprite, QPoint at) const {
    const auto location = m_skin.resolve(sprite);
    if (!location)
        return;
    const QImage &sheet = *m_skin.sheets.constFind(location->sheet);
    const QRect source = location->rect & sheet.rect();
    if (!source.isEmpty())
        drawUnsmoothed(m_painter, at, sheet, source);
}

void SpriteDrawer::drawPart(const QString &sprite, const QRect &part, QPoint at) const {
    const auto location = m_skin.resolve(sprite);
    if (!location)
        return;
    const QImage &sheet = *m_skin.sheets.constFind(location->sheet);
    const QPoint corner = location->rect.topLeft();
    const QRect wanted = part.translated(corner);
    const QRect source = wanted & location->rect & sheet.rect();
    if (!source.isEmpty())
        drawUnsmoothed(m_painter, at + source.topLeft() - wanted.topLeft(), sheet, source);
}

} // namespace vantor
