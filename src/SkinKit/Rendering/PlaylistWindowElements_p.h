#pragma once

#include "SkinKit/Rendering/PlaylistWindowScene.h"
#include "SkinKit/Rendering/SceneElement_p.h"

#include <vector>

namespace vantor {

/// All that is drawn in skin pixels; the rows' texts come on top. Their places depend on the window's size.
[[nodiscard]] std::vector<SceneElement<PlaylistWindowScene>> playlistWindowElements(QSize size);
[[nodiscard]] std::vector<SceneElement<PlaylistWindowScene>> playlistShadeElements(QSize size);

} // namespace vantor
