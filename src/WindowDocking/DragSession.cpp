#include "WindowDocking/DragSession.h"

#include "WindowDocking/LayoutRules.h"
#include "WindowDocking/SnapUtils.h"

#include <array>

namespace vantor {

namespace {

std::vector<Box> translated(std::span<const DockedWindow> windows, Offset by) {
    std::vector<Box> boxes;
    boxes.reserve(windows.size());
    for (const DockedWindow &window : windows)
        boxes.push_back(window.box.translated(by));
    return boxes;
}

} // namespace

DragLimits::DragLimits(std::vector<Box> theScreens, const Box &thePrimary,
                       std::map<WindowKind, double> heights)
    : bounds(SnapUtils::boundingBoxOrNil(theScreens).value_or(thePrimary)), screens(std::move(theScreens)),
      primary(thePrimary), titleBarHeights(std::move(heights)) {}

DragSession::DragSession(WindowKind dragging, std::span<const DockedWindow> windows) {
    std::set<WindowKind> together{dragging};
    if (dragging == WindowKind::main)
        together.merge(SnapUtils::traceConnection(windows, dragging));
    for (const DockedWindow &window : windows)
        (together.contains(window.kind) ? m_moving : m_stationary).push_back(window);
    m_boundingBox = SnapUtils::boundingBox(translated(m_moving, {}));
}

Offset DragSession::groupDiff(Offset forMouseDelta, const Box &within) const {
    const std::array diffs{
        SnapUtils::snapDiffManyToMany(translated(m_moving, forMouseDelta), translated(m_stationary, {})),
        SnapUtils::snapWithinDiff(m_boundingBox.translated(forMouseDelta), within)};
    return SnapUtils::applyMultipleDiffs(forMouseDelta, diffs);
}

std::map<WindowKind, Offset> DragSession::positions(Offset forMouseDelta, const Box &within) const {
    const Offset diff = groupDiff(forMouseDelta, within);
    std::map<WindowKind, Offset> result;
    for (const DockedWindow &window : m_moving)
        result[window.kind] = SnapUtils::applyDiff(window.box.topLeft(), diff);
    return result;
}

std::map<WindowKind, Offset> DragSession::positions(Offset forMouseDelta, const DragLimits &limits) const {
    std::map<WindowKind, Offset> result = positions(forMouseDelta, limits.bounds);
    std::vector<DockedWindow> moved = m_moving;
    for (DockedWindow &window : moved)
        window.box = window.box.movedTo(result.at(window.kind));
    const std::optional<Offset> back =
        LayoutRules::dragRecovery(moved, limits.titleBarHeights, limits.screens, limits.primary);
    if (back) {
        for (auto &[kind, position] : result)
            position = SnapUtils::applyDiff(position, *back);
    }
    return result;
}

} // namespace vantor
