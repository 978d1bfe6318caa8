#pragma once

#include "SkinKit/Rendering/PlaylistWindowScene.h"
#include "SkinKit/Texts/PlaylistStyle.h"

class QPainter;

namespace vantor {

/// Writes the rows' texts over what is there, one skin pixel being `scale` painter units. A font that is not
/// installed is replaced by the system's, one that is too tall for a row is taken smaller. Lines outside the
/// painter's clip cost nothing.
void drawPlaylistRowTexts(QPainter &painter, const PlaylistStyle &style, const PlaylistWindowScene &scene,
                          int scale);

} // namespace vantor
