#pragma once

#include "SkinKit/Decoding/SkinCursor.h"

#include <QByteArrayView>

#include <cstdint>
#include <optional>

/// Decodes RIFF animated cursors (.ani) from untrusted bytes. Any thread.
namespace vantor::AniParser {

inline constexpr int maxFrames = 256;
inline constexpr int maxSteps = 1024;
inline constexpr int maxDepth = 4; ///< LIST chunks inside LIST chunks

inline constexpr int maxFailures = 64; ///< broken icons, after which no more are decoded

/// The animation, or nothing for a file without a header chunk, a decodable frame or a step, or whose frames
/// have more than `maxPixels` together.
[[nodiscard]] std::optional<SkinCursor> parse(QByteArrayView data, std::int64_t maxPixels);

} // namespace vantor::AniParser
