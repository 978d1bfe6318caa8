#pragma once

#include "SkinKit/Rendering/MainWindowScene.h"

#include <QImage>
#include <QRegion>
#include <QSize>

class QPainter;

namespace vantor {

struct Skin;

/// Draws the classic main window, full or shaded, at a whole scale. The window and skintool share it.
/// Free functions of their arguments: any thread that may use the painter.
namespace MainWindowRenderer {

/// 275 × 116, or 275 × 14 shaded, times `scale`.
[[nodiscard]] QSize size(bool shaded, int scale);

/// Draws the whole window with its top-left corner at the painter's origin, one skin pixel being `scale`
/// painter units (1 or more), nearest neighbour. Every pixel is opaque, black where the skin has none. What
/// lies outside the painter's clip is not even composed: in a paint event set the event's region as the clip,
/// because the painter does not tell the system's own.
void draw(QPainter &painter, const Skin &skin, const MainWindowScene &scene, int scale);

/// What differs between the pictures of two scenes in the same skin, in skin pixels; a superset is allowed.
/// Empty when nothing changed.
[[nodiscard]] QRegion changed(const Skin &skin, const MainWindowScene &before, const MainWindowScene &after);

/// Where the visualizer is, in skin pixels.
[[nodiscard]] QRect visualizerArea(bool shaded);

/// What is there, a pixel for a skin pixel, in Format_RGB32; a null image when it is off.
[[nodiscard]] QImage visualizer(const Skin &skin, const VisualizerPicture &picture, bool shaded);

/// The outline of the window, in pixels at `scale`; the full rectangle when the skin gives none or an empty
/// one.
[[nodiscard]] QRegion mask(const Skin &skin, bool shaded, int scale);

/// What a picture shows beyond the skin's outline.
enum class Outside { transparent, drawn };

/// The window by itself, in premultiplied ARGB.
[[nodiscard]] QImage picture(const Skin &skin, const MainWindowScene &scene, int scale,
                             Outside outside = Outside::transparent);

} // namespace MainWindowRenderer
} // namespace vantor
