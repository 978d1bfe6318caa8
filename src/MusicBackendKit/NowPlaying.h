#pragma once

#include "MusicBackendKit/ArtworkRef.h"
#include "MusicBackendKit/MediaID.h"
#include "MusicBackendKit/OutputDevice.h"

namespace vantor {

/// What an output plays. A value; any thread. Instants are seconds since 1970 in UTC.
struct NowPlaying {
    enum class State { stopped, loading, playing, paused };

    /// How far behind a whole second of the remote clock the display changes: what the way to the screen
    /// takes must not show the second before. Seconds.
    static constexpr double clockLead = 0.05;

    OutputDevice::ID output;
    State state = State::stopped;
    std::optional<MediaID> item;
    std::optional<QString> title;
    std::optional<QString> artist;
    std::optional<QString> album;
    std::optional<double> duration; ///< seconds
    double elapsed = 0;             ///< seconds, at `updatedAt`
    double updatedAt = 0;
    std::optional<double> volume; ///< 0…1
    std::optional<ArtworkRef> artwork;

    /// Nothing at all on that output.
    [[nodiscard]] static NowPlaying idle(const OutputDevice::ID &output, double instant);

    /// How far the item is then, within its duration. Seconds.
    [[nodiscard]] double elapsedAt(double instant) const;

    /// When a seconds display changes in step with a remote output that plays; none for the local output, or
    /// when it does not play.
    [[nodiscard]] std::optional<double> remoteClockAnchor(const OutputDevice::ID &selected) const;
    /// The same, of a display that follows the local player or does not.
    [[nodiscard]] std::optional<double> remoteClockAnchor(bool followsLocalPlayer) const;

    bool operator==(const NowPlaying &) const = default;
};

/// One row of the overview of what plays where.
struct OutputActivity {
    OutputDevice::ID output;
    QString name;
    NowPlaying::State state = NowPlaying::State::stopped;
    std::optional<OutputDevice::ID> leader; ///< of the group that the output plays in as a member
    std::optional<double> updatedAt;

    bool operator==(const OutputActivity &) const = default;
};

[[nodiscard]] size_t qHash(const NowPlaying &playing, size_t seed = 0) noexcept;
[[nodiscard]] size_t qHash(const OutputActivity &activity, size_t seed = 0) noexcept;

} // namespace vantor
