#pragma once

#include <QPoint>
#include <QString>

namespace vantor {

class SpriteDrawer;

/// Text in the 5 × 6 pixel characters of a skin's TEXT sheet.
namespace SkinTextFont {

inline constexpr int characterWidth = 5;
inline constexpr int characterHeight = 6;

/// The sprite for a character: case folded, accented letters mapped to their nearest character, typographic
/// quotes and dashes to their plain forms; a space for what the font lacks.
[[nodiscard]] QString spriteName(char32_t character);

/// In pixels, one cell per user-perceived character.
[[nodiscard]] int width(const QString &text);

/// Draws at most the cells that touch the columns `left` ≤ x < `right`; the caller clips finer.
void draw(const SpriteDrawer &drawer, const QString &text, QPoint at, int left, int right);

} // namespace SkinTextFont

/// How the marquee moves a text that is wider than its window.
namespace Marquee {

/// Between the end of a text and its repetition.
[[nodiscard]] QString separator();
/// Whether the text is wider than the marquee's 154 pixels.
[[nodiscard]] bool scrolls(const QString &text);
/// The offset at which the picture repeats, in pixels; 0 for a text that does not scroll.
[[nodiscard]] int period(const QString &text);

} // namespace Marquee
} // namespace vantor
