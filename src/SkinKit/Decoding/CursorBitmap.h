#pragma once

#include "SkinKit/Decoding/SkinCursor.h"

#include <QByteArrayView>

#include <optional>

/// Decodes icon and cursor directories (.ico, .cur) from untrusted bytes. Any thread.
namespace vantor::CursorBitmap {

inline constexpr int maxEntries = 64;
inline constexpr int maxSide = 256;
/// Broken entries may share their bytes: a small file could ask for a lot of decoding.
inline constexpr int maxFailures = 4;

/// The frame closest to 32 × 32 that decodes, or nothing; the search ends at the fourth that does not.
[[nodiscard]] std::optional<SkinCursor::Frame> decode(QByteArrayView data);

} // namespace vantor::CursorBitmap
