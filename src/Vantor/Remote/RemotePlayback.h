#pragma once

#include "MusicBackendKit/NowPlaying.h"
#include "MusicBackendKit/RemoteQueue.h"
#include "Vantor/Model/PlaybackTarget.h"
#include "Vantor/Remote/Expected.h"

namespace vantor {

/// What a speaker plays, and its queue, as the server told them, covered by what was commanded and is not
/// confirmed yet. Main thread.
class RemotePlayback {
  public:
    RemotePlayback() = default; ///< of no speaker
    /// Idle.
    explicit RemotePlayback(const OutputDevice::ID &output);

    /// What is other than it showed before.
    struct Step {
        bool hasOtherItem = false;
        bool hasOtherArtwork = false;
        std::optional<double> jumpedTo; ///< within the same item. Seconds
    };
    // What the server tells.
    Step take(const NowPlaying &told);
    void take(const RemoteQueueSnapshot &told);

    /// As it shows.
    [[nodiscard]] NowPlaying nowPlaying() const;
    [[nodiscard]] const RemoteQueueSnapshot &queue() const { return m_queue; }
    [[nodiscard]] PlaybackView view() const;
    /// Within the item that plays. Seconds.
    [[nodiscard]] double reachable(double seconds) const;

    /// Shows what becomes of a command, if that can be known.
    void expect(const TransportCommand &command);
    void forgetExpectations();

    /// Seconds since 1970, as all instants.
    [[nodiscard]] static double now();

  private:
    struct Place {
        double elapsed = 0;
        double at = 0;
    };
    void confirm(const NowPlaying &told);
    void expectState(NowPlaying::State state);

    NowPlaying m_playing;
    RemoteQueueSnapshot m_queue;
    Expected<NowPlaying::State> m_state;
    Expected<double> m_volume;
    Expected<Place> m_place;
    Expected<bool> m_shuffle;
    Expected<bool> m_repeat;
};

} // namespace vantor
