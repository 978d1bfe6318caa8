#pragma once

#include "SkinKit/Rendering/MainWindowScene.h"
#include "SkinKit/Rendering/SceneElement_p.h"

#include <span>

namespace vantor {

[[nodiscard]] std::span<const SceneElement<MainWindowScene>> mainWindowElements();
[[nodiscard]] std::span<const SceneElement<MainWindowScene>> mainShadeElements();

/// Title buttons over a bar that has just been drawn.
void drawTitleButtons(const SkinCanvas &canvas, const MainWindowScene &scene);
[[nodiscard]] bool titleDiffers(const MainWindowScene &before, const MainWindowScene &after);

} // namespace vantor
