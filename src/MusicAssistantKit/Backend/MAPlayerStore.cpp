#include "MusicAssistantKit/Backend/MAPlayerStore_p.h"
#include "MusicAssistantKit/Backend/PlayerMapping.h"

#include <algorithm>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

/// No house has more; a server that goes mad must not fill the memory.
constexpr std::size_t maxPlayers = 500;

bool isSameMoment(const MAPlayerQueue &a, const MAPlayerQueue &b) {
    const auto itemOf = [](const MAPlayerQueue &queue) {
        return queue.currentItem ? queue.currentItem->queueItemID : QString();
    };
    return a.elapsedTime == b.elapsedTime && a.elapsedTimeLastUpdated == b.elapsedTimeLastUpdated &&
           a.state == b.state && itemOf(a) == itemOf(b);
}

/// When a player was as far as it says, on the server's clock.
std::optional<double> thereOf(const MAPlayer &player) {
    const auto &media = player.currentMedia;
    return media && media->elapsedTimeLastUpdated ? media->elapsedTimeLastUpdated
                                                  : player.elapsedTimeLastUpdated;
}

} // namespace

void MAPlayerStore::setLocalClientID(const std::optional<QString> &id) {
    m_localClientID = id;
    findLocalPlayer();
}

MAPlayerStore::Moment MAPlayerStore::momentOf(const std::optional<double> &there, double now) {
    if (there)
        clock.hear(*there, now);
    return {.there = there, .told = now};
}

void MAPlayerStore::setPlayers(const QList<MAPlayer> &players, double now) {
    m_hasPlayers = true;
    m_players.clear();
    m_playerTimes.clear();
    m_activeQueues.clear();
    for (const MAPlayer &player : players)
        keep(player, momentOf(thereOf(player), now));
    findLocalPlayer();
}

void MAPlayerStore::setQueues(const QList<MAPlayerQueue> &queues, double now) {
    m_hasQueues = true;
    m_queues.clear();
    for (const MAPlayerQueue &queue : queues) {
        const Moment moment = momentOf(queue.elapsedTimeLastUpdated, now);
        if (m_queues.size() < maxPlayers)
            m_queues.insert_or_assign(queue.queueID, Queue{queue, queue.elapsedTime.value_or(0), moment});
    }
}

void MAPlayerStore::keep(const MAPlayer &player, const Moment &moment) {
    if (m_players.size() >= maxPlayers && !m_players.contains(player.playerID))
        return;
    m_players.insert_or_assign(player.playerID, player);
    m_playerTimes.insert(player.playerID, moment);
}

void MAPlayerStore::apply(const MAPlayer &next, double now) {
    const MAPlayer *const known = player(next.playerID);
    const bool isSame = known && thereOf(*known) == thereOf(next) && known->elapsedTime == next.elapsedTime &&
                        known->playbackState == next.playbackState;
    keep(next, isSame ? m_playerTimes.value(next.playerID) : momentOf(thereOf(next), now));
    findLocalPlayer();
}

void MAPlayerStore::removePlayer(const QString &id) {
    m_players.erase(id);
    m_playerTimes.remove(id);
    m_activeQueues.remove(id);
    findLocalPlayer();
}

void MAPlayerStore::apply(const MAPlayerQueue &queue, double now) {
    const auto known = m_queues.find(queue.queueID);
    if (known == m_queues.end() && m_queues.size() >= maxPlayers)
        return;
    if (known != m_queues.end() && isSameMoment(known->second.record, queue)) {
        known->second.record = queue;
        return;
    }
    const Moment moment = momentOf(queue.elapsedTimeLastUpdated, now);
    m_queues.insert_or_assign(queue.queueID, Queue{queue, queue.elapsedTime.value_or(0), moment});
}

void MAPlayerStore::applyTime(const QString &queueID, double elapsed, double now) {
    const auto known = m_queues.find(queueID);
    if (known == m_queues.end() || !(elapsed >= 0))
        return;
    known->second.elapsed = elapsed;
    known->second.moment = {.there = {}, .told = now};
}

bool MAPlayerStore::isOurs(const MAPlayer &player) const {
    return std::ranges::any_of(player.outputProtocols, [this](const MAOutputProtocol &protocol) {
        return protocol.protocolDomain == "sendspin"_L1 && protocol.outputProtocolID == m_localClientID;
    });
}

void MAPlayerStore::findLocalPlayer() {
    m_localPlayer.clear();
    if (!m_localClientID)
        return;
    const auto found =
        std::ranges::find_if(m_players, [this](const auto &entry) { return isOurs(entry.second); });
    if (found != m_players.end())
        m_localPlayer = found->first;
}

const MAPlayer *MAPlayerStore::localPlayer() const {
    return m_localPlayer.isEmpty() ? nullptr : player(m_localPlayer);
}

const MAPlayer *MAPlayerStore::player(const QString &id) const {
    const auto found = m_players.find(id);
    return found == m_players.end() ? nullptr : &found->second;
}

const MAPlayerStore::Queue *MAPlayerStore::queue(const QString &id) const {
    const auto found = m_queues.find(id);
    return found == m_queues.end() ? nullptr : &found->second;
}

const MAPlayer *MAPlayerStore::player(const OutputDevice::ID &output) const {
    return output == OutputDevice::thisMacID() ? localPlayer() : player(output.rawValue);
}

OutputDevice::ID MAPlayerStore::outputOf(const QString &playerID) const {
    const bool isLocal = !m_localPlayer.isEmpty() && playerID == m_localPlayer;
    return isLocal ? OutputDevice::thisMacID() : OutputDevice::ID{playerID};
}

