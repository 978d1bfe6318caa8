#pragma once

#include "SkinKit/Decoding/SkinCursor.h"

#include <QByteArrayView>

#include <optional>

namespace vantor::CursorParser {

/// Decodes either kind of pointer file by its first four bytes: "RIFF" is animated, anything else still.
[[nodiscard]] std::optional<SkinCursor> parse(QByteArrayView data);

} // namespace vantor::CursorParser
