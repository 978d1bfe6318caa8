#pragma once

#include "WindowDocking/WindowKind.h"

#include <QWidget>

namespace vantor {

/// A skinned window as the docking sees it. The window is frameless and top-level, so that its geometry is
/// its frame; where it stands, whether it is shown or minimised is asked of the widget itself. Main thread.
class SkinWindowController {
  public:
    virtual ~SkinWindowController() = default;

    [[nodiscard]] virtual WindowKind windowKind() const = 0;
    /// The window itself, in most cases `*this`. Lives as long as the controller.
    [[nodiscard]] virtual QWidget &widget() = 0;
    /// The height of the area by which the window is dragged, in the window's own points: twice as much at
    /// double size. This much of a window stays within reach of the pointer.
    [[nodiscard]] virtual double titleBarHeight() const = 0;

  protected:
    SkinWindowController() = default;
    SkinWindowController(const SkinWindowController &) = default;
    SkinWindowController &operator=(const SkinWindowController &) = default;
};

} // namespace vantor
