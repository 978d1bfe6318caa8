#include "AudioCore/NowPlaying/NowPlayingInfoBuilder.h"

namespace vantor {

NowPlayingInfo NowPlayingInfoBuilder::info(const NowPlayingSnapshot &snapshot, const QImage &artwork) {
    return {.title = snapshot.title,
            .artist = snapshot.artist,
            .albumTitle = snapshot.album,
            .playbackDuration = snapshot.duration,
            .elapsedPlaybackTime = snapshot.elapsed,
            .playbackRate = snapshot.state == PlaybackState::playing ? 1.0 : 0.0,
            .defaultPlaybackRate = 1.0,
            .mediaType = NowPlayingInfo::MediaType::audio,
            .artwork = artwork};
}

} // namespace vantor
