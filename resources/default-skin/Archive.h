#pragma once

#include "Sheet.h"

#include <QString>

namespace vantor::art {

/// Writes the files as a ZIP archive in the order given, always with the same bytes for the same files.
/// Returns what went wrong, or nothing.
[[nodiscard]] QString writeArchive(const QString &path, const std::vector<SkinFile> &files);

} // namespace vantor::art
