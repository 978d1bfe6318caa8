#pragma once

#include "Canvas.h"

#include <string_view>

/// The two faces of the skin, both with capitals of five rows.
namespace vantor::art::font {

/// The marquee's face: cells of 5 × 6 pixels, glyphs 4 wide but for M, V and W, the last row for tails.
/// Capitals only; a null stencil for what the face lacks.
[[nodiscard]] Stencil cell(char32_t character);

/// Text in the marquee's face, set proportionally.
void draw(Canvas &canvas, int x, int y, std::string_view text, Color color);
[[nodiscard]] int width(std::string_view text);

/// Window titles, in the same face with a few wide letters and loose setting.
void drawTitle(Canvas &canvas, int x, int y, std::string_view text, Color color);
[[nodiscard]] int titleWidth(std::string_view text);

/// The narrow face of labels and keys: glyphs mostly 3 wide.
void drawSmall(Canvas &canvas, int x, int y, std::string_view text, Color color);
[[nodiscard]] int smallWidth(std::string_view text);

} // namespace vantor::art::font
