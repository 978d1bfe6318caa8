#pragma once

#include "AudioCore/Equalizer/EQPreset.h"

#include <span>

/// Lists of equalizer presets that the program keeps for itself, exact to the last digit. Main thread; the
/// files are small.
namespace vantor::EQPresetFile {

inline constexpr std::size_t maxPresets = 5000;

/// Empty when there is no such file, or none that this version understands; entries that make no sense are
/// left out.
[[nodiscard]] std::vector<EQPreset> load(const QString &path);

/// Replaces the file at once and makes its folder. False when that fails; the old file is then still there.
[[nodiscard]] bool save(const QString &path, std::span<const EQPreset> presets);

} // namespace vantor::EQPresetFile