QString MAPlayerStore::groupOf(const MAPlayer &player) {
    QString group = player.syncedTo.value_or(QString());
    if (group.isEmpty())
        group = player.activeGroup.value_or(QString());
    return group == player.playerID ? QString() : group;
}

void MAPlayerStore::setActiveQueue(const QString &playerID, const QString &group, const QString &queueID) {
    if (m_players.contains(playerID))
        m_activeQueues.insert(playerID, {group, queueID});
}

bool MAPlayerStore::knowsActiveQueue(const MAPlayer &player) const {
    const QString group = groupOf(player);
    return group.isEmpty() || m_activeQueues.value(player.playerID).group == group;
}

QString MAPlayerStore::queueID(const MAPlayer &player) const {
    const QString group = groupOf(player);
    if (group.isEmpty())
        return player.playerID;
    // Until the server has said which queue it is, the leader's is the best guess.
    return knowsActiveQueue(player) ? m_activeQueues.value(player.playerID).queueID : group;
}

bool MAPlayerStore::isShown(const MAPlayer &player) const {
    static const QSet<QString> silentTypes{u"protocol"_s, u"display"_s, u"visualizer"_s, u"light"_s};
    return player.enabled.value_or(true) && !player.hideInUI.value_or(false) &&
           !silentTypes.contains(player.type.value_or(QString())) && player.playerID != m_localPlayer;
}

QList<const MAPlayer *> MAPlayerStore::shownPlayers() const {
    QList<const MAPlayer *> shown;
    for (const auto &[id, player] : m_players) {
        if (isShown(player))
            shown.append(&player);
    }
    std::sort(shown.begin(), shown.end(), [](const MAPlayer *a, const MAPlayer *b) {
        const int order = QString::localeAwareCompare(maplayer::name(*a), maplayer::name(*b));
        return order != 0 ? order < 0 : a->playerID < b->playerID;
    });
    return shown;
}

std::optional<QSet<OutputDevice::ID>> MAPlayerStore::groupable(const MAPlayer &player) const {
    if (!player.supportedFeatures.contains("set_members"_L1))
        return std::nullopt;
    const QSet<QString> with(player.canGroupWith.begin(), player.canGroupWith.end());
    QSet<OutputDevice::ID> outputs;
    for (const auto &[id, other] : m_players) {
        const bool fits = with.contains(id) || with.contains(other.provider.value_or(QString()));
        if (fits && &other != &player && (isShown(other) || id == m_localPlayer))
            outputs.insert(outputOf(id));
    }
    return outputs;
}

OutputDevice MAPlayerStore::device(const MAPlayer &player) const {
    return {.id = {player.playerID},
            .name = maplayer::name(player),
            .kind = OutputDevice::Kind::remote,
            .isAvailable = player.available.value_or(true) && !player.needsSetup.value_or(false),
            .isGroup = player.type == "group"_L1,
            .groupableWith = groupable(player)};
}

QList<OutputDevice> MAPlayerStore::devices() const {
    QList<OutputDevice> devices{OutputDevice::thisMac()};
    if (const MAPlayer *const local = localPlayer())
        devices.first().groupableWith = groupable(*local);
    for (const MAPlayer *const player : shownPlayers())
        devices.append(device(*player));
    return devices;
}

QList<OutputActivity> MAPlayerStore::activities(double now) const {
    QList<const MAPlayer *> shown = shownPlayers();
    if (const MAPlayer *const local = localPlayer())
        shown.prepend(local);
    QList<OutputActivity> all;
    for (const MAPlayer *const player : shown) {
        const OutputDevice::ID output = outputOf(player->playerID);
        const bool isLocal = output == OutputDevice::thisMacID();
        const NowPlaying playing = nowPlaying(output, now);
        const QString group = groupOf(*player);
        all.append({.output = output,
                    .name = isLocal ? OutputDevice::thisMac().name : maplayer::name(*player),
                    .state = playing.state,
                    .leader = group.isEmpty() ? std::nullopt : std::optional(outputOf(group)),
                    .updatedAt = queue(queueID(*player)) ? std::optional(playing.updatedAt) : std::nullopt});
    }
    return all;
}

std::optional<MusicAssistantOutputState> MAPlayerStore::state(const OutputDevice::ID &output) const {
    const MAPlayer *const ofOutput = player(output);
    if (!ofOutput)
        return std::nullopt;
    MusicAssistantOutputState state;
    state.controls.canSetVolume = ofOutput->supportedFeatures.contains("volume_set"_L1);
    if (ofOutput->supportedFeatures.contains("volume_mute"_L1))
        state.controls.isMuted = ofOutput->volumeMuted.value_or(false);
    if (const Queue *const playing = queue(queueID(*ofOutput))) {
        state.isShuffling = playing->record.shuffleEnabled.value_or(false);
        state.isRepeating = maplayer::repeats(playing->record).value_or(false);
    }
    for (const QString &member : ofOutput->groupMembers)
        state.members.append(outputOf(member));
    return state;
}

NowPlaying MAPlayerStore::nowPlaying(const OutputDevice::ID &output, double now) const {
    const MAPlayer *const ofOutput = player(output);
    if (!ofOutput)
        return NowPlaying::idle(output, now);
    const Queue *const playing = queue(queueID(*ofOutput));
    if (playing && (playing->record.active.value_or(true) || !ofOutput->currentMedia))
        return maplayer::nowPlaying(output, *ofOutput, playing->record, playing->elapsed,
                                    instantOf(playing->moment));
    return maplayer::nowPlaying(output, *ofOutput, instantOf(m_playerTimes.value(ofOutput->playerID)));
}

} // namespace vantor
