#include "Digits.h"

#include <array>

namespace vantor::art::digits {

namespace {

using namespace palette;

// Segments from the top, clockwise, the middle one last. They taper where they meet.
constexpr std::array<Stencil, 7> segments = {
    "..#####/..#####",
    "/.......#/......##/......##/......##/.......#",
    "//////.......#/......##/......##/......##/.......#",
    "//////////..#####/..#####",
    "//////.#/.##/.##/.##/.#",
    "/.#/.##/.##/.##/.#",
    "/////..#####/..#####",
};

constexpr std::array<unsigned, 12> lit = {
    0b0111111, 0b0000110, 0b1011011, 0b1001111, 0b1100110, 0b1101101,
    0b1111101, 0b0000111, 0b1111111, 0b1101111, 0b1000000, 0b0000000,
};

bool isLit(unsigned value, std::size_t segment) {
    return (lit.at(value) >> segment & 1U) != 0;
}

} // namespace

void draw(Canvas canvas, int value) {
    canvas.fill(canvas.bounds(), glass);
    if (value != minus)
        for (const Stencil segment : segments)
            canvas.stencil(0, 0, segment, unlit);
    for (std::size_t i = 0; i < segments.size(); ++i)
        if (isLit(static_cast<unsigned>(value), i))
            canvas.glowing(0, 0, segments.at(i), amber, 0.1);
    for (std::size_t i = 0; i < segments.size(); ++i)
        if (isLit(static_cast<unsigned>(value), i))
            canvas.stencil(0, 0, segments.at(i), flame);
}

} // namespace vantor::art::digits
