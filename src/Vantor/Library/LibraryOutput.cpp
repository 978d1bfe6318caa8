#include "Vantor/Library/LibraryOutput.h"

#include <QDateTime>

namespace vantor {

namespace {

NowPlaying::State stateOf(PlaybackState state) {
    switch (state) {
    case PlaybackState::stopped:
        return NowPlaying::State::stopped;
    case PlaybackState::loading:
        return NowPlaying::State::loading;
    case PlaybackState::playing:
        return NowPlaying::State::playing;
    case PlaybackState::paused:
        break;
    }
    return NowPlaying::State::paused;
}

} // namespace

LibraryOutput::LibraryOutput(Player &player, QObject *parent)
    : QObject(parent), m_player(player),
      m_observer(player.addEventObserver([this](const PlayerEvent &) { tell(); })) {
    connect(&player, &Player::volumeChanged, this, &LibraryOutput::tell);
}

LibraryOutput::~LibraryOutput() {
    m_player.removeEventObserver(m_observer);
}

void LibraryOutput::play(const std::vector<Track> &tracks, PlayMode mode) {
    const bool replaces = mode.kind == PlayMode::Kind::replace;
    if (replaces)
        m_player.clearQueue();
    m_player.enqueue(tracks);
    if (replaces)
        m_player.play(mode.startIndex);
}

void LibraryOutput::transport(TransportCommand command) {
    using Kind = TransportCommand::Kind;
    switch (command.kind) {
    case Kind::seek:
        return m_player.seek(command.value);
    case Kind::setVolume:
        return m_player.setVolume(static_cast<float>(command.value));
    case Kind::setBalance:
        return m_player.setBalance(static_cast<float>(command.value));
    case Kind::setShuffle:
        return m_player.setShuffled(command.isOn);
    case Kind::setRepeat:
        return m_player.setRepeatMode(command.isOn ? RepeatMode::all : RepeatMode::off);
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

NowPlaying LibraryOutput::present() const {
    const double now = static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000;
    NowPlaying playing = NowPlaying::idle(OutputDevice::thisMacID(), now);
    playing.state = stateOf(m_player.state());
    playing.volume = m_player.volume();
    const std::optional<Track> track = m_player.queue().current();
    if (!track)
        return playing;
    if (const QUrl *const file = std::get_if<QUrl>(&track->source); file && m_finder)
        playing.item = m_finder(*file);
    playing.title = track->title;
    playing.artist = track->artist;
    playing.album = track->album;
    if (m_player.duration() > 0)
        playing.duration = m_player.duration();
    playing.elapsed = m_player.currentTime();
    return playing;
}

AsyncStream<NowPlaying> LibraryOutput::nowPlaying() {
    auto [producer, stream] = AsyncStream<NowPlaying>::make(latestValueOnly);
    producer.yield(present());
    m_listeners.push_back(std::move(producer));
    return std::move(stream);
}

void LibraryOutput::tell() {
    std::erase_if(m_listeners, [](const auto &listener) { return !listener.isWanted(); });
    for (auto &listener : m_listeners)
        listener.yield(present());
}

} // namespace vantor
