#pragma once

#include "WindowDocking/DockedWindow.h"

#include <map>
#include <optional>
#include <span>
#include <variant>

namespace vantor {

/// The size of a window, or its change, in points.
struct BoxSize {
    double width = 0;
    double height = 0;

    bool operator==(const BoxSize &) const = default;
};

/// Where windows stand so that they can be reached. Pure functions; any thread. Wherever screens are asked
/// for, none means the primary one alone, except for isGrabbable.
namespace LayoutRules {

/// So much of a title bar's width, in points, must stay on a screen.
inline constexpr double minimumGrabWidth = 50;

/// What brings a whole layout back: one offset for every window, or stacking them afresh.
struct Recovery {
    struct Shift {
        Offset offset;
        bool operator==(const Shift &) const = default;
    };
    struct Reset {
        bool operator==(const Reset &) const = default;
    };

    static Recovery shift(Offset offset) { return {Shift{offset}}; }
    static Recovery reset() { return {Reset{}}; }

    std::variant<Shift, Reset> kind;

    bool operator==(const Recovery &) const = default;
};

/// Whether some screen shows the full height of the title bar and enough of its width.
[[nodiscard]] bool isGrabbable(const Box &box, double titleBarHeight, std::span<const Box> screens);

/// The smallest move that makes a box grabbable on one screen.
[[nodiscard]] Offset gripShift(const Box &box, const Box &screen);

/// How the moving windows go back so that each can be grabbed again; none if each can. Where one move cannot
/// do that for all of them, it does so for the topmost.
[[nodiscard]] std::optional<Offset> dragRecovery(std::span<const DockedWindow> moving,
                                                 const std::map<WindowKind, double> &titleBarHeights,
                                                 std::span<const Box> screens, const Box &primary);

/// What a layout needs after a start or a change of the screens; none while every window is all on a screen.
[[nodiscard]] std::optional<Recovery> recovery(std::span<const DockedWindow> windows,
                                               std::span<const Box> screens, const Box &primary);

/// The windows in one column, left-aligned, the column in the middle of the area. A kind without a size is
/// passed over.
[[nodiscard]] std::map<WindowKind, Offset> stackedAndCentered(const std::map<WindowKind, BoxSize> &sizes,
                                                              std::span<const WindowKind> order,
                                                              const Box &area);

/// Where a window that is shown again stands: at its saved place if that is free and within reach, else under
/// the window `below`.
[[nodiscard]] Offset showPosition(BoxSize size, std::optional<Offset> saved, const Box &below,
                                  std::span<const Box> visible, double titleBarHeight,
                                  std::span<const Box> screens, const Box &primary);

} // namespace LayoutRules

} // namespace vantor
