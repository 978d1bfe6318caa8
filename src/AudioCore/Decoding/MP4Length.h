#pragma once

#include "AudioCore/Decoding/FFmpegHandles_p.h"

#include <cstdint>
#include <optional>

namespace vantor {

/// How many samples of a track in an MP4 file are sound: without the delay and the padding that the encoder
/// added. FFmpeg leaves the padding in, and knows lengths only in the file's coarse clock. None when the file
/// does not say. Reads in the open file and comes back to where its input stood.
[[nodiscard]] std::optional<std::int64_t> lengthInMP4(AVFormatContext &format, const AVStream &stream);

} // namespace vantor
