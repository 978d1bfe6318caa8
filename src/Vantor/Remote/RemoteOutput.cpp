#include "Vantor/Remote/RemoteOutput.h"

#include "MusicBackendKit/MarqueeText.h"
#include "MusicBackendKit/MusicBackendError.h"
#include "MusicLibraryKit/ArtworkCache.h"

#include <QPointer>

#include <algorithm>
#include <cmath>

namespace vantor {

namespace {

using Kind = TransportCommand::Kind;

constexpr int artworkSide = 640; // as desktops show it

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

void RemoteOutput::setBrowser(LibraryBrowser *browser, ArtworkCache *pictures) {
    if (m_browser)
        m_browser->disconnect(this);
    if (m_pictures)
        m_pictures->disconnect(this);
    m_browser = browser;
    m_pictures = pictures;
    if (pictures)
        connect(pictures, &ArtworkCache::imageChanged, this, [this](const ArtworkRef &ref, int pixels) {
            if (pixels != artworkSide || ref != nowPlaying().artwork)
                return;
            askForArtwork();
            Q_EMIT changed();
        });
    if (browser) {
        connect(browser, &LibraryBrowser::sourceChanged, this, &RemoteOutput::recall);
        connect(browser, &LibraryBrowser::outputChosen, this, &RemoteOutput::remember);
        for (const auto signal : {&LibraryBrowser::stateChanged, &LibraryBrowser::interruptionChanged})
            connect(browser, signal, this, &RemoteOutput::takeOutput);
        connect(browser, &LibraryBrowser::outputsChanged, this, &RemoteOutput::takeOutput);
        connect(browser, &LibraryBrowser::activitiesChanged, this, &RemoteOutput::takeOutput);
        connect(browser, &LibraryBrowser::activitiesChanged, this, &RemoteOutput::takeControls);
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

QList<OutputDevice> RemoteOutput::outputs() const {
    if (!m_browser)
        return {};
    QList<OutputDevice> known = m_browser->outputs();
    const auto chosen = m_browser->output();
    if (chosen && std::ranges::find(known, chosen->id, &OutputDevice::id) == known.end())
        known.append(*chosen);
    QList<OutputDevice> sorted;
    for (const bool isThere : {true, false})
        std::ranges::copy_if(known, std::back_inserter(sorted),
                             [&](const OutputDevice &output) { return output.isAvailable == isThere; });
    return sorted;
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
    // While the source looks for its server again, the speaker stays the one.
    if (!device && m_device && m_browser && m_browser->state() == LibraryBrowser::State::connecting) {
        device = m_device;
        device->isAvailable = false;
    }
    if (device && device->kind != OutputDevice::Kind::remote) {
        if (playsHere())
            device->name = tr("This Computer");
        else
            device.reset();
    }
    const auto backend = device && device->isAvailable ? m_browser->connected() : nullptr;
    if (device == m_device && backend == m_backend) {
        takeInterruption();
        Q_EMIT changed(); // how the source stands is in the title
        return;
    }
    const bool isSame = device && m_device && device->id == m_device->id;
    const bool hasGone = isSame && m_backend && !backend && m_browser->connected();
    m_device = device;
    if (!isSame || backend != m_backend)
        watch(backend);
    takeInterruption();
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

// The clock stands where the server was lost: nobody knows how it goes on.
void RemoteOutput::takeInterruption() {
    if (!m_backend || !m_browser->isInterrupted())
        m_stoodAt.reset();
    else if (!m_stoodAt)
        m_stoodAt = m_playback.view().elapsed;
}

void RemoteOutput::watch(const std::shared_ptr<MusicBackend> &backend) {
    m_watch = std::make_shared<char>();
    m_backend = backend;
    m_playingStream = {};
    m_queueStream = {};
    m_artwork = {};
    forgetExpectations();
    m_playback = backend ? RemotePlayback(m_device->id) : RemotePlayback();
    m_controls = backend ? backend->controls(m_device->id) : std::nullopt;
    Q_EMIT queueChanged();
    if (!backend)
        return;
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
            take(NowPlaying::idle(m_device->id, RemotePlayback::now()));
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
        m_playback.take(*queue);
        Q_EMIT queueChanged();
        if (!watch.expired())
            Q_EMIT changed(); // the number in the title
    }
}

void RemoteOutput::take(const NowPlaying &told) {
    const std::weak_ptr<char> watch = m_watch;
    const RemotePlayback::Step step = m_playback.take(told);
    if (step.hasOtherArtwork)
        askForArtwork();
    Q_EMIT changed();
    if (step.hasOtherItem && !watch.expired())
        Q_EMIT itemChanged();
    if (step.jumpedTo && !watch.expired())
        Q_EMIT seeked(*step.jumpedTo);
}

PlaybackView RemoteOutput::view() const {
    PlaybackView view = m_playback.view();
    if (!controls().canSetVolume)
        view.volume.reset();
    if (m_stoodAt && view.state == PlaybackState::playing) { // who knows
        view.state = PlaybackState::loading;
        view.elapsed = *m_stoodAt;
    }
    return view;
}

OutputControls RemoteOutput::controls() const {
    OutputControls controls = m_controls.value_or(OutputControls{nowPlaying().volume.has_value(), {}});
    if (controls.isMuted)
        controls.isMuted = m_muted.value().value_or(*controls.isMuted);
    return controls;
}

void RemoteOutput::takeControls() {
    if (!m_backend)
        return;
    m_controls = m_backend->controls(m_device->id);
    if (m_controls && m_muted.value() == m_controls->isMuted)
        m_muted.forget();
    Q_EMIT changed();
}

QString RemoteOutput::title() const {
    if (!m_device)
        return MarqueeText::idle();
    if (!m_backend) {
        const bool isConnecting = m_browser && m_browser->state() == LibraryBrowser::State::connecting;
        return (isConnecting ? tr("Connecting to %1…") : tr("%1 is not available")).arg(m_device->name);
    }
    if (m_stoodAt)
        return tr("Reconnecting to %1…").arg(m_device->name);
    const std::optional<int> current = queue().currentIndex;
    const std::optional<int> number = current ? std::optional(*current + 1) : std::nullopt;
    return MarqueeText::display(nowPlaying(), number);
}

// Null until it has come, which the pictures tell.
void RemoteOutput::askForArtwork() {
    const std::optional<ArtworkRef> ref = nowPlaying().artwork;
    m_artwork = ref && m_pictures ? m_pictures->image(*ref, artworkSide) : QImage();
}

// So that the seconds change when the speaker's do.
void RemoteOutput::startClock() {
    const std::optional<double> anchor = nowPlaying().remoteClockAnchor(false);
    const double since = anchor ? RemotePlayback::now() - *anchor : 0;
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
    if (command.kind == Kind::togglePlayPause) // as what it is now, so that twice is twice
        return transport(view().wantsToPlay ? TransportCommand::pause() : TransportCommand::play());
    if (command.kind == Kind::setVolume && !controls().canSetVolume)
        return fail(
            std::make_exception_ptr(MusicBackendError::unsupported(MusicBackendCapability::remoteOutputs)));
    m_playback.expect(command);
    switch (command.kind) {
    case Kind::setVolume:
        m_volumeSender.set(command.value);
        if (controls().isMuted.value_or(false)) // who turns it up or down wants to hear it
            setMuted(false);
        break;
    case Kind::seek:
        m_seekSender.set(m_playback.reachable(command.value));
        Q_EMIT seeked(m_playback.reachable(command.value));
        break;
    default:
        send(command);
        break;
    }
    m_expiry.start();
    Q_EMIT changed();
}

void RemoteOutput::setMuted(bool isMuted) {
    if (!isReady())
        return;
    m_muted.expect(isMuted);
    m_expiry.start();
    carryOut(m_backend->setMuted(m_device->id, isMuted));
    Q_EMIT changed();
}

void RemoteOutput::forgetExpectations() {
    m_playback.forgetExpectations();
    m_muted.forget();
    m_volumeSender.cancel();
    m_seekSender.cancel();
}

QCoro::Task<> RemoteOutput::send(TransportCommand command) {
    if (!m_backend)
        co_return;
    auto operation = m_backend->transport(command, m_device->id);
    co_await carryOut(std::move(operation));
}

// What was expected of others counts no more either: nothing shows that the server may not do.
QCoro::Task<> RemoteOutput::carryOut(QCoro::Task<> operation) {
    const std::weak_ptr<char> watch = m_watch;
    std::exception_ptr error;
    try {
        co_await operation;
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

bool RemoteOutput::playsItems() const {
    return isSelected() || capabilities().testFlag(MusicBackendCapability::remoteOutputs);
}

void RemoteOutput::play(const QList<MediaID> &items, const PlayMode &mode) {
    if (items.isEmpty())
        return;
    if (!isSelected())
        m_browser->play({items, mode});
    else if (isReady())
        report(m_backend->play(items, *m_device, mode));
}

void RemoteOutput::setMember(const OutputDevice::ID &leader, const OutputDevice::ID &member, bool isMember) {
    const std::shared_ptr<MusicBackend> backend = m_browser ? m_browser->connected() : nullptr;
    if (!backend)
        return;
    const QList<OutputDevice::ID> change{member};
    report(backend->setGroupMembers(leader, isMember ? change : QList<OutputDevice::ID>(),
                                    isMember ? QList<OutputDevice::ID>() : change));
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
