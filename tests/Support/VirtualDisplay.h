#pragma once

#include <QList>
#include <QProcess>
#include <QRect>

#include <memory>

namespace vantor {

/// An X server of the test's own without a picture for anyone, for windows that must really stand somewhere.
/// It ends with its last client, so that a test that crashes leaves nothing behind.
class VirtualDisplay {
  public:
    /// Starts it and makes it the display of this process; before the application object is made. Throws
    /// std::runtime_error.
    explicit VirtualDisplay(QSize size);

    /// The rest needs the application object.

    /// The screens that the display is divided into, the primary one first; none: one of the whole size.
    void setScreens(const QList<QRect> &screens);
    /// Starts or ends a window manager, and waits until it is so. End it before the application object goes.
    void setWindowManager(bool runs);

  private:
    QList<QRect> m_screens;
    std::unique_ptr<QProcess> m_windowManager;
};

} // namespace vantor
