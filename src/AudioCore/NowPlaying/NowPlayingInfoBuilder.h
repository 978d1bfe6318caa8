#pragma once

#include "AudioCore/NowPlaying/NowPlayingCenter.h"
#include "AudioCore/NowPlaying/NowPlayingSnapshot.h"

/// Puts a snapshot into the system's terms. Any thread.
namespace vantor::NowPlayingInfoBuilder {

[[nodiscard]] NowPlayingInfo info(const NowPlayingSnapshot &snapshot, const QImage &artwork = {});

} // namespace vantor::NowPlayingInfoBuilder
