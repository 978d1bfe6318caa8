#pragma once

#include "SendspinKit/Clock/SendspinTimeFilter.h"

namespace vantor {

/// What decides when a sound is heard. A value without pointers.
struct SendspinTiming {
    SendspinTimeFilter filter;
    int staticDelayMs = 0;
    bool isKnown = false; ///< before the server's clock is known nothing can be scheduled

    /// When the sound of a server's timestamp is to be heard, in microseconds of the local clock.
    ///
    /// The static delay is added: a player with a greater one is heard later than the others. Should it come
    /// to mean the time that the equipment behind the output takes, for which a player has to be earlier,
    /// this sign is all that changes.
    [[nodiscard]] std::int64_t playoutTime(std::int64_t timestamp) const {
        // Far from every end of the range, so that what is reckoned with it fits.
        constexpr std::int64_t furthest = std::int64_t{1} << 61;
        const std::int64_t local = filter.computeClientTime(timestamp);
        const std::int64_t delay = std::int64_t{staticDelayMs} * 1000;
        return local > furthest ? furthest : local < -furthest ? -furthest : local + delay;
    }
};

} // namespace vantor
