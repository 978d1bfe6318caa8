#include "tests/Support/FakeMusicAssistant/FakeHouse.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int lookInterval = 50; // ms
}

FakeHouse::FakeHouse(FakeMusicAssistant &server, FakePlayers &players)
    : m_players(players), m_sendspin(m_time) {
    m_sendspin.tokens = server.tokens;
    server.onSendspin([this](QWebSocket *client) { m_sendspin.take(client); });
    m_timer.callOnTimeout(this, [this] { look(); });
    m_timer.start(lookInterval);
}

void FakeHouse::look() {
    for (FakeSendspinPeer *const client : m_sendspin.clients()) {
        const QString clientID = client->hello().value("client_id"_L1).toString();
        const QString name = client->hello().value("name"_L1).toString();
        if (clientID.isEmpty() || client->state().isEmpty())
            continue;
        const QString playerID = FakePlayers::shownID(clientID);
        if (!m_players.players.contains(clientID)) {
            m_players.addSendspinClient(clientID, name);
            QTimer::singleShot(setupTime, this,
                               [this, clientID, name] { m_players.showSendspinClient(clientID, name); });
        } else if (m_players.players.contains(playerID)) {
            follow(*client, playerID);
        }
    }
}

void FakeHouse::follow(FakeSendspinPeer &client, const QString &playerID) {
    followVolume(client, playerID);
    FakePlayers::Queue &queue = m_players.queues[playerID];
    const bool plays = queue.state == "playing"_L1 && queue.current >= 0;
    const QString item = plays ? playerID + queue.entries.value(queue.current).id : QString();
    if (item == m_playing && plays && !client.state()["available"_L1].toBool()) {
        m_playing.clear(); // it went away
        queue.state = u"paused"_s;
        m_players.changed(playerID);
    } else if (item != m_playing && plays) {
        m_playing = item;
        m_sendspin.play({}, queue.elapsed);
    } else if (!plays && m_playing.startsWith(playerID)) {
        m_playing.clear();
        m_sendspin.endStream();
    }
}

/// Whoever of the two has changed it tells the other.
void FakeHouse::followVolume(FakeSendspinPeer &client, const QString &playerID) {
    QJsonObject &player = m_players.players[playerID];
    const int wanted = player["volume_level"_L1].toInt();
    const int told = client.state()["player"_L1]["volume"_L1].toInt();
    if (told == m_volumes.value(playerID))
        m_commanded.remove(playerID);
    if (m_volumes.contains(playerID) && wanted != m_volumes[playerID]) {
        const QJsonObject members{{u"command"_s, u"volume"_s}, {u"volume"_s, wanted}};
        client.send(u"server/command"_s, {{u"player"_s, members}});
        m_commanded.insert(playerID);
        m_volumes[playerID] = wanted;
    } else if (!m_commanded.contains(playerID) && m_volumes.value(playerID, -1) != told) {
        m_volumes[playerID] = told;
        player["volume_level"_L1] = told;
        m_players.changed(playerID);
    }
}

} // namespace vantor
