#pragma once

#include "demo-track/Desk.h"
#include "demo-track/Score.h"

namespace vantor::demo {

/// Plucked strings and struck bells: sounds that ring out by themselves.
void playPlucks(Desk &desk, const Score &score);
void playBells(Desk &desk, const Score &score);

} // namespace vantor::demo
