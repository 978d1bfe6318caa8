#include "SkinKit/Loading/Skin.h"

#include "SkinKit/Layout/MainSliders.h"
#include "SkinKit/Sprites/SkinSprites.h"

namespace vantor {

std::optional<Skin::Location> Skin::resolve(const QString &sprite) const {
    const auto locate = [this](const QString &name) -> std::optional<Location> {
        const auto entry = SkinSprites::byName().constFind(name);
        if (entry == SkinSprites::byName().constEnd() || !sheets.contains(entry->sheet))
            return std::nullopt;
        return Location{entry->sheet, entry->sprite.rect()};
    };
    // Extended digits win whenever a skin has them.
    if (const auto twin = SkinSprites::digitTwins().constFind(sprite);
        twin != SkinSprites::digitTwins().constEnd()) {
        const auto extended = locate(*twin);
        return extended ? extended : locate(sprite);
    }
    if (const auto own = locate(sprite))
        return own;
    const auto fallback = SkinSprites::fallbacks().constFind(sprite);
    return fallback == SkinSprites::fallbacks().constEnd() ? std::nullopt : locate(*fallback);
}

static QImage cut(const Skin &skin, const std::optional<Skin::Location> &location, const QRect &part) {
    if (!location)
        return {};
    const QImage sheet = skin.sheets.value(location->sheet);
    const QRect visible = part.translated(location->rect.topLeft()) & location->rect & sheet.rect();
    return visible.isEmpty() ? QImage() : sheet.copy(visible);
}

QImage Skin::image(const QString &sprite) const {
    const auto location = resolve(sprite);
    return cut(*this, location, location ? QRect(QPoint(), location->rect.size()) : QRect());
}

QImage Skin::imageFrame(const QString &sprite, int frame) const {
    const auto location = resolve(sprite);
    const QRect strip(QPoint(), location ? location->rect.size() : QSize());
    return cut(*this, location, MainSliders::frameRect(strip, frame));
}

QImage Skin::imageBandFrame(const QString &sprite, int frame) const {
    constexpr int columns = 14;
    constexpr QSize step(15, 65);
    constexpr QSize size(14, 63);
    if (frame < 0)
        return {};
    const QPoint at(frame % columns * step.width(), frame / columns * step.height());
    return cut(*this, resolve(sprite), QRect(at, size));
}

} // namespace vantor
