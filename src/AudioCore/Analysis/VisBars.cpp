#include "AudioCore/Analysis/VisBars.h"

#include <algorithm>
#include <cmath>

namespace vantor {

static constexpr int peakUnit = 256;     ///< peak positions per level
static constexpr float firstDrop = 3;    ///< of a peak just caught
static constexpr int hiddenPeakRow = -3; ///< stays below row 0 after the one that is added for display

/// The whole level at which the bars of a group aim.
static int groupTarget(std::span<const float> spectrum, int group, int groupSize, int maxHeight) {
    float sum = 0;
    for (int i = group * groupSize; i < (group + 1) * groupSize; ++i) {
        const auto column = static_cast<size_t>(i);
        if (i < VisBars::columnCount && column < spectrum.size() && spectrum[column] > 0)
            sum += std::min(spectrum[column] * 16, 15.0F);
    }
    return std::min(static_cast<int>(sum / static_cast<float>(groupSize)), maxHeight);
}

void VisBars::step(std::span<const float> spectrum) {
    for (int column = 0; column < columnCount; ++column) {
        const auto i = static_cast<size_t>(column);
        const auto target =
            static_cast<float>(groupTarget(spectrum, column / columnsPerBar, columnsPerBar, maxHeight));
        float &bar = fallingBars[i];
        bar = std::max(bar - falloff / 16, target);

        int &position = peakPositions[i];
        if (position <= static_cast<int>(std::round(bar * peakUnit))) {
            position = static_cast<int>(bar * peakUnit);
            peakDrops[i] = firstDrop;
        }
        position = std::min(position, maxHeight * peakUnit);
        int row = position / peakUnit;
        if (position < peakUnit)
            row = smallVis ? 0 : hiddenPeakRow;
        const auto drop = std::round(peakDrops[i]);
        position = drop < static_cast<float>(position) ? position - static_cast<int>(drop) : 0;
        peakDrops[i] *= peakFalloff;

        heights[i] = std::max(0, static_cast<int>(std::round(bar)) - pushDown);
        peaks[i] = row + 1 - pushDown;
    }
}

} // namespace vantor
