#pragma once

#include "demo-track/Desk.h"

namespace vantor::demo {

/// Echoes that cross from side to side, a dotted eighth apart, duller each time; also feeds the reverb.
void addDelay(Desk &desk);
/// A room of about two seconds.
void addReverb(Desk &desk);

/// Takes out what lies below hearing, brings the mix to its level, bends the loudest peaks softly, holds the
/// rest under the ceiling and fades the end out to silence. In place.
void master(StereoBuffer &mix);

} // namespace vantor::demo
