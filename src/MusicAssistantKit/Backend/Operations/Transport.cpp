#include "MusicAssistantKit/Backend/MusicAssistantBackend_p.h"

#include <cmath>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr MusicBackendCapability needed = MusicBackendCapability::remoteOutputs;

/// Of one command with nothing but its player.
QString playerCommand(TransportCommand::Kind kind) {
    using Kind = TransportCommand::Kind;
    switch (kind) {
    case Kind::play:
        return u"players/cmd/play"_s;
    case Kind::pause:
        return u"players/cmd/pause"_s;
    case Kind::togglePlayPause:
        return u"players/cmd/play_pause"_s;
    default:
        return u"players/cmd/stop"_s;
    }
}

/// Shuffle and repeat: newer servers take them for a player, all of them for a queue.
QCoro::Task<> setMode(MusicAssistantBackend::Private &d, OutputDevice::ID output, QString mode,
                      QString argument, QJsonValue value) {
    co_await d.probed();
    const QString newer = u"players/cmd/"_s + mode;
    if (d.commands.lists(newer)) {
        const MAPlayer player = co_await d.player(output);
        const QJsonObject args{{u"player_id"_s, player.playerID}, {argument, value}};
        co_await d.callOutput(output, newer, args, needed);
        co_return;
    }
    const QString queue = co_await d.queueID(output);
    const QJsonObject args{{u"queue_id"_s, queue}, {argument, value}};
    co_await d.callOutput(output, u"player_queues/"_s + mode, args, needed);
}

QCoro::Task<> setVolume(MusicAssistantBackend::Private &d, OutputDevice::ID output, double volume) {
    const MAPlayer player = co_await d.player(output);
    if (!player.supportedFeatures.contains("volume_set"_L1))
        throw MusicBackendError::unsupported(needed);
    std::optional<int> level = static_cast<int>(std::lround(std::clamp(volume, 0.0, 1.0) * 100));
    if (d.volumesOnWay.contains(player.playerID)) {
        d.volumesOnWay[player.playerID] = level;
        co_return;
    }
    d.volumesOnWay.insert(player.playerID, std::nullopt);
    std::exception_ptr failure;
    while (level) { // also after a failure: what was asked for last may still do
        failure = nullptr;
        try {
            const QJsonObject args{{u"player_id"_s, player.playerID}, {u"volume_level"_s, *level}};
            co_await d.callOutput(output, u"players/cmd/volume_set"_s, args, needed);
        } catch (...) {
            failure = std::current_exception();
        }
        level = std::exchange(d.volumesOnWay[player.playerID], std::nullopt);
    }
    d.volumesOnWay.remove(player.playerID);
    if (failure)
        std::rethrow_exception(failure);
}

QCoro::Task<> seek(MusicAssistantBackend::Private &d, OutputDevice::ID output, double seconds) {
    const MAPlayer player = co_await d.player(output);
    constexpr double longest = 1e6; // seconds
    const auto position = static_cast<int>(std::lround(std::clamp(seconds, 0.0, longest)));
    const QJsonObject args{{u"player_id"_s, player.playerID}, {u"position"_s, position}};
    co_await d.callOutput(output, u"players/cmd/seek"_s, args, needed);
}

QCoro::Task<> skip(MusicAssistantBackend::Private &d, OutputDevice::ID output, QString command) {
    const QString queue = co_await d.queueID(output);
    co_await d.callOutput(output, command, {{u"queue_id"_s, queue}}, needed);
}

QCoro::Task<> tellPlayer(MusicAssistantBackend::Private &d, OutputDevice::ID output, QString command) {
    const MAPlayer player = co_await d.player(output);
    co_await d.callOutput(output, command, {{u"player_id"_s, player.playerID}}, needed);
}

} // namespace

QCoro::Task<> MusicAssistantBackend::transport(TransportCommand command, OutputDevice::ID on) {
    using Kind = TransportCommand::Kind;
    const auto self = shared_from_this();
    if (std::isnan(command.value))
        co_return; // no place and no volume
    switch (command.kind) {
    case Kind::seek:
        co_await seek(*d, on, command.value);
        break;
    case Kind::setVolume:
        co_await setVolume(*d, on, command.value);
        break;
    case Kind::setBalance:
        throw MusicBackendError::unsupported(needed);
    case Kind::setShuffle:
        co_await setMode(*d, on, u"shuffle"_s, u"shuffle_enabled"_s, command.isOn);
        break;
    case Kind::setRepeat:
        co_await setMode(*d, on, u"repeat"_s, u"repeat_mode"_s, command.isOn ? u"all"_s : u"off"_s);
        break;
    case Kind::next:
        co_await skip(*d, on, u"player_queues/next"_s);
        break;
    case Kind::previous:
        co_await skip(*d, on, u"player_queues/previous"_s);
        break;
    case Kind::play:
    case Kind::pause:
    case Kind::togglePlayPause:
    case Kind::stop:
        co_await tellPlayer(*d, on, playerCommand(command.kind));
        break;
    }
}

QCoro::Task<> MusicAssistantBackend::setMuted(OutputDevice::ID on, bool isMuted) {
    const auto self = shared_from_this();
    const MAPlayer player = co_await d->player(on);
    const QJsonObject args{{u"player_id"_s, player.playerID}, {u"muted"_s, isMuted}};
    co_await d->callOutput(on, u"players/cmd/volume_mute"_s, args, needed);
}

} // namespace vantor
