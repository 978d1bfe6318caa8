#include "MusicBackendKit/NowPlaying.h"

#include <algorithm>
#include <cmath>

namespace vantor {

NowPlaying NowPlaying::idle(const OutputDevice::ID &output, double instant) {
    NowPlaying playing;
    playing.output = output;
    playing.updatedAt = instant;
    return playing;
}

double NowPlaying::elapsedAt(double instant) const {
    double seconds = elapsed;
    if (state == State::playing)
        seconds += std::max(instant - updatedAt, 0.0);
    if (duration && *duration > 0)
        seconds = std::min(seconds, *duration);
    return std::max(seconds, 0.0);
}

std::optional<double> NowPlaying::remoteClockAnchor(const OutputDevice::ID &selected) const {
    return remoteClockAnchor(selected == OutputDevice::thisMacID());
}

std::optional<double> NowPlaying::remoteClockAnchor(bool followsLocalPlayer) const {
    if (followsLocalPlayer || state != State::playing)
        return std::nullopt;
    return updatedAt + (clockLead - (elapsed - std::floor(elapsed)));
}

} // namespace vantor
