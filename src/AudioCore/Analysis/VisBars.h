#pragma once

#include <array>
#include <span>

namespace vantor {

/// Turns column levels into the falling bars and peaks of the 16-pixel analyser. One step per display frame.
struct VisBars {
    static constexpr int columnCount = 75;

    float falloff = 12.0F;    ///< a bar falls falloff / 16 levels a step
    float peakFalloff = 1.1F; ///< factor by which a falling peak speeds up each step
    int maxHeight = 15;
    bool smallVis = false; ///< shows a peak in the bottom row instead of hiding it
    int pushDown = 0;      ///< levels taken off every bar and peak
    int columnsPerBar = 4; ///< neighbours that show their common level; 1 or more

    std::array<int, columnCount> heights{}; ///< 0…maxHeight
    /// Row, counted from 1 at the bottom; −2 or below: hidden.
    std::array<int, columnCount> peaks = [] {
        std::array<int, columnCount> hidden{};
        hidden.fill(-2);
        return hidden;
    }();
    std::array<float, columnCount> fallingBars{};
    std::array<int, columnCount> peakPositions{}; ///< in 1/256 of a level
    std::array<float, columnCount> peakDrops{};   ///< in 1/256 of a level per step

    /// `spectrum`: levels 0…1; missing columns count as 0.
    void step(std::span<const float> spectrum);

    bool operator==(const VisBars &) const = default;
};

} // namespace vantor
