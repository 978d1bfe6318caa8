#pragma once

#include "demo-track/Desk.h"
#include "demo-track/Score.h"

namespace vantor::demo {

/// The sustained and struck synthesiser voices. Each plays its part of the score onto the desk.
void playPad(Desk &desk, const Score &score);
void playBass(Desk &desk, const Score &score);
void playArpeggio(Desk &desk, const Score &score);
void playLead(Desk &desk, const Score &score);

} // namespace vantor::demo
