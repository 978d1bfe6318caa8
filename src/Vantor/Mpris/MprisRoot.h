#pragma once

#include <QDBusAbstractAdaptor>
#include <QStringList>

#include <functional>

namespace vantor {

/// The program itself on the message bus: MPRIS 2's root interface. Main thread.
class MprisRoot : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2")
    Q_PROPERTY(bool CanQuit MEMBER m_yes CONSTANT)
    Q_PROPERTY(bool CanRaise MEMBER m_yes CONSTANT)
    Q_PROPERTY(bool HasTrackList MEMBER m_no CONSTANT)
    Q_PROPERTY(QString Identity READ identity CONSTANT)
    Q_PROPERTY(QString DesktopEntry READ desktopEntry CONSTANT)
    Q_PROPERTY(QStringList SupportedUriSchemes READ supportedUriSchemes CONSTANT)
    Q_PROPERTY(QStringList SupportedMimeTypes READ supportedMimeTypes CONSTANT)

  public:
    struct Actions {
        std::function<void()> raise; ///< shows the windows in front of all others
        std::function<void()> quit;
    };

    MprisRoot(QObject *service, Actions actions);

    [[nodiscard]] QString identity() const { return QStringLiteral("Vantor"); }
    [[nodiscard]] QString desktopEntry() const;
    [[nodiscard]] QStringList supportedUriSchemes() const;
    [[nodiscard]] QStringList supportedMimeTypes() const;

  public Q_SLOTS: // whose names are the bus's
    void Raise() { m_actions.raise(); }
    void Quit() { m_actions.quit(); }

  private:
    Actions m_actions;
    const bool m_yes = true;
    const bool m_no = false;
};

} // namespace vantor
