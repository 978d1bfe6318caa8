#include "AudioCore/Playback/PlayerRules.h"

#include <algorithm>
#include <cmath>

namespace vantor::PlayerRules {

bool skipsAfterFailure(const PlayQueue &queue, int failuresInARow) {
    return queue.repeatMode() != RepeatMode::one && failuresInARow < queue.count() &&
           queue.currentIndex().has_value() && queue.hasForwardTarget();
}

double seekTarget(double seconds, double duration) {
    if (!(seconds > 0))
        return 0;
    if (duration > 0)
        return std::min(seconds, duration);
    return std::isfinite(seconds) ? seconds : 0;
}

float clampedVolume(float volume) {
    return std::isnan(volume) ? 0.0F : std::clamp(volume, 0.0F, 1.0F);
}

float clampedBalance(float balance) {
    return std::isnan(balance) ? 0.0F : std::clamp(balance, -1.0F, 1.0F);
}

double heardTime(double rendered, double latency, double shown, double duration) {
    const double heard = std::max(shown, rendered - latency);
    return duration > 0 ? std::min(heard, duration) : heard;
}

} // namespace vantor::PlayerRules
