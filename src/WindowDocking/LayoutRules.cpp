#include "WindowDocking/LayoutRules.h"

#include "WindowDocking/ScreenSelection.h"
#include "WindowDocking/SnapUtils.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace vantor::LayoutRules {

namespace {

Box titleStrip(const Box &box, double titleBarHeight) {
    return {box.x, box.y, box.width, std::min(box.height, titleBarHeight)};
}

std::span<const Box> screensOr(std::span<const Box> screens, const Box &primary) {
    return screens.empty() ? std::span(&primary, 1) : screens;
}

bool disagree(const std::vector<Offset> &shifts, double Offset::*axis) {
    const auto [least, most] = std::ranges::minmax(shifts, {}, axis);
    return least.*axis < 0 && most.*axis > 0;
}

double largest(const std::vector<Offset> &shifts, double Offset::*axis) {
    const auto magnitude = [axis](const Offset &shift) { return std::abs(shift.*axis); };
    return (*std::ranges::max_element(shifts, {}, magnitude)).*axis; // the first of equals
}

/// How far [start, end] goes to lie in [low, high], which is large enough for it.
double shiftInto(double start, double end, double low, double high) {
    if (start < low)
        return low - start;
    return end > high ? high - end : 0;
}

std::vector<Box> boxesOf(std::span<const DockedWindow> windows) {
    std::vector<Box> boxes;
    for (const DockedWindow &window : windows)
        boxes.push_back(window.box);
    return boxes;
}

} // namespace

bool isGrabbable(const Box &box, double titleBarHeight, std::span<const Box> screens) {
    const Box strip = titleStrip(box, titleBarHeight);
    return std::ranges::any_of(screens, [&](const Box &screen) {
        const Offset shown = overlap(strip, screen);
        return shown.x >= std::min(box.width, minimumGrabWidth) && shown.y >= strip.height;
    });
}

Offset gripShift(const Box &box, const Box &screen) {
    Offset shift;
    if (box.y < screen.y)
        shift.y = screen.y - box.y;
    else if (screen.bottom() < box.bottom())
        shift.y = screen.bottom() - box.bottom();

    const double grip = std::min(box.width, minimumGrabWidth);
    const double shownAtLeft = box.right() - screen.x;
    const double shownAtRight = screen.right() - box.x;
    if (box.x < screen.x && shownAtLeft < grip)
        shift.x = grip - shownAtLeft;
    else if (screen.right() < box.right() && shownAtRight < grip)
        shift.x = -(grip - shownAtRight);
    return shift;
}

std::optional<Offset> dragRecovery(std::span<const DockedWindow> moving,
                                   const std::map<WindowKind, double> &titleBarHeights,
                                   std::span<const Box> screens, const Box &primary) {
    screens = screensOr(screens, primary);
    std::vector<Box> lost;
    std::vector<Box> strips;
    for (const DockedWindow &window : moving) {
        const auto height = titleBarHeights.find(window.kind);
        const double titleBarHeight = height == titleBarHeights.end() ? 0 : height->second;
        if (!isGrabbable(window.box, titleBarHeight, screens)) {
            lost.push_back(window.box);
            strips.push_back(titleStrip(window.box, titleBarHeight));
        }
    }
    if (lost.empty())
        return {};

    const Box group = SnapUtils::boundingBox(lost);
    const Box target = ScreenSelection::nearest(group, screens, primary);
    std::vector<Offset> shifts;
    for (const Box &strip : strips)
        shifts.push_back(gripShift(strip, target));

    const bool cannotAgree = disagree(shifts, &Offset::x) || disagree(shifts, &Offset::y);
    if (cannotAgree || group.width > target.width || group.height > target.height) {
        const auto topmost = std::ranges::min_element(lost, {}, &Box::y); // the first of equals
        return shifts[static_cast<std::size_t>(topmost - lost.begin())];
    }
    return Offset{largest(shifts, &Offset::x), largest(shifts, &Offset::y)};
}

std::optional<Recovery> recovery(std::span<const DockedWindow> windows, std::span<const Box> screens,
                                 const Box &primary) {
    screens = screensOr(screens, primary);
    // One screen that holds the bounding box holds every window, so that this one question is enough; it is
    // also the answer for no windows.
    const bool allShown = std::ranges::all_of(windows, [&](const DockedWindow &window) {
        return std::ranges::any_of(screens, [&](const Box &screen) { return screen.contains(window.box); });
    });
    if (allShown)
        return {};

    const Box group = SnapUtils::boundingBox(boxesOf(windows));
    const Box target = ScreenSelection::nearest(group, screens, primary);
    if (group.width > target.width || group.height > target.height)
        return Recovery::reset();
    return Recovery::shift({shiftInto(group.x, group.right(), target.x, target.right()),
                            shiftInto(group.y, group.bottom(), target.y, target.bottom())});
}

std::map<WindowKind, Offset> stackedAndCentered(const std::map<WindowKind, BoxSize> &sizes,
                                                std::span<const WindowKind> order, const Box &area) {
    std::map<WindowKind, Offset> positions;
    double width = 0;
    double height = 0;
    for (const WindowKind kind : order) {
        const auto size = sizes.find(kind);
        if (size == sizes.end())
            continue;
        positions[kind] = {0, height};
        width = std::max(width, size->second.width);
        height += size->second.height;
    }
    const Offset corner{std::ceil(area.x + (area.width - width) * 0.5),
                        std::ceil(area.y + (area.height - height) * 0.5)};
    for (auto &[kind, position] : positions)
        position = SnapUtils::applyDiff(corner, position);
    return positions;
}

Offset showPosition(BoxSize size, std::optional<Offset> saved, const Box &below, std::span<const Box> visible,
                    double titleBarHeight, std::span<const Box> screens, const Box &primary) {
    const Offset underneath{below.x, below.bottom()};
    if (!saved)
        return underneath;
    const Box box{saved->x, saved->y, size.width, size.height};
    const bool covers = std::ranges::any_of(visible, [&](const Box &other) {
        const Offset shared = overlap(box, other);
        return shared.x > 0 && shared.y > 0;
    });
    const bool reachable = isGrabbable(box, titleBarHeight, screensOr(screens, primary));
    return !covers && reachable ? *saved : underneath;
}

} // namespace vantor::LayoutRules
