#pragma once

#include <QString>

#include <optional>

namespace vantor {

class SkinArchive;

namespace SkinPreviewPage {

inline constexpr int maxReadmeBytes = 20'480; ///< of UTF-8; a longer text is cut and ends in "…"

/// The text that the skin's author left for its wearer: readme*.txt, else the first other text file.
[[nodiscard]] std::optional<QString> readme(const SkinArchive &archive);

} // namespace SkinPreviewPage
} // namespace vantor
