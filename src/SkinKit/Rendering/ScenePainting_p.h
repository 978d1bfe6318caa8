#pragma once

#include "SkinKit/Rendering/SceneElement_p.h"

#include <QRegion>

#include <algorithm>
#include <functional>
#include <span>

/// What the renderers of the skinned windows have in common.
namespace vantor::ScenePainting {

/// Draws what `elements` composes at 1× onto a black window of `size` skin pixels, enlarged to `scale`, with
/// its corner at the painter's origin. What lies outside the painter's clip is not composed; `elements` gets
/// the region that is.
void draw(QPainter &painter, const Skin &skin, QSize size, int scale,
          const std::function<void(const SkinCanvas &canvas, const QRegion &region)> &elements);

template <class Scene>
void draw(QPainter &painter, const Skin &skin, QSize size, int scale,
          std::span<const SceneElement<Scene>> elements, const Scene &scene) {
    draw(painter, skin, size, scale, [&](const SkinCanvas &canvas, const QRegion &region) {
        const QRect bounds = region.boundingRect();
        const auto hidesAll = [&](const SceneElement<Scene> &element) {
            return element.hides && element.area.contains(bounds) && element.hides(scene);
        };
        const auto top = std::find_if(elements.rbegin(), elements.rend(), hidesAll);
        const auto seen = top == elements.rend()
                              ? elements
                              : elements.last(static_cast<std::size_t>(top - elements.rbegin()) + 1);
        for (const SceneElement<Scene> &element : seen) {
            if (region.intersects(element.area))
                element.draw(canvas, scene);
        }
    });
}

/// The elements in which two scenes of one form differ.
template <class Scene>
[[nodiscard]] QRegion changed(std::span<const SceneElement<Scene>> elements, const Scene &before,
                              const Scene &after) {
    QRegion region;
    for (const SceneElement<Scene> &element : elements) {
        if (element.differs(before, after))
            region |= element.area;
    }
    return region;
}

/// The outline that the polygons give a window of `size` skin pixels, at `scale`; the full rectangle when
/// there are none or they enclose nothing.
[[nodiscard]] QRegion mask(const std::optional<QList<SkinRegion::Polygon>> &polygons, QSize size, int scale);

} // namespace vantor::ScenePainting
