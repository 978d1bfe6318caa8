#include "Vantor/Windows/DialogPlace.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace vantor {

void DialogPlace::beside(QWidget &dialog, const QList<QRect> &windows) {
    QRect taken;
    for (const QRect &window : windows)
        taken |= window;
    const QScreen *const under = QGuiApplication::screenAt(taken.center());
    // What the window manager will put around the dialog is known only later.
    const int line = dialog.fontMetrics().height();
    const QSize size = dialog.size() + QSize(line, 2 * line);
    const int gap = line / 2;
    const QRect room = (under ? under : dialog.screen())->availableGeometry();
    const int x = std::clamp(taken.center().x() - size.width() / 2, room.left(),
                             std::max(room.left(), room.right() + 1 - size.width()));
    const int y =
        std::clamp(taken.top(), room.top(), std::max(room.top(), room.bottom() + 1 - size.height()));
    for (const QPoint place :
         {QPoint(taken.right() + 1 + gap, y), QPoint(taken.left() - gap - size.width(), y),
          QPoint(x, taken.bottom() + 1 + gap), QPoint(x, taken.top() - gap - size.height())}) {
        if (room.contains(QRect(place, size))) {
            dialog.move(place);
            return;
        }
    }
}

void DialogPlace::keepOnScreen(QWidget &dialog) {
    const QRect room = dialog.screen()->availableGeometry();
    const QRect frame = dialog.frameGeometry();
    if (dialog.isVisible() && frame.bottom() > room.bottom())
        dialog.move(frame.left(), std::max(room.top(), room.bottom() + 1 - frame.height()));
}

} // namespace vantor
