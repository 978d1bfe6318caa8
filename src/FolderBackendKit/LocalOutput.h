#pragma once

#include "AudioCore/Queue/Track.h"
#include "MusicBackendKit/NowPlaying.h"
#include "MusicBackendKit/PlayRequest.h"
#include "MusicBackendKit/TransportCommand.h"
#include "Platform/AsyncStream.h"

#include <vector>

namespace vantor {

/// The player of this computer, as a library on its disk sees it. Main thread.
class LocalOutput {
  public:
    virtual ~LocalOutput() = default;

    /// Tracks of local files. `mode.startIndex` counts in `tracks`.
    virtual void play(const std::vector<Track> &tracks, PlayMode mode) = 0;
    virtual void transport(TransportCommand command) = 0;
    /// As MusicBackend::nowPlaying() of OutputDevice::thisMac().
    virtual AsyncStream<NowPlaying> nowPlaying() = 0;
};

} // namespace vantor
