#pragma once

#include "Canvas.h"

#include <string_view>

/// The materials and parts of which every window is made.
namespace vantor::art {

inline constexpr int titleHeight = 14;

/// Brushed metal between two tones, 0 the lightest (a window's top) and 1 the darkest (its bottom). The grain
/// runs along x without end, so tiles of any width join; metal of one tone has none, so tiles of any height
/// do too.
void paintBody(Canvas &canvas, const QRect &area, double topTone = 0, double bottomTone = 1);

/// A whole window below its title bar: outline, lit and shaded edges, softened corners.
void paintWindow(Canvas &canvas);

/// Outline and light of the window's frame on the sides named; without a side the part continues there.
struct Sides {
    bool left = true;
    bool top = true;
    bool right = true;
    bool bottom = true;
};
void paintFrame(Canvas &canvas, const Sides &sides);

/// A title bar's metal, 14 rows, from the first to the last column of `canvas`.
void paintBar(Canvas &canvas, bool focused);
/// Staggered perforations in a title bar between two columns; they thin out towards `fadeLeft` or
/// `fadeRight`.
struct Grille {
    int from = 0;
    int to = 0;
    bool fadeLeft = false;
    bool fadeRight = false;
};
void paintGrille(Canvas &canvas, const Grille &grille, bool focused);
/// The window's name with its lamp, starting at column x.
void paintTitle(Canvas &canvas, int x, std::string_view text, bool focused);
[[nodiscard]] int titleWidth(std::string_view text);

/// A display let into the body: `inside` is glass, the bezel takes two more pixels on every side.
void paintWell(Canvas &canvas, const QRect &inside);
/// A shallow recess for keys or a slider, floor included; its rim takes one pixel on every side.
void paintRecess(Canvas &canvas, const QRect &inside);

enum class Key { up, down };
/// What a key with a bar of light shows.
struct Toggle {
    std::string_view label;
    bool on = false;
    bool down = false;
};
/// A key cap that fills `area`, outline included.
void paintKey(Canvas &canvas, const QRect &area, Key state);
/// A bar of light: dark and let in when off, glowing when on.
void paintLamp(Canvas &canvas, const QRect &area, bool on);
/// A key that fills the canvas, its name above its bar of light.
void paintToggle(Canvas canvas, const Toggle &toggle);
/// A key that fills the canvas with one or two lines of small type; the second line may be empty.
void paintTextKey(Canvas canvas, std::string_view first, std::string_view second, Key state);
/// The 9 × 9 keys of title bars.
void paintTitleKey(Canvas &canvas, QPoint at, Stencil symbol, Key state, bool focused = true);

namespace glyphs {
inline constexpr Stencil menu = "#####//#####//#####";
inline constexpr Stencil minimize = "///#####/#####";
inline constexpr Stencil shade = "#####/#####";
inline constexpr Stencil unshade = "#####/#####/#...#/#...#/#####";
inline constexpr Stencil close = "#...#/.#.#./..#../.#.#./#...#";
} // namespace glyphs

} // namespace vantor::art
