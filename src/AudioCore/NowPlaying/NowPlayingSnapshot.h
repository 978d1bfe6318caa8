#pragma once

#include "AudioCore/Playback/PlaybackState.h"

namespace vantor {

/// What there is to say about the current track at one moment. A value; any thread.
struct NowPlayingSnapshot {
    QString title;
    QString artist;
    std::optional<QString> album;
    double duration = 0; ///< seconds, 0 when unknown
    double elapsed = 0;  ///< seconds
    PlaybackState state = PlaybackState::stopped;

    bool operator==(const NowPlayingSnapshot &) const = default;
};

} // namespace vantor
