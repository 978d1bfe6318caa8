#pragma once

#include "SkinBrowser/SharedSkinIndex_p.h"

#include <QString>

namespace vantor {

/// Moves this one file of a skin to the Trash and takes it out of the index. Returns the sentence for the
/// user when either failed, else an empty text. A worker thread.
[[nodiscard]] QString moveSkinToTrash(SharedSkinIndex &index, const QString &path, const QString &name);

} // namespace vantor
