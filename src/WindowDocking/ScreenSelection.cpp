#include "WindowDocking/ScreenSelection.h"

#include <algorithm>
#include <optional>

namespace vantor::ScreenSelection {

namespace {

std::optional<Box> showingMost(const Box &box, std::span<const Box> screens) {
    std::optional<Box> best;
    double bestArea = 0;
    for (const Box &screen : screens) {
        const Offset shared = overlap(box, screen);
        if (shared.x > 0 && shared.y > 0 && shared.x * shared.y > bestArea) {
            best = screen;
            bestArea = shared.x * shared.y;
        }
    }
    return best;
}

double squaredDistance(const Box &a, const Box &b) {
    const Offset shared = overlap(a, b);
    const double gapX = std::max(0.0, -shared.x);
    const double gapY = std::max(0.0, -shared.y);
    return gapX * gapX + gapY * gapY;
}

} // namespace

Box bounds(const Box &box, std::span<const Box> among, const Box &fallback) {
    return showingMost(box, among).value_or(fallback);
}

Box nearest(const Box &to, std::span<const Box> among, const Box &fallback) {
    if (const std::optional<Box> screen = showingMost(to, among))
        return *screen;
    const auto closest = std::ranges::min_element(
        among, {}, [&](const Box &screen) { return squaredDistance(to, screen); }); // the first of equals
    return closest == among.end() ? fallback : *closest;
}

} // namespace vantor::ScreenSelection
