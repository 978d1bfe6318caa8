#pragma once

#include "demo-track/Desk.h"
#include "demo-track/Score.h"

namespace vantor::demo {

/// Plays kick, snare, hats, cymbals and risers; sets the desk's ducking curve from the kick first, so it must
/// be called before the instruments that duck.
void playDrums(Desk &desk, const Score &score);

} // namespace vantor::demo
