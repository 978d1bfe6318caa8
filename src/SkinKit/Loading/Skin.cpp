#include "SkinKit/Loading/Skin.h"

#include "SkinKit/Layout/EQLayout.h"
#include "SkinKit/Layout/MainSliders.h"
#include "SkinKit/Sprites/SkinSprites.h"

namespace vantor {

namespace {

std::optional<Skin::Location> locate(const Skin &skin, const QString &sprite) {
    const auto &catalogue = SkinSprites::byName();
    const auto found = catalogue.constFind(sprite);
    if (found == catalogue.cend() || !skin.sheets.contains(found->sheet))
        return std::nullopt;
    return Skin::Location{found->sheet, found->sprite.rect()};
}

QImage cut(const QImage &sheet, const QRect &rect) {
    const QRect kept = rect & sheet.rect();
    return kept.isEmpty() ? QImage() : sheet.copy(kept);
}

} // namespace

std::optional<Skin::Location> Skin::resolve(const QString &sprite) const {
    // Extended digits win over plain ones, so for the digits the twin comes first.
    const QString twin = SkinSprites::digitTwins().value(sprite);
    if (!twin.isEmpty()) {
        if (auto location = locate(*this, twin))
            return location;
    }
    if (auto location = locate(*this, sprite))
        return location;
    const QString fallback = SkinSprites::fallbacks().value(sprite);
    return fallback.isEmpty() ? std::nullopt : locate(*this, fallback);
}

QImage Skin::image(const QString &sprite) const {
    const auto location = resolve(sprite);
    return location ? cut(sheets.value(location->sheet), location->rect) : QImage();
}

QImage Skin::imageFrame(const QString &sprite, int frame) const {
    const auto location = resolve(sprite);
    if (!location || frame < 0 || frame >= MainSliders::frameCount)
        return {};
    return cut(sheets.value(location->sheet), MainSliders::frameRect(location->rect, frame) & location->rect);
}

QImage Skin::imageBandFrame(const QString &sprite, int frame) const {
    const auto location = resolve(sprite);
    if (!location || frame < 0 || frame >= EQLayout::frameCount)
        return {};
    return cut(sheets.value(location->sheet),
               EQLayout::bandFrameRect(location->rect, frame) & location->rect);
}

} // namespace vantor
