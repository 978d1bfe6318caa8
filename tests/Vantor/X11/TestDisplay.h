#pragma once

#include "tests/Support/VirtualDisplay.h"

/// The display of this program: 1600 × 900, one screen, no window manager at first.
vantor::VirtualDisplay &testDisplay();
