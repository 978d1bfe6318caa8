#pragma once

#include "SkinKit/Rendering/PlaylistWindowScene.h"

#include <QRegion>

class QPainter;

namespace vantor {

struct Skin;

/// Draws the playlist window, full or shaded, at a whole scale. The frame is the skin's pixels enlarged; the
/// rows are text in the style's font, drawn at the scale. Free functions; because of the font, of the main
/// thread. The window is always a rectangle: skins have no outline for it.
namespace PlaylistWindowRenderer {

/// Draws the whole window with its top-left corner at the painter's origin, one skin pixel being `scale`
/// painter units (1 or more). Every pixel is opaque. What lies outside the painter's clip is not drawn: in a
/// paint event set the event's region as the clip.
void draw(QPainter &painter, const Skin &skin, const PlaylistWindowScene &scene, int scale);

/// What differs between the pictures of two scenes in the same skin, in skin pixels; a superset is allowed.
/// Empty when nothing changed.
[[nodiscard]] QRegion changed(const PlaylistWindowScene &before, const PlaylistWindowScene &after);

} // namespace PlaylistWindowRenderer
} // namespace vantor
