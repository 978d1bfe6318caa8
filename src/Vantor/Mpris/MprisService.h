#pragma once

#include "Vantor/App/BusSearch.h"
#include "Vantor/Mpris/MprisPlayer.h"
#include "Vantor/Mpris/MprisRoot.h"

#include <optional>

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
    void takeConnection(const QDBusConnection &bus);
    void requestName(const QString &name, const std::function<void()> &taken);
    void tell(const QVariantMap &changed) const;

    MprisPlayer *m_player; ///< owned by this object, as adaptors have to be
    bool m_connected = false;
    std::optional<BusSearch> m_search; ///< which ends before what takes its connection
};

} // namespace vantor
