#pragma once

#include "AudioCore/Playback/PlaybackState.h"
#include "AudioCore/Queue/RepeatMode.h"
#include "MusicBackendKit/TransportCommand.h"

#include <optional>

namespace vantor {

/// What plays, as far as transport controls show it.
struct PlaybackView {
    PlaybackState state = PlaybackState::stopped;
    bool wantsToPlay = false;     ///< it plays, or will as soon as it has loaded
    double elapsed = 0;           ///< seconds
    double duration = 0;          ///< seconds, 0 when unknown
    std::optional<double> volume; ///< 0…1; none when it cannot be set
    double balance = 0;           ///< −1…1
    bool isShuffled = false;
    RepeatMode repeat = RepeatMode::off;
    bool isEmpty = true; ///< there is nothing that could be played
    bool hasNext = false;

    [[nodiscard]] bool isSeekable() const { return state != PlaybackState::stopped && duration > 0; }

    bool operator==(const PlaybackView &) const = default;
};

/// What the windows, the keys and the desktop show and command: the player of this computer, or a speaker of
/// the music source. Main thread.
class PlaybackTarget {
  public:
    virtual ~PlaybackTarget() = default;

    [[nodiscard]] virtual PlaybackView view() const = 0;
    /// Does not wait. What cannot be done is told to the user.
    virtual void transport(const TransportCommand &command) = 0;
};

} // namespace vantor
