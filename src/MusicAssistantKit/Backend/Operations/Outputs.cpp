#include "MusicAssistantKit/Backend/MusicAssistantBackend_p.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr MusicBackendCapability needed = MusicBackendCapability::remoteOutputs;
}

QCoro::Task<MAPlayer> MusicAssistantBackend::Private::player(OutputDevice::ID output) {
    const bool isLocal = output == OutputDevice::thisMacID();
    const MAPlayerStore &store = watchers.store();
    if (isLocal && !store.localClientID())
        throw MusicAssistantBackendErrors::localPlayerOff();
    if (!store.player(output)) // the server may have made it just now
        co_await watchers.reloadPlayers();
    const MAPlayer *const found = store.player(output);
    if (!found)
        throw isLocal ? MusicAssistantBackendErrors::localPlayerComing()
                      : MusicBackendError::unknownOutput(output);
    if (!found->available.value_or(true))
        throw isLocal ? MusicAssistantBackendErrors::localPlayerAway()
                      : MusicBackendError::unknownOutput(output);
    co_return *found;
}

QCoro::Task<QString> MusicAssistantBackend::Private::queueID(OutputDevice::ID output) {
    const MAPlayer found = co_await player(output);
    const QString group = MAPlayerStore::groupOf(found);
    if (group.isEmpty())
        co_return found.playerID;
    const QJsonObject args{{u"player_id"_s, found.playerID}};
    const MAJSON queue = co_await callOutput(output, u"player_queues/get_active_queue"_s, args, needed);
    co_return MAReader(queue).optionalString("queue_id").value_or(group);
}

void MusicAssistantBackend::setLocalClientID(const std::optional<QString> &id) {
    d->watchers.setLocalClientID(id);
}

std::optional<QString> MusicAssistantBackend::localPlayerID() const {
    const MAPlayer *const local = d->watchers.store().localPlayer();
    return local ? std::optional(local->playerID) : std::nullopt;
}

QCoro::Task<QList<OutputDevice>> MusicAssistantBackend::outputs() {
    const auto self = shared_from_this();
    if (!d->watchers.store().hasPlayers())
        co_await d->watchers.reloadPlayers();
    co_return d->watchers.store().devices();
}

AsyncStream<QList<OutputActivity>> MusicAssistantBackend::activities() {
    return d->watchers.activities();
}

std::optional<MusicAssistantOutputState>
MusicAssistantBackend::outputState(const OutputDevice::ID &output) const {
    return d->watchers.store().state(output);
}

std::optional<OutputControls> MusicAssistantBackend::controls(const OutputDevice::ID &on) const {
    const auto state = outputState(on);
    return state ? std::optional(state->controls) : std::nullopt;
}

AsyncStream<NowPlaying> MusicAssistantBackend::nowPlaying(OutputDevice::ID on) {
    return d->watchers.nowPlaying(on);
}

AsyncStream<RemoteQueueSnapshot> MusicAssistantBackend::queue(OutputDevice::ID on) {
    return d->watchers.queue(on);
}

QCoro::Task<> MusicAssistantBackend::transfer(OutputDevice::ID from, OutputDevice::ID to, bool autoPlay) {
    const auto self = shared_from_this();
    const QString source = co_await d->queueID(from);
    const QString target = co_await d->queueID(to);
    const QJsonObject args{
        {u"source_queue_id"_s, source}, {u"target_queue_id"_s, target}, {u"auto_play"_s, autoPlay}};
    co_await d->callOutput(to, u"player_queues/transfer"_s, args, needed);
}

QCoro::Task<> MusicAssistantBackend::setGroupMembers(OutputDevice::ID leader, QList<OutputDevice::ID> adding,
                                                     QList<OutputDevice::ID> removing) {
    const auto self = shared_from_this();
    const MAPlayer target = co_await d->player(leader);
    QJsonObject args{{u"target_player"_s, target.playerID}};
    QJsonArray added;
    for (const OutputDevice::ID &output : adding) {
        const MAPlayer member = co_await d->player(output);
        added.append(member.playerID);
    }
    QJsonArray removed;
    for (const OutputDevice::ID &output : removing) {
        const MAPlayer *const member = d->watchers.store().player(output); // which may have gone meanwhile
        removed.append(member ? member->playerID : output.rawValue);
    }
    if (!added.isEmpty())
        args.insert("player_ids_to_add"_L1, added);
    if (!removed.isEmpty())
        args.insert("player_ids_to_remove"_L1, removed);
    if (added.isEmpty() && removed.isEmpty())
        co_return;
    co_await d->callOutput(leader, u"players/cmd/set_members"_s, args, needed);
}

} // namespace vantor
