#pragma once

#include "SkinKit/Layout/MainWindowStatus.h"
#include "SkinKit/Sprites/SpriteDrawer.h"

#include <array>

namespace vantor {

/// The small clock in the skin's text font: a sign and four digits, 0 for an empty cell.
using MiniTime = std::array<char16_t, 5>;

/// `lit`: false in the dark half of the blink while paused.
[[nodiscard]] MiniTime miniTime(const MainWindowStatus &status, bool lit);
/// The colon between the digits belongs to the skin's background.
void drawMiniTime(const SpriteDrawer &sprites, const MiniTime &cells, QPoint at);

} // namespace vantor
