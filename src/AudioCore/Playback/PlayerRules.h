#pragma once

#include "AudioCore/Queue/PlayQueue.h"

/// What the player decides, free of what it drives. Any thread.
namespace vantor::PlayerRules {

/// Whether the player goes on to another track after the n-th failure in a row. With n below the number of
/// tracks every track of a list is tried at most once, also when the list repeats.
[[nodiscard]] bool skipsAfterFailure(const PlayQueue &queue, int failuresInARow);

/// A place inside the track; `duration` 0 is unknown and limits nothing. NaN is the start.
[[nodiscard]] double seekTarget(double seconds, double duration);

/// Into the range; NaN is its neutral value 0.
[[nodiscard]] float clampedVolume(float volume);
[[nodiscard]] float clampedBalance(float balance);

/// The time of the sound that is heard: never behind what was shown before nor beyond the end.
[[nodiscard]] double heardTime(double rendered, double latency, double shown, double duration);

} // namespace vantor::PlayerRules
