#include "AudioCore/NowPlaying/NowPlayingBridge.h"

#include "AudioCore/NowPlaying/NowPlayingCommandTarget.h"
#include "AudioCore/NowPlaying/NowPlayingInfoBuilder.h"
#include "AudioCore/Playback/Player.h"
#include "Platform/NativePath.h"

namespace vantor {

namespace {

using Command = NowPlayingCommand;

struct Route {
    Command command;
    void (*run)(NowPlayingCommandTarget &target, double seconds);
};

constexpr std::array routes{
    Route{Command::play, [](NowPlayingCommandTarget &target, double) { target.play(); }},
    Route{Command::pause, [](NowPlayingCommandTarget &target, double) { target.pause(); }},
    Route{Command::togglePlayPause,
          [](NowPlayingCommandTarget &target, double) { target.togglePlayPause(); }},
    Route{Command::stop, [](NowPlayingCommandTarget &target, double) { target.stop(); }},
    Route{Command::nextTrack, [](NowPlayingCommandTarget &target, double) { target.next(); }},
    Route{Command::previousTrack, [](NowPlayingCommandTarget &target, double) { target.previous(); }},
    Route{Command::changePlaybackPosition,
          [](NowPlayingCommandTarget &target, double seconds) { target.seek(seconds); }},
};

constexpr std::array notOffered{Command::seekForward, Command::seekBackward, Command::skipForward,
                                Command::skipBackward};

} // namespace

NowPlayingBridge::NowPlayingBridge(Player &player, NowPlayingCommandTarget &target, NowPlayingCenter &center)
    : m_player(player), m_target(target), m_center(center) {}

NowPlayingBridge::~NowPlayingBridge() {
    uninstall();
}

void NowPlayingBridge::install() {
    if (m_observer)
        return;
    m_observer = m_player.addEventObserver([this](const PlayerEvent &event) {
        if (const auto *changed = std::get_if<PlayerEvents::TrackChanged>(&event))
            takeTrack(changed->track);
        publish();
    });
    connect(&m_player, &Player::downloadChanged, this, &NowPlayingBridge::takeStreamTitle);
    for (const Route &route : routes) {
        m_center.setHandler(route.command,
                            [this, run = route.run](double seconds) { run(m_target, seconds); });
        m_center.setEnabled(route.command, true);
    }
    for (const Command command : notOffered)
        m_center.setEnabled(command, false);
    takeTrack(m_player.queue().current());
    m_streamTitle = m_player.streamTitle();
    publish();
}

void NowPlayingBridge::uninstall() {
    if (!m_observer)
        return;
    m_player.removeEventObserver(*std::exchange(m_observer, std::nullopt));
    m_player.disconnect(this);
    takeTrack(std::nullopt);
    for (const Route &route : routes)
        m_center.setHandler(route.command, {});
    m_center.clear();
}

void NowPlayingBridge::takeTrack(const std::optional<Track> &track) {
    m_artwork = {};
    m_artworkLoader.cancel();
    const QUrl *const file = track ? std::get_if<QUrl>(&track->source) : nullptr;
    if (file && file->isLocalFile())
        m_artworkLoader.request(NativePath::fromUrl(*file), [this](const QImage &artwork) {
            m_artwork = artwork;
            publish();
        });
}

// The same signal tells of every step of a download.
void NowPlayingBridge::takeStreamTitle() {
    if (std::exchange(m_streamTitle, m_player.streamTitle()) != m_streamTitle)
        publish();
}

void NowPlayingBridge::publish() {
    const std::optional<Track> track = m_player.queue().current();
    if (!track) {
        m_center.clear();
        return;
    }
    NowPlayingSnapshot snapshot{.title = track->title,
                                .artist = track->artist,
                                .album = track->album,
                                .duration = m_player.duration(),
                                .elapsed = m_player.currentTime(),
                                .state = m_player.state()};
    if (m_streamTitle) { // as the station words it; the track is the station, which takes the album's place
        snapshot.title = *m_streamTitle;
        snapshot.artist.clear();
        snapshot.album = track->title;
    }
    m_center.publish(NowPlayingInfoBuilder::info(snapshot, m_artwork));
}

} // namespace vantor
