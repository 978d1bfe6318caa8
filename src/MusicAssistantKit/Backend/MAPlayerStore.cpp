#include "MusicAssistantKit/Backend/MAPlayerStore_p.h"
#include "MusicAssistantKit/Backend/PlayerMapping.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

/// No house has more; a server that goes mad must not fill the memory.
constexpr std::size_t maxPlayers = 2'000;

// How old, in seconds, an instant of the server's may be before its clock is taken to differ from ours. An
// event is sent when something has happened; a list tells what may have happened a while ago.
constexpr double oldestInEvent = 2;
constexpr double oldestInList = 120;

/// An instant of the server's clock in ours: what lies in the future, or too far back, was just now.
double instantHere(const std::optional<double> &there, double now, double oldest) {
    const double age = now - there.value_or(now);
    return age >= 0 && age <= oldest ? now - age : now;
}

bool isSameMoment(const MAPlayerQueue &a, const MAPlayerQueue &b) {
    const auto itemOf = [](const MAPlayerQueue &queue) {
        return queue.currentItem ? queue.currentItem->queueItemID : QString();
    };
    return a.elapsedTime == b.elapsedTime && a.elapsedTimeLastUpdated == b.elapsedTimeLastUpdated &&
           a.state == b.state && itemOf(a) == itemOf(b);
}

/// When a player was as far as it says, on the server's clock.
std::optional<double> instantOf(const MAPlayer &player) {
    const auto &media = player.currentMedia;
    return media && media->elapsedTimeLastUpdated ? media->elapsedTimeLastUpdated
                                                  : player.elapsedTimeLastUpdated;
}

} // namespace

void MAPlayerStore::setPlayers(const QList<MAPlayer> &players, double now) {
    m_isLoaded = true;
    m_players.clear();
    m_playerTimes.clear();
    m_activeQueues.clear();
    for (const MAPlayer &player : players)
        keep(player, instantHere(instantOf(player), now, oldestInList));
}

void MAPlayerStore::setQueues(const QList<MAPlayerQueue> &queues, double now) {
    m_queues.clear();
    for (const MAPlayerQueue &queue : queues) {
        const double updatedAt = instantHere(queue.elapsedTimeLastUpdated, now, oldestInList);
        if (m_queues.size() < maxPlayers)
            m_queues.insert_or_assign(queue.queueID, Queue{queue, queue.elapsedTime.value_or(0), updatedAt});
    }
}

void MAPlayerStore::keep(const MAPlayer &player, double updatedAt) {
    if (m_players.size() >= maxPlayers && !m_players.contains(player.playerID))
        return;
    m_players.insert_or_assign(player.playerID, player);
    m_playerTimes.insert(player.playerID, updatedAt);
}

void MAPlayerStore::apply(const MAPlayer &next, double now) {
    const MAPlayer *const known = player(next.playerID);
    const bool isSame = known && instantOf(*known) == instantOf(next) &&
                        known->elapsedTime == next.elapsedTime && known->playbackState == next.playbackState;
    keep(next,
         isSame ? m_playerTimes.value(next.playerID) : instantHere(instantOf(next), now, oldestInEvent));
}

void MAPlayerStore::removePlayer(const QString &id) {
    m_players.erase(id);
    m_playerTimes.remove(id);
    m_activeQueues.remove(id);
}

void MAPlayerStore::apply(const MAPlayerQueue &queue, double now) {
    const auto known = m_queues.find(queue.queueID);
    if (known == m_queues.end() && m_queues.size() >= maxPlayers)
        return;
    if (known != m_queues.end() && isSameMoment(known->second.record, queue)) {
        known->second.record = queue;
        return;
    }
    const double updatedAt = instantHere(queue.elapsedTimeLastUpdated, now, oldestInEvent);
    m_queues.insert_or_assign(queue.queueID, Queue{queue, queue.elapsedTime.value_or(0), updatedAt});
}

void MAPlayerStore::applyTime(const QString &queueID, double elapsed, double now) {
    const auto known = m_queues.find(queueID);
    if (known == m_queues.end() || !(elapsed >= 0))
        return;
    known->second.elapsed = elapsed;
    known->second.updatedAt = now;
}

const MAPlayer *MAPlayerStore::localPlayer() const {
    if (!localClientID)
        return nullptr;
    const auto isOurs = [this](const MAOutputProtocol &protocol) {
        return protocol.protocolDomain == "sendspin"_L1 && protocol.outputProtocolID == *localClientID;
    };
    for (const auto &[id, player] : m_players) {
        if (std::any_of(player.outputProtocols.begin(), player.outputProtocols.end(), isOurs))
            return &player;
    }
    return nullptr;
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
    const MAPlayer *const local = localPlayer();
    return local && local->playerID == playerID ? OutputDevice::thisMacID() : OutputDevice::ID{playerID};
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
           !silentTypes.contains(player.type.value_or(QString())) && &player != localPlayer();
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
    const MAPlayer *const local = localPlayer();
    for (const auto &[id, other] : m_players) {
        const bool fits = with.contains(id) || with.contains(other.provider.value_or(QString()));
        if (fits && &other != &player && (isShown(other) || &other == local))
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
    QList<OutputActivity> all;
    for (const OutputDevice &output : devices()) {
        const MAPlayer *const ofOutput = player(output.id);
        if (!ofOutput)
            continue; // this computer, which is no player yet
        const NowPlaying playing = nowPlaying(output.id, now);
        const QString group = groupOf(*ofOutput);
        all.append(
            {.output = output.id,
             .name = output.name,
             .state = playing.state,
             .leader = group.isEmpty() ? std::nullopt : std::optional(outputOf(group)),
             .updatedAt = queue(queueID(*ofOutput)) ? std::optional(playing.updatedAt) : std::nullopt});
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
        return maplayer::nowPlaying(output, *ofOutput, playing->record, playing->elapsed, playing->updatedAt);
    return maplayer::nowPlaying(output, *ofOutput, m_playerTimes.value(ofOutput->playerID, now));
}

} // namespace vantor
