#pragma once

#include "MusicBackendKit/MediaID.h"

#include <QStringList>

/// Texts that several pages of the library show. Main thread.
namespace vantor::LibraryTexts {

/// "1 album", "12 albums"
[[nodiscard]] QString count(MediaKind kind, int count);
/// "16 s", "47 min", "1 h 12 min"
[[nodiscard]] QString runningTime(double seconds);
/// Those that are not empty, in one line.
[[nodiscard]] QString joined(QStringList facts);

} // namespace vantor::LibraryTexts
