#pragma once

#include <QUrl>

namespace vantor {

/// Asks the desktop's file manager to show a file among its neighbours; where there is none that can, opens
/// its folder. Main thread; returns at once.
void showInFolder(const QUrl &file);

} // namespace vantor
