#include "tests/Support/FakeMusicAssistant/FakePlayers.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

const QString groupProvider = u"fakecast--one"_s;

QJsonValue orNull(int index) {
    return index >= 0 ? QJsonValue(index) : QJsonValue();
}

} // namespace

FakePlayers::FakePlayers(FakeMusicAssistant &server, FakeLibrary &library)
    : m_server(server), m_library(library) {
    addPlayer(u"kitchen"_s, u"Kitchen"_s, u"player"_s, true);
    addPlayer(u"living-room"_s, u"Living Room"_s, u"player"_s, true);
    addPlayer(u"bedroom"_s, u"Bedroom"_s, u"player"_s, true);
    addPlayer(u"office"_s, u"Office"_s, u"player"_s, false);
    addPlayer(u"garden"_s, u"Garden"_s, u"player"_s, true);
    addPlayer(u"downstairs"_s, u"Downstairs"_s, u"group"_s, true);
    players[u"garden"_s].insert("available"_L1, false);
    players[u"downstairs"_s].insert("group_members"_L1, QJsonArray{u"kitchen"_s, u"living-room"_s});
    addPlayerCommands();
    addQueueCommands();
    addEditCommands();
}

void FakePlayers::addPlayer(const QString &id, const QString &name, const QString &type, bool hasVolume) {
    QJsonArray features{u"play_media"_s, u"pause"_s, u"seek"_s, u"set_members"_s, u"next_previous"_s};
    if (hasVolume) {
        features.append(u"volume_set"_s);
        features.append(u"volume_mute"_s);
    }
    players[id] = {{u"player_id"_s, id},
                   {u"provider"_s, groupProvider},
                   {u"type"_s, type},
                   {u"name"_s, name},
                   {u"display_name"_s, name},
                   {u"available"_s, true},
                   {u"enabled"_s, true},
                   {u"hide_in_ui"_s, false},
                   {u"powered"_s, true},
                   {u"volume_level"_s, hasVolume ? QJsonValue(40) : QJsonValue()},
                   {u"volume_muted"_s, false},
                   {u"group_members"_s, QJsonArray()},
                   {u"synced_to"_s, QJsonValue()},
                   {u"active_group"_s, QJsonValue()},
                   {u"can_group_with"_s, QJsonArray{groupProvider}},
                   {u"supported_features"_s, features},
                   {u"needs_setup"_s, false},
                   {u"output_protocols"_s, QJsonArray()},
                   {u"device_info"_s, QJsonObject{{u"model"_s, u"Made up"_s}}}};
    queues[id] = {};
}

void FakePlayers::addSendspinClient(const QString &clientID, const QString &name) {
    addPlayer(clientID, name, u"protocol"_s, true);
    players[clientID].insert("hide_in_ui"_L1, true);
    m_server.sendEvent(u"player_added"_s, clientID, playerRecord(clientID));
}

void FakePlayers::showSendspinClient(const QString &clientID, const QString &name) {
    const QString id = shownID(clientID);
    addPlayer(id, name, u"player"_s, true);
    players[id].insert("output_protocols"_L1, QJsonArray{QJsonObject{{u"output_protocol_id"_s, clientID},
                                                                     {u"name"_s, u"Sendspin"_s},
                                                                     {u"protocol_domain"_s, u"sendspin"_s},
                                                                     {u"is_native"_s, false},
                                                                     {u"priority"_s, 10},
                                                                     {u"available"_s, true}}});
    m_server.sendEvent(u"player_added"_s, id, playerRecord(id));
}

QString FakePlayers::activeQueue(const QString &playerID) const {
    const QJsonObject &player = players.at(playerID);
    const QString leader = player["synced_to"_L1].toString(player["active_group"_L1].toString());
    return leader.isEmpty() ? playerID : leader;
}

