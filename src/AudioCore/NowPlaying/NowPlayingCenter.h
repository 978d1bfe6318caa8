#pragma once

#include <QImage>
#include <QString>

#include <functional>
#include <optional>

namespace vantor {

/// What the system shows of the track that plays.
struct NowPlayingInfo {
    enum class MediaType { audio };

    QString title;
    QString artist;
    std::optional<QString> albumTitle;
    double playbackDuration = 0;    ///< seconds, 0 when unknown
    double elapsedPlaybackTime = 0; ///< seconds
    double playbackRate = 0;        ///< 1 while it plays, else 0
    double defaultPlaybackRate = 1;
    MediaType mediaType = MediaType::audio;
    QImage artwork; ///< null while there is none

    bool operator==(const NowPlayingInfo &) const = default;
};

/// What the system can ask of a player.
enum class NowPlayingCommand {
    play,
    pause,
    togglePlayPause,
    stop,
    nextTrack,
    previousTrack,
    changePlaybackPosition,
    seekForward,
    seekBackward,
    skipForward,
    skipBackward,
};

/// The system's now-playing surface. Main thread; handlers are called there.
class NowPlayingCenter {
  public:
    /// `seconds`: where to, for changePlaybackPosition; otherwise 0.
    using Handler = std::function<void(double seconds)>;

    virtual ~NowPlayingCenter() = default;

    virtual void publish(const NowPlayingInfo &info) = 0;
    /// Nothing is playing or about to.
    virtual void clear() = 0;
    /// An empty handler takes the present one away.
    virtual void setHandler(NowPlayingCommand command, Handler handler) = 0;
    virtual void setEnabled(NowPlayingCommand command, bool enabled) = 0;
};

} // namespace vantor
