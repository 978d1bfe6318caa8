#pragma once

#include "tests/Support/FakeMusicAssistant/FakePlayers.h"
#include "tests/Support/FakeSendspin/FakeSendspin.h"

namespace vantor {

/// Gives a FakeMusicAssistant the endpoint "/sendspin": whoever connects there becomes a player, which sounds
/// while its queue plays, as loud as the player is set. Whatever is in the queue, the made sound is heard.
/// Since there is one stream, the queue that began last is the one that is heard everywhere.
class FakeHouse : public QObject {
  public:
    FakeHouse(FakeMusicAssistant &server, FakePlayers &players);

    [[nodiscard]] FakeSendspin &sendspin() { return m_sendspin; }
    /// How long it takes until a client has a player that is shown.
    std::chrono::milliseconds setupTime{500};

  private:
    void look();
    void follow(FakeSendspinPeer &client, const QString &playerID);
    void followVolume(FakeSendspinPeer &client, const QString &playerID);

    FakePlayers &m_players;
    RealTimeline m_time;
    FakeSendspin m_sendspin;
    QTimer m_timer;
    QHash<QString, int> m_volumes; ///< by player: what both have agreed on
    QSet<QString> m_commanded;     ///< players whose clients have yet to answer
    QString m_playing;             ///< the queue and its item that are heard
};

} // namespace vantor
