#pragma once

#include "SkinKit/Rendering/EqualizerWindowScene.h"

#include <QRegion>
#include <QSize>

class QPainter;

namespace vantor {

struct Skin;

/// Draws the equalizer window, full or shaded, at a whole scale; as MainWindowRenderer does its own.
namespace EqualizerWindowRenderer {

/// 275 × 116, or 275 × 14 shaded, times `scale`.
[[nodiscard]] QSize size(bool shaded, int scale);

/// Draws the whole window with its top-left corner at the painter's origin, one skin pixel being `scale`
/// painter units (1 or more), nearest neighbour. Every pixel is opaque, black where the skin has none. What
/// lies outside the painter's clip is not even composed.
void draw(QPainter &painter, const Skin &skin, const EqualizerWindowScene &scene, int scale);

/// What differs between the pictures of two scenes in the same skin, in skin pixels; a superset is allowed.
/// Empty when nothing changed.
[[nodiscard]] QRegion changed(const EqualizerWindowScene &before, const EqualizerWindowScene &after);

/// The outline of the window, in pixels at `scale`; the full rectangle when the skin gives none or an empty
/// one.
[[nodiscard]] QRegion mask(const Skin &skin, bool shaded, int scale);

/// False for a skin whose shade form is no more than a title bar: it has nothing to show volume and balance
/// with, and a press there should move the window.
[[nodiscard]] bool hasShadeSliders(const Skin &skin);

} // namespace EqualizerWindowRenderer
} // namespace vantor
