#include "AudioCore/Analysis/VisReadCursor.h"

#include <algorithm>
#include <cmath>

namespace vantor {

// After a gap this long the cursor starts over anyway; it bounds the arithmetic below.
static constexpr double longestStep = 3600;

void VisReadCursor::trackDelivery(int64_t writeCount, double elapsed) {
    if (lastWriteCount && writeCount > *lastWriteCount) {
        largestDelivery = std::max(largestDelivery, writeCount - *lastWriteCount);
        stalledSeconds = 0;
    } else {
        stalledSeconds += elapsed;
    }
    lastWriteCount = writeCount;
}

std::optional<int64_t> VisReadCursor::next(int64_t writeCount, double elapsed, double sampleRate) {
    elapsed = elapsed > 0 ? std::min(elapsed, longestStep) : 0;
    trackDelivery(writeCount, elapsed);
    if (writeCount < window)
        return std::nullopt;

    const auto slack = static_cast<int64_t>(sampleRate * slackSeconds);
    const int64_t back = std::min<int64_t>(readable - window, largestDelivery + slack);
    const int64_t lagged = writeCount - back;

    const double advance = carry + elapsed * sampleRate;
    const double step = std::round(advance);
    carry = advance - step;
    int64_t candidate = position.value_or(lagged) + static_cast<int64_t>(step);
    if (candidate > writeCount - slack || candidate < writeCount - readable + window)
        candidate = lagged;

    int64_t result = candidate;
    if (stalledSeconds * sampleRate > 2 * static_cast<double>(largestDelivery))
        result = writeCount; // nothing more comes: show the end of what there is
    else if (writeCount - candidate > back + largestDelivery + slack)
        result = lagged;
    position = std::max<int64_t>(result, window);
    return position;
}

} // namespace vantor
