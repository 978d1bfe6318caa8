#pragma once

#include <QList>
#include <QRect>

class QWidget;

/// Where a dialog that belongs to the skinned windows opens. Main thread.
namespace vantor::DialogPlace {

/// Moves a dialog that is not shown yet to where it hides none of the windows: right of all of them, else
/// left, below or above, as the screen has room; without room it stays where the system puts it. `windows`:
/// their frames in screen coordinates.
void beside(QWidget &dialog, const QList<QRect> &windows);

/// Moves a dialog up that has grown beyond the end of the screen.
void keepOnScreen(QWidget &dialog);

} // namespace vantor::DialogPlace
