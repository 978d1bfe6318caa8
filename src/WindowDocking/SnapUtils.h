#pragma once

#include "WindowDocking/DockedWindow.h"

#include <functional>
#include <optional>
#include <set>
#include <span>

namespace vantor {

/// Where a box snaps: the new position on each axis, or none where it stays.
struct SnapResult {
    std::optional<double> x;
    std::optional<double> y;

    bool operator==(const SnapResult &) const = default;
};

/// How boxes snap onto each other and into bounds. Pure functions; any thread.
namespace SnapUtils {

/// Nearer than this, in points, edges jump onto each other.
inline constexpr double snapDistance = 15;

[[nodiscard]] bool near(double a, double b);

/// Whether the boxes share some of an axis or miss it by no more than the snap distance.
[[nodiscard]] bool overlapX(const Box &a, const Box &b);
[[nodiscard]] bool overlapY(const Box &a, const Box &b);

/// Where `a` snaps against `b`. On each axis docking edge to edge wins over aligning, and the left or top
/// edge of `a` over its right or bottom one.
[[nodiscard]] SnapResult snap(const Box &a, const Box &to);
/// The same as a displacement of `a`; 0 on an axis that does not snap.
[[nodiscard]] Offset snapDiff(const Box &a, const Box &to);

/// Where `a` is held inside `bounds`: at an edge that it crosses or is near to. The left and the top edge win
/// if it is larger than the bounds.
[[nodiscard]] SnapResult snapWithin(const Box &a, const Box &bounds);
[[nodiscard]] Offset snapWithinDiff(const Box &a, const Box &bounds);

/// One displacement for all of `as` against all of `bs`: on each axis the first that is not 0.
[[nodiscard]] Offset snapDiffManyToMany(std::span<const Box> as, std::span<const Box> bs);

[[nodiscard]] Offset applyDiff(Offset a, Offset diff);
/// `initial` plus the diffs combined: per axis the smaller one (by sign) of those that are not 0.
[[nodiscard]] Offset applyMultipleDiffs(Offset initial, std::span<const Offset> diffs);

/// The smallest box that holds all of them; none, or an empty box at the origin, for no boxes.
[[nodiscard]] std::optional<Box> boundingBoxOrNil(std::span<const Box> boxes);
[[nodiscard]] Box boundingBox(std::span<const Box> boxes);

/// Whether `a` snaps against `b` on either axis.
[[nodiscard]] bool abuts(const Box &a, const Box &b);

/// The kinds that can be reached from `start`, itself included, by going from window to connected window.
/// Empty when no window is of that kind.
[[nodiscard]] std::set<WindowKind>
traceConnection(std::span<const DockedWindow> windows, WindowKind start,
                const std::function<bool(const Box &, const Box &)> &areConnected = abuts);

} // namespace SnapUtils

} // namespace vantor
