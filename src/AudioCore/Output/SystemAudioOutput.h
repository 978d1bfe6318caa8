#pragma once

#include "AudioCore/Output/AudioOutput.h"

#include <memory>

namespace vantor {

/// The sound server's default device, or paced silence when no server answers within a second. Main thread.
[[nodiscard]] std::unique_ptr<AudioOutput> makeSystemAudioOutput();

} // namespace vantor
