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

std::optional<quint32> chosenOutput(const std::vector<OutputDeviceDescription> &devices,
                                    const std::optional<QString> &chosenKey,
                                    const std::optional<quint32> &refused) {
    for (const OutputDeviceDescription &device : devices) {
        if (device.key == chosenKey && device.id != refused)
            return device.id;
    }
    return std::nullopt;
}

bool needsAnotherOutput(const OutputTarget &madeFor, const OutputTarget &target,
                        const std::optional<quint32> &device) {
    if (madeFor.isSettled != target.isSettled || madeFor.chosen != target.chosen)
        return true;
    if (target.chosen || !target.systemDefault)
        return false;
    const bool isSilent = !madeFor.systemDefault;
    const bool isLeftBehind = device && device == madeFor.systemDefault && device != target.systemDefault;
    return isSilent || isLeftBehind;
}

} // namespace vantor::PlayerRules
