#include "Vantor/Model/LocalTarget.h"

#include "AudioCore/Playback/Player.h"
#include "Vantor/Model/StoredValue.h"

#include <QSettings>

namespace vantor {

LocalTarget::LocalTarget(Player &player, QSettings &settings) : m_player(player), m_settings(settings) {
    const auto number = [&settings](const char *key, double fallback, double minimum) {
        return StoredValue::number(settings, QLatin1String(key), fallback, minimum, 1);
    };
    player.setVolume(static_cast<float>(number("volume", 0.8, 0)));
    player.setBalance(static_cast<float>(number("balance", 0, -1)));
    player.setShuffled(StoredValue::boolean(settings, QStringLiteral("shuffle"), false));
    const bool repeats = StoredValue::boolean(settings, QStringLiteral("repeat"), false);
    player.setRepeatMode(repeats ? RepeatMode::all : RepeatMode::off);
}

PlaybackView LocalTarget::view() const {
    PlaybackView view;
    view.state = m_player.state();
    view.wantsToPlay = m_player.wantsToPlay();
    view.elapsed = m_player.currentTime();
    view.duration = m_player.duration();
    view.volume = m_player.volume();
    view.balance = m_player.balance();
    view.isShuffled = m_player.isShuffled();
    view.repeat = m_player.repeatMode();
    view.isEmpty = m_player.queue().count() == 0;
    view.hasNext = m_player.queue().hasForwardTarget();
    return view;
}

void LocalTarget::transport(const TransportCommand &command) {
    using Kind = TransportCommand::Kind;
    switch (command.kind) {
    case Kind::seek:
        return m_player.seek(command.value);
    case Kind::setVolume:
        m_player.setVolume(static_cast<float>(command.value));
        return store("volume", static_cast<double>(m_player.volume()));
    case Kind::setBalance:
        m_player.setBalance(static_cast<float>(command.value));
        return store("balance", static_cast<double>(m_player.balance()));
    case Kind::setShuffle:
        m_player.setShuffled(command.isOn);
        return store("shuffle", m_player.isShuffled());
    case Kind::setRepeat:
        return setRepeatMode(command.isOn ? RepeatMode::all : RepeatMode::off);
    case Kind::play:
        return m_player.play();
    case Kind::pause:
        return m_player.pause();
    case Kind::togglePlayPause:
        return m_player.togglePlayPause();
    case Kind::stop:
        return m_player.stop();
    case Kind::next:
        return m_player.next();
    case Kind::previous:
        return m_player.previous();
    }
}

void LocalTarget::setRepeatMode(RepeatMode mode) {
    m_player.setRepeatMode(mode);
    store("repeat", mode != RepeatMode::off);
}

void LocalTarget::store(const char *key, const QVariant &value) {
    m_settings.setValue(QLatin1String(key), value);
}

} // namespace vantor
