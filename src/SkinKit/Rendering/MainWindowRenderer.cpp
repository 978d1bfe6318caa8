#include "SkinKit/Rendering/MainWindowRenderer.h"

#include "SkinKit/Layout/MainShadeLayout.h"
#include "SkinKit/Layout/MainWindowLayout.h"
#include "SkinKit/Rendering/MainWindowElements_p.h"
#include "SkinKit/Rendering/ScenePainting_p.h"
#include "SkinKit/Rendering/VisualizerPicture_p.h"

#include <QPainter>

namespace vantor::MainWindowRenderer {

static auto elementsOf(bool shaded) {
    return shaded ? mainShadeElements() : mainWindowElements();
}

QSize size(bool shaded, int scale) {
    return (shaded ? MainWindowLayout::shadeSize : MainWindowLayout::size) * scale;
}

void draw(QPainter &painter, const Skin &skin, const MainWindowScene &scene, int scale) {
    ScenePainting::draw(painter, skin, size(scene.shaded, 1), scale, elementsOf(scene.shaded), scene);
}

QRegion changed(const Skin &, const MainWindowScene &before, const MainWindowScene &after) {
    if (before.shaded != after.shaded)
        return QRect({0, 0}, size(after.shaded, 1));
    return ScenePainting::changed(elementsOf(after.shaded), before, after);
}

QRect visualizerArea(bool shaded) {
    return shaded ? MainShadeLayout::visualizer : MainWindowLayout::visualizer;
}

QImage visualizer(const Skin &skin, const VisualizerPicture &picture, bool shaded) {
    return visualizerImage(picture, skin.visColors, visualizerArea(shaded).size());
}

QRegion mask(const Skin &skin, bool shaded, int scale) {
    return ScenePainting::mask(shaded ? skin.region.windowShade() : skin.region.normal(), size(shaded, 1),
                               scale);
}

QImage picture(const Skin &skin, const MainWindowScene &scene, int scale, Outside outside) {
    QImage picture(size(scene.shaded, scale), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    draw(painter, skin, scene, scale);
    if (outside == Outside::drawn)
        return picture;
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    for (const QRect &rect : QRegion(picture.rect()).subtracted(mask(skin, scene.shaded, scale)))
        painter.fillRect(rect, Qt::transparent);
    return picture;
}

} // namespace vantor::MainWindowRenderer
