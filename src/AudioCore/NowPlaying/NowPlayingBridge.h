#pragma once

#include "AudioCore/NowPlaying/EmbeddedArtworkLoader.h"
#include "AudioCore/NowPlaying/NowPlayingCenter.h"
#include "AudioCore/NowPlaying/NowPlayingSnapshot.h"

#include <QObject>

namespace vantor {

class NowPlayingCommandTarget;
class Player;

/// Keeps the system's now-playing surface in step with the player, and hands its commands to the target.
/// Main thread. Borrows all three, which have to live longer.
class NowPlayingBridge : public QObject {
    Q_OBJECT

  public:
    NowPlayingBridge(Player &player, NowPlayingCommandTarget &target, NowPlayingCenter &center);
    /// As uninstall().
    ~NowPlayingBridge() override;

    /// Publishes what is current and follows it from now on. Twice is once.
    void install();
    /// Takes the handlers and what was published away.
    void uninstall();

  private:
    void publish();
    void takeTrack(const std::optional<Track> &track);
    void takeStreamTitle();

    Player &m_player;
    NowPlayingCommandTarget &m_target;
    NowPlayingCenter &m_center;
    std::optional<PlayerEventToken> m_observer; ///< present while installed
    QImage m_artwork;                           ///< of the current track
    std::optional<QString> m_streamTitle;       ///< what a station has said that it plays
    EmbeddedArtworkLoader m_artworkLoader;
};

} // namespace vantor
