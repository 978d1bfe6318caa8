#pragma once

#include "SkinKit/Layout/MainWindowLayout.h"

#include <QList>

/// Where everything of the 275 × 14 shade form is, in skin pixels from its top-left corner.
namespace vantor::MainShadeLayout {

inline constexpr int miniTimeImageWidth = 30;
/// Inside the mini time: the sign, then the four digits; the colon belongs to the background.
inline constexpr std::array<int, 5> miniTimeCellX{1, 7, 12, 20, 25};
inline constexpr QRect miniTimeHitArea{127, 4, miniTimeImageWidth, 6};
inline constexpr QRect visualizerFrame{79, 5, 76, 5}; ///< overlaps the mini time, which lies on top
/// Of the frame, what is left for the picture: the right half belongs to the mini time.
inline constexpr QRect visualizer{79, 5, 38, 5};

[[nodiscard]] QRect frame(MainWindowLayout::Transport button);

/// The title buttons and the small transport buttons.
[[nodiscard]] const QList<QRect> &buttonRects();
/// Every place where a press does not start dragging the window: the buttons, the time, the visualizer and
/// the position slider.
[[nodiscard]] const QList<QRect> &dragExclusions();

} // namespace vantor::MainShadeLayout
