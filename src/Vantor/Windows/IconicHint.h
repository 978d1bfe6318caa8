#pragma once

class QWindow;

namespace vantor {

/// Has X11's window managers bring the window up as a window when it is shown again. Qt goes on asking for an
/// icon once it has minimised a window that the window manager, and not Qt, restored. Main thread; nothing
/// happens on other systems.
void forgetIconicHint(const QWindow &window);

} // namespace vantor
