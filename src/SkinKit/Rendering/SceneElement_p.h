#pragma once

#include "SkinKit/Loading/Skin.h"
#include "SkinKit/Rendering/MainWindowScene.h"
#include "SkinKit/Sprites/SpriteDrawer.h"

#include <QPainter>

#include <span>

namespace vantor {

/// What an element draws with; the painter's coordinates are skin pixels.
struct SkinCanvas {
    const Skin &skin;
    QPainter &painter;
    SpriteDrawer sprites{skin, painter};
};

/// A part of the window that changes as one. Drawing stays inside the area, which is opaque once everything
/// below it is drawn; `differs` tells whether two scenes can give different pictures of it.
struct SceneElement {
    QRect area;
    bool (*differs)(const MainWindowScene &before, const MainWindowScene &after);
    void (*draw)(const SkinCanvas &canvas, const MainWindowScene &scene);
};

/// In drawing order; the first covers the window.
[[nodiscard]] std::span<const SceneElement> mainWindowElements();
[[nodiscard]] std::span<const SceneElement> mainShadeElements();

/// Title buttons over a bar that has just been drawn.
void drawTitleButtons(const SkinCanvas &canvas, const MainWindowScene &scene);
[[nodiscard]] bool titleDiffers(const MainWindowScene &before, const MainWindowScene &after);

} // namespace vantor
