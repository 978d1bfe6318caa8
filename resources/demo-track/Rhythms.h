#pragma once

#include "demo-track/Score.h"

namespace vantor::demo {

/// Writes the drum parts, with fills, accents and a little human unevenness, into the score.
void writeDrums(Score &score);

} // namespace vantor::demo
