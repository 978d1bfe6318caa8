#pragma once

#include "SkinKit/Loading/Skin.h"
#include "SkinKit/Loading/SkinArchive.h"

#include <QUrl>

/// Turns an archive or a skin folder into a Skin. Pure functions of the bytes; any thread. Throw SkinError.
namespace vantor::SkinParser {

[[nodiscard]] Skin parse(const SkinArchive &archive);
[[nodiscard]] Skin parse(const QUrl &url, const SkinArchive::Limits &limits = SkinArchive::Limits::default_);

/// The warnings that parse() would give, and its errors, without holding the skin's pictures in memory: what
/// an index of many skins asks.
[[nodiscard]] QStringList warnings(const SkinArchive &archive);

} // namespace vantor::SkinParser
