#pragma once

#include "SkinKit/Decoding/SkinCursor.h"

#include <QByteArrayView>

#include <optional>

/// Decodes icon and cursor directories (.ico, .cur) from untrusted bytes. Any thread.
namespace vantor::CursorBitmap {

inline constexpr int maxEntries = 64;
inline constexpr int maxSide = 256;

/// The frame closest to 32 × 32 that decodes, or nothing.
[[nodiscard]] std::optional<SkinCursor::Frame> decode(QByteArrayView data);

} // namespace vantor::CursorBitmap