QJsonValue FakePlayers::queueItem(const Queue &queue, const QString &id, int index) const {
    if (index < 0 || index >= queue.entries.size())
        return {};
    const QJsonObject media = m_library.itemByURI(queue.entries[index].uri).toObject();
    const QString artist = media["artists"_L1][0]["name"_L1].toString();
    const QString name = media["name"_L1].toString();
    return QJsonObject{{u"queue_id"_s, id},
                       {u"queue_item_id"_s, queue.entries[index].id},
                       {u"name"_s, artist.isEmpty() ? name : artist + u" - "_s + name},
                       {u"duration"_s, media["duration"_L1]},
                       {u"media_item"_s, media},
                       {u"image"_s, QJsonValue()},
                       {u"index"_s, 0}, // as servers leave it
                       {u"available"_s, true}};
}

QJsonObject FakePlayers::queueRecord(const QString &id) const {
    const Queue &queue = queues.at(id);
    return {{u"queue_id"_s, id},
            {u"active"_s, true},
            {u"display_name"_s, players.at(id)["name"_L1]},
            {u"available"_s, true},
            {u"items"_s, queue.entries.size()},
            {u"shuffle_enabled"_s, queue.isShuffling},
            {u"repeat_mode"_s, queue.repeatMode},
            {u"current_index"_s, orNull(queue.current)},
            {u"elapsed_time"_s, queue.elapsed},
            {u"elapsed_time_last_updated"_s, m_server.time() - queue.age},
            {u"state"_s, queue.state},
            {u"current_item"_s, queueItem(queue, id, queue.current)},
            {u"next_item"_s, queueItem(queue, id, queue.current < 0 ? -1 : queue.current + 1)}};
}

QJsonObject FakePlayers::playerRecord(const QString &id) const {
    QJsonObject made = players.at(id);
    const QString playing = activeQueue(id);
    const auto queue = queues.find(playing);
    const QString state = queue == queues.end() ? u"idle"_s : queue->second.state;
    made.insert("state"_L1, state);
    if (m_library.dialect() == FakeLibrary::Dialect::today)
        made.insert("playback_state"_L1, state);
    if (queue != queues.end()) {
        made.insert("elapsed_time"_L1, queue->second.elapsed);
        made.insert("elapsed_time_last_updated"_L1, m_server.time() - queue->second.age);
    }
    return made;
}

double FakePlayers::durationOf(const Queue &queue) const {
    if (queue.current < 0)
        return 0;
    return m_library.itemByURI(queue.entries[queue.current].uri)["duration"_L1].toDouble();
}

void FakePlayers::changed(const QString &id) {
    m_server.sendEvent(u"queue_updated"_s, id, queueRecord(id));
    m_server.sendEvent(u"player_updated"_s, id, playerRecord(id));
}

void FakePlayers::itemsChanged(const QString &id) {
    m_server.sendEvent(u"queue_items_updated"_s, id, queueRecord(id));
    changed(id);
}

void FakePlayers::append(const QString &id, const QStringList &uris) {
    for (const QString &uri : uris)
        queues[id].entries.append({u"q%1"_s.arg(m_nextEntry++), uri});
}

void FakePlayers::go(const QString &id, int index) {
    Queue &queue = queues[id];
    const bool isThere = index >= 0 && index < queue.entries.size();
    queue.current = isThere ? index : queue.entries.isEmpty() ? -1 : 0;
    queue.elapsed = 0;
    queue.state = isThere ? u"playing"_s : u"idle"_s;
    changed(id);
}

void FakePlayers::advance(double seconds) {
    for (auto &[id, queue] : queues) {
        if (queue.state != "playing"_L1)
            continue;
        queue.elapsed += seconds;
        const double duration = durationOf(queue);
        if (duration > 0 && queue.elapsed >= duration)
            go(id, queue.repeatMode == "one"_L1 ? queue.current
                   : queue.repeatMode == "all"_L1
                       ? (queue.current + 1) % static_cast<int>(queue.entries.size())
                       : queue.current + 1);
        else
            m_server.sendEvent(u"queue_time_updated"_s, id, queue.elapsed);
    }
}

void FakePlayers::run() {
    m_timer.callOnTimeout(this, [this] { advance(1); });
    m_timer.start(1000);
}

} // namespace vantor
