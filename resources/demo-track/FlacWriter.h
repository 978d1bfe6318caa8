#pragma once

#include "demo-track/Desk.h"

#include <map>
#include <string>

namespace vantor::demo {

/// Writes the sound as a 16-bit FLAC file, dithered, with the tags; the same sound gives the same bytes.
/// Throws std::runtime_error with FFmpeg's message.
void writeFlac(const std::string &path, const StereoBuffer &sound,
               const std::map<std::string, std::string> &tags);

} // namespace vantor::demo
