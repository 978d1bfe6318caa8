#include "SkinKit/Rendering/EqualizerWindowRenderer.h"

#include "SkinKit/Rendering/EqualizerWindowElements_p.h"
#include "SkinKit/Rendering/ScenePainting_p.h"

namespace vantor::EqualizerWindowRenderer {

static auto elementsOf(bool shaded) {
    return shaded ? equalizerShadeElements() : equalizerWindowElements();
}

QSize size(bool shaded, int scale) {
    return (shaded ? EQLayout::shadeSize : EQLayout::windowSize) * scale;
}

void draw(QPainter &painter, const Skin &skin, const EqualizerWindowScene &scene, int scale) {
    ScenePainting::draw(painter, skin, size(scene.shaded, 1), scale, elementsOf(scene.shaded), scene);
}

QRegion changed(const EqualizerWindowScene &before, const EqualizerWindowScene &after) {
    if (before.shaded != after.shaded)
        return QRect({0, 0}, size(after.shaded, 1));
    return ScenePainting::changed(elementsOf(after.shaded), before, after);
}

QRegion mask(const Skin &skin, bool shaded, int scale) {
    return ScenePainting::mask(shaded ? skin.region.equalizerShade() : skin.region.equalizer(),
                               size(shaded, 1), scale);
}

bool hasShadeSliders(const Skin &skin) {
    return skin.resolve(QStringLiteral("EQ_SHADE_VOLUME_SLIDER_LEFT")).has_value();
}

} // namespace vantor::EqualizerWindowRenderer
