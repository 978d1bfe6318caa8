#include "Vantor/Remote/RemotePlayback.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>

namespace vantor {

namespace {

using State = NowPlaying::State;
using Kind = TransportCommand::Kind;

constexpr double sameTime = 2;      // seconds by which two clocks of one place may differ
constexpr double sameVolume = 0.01; // speakers count in hundredths

PlaybackState stateOf(State state) {
    switch (state) {
    case State::stopped:
        return PlaybackState::stopped;
    case State::loading:
        return PlaybackState::loading;
    case State::playing:
        return PlaybackState::playing;
    case State::paused:
        break;
    }
    return PlaybackState::paused;
}

bool isSameItem(const NowPlaying &one, const NowPlaying &other) {
    return one.item == other.item && one.title == other.title && one.artist == other.artist;
}

} // namespace

double RemotePlayback::now() {
    return static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000;
}

RemotePlayback::RemotePlayback(const OutputDevice::ID &output) : m_playing(NowPlaying::idle(output, now())) {}

RemotePlayback::Step RemotePlayback::take(const NowPlaying &told) {
    const NowPlaying before = nowPlaying();
    const double instant = now();
    confirm(told);
    m_playing = told;
    const NowPlaying after = nowPlaying();
    Step step{!isSameItem(before, after), before.artwork != after.artwork, {}};
    const double elapsed = after.elapsedAt(instant);
    if (!step.hasOtherItem && std::abs(before.elapsedAt(instant) - elapsed) > sameTime)
        step.jumpedTo = elapsed;
    return step;
}

void RemotePlayback::take(const RemoteQueueSnapshot &told) {
    m_queue = told;
    if (m_shuffle.value() == m_queue.isShuffled)
        m_shuffle.forget();
    if (m_repeat.value() == m_queue.repeats)
        m_repeat.forget();
}

/// What was expected and has come, or cannot come any more.
void RemotePlayback::confirm(const NowPlaying &told) {
    if (m_state.value() == told.state)
        m_state.forget();
    if (const auto volume = m_volume.value();
        volume && told.volume && std::abs(*volume - *told.volume) < sameVolume)
        m_volume.forget();
    const std::optional<Place> place = m_place.value();
    const bool isThere = place && std::abs(nowPlaying().elapsedAt(now()) - told.elapsedAt(now())) < sameTime;
    if (isThere || !isSameItem(m_playing, told))
        m_place.forget();
}

NowPlaying RemotePlayback::nowPlaying() const {
    NowPlaying playing = m_playing;
    playing.state = m_state.value().value_or(playing.state);
    playing.volume =
        playing.volume ? std::optional(m_volume.value().value_or(*playing.volume)) : std::nullopt;
    if (const std::optional<Place> place = m_place.value()) {
        playing.elapsed = place->elapsed;
        playing.updatedAt = place->at;
    }
    return playing;
}

PlaybackView RemotePlayback::view() const {
    const NowPlaying playing = nowPlaying();
    PlaybackView view;
    view.state = stateOf(playing.state);
    view.wantsToPlay = playing.state == State::playing || playing.state == State::loading;
    view.duration = std::isfinite(playing.duration.value_or(0)) ? playing.duration.value_or(0) : 0;
    view.elapsed = playing.elapsedAt(now());
    view.volume = playing.volume;
    view.isShuffled = m_shuffle.value().value_or(m_queue.isShuffled.value_or(false));
    const bool repeats = m_repeat.value().value_or(m_queue.repeats.value_or(false));
    view.repeat = repeats ? RepeatMode::all : RepeatMode::off;
    view.isEmpty = m_queue.total == 0 && !playing.title;
    view.hasNext = m_queue.total > 0 &&
                   (repeats || view.isShuffled || m_queue.currentIndex.value_or(-1) + 1 < m_queue.total);
    return view;
}

double RemotePlayback::reachable(double seconds) const {
    const double last = m_playing.duration.value_or(std::max(0.0, seconds));
    return std::clamp(seconds, 0.0, std::max(0.0, last));
}

void RemotePlayback::expect(const TransportCommand &command) {
    switch (command.kind) {
    case Kind::setVolume:
        return m_volume.expect(command.value);
    case Kind::seek:
        return m_place.expect({reachable(command.value), now()});
    case Kind::play:
        return expectState(State::playing);
    case Kind::pause:
        return expectState(State::paused);
    case Kind::stop:
        return expectState(State::stopped);
    case Kind::setShuffle:
        return m_shuffle.expect(command.isOn);
    case Kind::setRepeat:
        return m_repeat.expect(command.isOn);
    case Kind::togglePlayPause:
    case Kind::setBalance:
    case Kind::next:
    case Kind::previous:
        break;
    }
}

// The clock goes on, or stands, from where it shows.
void RemotePlayback::expectState(State state) {
    if (nowPlaying().state == State::stopped && state == State::paused)
        return;
    m_place.expect({nowPlaying().elapsedAt(now()), now()});
    m_state.expect(state);
}

void RemotePlayback::forgetExpectations() {
    m_state.forget();
    m_volume.forget();
    m_place.forget();
    m_shuffle.forget();
    m_repeat.forget();
}

} // namespace vantor
