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

LibraryOutput::LibraryOutput(PlayerModel &model, QObject *parent)
    : QObject(parent), m_model(model),
      m_observer(model.player().addEventObserver([this](const PlayerEvent &) { tell(); })) {
    connect(&model.player(), &Player::volumeChanged, this, &LibraryOutput::tell);
}

LibraryOutput::~LibraryOutput() {
    m_model.player().removeEventObserver(m_observer);
}

void LibraryOutput::play(const std::vector<Track> &tracks, PlayMode mode) {
    const bool replaces = mode.kind == PlayMode::Kind::replace;
    if (replaces)
        m_model.clearQueue();
    m_model.player().enqueue(tracks);
    if (replaces)
        m_model.player().play(mode.startIndex);
}

void LibraryOutput::transport(TransportCommand command) {
    m_model.local().transport(command);
}

NowPlaying LibraryOutput::present() const {
    const double now = static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000;
    NowPlaying playing = NowPlaying::idle(OutputDevice::thisMacID(), now);
    const PlaybackView view = m_model.local().view();
    playing.state = stateOf(view.state);
    playing.volume = view.volume;
    const std::optional<Track> track = m_model.player().queue().current();
    if (!track)
        return playing;
    if (const QUrl *const file = std::get_if<QUrl>(&track->source); file && m_finder)
        playing.item = m_finder(*file);
    playing.title = track->title;
    playing.artist = track->artist;
    playing.album = track->album;
    if (view.duration > 0)
        playing.duration = view.duration;
    playing.elapsed = view.elapsed;
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
