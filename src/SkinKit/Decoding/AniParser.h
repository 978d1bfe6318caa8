#pragma once

#include "SkinKit/Decoding/SkinCursor.h"

#include <QByteArrayView>

#include <optional>

/// Decodes RIFF animated cursors (.ani) from untrusted bytes. Any thread.
namespace vantor::AniParser {

inline constexpr int maxFrames = 256;
inline constexpr int maxSteps = 1024;
inline constexpr int maxDepth = 4; ///< LIST chunks inside LIST chunks

/// The animation, or nothing for a file without a header chunk, a decodable frame or a step.
[[nodiscard]] std::optional<SkinCursor> parse(QByteArrayView data);

} // namespace vantor::AniParser
