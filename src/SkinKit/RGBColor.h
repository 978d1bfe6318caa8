#pragma once

#include <cstdint>

namespace vantor {

/// An opaque colour, 8 bits a channel.
struct RGBColor {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    bool operator==(const RGBColor &) const = default;
};

} // namespace vantor
