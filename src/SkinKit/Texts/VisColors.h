#pragma once

#include "SkinKit/RGBColor.h"

#include <QByteArrayView>

#include <array>

namespace vantor {

/// The visualizer's palette: 0 background, 1 dots, 2–17 analyser from top to bottom, 18–22 oscilloscope, 23
/// peaks.
using VisColors = std::array<RGBColor, 24>;

/// Used for a skin without viscolor.txt and for the indices that a short file does not supply.
extern const VisColors defaultVisColors;

namespace VisColorParser {

struct Result {
    VisColors colors = defaultVisColors;
    int parsedCount = 0; ///< 0–24: colours that came from the file

    bool operator==(const Result &) const = default;
};

/// Total. Lines without three numbers in front are skipped without using up an index.
[[nodiscard]] Result parseCounted(QByteArrayView bytes);

} // namespace VisColorParser
} // namespace vantor
