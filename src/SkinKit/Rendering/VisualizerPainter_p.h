#pragma once

#include "SkinKit/Rendering/MainWindowScene.h"
#include "SkinKit/Texts/VisColors.h"

#include <QRect>

class QImage;

namespace vantor {

/// Draws a visualizer picture into `frame` of a Format_RGBX8888 image: 76 columns wide, and as many rows as
/// the frame has (16 in the full window, 5 in the shade form). Nothing for a visualizer that is switched off.
void paintVisualizer(QImage &image, const QRect &frame, const VisColors &colors,
                     const VisualizerPicture &picture);

} // namespace vantor
