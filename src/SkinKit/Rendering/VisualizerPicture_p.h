#pragma once

#include "SkinKit/Rendering/MainWindowScene.h"
#include "SkinKit/Texts/VisColors.h"

#include <QImage>

namespace vantor {

/// The visualizer in the skin's colours: 76 × 16 over a field of dots, or 38 columns wide or with fewer rows,
/// to which bars and curve are reduced. A null image when the visualizer is off.
[[nodiscard]] QImage visualizerImage(const VisualizerPicture &picture, const VisColors &colors, QSize size);

} // namespace vantor
