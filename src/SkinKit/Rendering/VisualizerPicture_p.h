#pragma once

#include "SkinKit/Rendering/MainWindowScene.h"
#include "SkinKit/Texts/VisColors.h"

#include <QImage>

namespace vantor {

/// The visualizer in the skin's colours, 76 columns wide: 16 rows over a field of dots, or any smaller number
/// of rows, to which bars and curve are scaled down. A null image when the visualizer is off.
[[nodiscard]] QImage visualizerImage(const VisualizerPicture &picture, const VisColors &colors, QSize size);

} // namespace vantor
