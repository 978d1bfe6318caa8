#pragma once

#include "SkinKit/Rendering/EqualizerWindowScene.h"
#include "SkinKit/Rendering/SceneElement_p.h"

#include <span>

namespace vantor {

[[nodiscard]] std::span<const SceneElement<EqualizerWindowScene>> equalizerWindowElements();
[[nodiscard]] std::span<const SceneElement<EqualizerWindowScene>> equalizerShadeElements();

} // namespace vantor
