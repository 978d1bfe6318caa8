#pragma once

#include "AudioCore/Output/OutputDeviceProvider.h"
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

/// The chosen device's id, while it is there and has not refused to play.
[[nodiscard]] std::optional<quint32> chosenOutput(const std::vector<OutputDeviceDescription> &devices,
                                                  const std::optional<QString> &chosenKey,
                                                  const std::optional<quint32> &refused);

/// What an output is made for.
struct OutputTarget {
    bool isSettled = false;
    std::optional<quint32> chosen;        ///< none: wherever the system wants it
    std::optional<quint32> systemDefault; ///< none: there is no sound system

    bool operator==(const OutputTarget &) const = default;
};

/// Whether an output that was made for one target and plays on `device` must give way for another target. It
/// need not when the system has moved it by itself, after its default or by the user's hand.
[[nodiscard]] bool needsAnotherOutput(const OutputTarget &madeFor, const OutputTarget &target,
                                      const std::optional<quint32> &device);

} // namespace vantor::PlayerRules
