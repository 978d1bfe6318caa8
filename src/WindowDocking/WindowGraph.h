#pragma once

#include "WindowDocking/LayoutRules.h"

#include <map>
#include <optional>
#include <span>

namespace vantor {

/// What a window hangs on.
struct Edges {
    std::optional<WindowKind> below{}; ///< under whose bottom edge it hangs
    std::optional<WindowKind> right{}; ///< against whose right edge its left edge rests

    bool operator==(const Edges &) const = default;
};

/// Which windows are docked to which, so that the neighbours of one that changes its size follow. Pure
/// functions; any thread.
namespace WindowGraph {

using Graph = std::map<WindowKind, Edges>;

/// Docked are windows whose edges meet exactly, in whole points.
[[nodiscard]] Graph generate(std::span<const DockedWindow> windows);

/// How far every window of the graph goes after these changes of size, so that what was docked on the right
/// of or under a window still is. A kind without a change contributes none.
[[nodiscard]] std::map<WindowKind, Offset> positionDiff(const Graph &graph,
                                                        const std::map<WindowKind, BoxSize> &sizeDiff);

} // namespace WindowGraph

} // namespace vantor
