#pragma once

#include "WindowDocking/DockedWindow.h"

#include <map>
#include <span>
#include <vector>

namespace vantor {

/// What holds windows back while they are dragged.
struct DragLimits {
    Box bounds; ///< the box around all screens; `primary` without any
    std::vector<Box> screens;
    Box primary;
    std::map<WindowKind, double> titleBarHeights;

    DragLimits(std::vector<Box> screens, const Box &primary, std::map<WindowKind, double> titleBarHeights);

    bool operator==(const DragLimits &) const = default;
};

/// One drag, decided once when it begins: which windows go along, and from where. The main window takes every
/// window that it is connected to, the others go alone. Deltas are those of the mouse since the drag began.
class DragSession {
  public:
    /// `windows` are all visible ones.
    DragSession(WindowKind dragging, std::span<const DockedWindow> windows);

    [[nodiscard]] const std::vector<DockedWindow> &moving() const { return m_moving; }
    [[nodiscard]] const std::vector<DockedWindow> &stationary() const { return m_stationary; }
    /// Around the moving windows.
    [[nodiscard]] const Box &boundingBox() const { return m_boundingBox; }

    /// By how much the moving windows go: the mouse's delta, snapped to the stationary windows and bounds.
    [[nodiscard]] Offset groupDiff(Offset forMouseDelta, const Box &within) const;
    /// The new top-left corner of each moving window.
    [[nodiscard]] std::map<WindowKind, Offset> positions(Offset forMouseDelta, const Box &within) const;
    /// The same, and none of them out of reach of the pointer.
    [[nodiscard]] std::map<WindowKind, Offset> positions(Offset forMouseDelta,
                                                         const DragLimits &limits) const;

  private:
    std::vector<DockedWindow> m_moving;
    std::vector<DockedWindow> m_stationary;
    Box m_boundingBox;
};

} // namespace vantor
