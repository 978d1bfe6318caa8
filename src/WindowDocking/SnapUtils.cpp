#include "WindowDocking/SnapUtils.h"

#include <algorithm>
#include <cmath>

namespace vantor::SnapUtils {

namespace {

/// A box seen along one axis.
struct Interval {
    double start;
    double length;

    [[nodiscard]] double end() const { return start + length; }
};

Interval horizontal(const Box &box) {
    return {box.x, box.width};
}
Interval vertical(const Box &box) {
    return {box.y, box.height};
}

bool reaches(Interval a, Interval b) {
    return b.start <= a.end() + snapDistance && a.start <= b.end() + snapDistance;
}

std::optional<double> snapAlong(Interval a, Interval b) {
    if (near(a.start, b.end()))
        return b.end();
    if (near(a.end(), b.start))
        return b.start - a.length;
    if (near(a.start, b.start))
        return b.start;
    if (near(a.end(), b.end()))
        return b.end() - a.length;
    return {};
}

std::optional<double> holdWithin(Interval a, Interval bounds) {
    if (a.start - snapDistance < bounds.start)
        return bounds.start;
    if (bounds.end() < a.end() + snapDistance)
        return bounds.end() - a.length;
    return {};
}

Offset asDiff(const SnapResult &snapped, const Box &from) {
    return {snapped.x ? *snapped.x - from.x : 0, snapped.y ? *snapped.y - from.y : 0};
}

double combined(double a, double b) {
    return a == 0 || b == 0 ? a + b : std::min(a, b);
}

} // namespace

bool near(double a, double b) {
    return std::abs(a - b) < snapDistance;
}

bool overlapX(const Box &a, const Box &b) {
    return reaches(horizontal(a), horizontal(b));
}

bool overlapY(const Box &a, const Box &b) {
    return reaches(vertical(a), vertical(b));
}

SnapResult snap(const Box &a, const Box &to) {
    SnapResult result;
    if (overlapY(a, to))
        result.x = snapAlong(horizontal(a), horizontal(to));
    if (overlapX(a, to))
        result.y = snapAlong(vertical(a), vertical(to));
    return result;
}

Offset snapDiff(const Box &a, const Box &to) {
    return asDiff(snap(a, to), a);
}

SnapResult snapWithin(const Box &a, const Box &bounds) {
    return {holdWithin(horizontal(a), horizontal(bounds)), holdWithin(vertical(a), vertical(bounds))};
}

Offset snapWithinDiff(const Box &a, const Box &bounds) {
    return asDiff(snapWithin(a, bounds), a);
}

Offset snapDiffManyToMany(std::span<const Box> as, std::span<const Box> bs) {
    Offset result;
    for (const Box &a : as) {
        for (const Box &b : bs) {
            const Offset diff = snapDiff(a, b);
            if (result.x == 0)
                result.x = diff.x;
            if (result.y == 0)
                result.y = diff.y;
            if (result.x > 0 && result.y > 0)
                break;
        }
    }
    return result;
}

Offset applyDiff(Offset a, Offset diff) {
    return {a.x + diff.x, a.y + diff.y};
}

Offset applyMultipleDiffs(Offset initial, std::span<const Offset> diffs) {
    Offset sum; // (0, 0) combined with the first is the first
    for (const Offset &diff : diffs)
        sum = {combined(sum.x, diff.x), combined(sum.y, diff.y)};
    return applyDiff(initial, sum);
}

std::optional<Box> boundingBoxOrNil(std::span<const Box> boxes) {
    if (boxes.empty())
        return {};
    double left = boxes.front().x;
    double top = boxes.front().y;
    double right = boxes.front().right();
    double bottom = boxes.front().bottom();
    for (const Box &box : boxes.subspan(1)) {
        left = std::min(left, box.x);
        top = std::min(top, box.y);
        right = std::max(right, box.right());
        bottom = std::max(bottom, box.bottom());
    }
    return Box{left, top, right - left, bottom - top};
}

Box boundingBox(std::span<const Box> boxes) {
    return boundingBoxOrNil(boxes).value_or(Box{});
}

bool abuts(const Box &a, const Box &b) {
    const SnapResult snapped = snap(a, b);
    return snapped.x || snapped.y;
}

std::set<WindowKind> traceConnection(std::span<const DockedWindow> windows, WindowKind start,
                                     const std::function<bool(const Box &, const Box &)> &areConnected) {
    std::set<WindowKind> reached;
    std::vector<DockedWindow> unvisited; // found, but their neighbours are not yet looked at
    const auto take = [&](const DockedWindow &window) {
        if (reached.insert(window.kind).second)
            unvisited.push_back(window);
    };
    for (const DockedWindow &window : windows) {
        if (window.kind == start)
            take(window);
    }
    while (!unvisited.empty()) {
        const Box box = unvisited.back().box;
        unvisited.pop_back();
        for (const DockedWindow &window : windows) {
            if (areConnected(window.box, box))
                take(window);
        }
    }
    return reached;
}

} // namespace vantor::SnapUtils
