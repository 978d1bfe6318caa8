#pragma once

#include "Canvas.h"

/// The clock's numerals: seven segments in cells of 9 × 13 pixels, row 12 left free.
namespace vantor::art::digits {

inline constexpr int cellWidth = 9;
inline constexpr int cellHeight = 13;
inline constexpr int minus = 10; ///< as a value: the middle segment, alone in its cell
inline constexpr int dark = 11;  ///< as a value: every segment off

/// Draws a value from 0 to 9, `minus` or `dark` into a cell of glass.
void draw(Canvas canvas, int value);

} // namespace vantor::art::digits
