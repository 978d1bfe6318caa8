#pragma once

#include "SkinKit/Loading/Skin.h"
#include "SkinKit/Sprites/SpriteDrawer.h"

#include <QPainter>

namespace vantor {

/// What an element draws with; the painter's coordinates are skin pixels.
struct SkinCanvas {
    const Skin &skin;
    QPainter &painter;
    SpriteDrawer sprites{skin, painter};
};

/// A part of a window that changes as one. Drawing stays inside the area, which is opaque once everything
/// below it is drawn; `differs` tells whether two scenes can give different pictures of it. A window's
/// elements are listed in drawing order, and the first covers the window. One that `hides` what is below it
/// spares drawing that, where nothing else changes.
template <class Scene>
struct SceneElement {
    QRect area;
    bool (*differs)(const Scene &before, const Scene &after);
    void (*draw)(const SkinCanvas &canvas, const Scene &scene);
    bool (*hides)(const Scene &scene) = nullptr;
};

/// Two scenes differ in an element when its state, all that its drawing depends on, differs.
template <auto state, class Scene>
bool stateDiffers(const Scene &before, const Scene &after) {
    return state(before) != state(after);
}

template <class Scene>
bool neverDiffers(const Scene &, const Scene &) {
    return false;
}

} // namespace vantor
