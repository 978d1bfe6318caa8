#pragma once

#include "AudioCore/Queue/Track.h"

#include <QString>

#include <chrono>
#include <optional>
#include <variant>

namespace vantor {

enum class PlaybackState { stopped, loading, playing, paused };

/// A track that did not play.
struct PlaybackFailure {
    std::optional<Track> track;
    QString message;             ///< the error's sentence
    int consecutiveFailures = 0; ///< how many tracks failed in a row, this one included
    bool skipped = false;        ///< the player moved on to another track, instead of stopping

    bool operator==(const PlaybackFailure &) const = default;
};

/// What the player tells its observers, in the order in which it happens.
namespace PlayerEvents {
struct TrackChanged {
    std::optional<Track> track;
    bool operator==(const TrackChanged &) const = default;
};
struct StateChanged {
    PlaybackState state;
    bool operator==(const StateChanged &) const = default;
};
struct Seeked {
    double time; ///< seconds
    bool operator==(const Seeked &) const = default;
};
struct Failed {
    PlaybackFailure failure;
    bool operator==(const Failed &) const = default;
};
struct StreamStarted {
    bool operator==(const StreamStarted &) const = default;
};
struct StreamEnded {
    bool operator==(const StreamEnded &) const = default;
};
struct StreamPreempted {
    bool operator==(const StreamPreempted &) const = default;
};
} // namespace PlayerEvents

using PlayerEvent = std::variant<PlayerEvents::TrackChanged, PlayerEvents::StateChanged, PlayerEvents::Seeked,
                                 PlayerEvents::Failed, PlayerEvents::StreamStarted, PlayerEvents::StreamEnded,
                                 PlayerEvents::StreamPreempted>;

/// Names one registered observer.
struct PlayerEventToken {
    quint64 value = 0;
    auto operator<=>(const PlayerEventToken &) const = default;
};

/// A short message for the main window's marquee, shown for three seconds.
struct StatusNotice {
    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::seconds duration{3};

    QString text;
    std::optional<QString> detail;
    Clock::time_point shownAt;

    [[nodiscard]] Clock::time_point expiresAt() const { return shownAt + duration; }
    /// Strictly before expiresAt().
    [[nodiscard]] bool isActive(Clock::time_point at) const { return at < expiresAt(); }

    /// None when nothing was skipped.
    [[nodiscard]] static std::optional<StatusNotice> skipped(int skipped, int added,
                                                             Clock::time_point shownAt);
    [[nodiscard]] static StatusNotice skinFailed(const QString &name, Clock::time_point shownAt);
    [[nodiscard]] static StatusNotice playbackFailed(const PlaybackFailure &failure,
                                                     Clock::time_point shownAt);

    bool operator==(const StatusNotice &) const = default;
};

} // namespace vantor
