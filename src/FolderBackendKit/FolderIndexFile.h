#pragma once

#include "FolderBackendKit/FolderIndex.h"

/// The index between two runs. Worker threads.
namespace vantor::FolderIndexFile {

/// None when there is none, or it is not whole or of another version.
[[nodiscard]] std::optional<FolderIndex> read(const QString &path);

/// Puts it in the place of the one before in one step, and makes the folder it lies in. False, with the one
/// before still there, when the disk is full or the like.
bool write(const QString &path, const FolderIndex &index);

} // namespace vantor::FolderIndexFile
