#pragma once

#include <array>

namespace vantor {

struct EQBand {
    double frequency = 0; ///< centre, Hz
    double bandwidth = 0; ///< octaves, between the points of half the gain in decibels

    bool operator==(const EQBand &) const = default;
};

/// The fixed layout of the equalizer's ten bands, lowest first.
namespace EQBands {

inline constexpr std::array<EQBand, 10> all{{{60, 1.0},
                                             {170, 1.0},
                                             {310, 1.0},
                                             {600, 1.0},
                                             {1000, 1.0},
                                             {3000, 1.0},
                                             {6000, 1.0},
                                             {12000, 0.5},
                                             {14000, 0.5},
                                             {16000, 0.5}}};

} // namespace EQBands

} // namespace vantor
