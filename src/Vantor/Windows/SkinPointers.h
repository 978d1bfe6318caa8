#pragma once

#include "SkinKit/Layout/MainWindowControl.h"
#include "SkinKit/Loading/SkinCursors.h"

#include <QTimer>

class QWidget;

namespace vantor {

/// Puts the skin's mouse pointers on a window, animated ones included; only the one that shows is made. Main
/// thread. Borrows the window.
class SkinPointers : public QObject {
    Q_OBJECT

  public:
    explicit SkinPointers(QWidget &window);

    /// `scale`: whole factor of the window's units; the screen's own comes on top.
    void setCursors(const SkinCursors &cursors, int scale);
    /// Shows the pointer for what lies under the mouse.
    void showFor(MainWindowControl control, bool inTitleBar, bool shaded);
    /// Stops an animation until the next showFor(): the mouse has left.
    void rest();

  private:
    void show(const QString &name);
    void showStep();

    QWidget &m_window;
    SkinCursors m_cursors;
    int m_pixels = 1; ///< of the screen for one of the skin
    QString m_shown;
    std::size_t m_step = 0;
    QTimer m_timer;
};

} // namespace vantor
