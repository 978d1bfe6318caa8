#pragma once

#include "SkinKit/Layout/MainWindowLayout.h"

#include <QList>
#include <QRect>

#include <array>

/// Where everything is in the one-line shade form of the main window, in skin pixels from the top left.
namespace vantor::MainShadeLayout {

/// The small clock is a picture of its own, 30 × 6.
inline constexpr int miniTimeImageWidth = 30;
/// Inside that picture: the sign's cell and the four digits'.
inline constexpr std::array<int, 5> miniTimeCellX{1, 7, 12, 20, 25};
inline constexpr QRect miniTimeHitArea{127, 4, 30, 6};
inline constexpr QRect visualizerFrame{79, 5, 76, 5};

[[nodiscard]] QRect frame(MainWindowLayout::Transport button);

/// The title buttons and the small transport buttons.
[[nodiscard]] const QList<QRect> &buttonRects();
/// What must not start a drag of the window: the buttons, the position slider, the clock and the visualizer.
[[nodiscard]] const QList<QRect> &dragExclusions();

} // namespace vantor::MainShadeLayout
