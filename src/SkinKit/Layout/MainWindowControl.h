#pragma once

#include <QPoint>
#include <QRect>

namespace vantor {

/// Everything of the main window that a pointer can act on.
enum class MainWindowControl {
    none, ///< plain background: drags the window
    options,
    minimize,
    shade,
    close,
    clutterMainMenu,
    clutterAlwaysOnTop,
    clutterFileInfo,
    clutterDoubleSize,
    clutterVisualizer,
    previous,
    play,
    pause,
    stop,
    next,
    eject,
    volume,
    balance,
    position,
    shuffle,
    repeat,
    equalizer,
    playlist,
    time,       ///< a click changes TimeMode
    visualizer, ///< a click changes what is shown
    marquee,    ///< a drag moves the text
};

/// The control under a point in skin pixels. In shade form the position slider, the small transport buttons,
/// the title buttons, the time and the visualizer answer. `none` outside the window.
[[nodiscard]] MainWindowControl mainWindowControlAt(QPoint point, bool shaded);
/// Where a control is; null where that form of the window does not have it.
[[nodiscard]] QRect mainWindowControlRect(MainWindowControl control, bool shaded);

} // namespace vantor
