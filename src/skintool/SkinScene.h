#pragma once

#include "SkinKit/Rendering/MainWindowScene.h"
#include "skintool/SkintoolOptions.h"

namespace vantor {

/// Beyond it a picture would take more than half a gigabyte.
inline constexpr int maxPictureScale = 64;

/// `idle`: the focused main window, stopped, nothing loaded, full volume. `webamp`: the moment in which
/// pictures are compared, chosen so that every sheet of the main window is seen: a stereo track of 44.1 kHz
/// and 128 kbps plays at 1:23 of 4:05, volume 78 %, balance in the middle, repeat, equalizer and playlist
/// lit, a title that just fills the marquee, a fixed spectrum.
[[nodiscard]] MainWindowScene skinScene(SkintoolOptions::State state);

} // namespace vantor
