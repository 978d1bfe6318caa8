#include "SkinKit/Sprites/SpriteDrawer.h"

#include "SkinKit/Layout/MainSliders.h"
#include "SkinKit/Loading/Skin.h"

#include <QPainter>

namespace vantor {

void SpriteDrawer::draw(const QString &sprite, QPoint at) const {
    if (const auto location = m_skin.resolve(sprite))
        drawResolved(*location, QRect(QPoint(), location->rect.size()), at);
}

void SpriteDrawer::drawPart(const QString &sprite, const QRect &part, QPoint at) const {
    if (const auto location = m_skin.resolve(sprite))
        drawResolved(*location, part, at);
}

void SpriteDrawer::drawFrame(const QString &sprite, int frame, QPoint at) const {
    if (const auto location = m_skin.resolve(sprite))
        drawResolved(*location, MainSliders::frameRect(QRect(QPoint(), location->rect.size()), frame), at);
}

void SpriteDrawer::drawResolved(const Skin::Location &location, const QRect &part, QPoint at) const {
    const auto sheet = m_skin.sheets.constFind(location.sheet);
    const QRect wanted = part.translated(location.rect.topLeft());
    const QRect visible = wanted & location.rect & sheet->rect();
    if (!visible.isEmpty())
        m_painter.drawImage(at + visible.topLeft() - wanted.topLeft(), *sheet, visible);
}

} // namespace vantor
