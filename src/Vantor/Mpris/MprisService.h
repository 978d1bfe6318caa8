#pragma once

#include "Vantor/Mpris/MprisPlayer.h"
#include "Vantor/Mpris/MprisRoot.h"

#include <QDBusConnection>

#include <memory>

namespace vantor {

/// Puts the player on the session's message bus, where desktops find it for media keys, widgets and lock
/// screens, as "org.mpris.MediaPlayer2.vantor"; a second one appends ".instance" and its process number.
/// Without a bus nothing happens. Main thread; borrows the model and the
/// commands.
class MprisService : public QObject {
    Q_OBJECT

  public:
    /// `raise`: shows the windows in front of all others.
    MprisService(PlayerModel &model, Commands &commands, std::function<void()> raise);
    ~MprisService() override;

    /// Looks for the bus without waiting for it.
    void connectToBus();

    [[nodiscard]] NowPlayingCenter &center() { return *m_player; }

  private:
    struct Search;

    void takeConnection(const QDBusConnection &bus);
    void requestName(const QString &name, const std::function<void()> &taken);
    void tell(const QVariantMap &changed) const;

    MprisPlayer *m_player; ///< owned by this object, as adaptors have to be
    bool m_connected = false;
    std::shared_ptr<Search> m_search; ///< for the bus; shared with the thread that waits for it
};

} // namespace vantor
