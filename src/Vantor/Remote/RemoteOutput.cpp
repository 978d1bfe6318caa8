#include "Vantor/Remote/RemoteOutput.h"

#include "MusicBackendKit/MarqueeText.h"
#include "MusicBackendKit/MusicBackendError.h"
#include "Platform/PictureDecoder.h"

#include <QDateTime>
#include <QPointer>

#include <cmath>

namespace vantor {

namespace {

using State = NowPlaying::State;
using Kind = TransportCommand::Kind;

constexpr double sameTime = 2;      // seconds by which two clocks of one place may differ
constexpr double sameVolume = 0.01; // speakers count in hundredths
constexpr int artworkSide = 640;
constexpr qint64 artworkPixels = 36'000'000;

double now() {
    return static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000;
}

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

RemoteOutput::RemoteOutput(QSettings &settings, QObject *parent)
    : QObject(parent), m_memory(settings),
      m_volumeSender([this](double volume) { return send(TransportCommand::setVolume(volume)); }),
      m_seekSender([this](double seconds) { return send(TransportCommand::seek(seconds)); }) {
    m_clock.setSingleShot(true);
    m_clock.setTimerType(Qt::PreciseTimer);
    connect(&m_clock, &QTimer::timeout, this, &RemoteOutput::changed);
    m_expiry.setSingleShot(true);
    m_expiry.setInterval(Expected<bool>::patience);
    connect(&m_expiry, &QTimer::timeout, this, &RemoteOutput::changed);
    connect(this, &RemoteOutput::changed, this, &RemoteOutput::startClock);
}

// The selection

void RemoteOutput::setBrowser(LibraryBrowser *browser) {
    if (m_browser)
        m_browser->disconnect(this);
    m_browser = browser;
    if (browser) {
        connect(browser, &LibraryBrowser::sourceChanged, this, &RemoteOutput::recall);
        connect(browser, &LibraryBrowser::outputChosen, this, &RemoteOutput::remember);
        connect(browser, &LibraryBrowser::stateChanged, this, &RemoteOutput::takeOutput);
        connect(browser, &LibraryBrowser::outputsChanged, this, &RemoteOutput::takeOutput);
        connect(browser, &LibraryBrowser::activitiesChanged, this, &RemoteOutput::takeOutput);
        recall();
    }
    takeOutput();
}

void RemoteOutput::recall() {
    if (!m_browser->backend())
        return;
    if (const auto entry = m_memory.of(m_browser->backend()->sourceID()))
        m_browser->chooseOutput(entry->id, entry->name);
}

void RemoteOutput::remember(const OutputDevice &output) {
    if (m_browser->backend())
        m_memory.remember(m_browser->backend()->sourceID(), {output.id, output.name});
}

void RemoteOutput::select(const OutputDevice &output) {
    m_followsHere = false;
    if (m_browser)
        m_browser->chooseOutput(output.id, output.name);
}

void RemoteOutput::deselect() {
    if (isSelected())
        select(OutputDevice::thisMac());
}

void RemoteOutput::takeOutput() {
    std::optional<OutputDevice> device = m_browser ? m_browser->output() : std::nullopt;
    if (device && device->kind != OutputDevice::Kind::remote) {
        if (playsHere())
            device->name = tr("This Computer");
        else
            device.reset();
    }
    const auto backend = device && device->isAvailable ? m_browser->connected() : nullptr;
    if (device == m_device && backend == m_backend)
        return;
    const bool isSame = device && m_device && device->id == m_device->id;
    const bool hasGone = isSame && m_backend && !backend;
    m_device = device;
    if (!isSame || backend != m_backend)
        watch(backend);
    Q_EMIT selectionChanged();
    Q_EMIT changed();
    if (hasGone)
        Q_EMIT failed(tr("%1 is not available").arg(m_device->name));
}

void RemoteOutput::followHere(bool follow) {
    if (std::exchange(m_followsHere, follow) != follow)
        takeOutput();
}

/// Whether the source knows this computer as a speaker, too.
bool RemoteOutput::playsHere() const {
    const bool hasSpeakers = capabilities().testFlag(MusicBackendCapability::remoteOutputs);
    return m_followsHere && hasSpeakers && m_browser->connected() &&
           std::ranges::find(m_browser->activities(), OutputDevice::thisMacID(), &OutputActivity::output) !=
               m_browser->activities().end();
}

void RemoteOutput::watch(const std::shared_ptr<MusicBackend> &backend) {
    m_watch = std::make_shared<char>();
    m_backend = backend;
    m_playingStream = {};
    m_queueStream = {};
    m_playing = {};
    m_artwork = {};
    forgetExpectations();
    m_queue = {};
    Q_EMIT queueChanged();
    if (!backend)
        return;
    m_playing = NowPlaying::idle(m_device->id, now());
    m_playingStream = backend->nowPlaying(m_device->id);
    m_queueStream = backend->queue(m_device->id);
    followPlaying();
    followQueue();
}

MusicBackendCapabilities RemoteOutput::capabilities() const {
    return m_browser ? m_browser->capabilities() : MusicBackendCapabilities();
}

// What plays

QCoro::Task<> RemoteOutput::followPlaying() {
    const std::weak_ptr<char> watch = m_watch;
    while (true) {
        const std::optional<NowPlaying> told = co_await m_playingStream.next();
        if (watch.expired())
            co_return;
        if (!told) { // the source has let go of the speaker
            take(NowPlaying::idle(m_device->id, now()));
            co_return;
        }
        take(*told);
    }
}

QCoro::Task<> RemoteOutput::followQueue() {
    const std::weak_ptr<char> watch = m_watch;
    while (true) {
        const std::optional<RemoteQueueSnapshot> queue = co_await m_queueStream.next();
        if (watch.expired() || !queue)
            co_return;
        m_queue = *queue;
        if (m_shuffle.value() == m_queue.isShuffled)
            m_shuffle.forget();
        if (m_repeat.value() == m_queue.repeats)
            m_repeat.forget();
        Q_EMIT queueChanged();
        if (!watch.expired())
            Q_EMIT changed(); // the number in the title
    }
}

void RemoteOutput::take(const NowPlaying &told) {
    const std::weak_ptr<char> watch = m_watch;
    const NowPlaying before = nowPlaying();
    const double instant = now();
    confirm(told);
    m_playing = told;
    const NowPlaying after = nowPlaying();
    const bool isSame = isSameItem(before, after);
    if (before.artwork != after.artwork) {
        m_artwork = {};
        loadArtwork();
    }
    Q_EMIT changed();
    if (!isSame && !watch.expired())
        Q_EMIT itemChanged();
    if (isSame && !watch.expired() &&
        std::abs(before.elapsedAt(instant) - after.elapsedAt(instant)) > sameTime)
        Q_EMIT seeked(after.elapsedAt(instant));
}

/// What was expected and has come, or cannot come any more.
void RemoteOutput::confirm(const NowPlaying &told) {
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

NowPlaying RemoteOutput::nowPlaying() const {
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

PlaybackView RemoteOutput::view() const {
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

QString RemoteOutput::title() const {
    if (!m_device)
        return MarqueeText::idle();
    if (!m_backend) {
        const bool isConnecting = m_browser && m_browser->state() == LibraryBrowser::State::connecting;
        return (isConnecting ? tr("Connecting to %1…") : tr("%1 is not available")).arg(m_device->name);
    }
    const std::optional<int> number =
        m_queue.currentIndex ? std::optional(*m_queue.currentIndex + 1) : std::nullopt;
    return MarqueeText::display(nowPlaying(), number);
}

QCoro::Task<> RemoteOutput::loadArtwork() {
    const std::weak_ptr<char> watch = m_watch;
    const std::optional<ArtworkRef> ref = m_playing.artwork;
    const std::shared_ptr<MusicBackend> backend = m_backend;
    if (!ref || !backend)
        co_return;
    QByteArray bytes;
    try {
        bytes = co_await backend->artwork(*ref, artworkSide);
    } catch (...) { // it plays without a picture
    }
    if (watch.expired() || m_playing.artwork != ref)
        co_return;
    m_artwork = decodePicture(bytes, artworkSide, artworkPixels);
    Q_EMIT changed();
}

// So that the seconds change when the speaker's do.
void RemoteOutput::startClock() {
    const std::optional<double> anchor = nowPlaying().remoteClockAnchor(false);
    const double since = anchor ? now() - *anchor : 0;
    if (!anchor || !std::isfinite(since)) {
        m_clock.stop();
        return;
    }
    const double untilNext = 1 - (since - std::floor(since));
    m_clock.start(static_cast<int>(std::ceil(untilNext * 1000)));
}

// Commands

bool RemoteOutput::isReady() {
    if (!m_backend && m_device)
        Q_EMIT failed(MusicBackendError::unknownOutput(m_device->id).description());
    return m_backend != nullptr;
}

void RemoteOutput::transport(const TransportCommand &command) {
    if (!isReady())
        return;
    switch (command.kind) {
    case Kind::setVolume:
        if (!m_playing.volume)
            return fail(std::make_exception_ptr(
                MusicBackendError::unsupported(MusicBackendCapability::remoteOutputs)));
        m_volume.expect(command.value);
        m_volumeSender.set(command.value);
        break;
    case Kind::seek: {
        const double last = m_playing.duration.value_or(std::max(0.0, command.value));
        const double seconds = std::clamp(command.value, 0.0, std::max(0.0, last));
        m_place.expect({seconds, now()});
        m_seekSender.set(seconds);
        Q_EMIT seeked(seconds);
        break;
    }
    case Kind::togglePlayPause: // as what it is now, so that twice is twice
        return transport(view().wantsToPlay ? TransportCommand::pause() : TransportCommand::play());
    case Kind::play:
        expectState(State::playing);
        send(command);
        break;
    case Kind::pause:
        expectState(State::paused);
        send(command);
        break;
    case Kind::stop:
        expectState(State::stopped);
        send(command);
        break;
    case Kind::setShuffle:
        m_shuffle.expect(command.isOn);
        send(command);
        break;
    case Kind::setRepeat:
        m_repeat.expect(command.isOn);
        send(command);
        break;
    case Kind::setBalance:
    case Kind::next:
    case Kind::previous:
        send(command);
        break;
    }
    m_expiry.start();
    Q_EMIT changed();
}

// The clock goes on, or stands, from where it shows.
void RemoteOutput::expectState(State state) {
    if (nowPlaying().state == State::stopped && state == State::paused)
        return;
    m_place.expect({nowPlaying().elapsedAt(now()), now()});
    m_state.expect(state);
}

void RemoteOutput::forgetExpectations() {
    m_state.forget();
    m_volume.forget();
    m_place.forget();
    m_shuffle.forget();
    m_repeat.forget();
    m_volumeSender.cancel();
    m_seekSender.cancel();
}

QCoro::Task<> RemoteOutput::send(TransportCommand command) {
    const std::weak_ptr<char> watch = m_watch;
    const std::shared_ptr<MusicBackend> backend = m_backend;
    const OutputDevice::ID output = m_device ? m_device->id : OutputDevice::ID();
    std::exception_ptr error;
    try {
        if (backend)
            co_await backend->transport(command, output);
    } catch (...) {
        error = std::current_exception();
    }
    if (watch.expired() || !error)
        co_return;
    forgetExpectations();
    fail(error);
    Q_EMIT changed();
}

void RemoteOutput::fail(const std::exception_ptr &error) {
    Q_EMIT failed(LibraryFailure::of(error).sentence);
}

QCoro::Task<> RemoteOutput::report(QCoro::Task<> operation) {
    const QPointer<RemoteOutput> self(this);
    std::exception_ptr error;
    try {
        co_await operation;
    } catch (...) {
        error = std::current_exception();
    }
    if (self && error)
        fail(error);
}

void RemoteOutput::play(const QList<MediaID> &items, const PlayMode &mode) {
    if (isReady() && !items.isEmpty())
        report(m_backend->play(items, *m_device, mode));
}

void RemoteOutput::saveQueue(const QString &name) {
    if (isReady())
        report(m_backend->saveQueueAsPlaylist(m_device->id, name));
}

void RemoteOutput::favoriteCurrent() {
    if (isReady())
        report(m_backend->favoriteCurrentTrack(m_device->id));
}

} // namespace vantor
