#pragma once

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
    /// Shows the first of these that the skin has, else its ordinary one, else the system's.
    void show(const QStringList &names);
    /// Stops an animation until the next show(): the mouse has left.
    void rest();

  private:
    void showStep();

    QWidget &m_window;
    SkinCursors m_cursors;
    int m_pixels = 1; ///< of the screen for one of the skin
    QString m_shown;
    std::size_t m_step = 0;
    QTimer m_timer;
};

} // namespace vantor
