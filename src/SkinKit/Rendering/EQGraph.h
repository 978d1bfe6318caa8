#pragma once

#include <QImage>

#include <optional>
#include <span>
#include <vector>

namespace vantor {

struct Skin;

/// The small picture of the equalizer's curve. Slider values are 0…100 as in EQLayout; rows count from the
/// top, 0…18. Any thread.
namespace EQGraph {

/// The row at which a band's value is marked: 0 at +12 dB, 18 at −12 dB.
[[nodiscard]] int knotY(double value);
/// The row of the preamp's line. Runs the other way round: 18 at +12 dB.
[[nodiscard]] int preampLineY(double value);

/// The row of each of the curve's 109 columns, through ten bands twelve columns apart. Missing values count
/// as the middle; surplus ones are ignored.
[[nodiscard]] std::vector<int> curve(std::span<const double> values);

/// The graph in the skin's pictures and line colours; none when the skin's sheet has no graph.
[[nodiscard]] std::optional<QImage> render(const Skin &skin, std::span<const double> values, double preamp);

} // namespace EQGraph
} // namespace vantor
