#pragma once

#include "SkinKit/Decoding/SkinCursor.h"

#include <QByteArrayView>

#include <cstdint>
#include <optional>

namespace vantor::CursorParser {

/// What one file's frames have at most: 256 of the largest, 64 MiB.
inline constexpr std::int64_t maxPixels = 16'777'216;

/// Decodes either kind of pointer file by its first four bytes: "RIFF" is animated, anything else still.
/// Nothing when the frames have more pixels together than `pixelBudget`.
[[nodiscard]] std::optional<SkinCursor> parse(QByteArrayView data, std::int64_t pixelBudget = maxPixels);

} // namespace vantor::CursorParser
