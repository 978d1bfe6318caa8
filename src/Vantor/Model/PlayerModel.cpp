#include "Vantor/Model/PlayerModel.h"

#include "MusicBackendKit/MarqueeText.h"
#include "SkinKit/Layout/MainSliders.h"
#include "Vantor/Model/StoredValue.h"
#include "Vantor/Speaker/NetworkSpeaker.h"

#include <QLoggingCategory>
#include <QPointer>
#include <QSettings>
#include <QTimer>

#include <algorithm>
#include <cmath>

Q_LOGGING_CATEGORY(playerModelLog, "co.kelvane.vantor.PlayerModel")

namespace vantor {

namespace {

constexpr std::chrono::milliseconds marqueeInterval{33}; // a pixel a step
constexpr std::chrono::milliseconds blinkInterval{250};
constexpr double blinkHalfPeriod = 0.5; // seconds

MainWindowStatus::Transport transportOf(PlaybackState state) {
    switch (state) {
    case PlaybackState::stopped:
        return MainWindowStatus::Transport::stopped;
    case PlaybackState::loading:
        return MainWindowStatus::Transport::loading;
    case PlaybackState::playing:
        return MainWindowStatus::Transport::playing;
    case PlaybackState::paused:
        return MainWindowStatus::Transport::paused;
    }
    return MainWindowStatus::Transport::stopped;
}

} // namespace

PlayerModel::PlayerModel(Player &player, QSettings &settings, QObject *parent)
    : QObject(parent), m_player(player), m_settings(settings), m_local(player, settings), m_remote(settings),
      m_stream(m_local), m_imports(player, m_remote), m_skin(SkinLoader::defaultSkin()),
      m_preferences(settings), m_output(player, settings), m_skins(settings), m_windows(settings),
      m_visualizer(player.analyzer(), settings) {
    restoreSettings();
    updateTitle();
    connect(&m_visualizer, &Visualizer::changed, this, &PlayerModel::sceneChanged);
    connect(&m_clock, &FrameClock::frame, this, &PlayerModel::advance);
    connect(this, &PlayerModel::sceneChanged, &m_clock, [this] { m_clock.setInterval(frameInterval()); });

    m_observer = player.addEventObserver([this](const PlayerEvent &event) { handle(event); });
    connect(&player, &Player::queueChanged, this, [this] {
        updateTitle();
        Q_EMIT sceneChanged();
    });
    connect(&player, &Player::downloadChanged, this, [this] {
        updateTitle();
        Q_EMIT sceneChanged();
    });
    for (const auto signal :
         {&Player::stateChanged, &Player::formatChanged, &Player::volumeChanged, &Player::balanceChanged})
        connect(&player, signal, this, &PlayerModel::sceneChanged);
    connect(&player, &Player::currentTimeChanged, this, [this] {
        if (!m_clock.isRunning()) // else the next frame shows it
            Q_EMIT sceneChanged();
    });

    for (const auto signal : {&RemoteOutput::selectionChanged, &RemoteOutput::changed})
        connect(&m_remote, signal, this, [this] {
            updateTitle();
            Q_EMIT sceneChanged();
        });
    for (const auto signal : {&RemoteOutput::selectionChanged, &RemoteOutput::itemChanged})
        connect(&m_remote, signal, this, [this] {
            if (m_draggedPosition)
                cancelSlider(); // it was a place in what played before
        });
    connect(&m_remote, &RemoteOutput::failed, this, &PlayerModel::showNotice);

    connect(&player, &Player::outputDevicesChanged, this, &PlayerModel::watchOutput);
    connect(&player, &Player::loudnessChanged, this, [this] {
        store("replayGain", rawValue(m_player.replayGainMode()));
        store("limiter", m_player.isLimiterEnabled());
    });

    connect(&m_skinLoader, &SkinLoader::loaded, this, &PlayerModel::setSkin);
    connect(&m_skinLoader, &SkinLoader::refused, this, [this](const QUrl &url, const QString &message) {
        const QString name = url.fileName();
        qCWarning(playerModelLog, "could not load skin %s: %s", qUtf8Printable(name),
                  qUtf8Printable(message));
        notify(StatusNotice::skinFailed(name, StatusNotice::Clock::now()));
        Q_EMIT skinRefused(name, message);
    });
    connect(&m_imports, &QueueImports::finished, this, &PlayerModel::tellOf);
}

PlayerModel::~PlayerModel() {
    m_player.removeEventObserver(m_observer);
}

PlaybackTarget &PlayerModel::target() {
    if (m_remote.isSelected())
        return m_remote;
    return m_stream.isStreaming() ? static_cast<PlaybackTarget &>(m_stream) : m_local;
}

const PlaybackTarget &PlayerModel::target() const {
    if (m_remote.isSelected())
        return m_remote;
    return m_stream.isStreaming() ? static_cast<const PlaybackTarget &>(m_stream) : m_local;
}

std::optional<bool> PlayerModel::isMuted() const {
    return showsStream() ? std::optional(m_stream.isMuted()) : m_remote.controls().isMuted;
}

void PlayerModel::setMuted(bool muted) {
    if (showsStream())
        m_stream.setMuted(muted);
    else
        m_remote.setMuted(muted);
}

void PlayerModel::setSpeaker(NetworkSpeaker *speaker) {
    m_stream.setSpeaker(speaker);
    connect(speaker, &NetworkSpeaker::changed, this, [this] {
        updateTitle();
        Q_EMIT streamChanged();
        Q_EMIT sceneChanged();
    });
}

MainWindowScene PlayerModel::scene() const {
    const auto now = StatusNotice::Clock::now();
    const PlaybackView view = target().view();

    MainWindowScene scene;
    scene.status.transport = transportOf(view.state);
    // Of a stream nothing remains that could be told.
    scene.status.timeMode = view.duration > 0 ? m_timeMode : TimeMode::elapsed;
    scene.status.elapsed = view.elapsed;
    scene.status.duration = view.duration;
    scene.showsRates = hearsStream() || !m_remote.isSelected();
    if (hearsStream())
        m_stream.showFormat(scene.status);
    else if (!m_remote.isSelected())
        showFormat(scene.status);
    scene.timeLit = std::fmod(m_blinkTime, 2 * blinkHalfPeriod) < blinkHalfPeriod;
    scene.shaded = m_windows.isShaded(WindowKind::main);
    scene.volume = view.volume.value_or(1);
    scene.balance = m_remote.isHere() ? m_local.view().balance : view.balance;
    if (view.isSeekable())
        scene.position = m_draggedPosition.value_or(std::clamp(view.elapsed / view.duration, 0.0, 1.0));
    scene.shuffle = view.isShuffled;
    scene.repeat = view.repeat != RepeatMode::off;
    scene.equalizerOpen = m_windows.isOpen(WindowKind::equalizer);
    scene.playlistOpen = m_windows.isOpen(WindowKind::playlist);
    scene.alwaysOnTop = m_windows.isAlwaysOnTop();
    scene.doubleSize = m_windows.isDoubleSize();
    scene.marquee = m_marquee.text(now);
    scene.marqueeOffset = m_marquee.offset(now);
    scene.visualizer = m_visualizer.picture();
    return scene;
}

void PlayerModel::showFormat(MainWindowStatus &status) const {
    if (const std::optional<Track> track = m_player.queue().current()) {
        status.bitrateKbps = track->bitrate ? track->bitrate : m_player.streamBitrate();
        status.sampleRate = track->sampleRate;
        status.channels = track->channels;
    }
    if (const std::optional<PlaybackFormat> format = m_player.currentFormat()) {
        status.sampleRate = format->sampleRate;
        status.channels = format->channels;
    }
}

/// Whether what the windows are about is a stream to this computer.
bool PlayerModel::hearsStream() const {
    return m_stream.isStreaming() && (!m_remote.isSelected() || m_remote.isHere());
}

/// Of what this computer plays, as long as that is what the windows are about.
PlaybackState PlayerModel::visualizedState() const {
    if (hearsStream())
        return PlaybackState::playing;
    return m_remote.isSelected() ? PlaybackState::stopped : m_player.state();
}

std::optional<std::chrono::milliseconds> PlayerModel::frameInterval() const {
    std::optional<std::chrono::milliseconds> interval;
    if (isVisualizerMoving())
        interval = m_clock.period();
    if (m_marquee.moves(StatusNotice::Clock::now()))
        interval = std::min(interval.value_or(marqueeInterval), marqueeInterval);
    if (interval)
        return interval;
    if (target().view().state == PlaybackState::paused || showsStream()) // whose seconds nobody else tells
        return blinkInterval;
    return std::nullopt;
}

void PlayerModel::advance(double elapsed) {
    const PlaybackState state = target().view().state;
    m_marquee.setIdle(state == PlaybackState::stopped || state == PlaybackState::paused);
    m_marquee.advance(elapsed);
    m_blinkTime = state == PlaybackState::paused ? m_blinkTime + elapsed : 0;
    m_visualizer.advance(visualizedState(), elapsed);
    Q_EMIT sceneChanged();
}

// Skins

void PlayerModel::wear(const QUrl &skin) {
    m_skinLoader.load(skin);
}

void PlayerModel::wearDefaultSkin() {
    m_skinLoader.cancel();
    setSkin({}, SkinLoader::defaultSkin());
}

void PlayerModel::setSkin(const QUrl &url, const Skin &skin) {
    m_skin = skin;
    m_skinUrl = url;
    Q_EMIT skinChanged();
    m_skins.wore(url); // once it is on the window
    Q_EMIT sceneChanged();
}

// Music

QList<QUrl> PlayerModel::withoutSkins(const QList<QUrl> &urls) {
    QList<QUrl> music;
    for (const QUrl &url : urls) {
        if (isSkin(url))
            wear(url);
        else
            music.append(url);
    }
    return music;
}

void PlayerModel::insert(const QList<QUrl> &urls, int row) {
    const QList<QUrl> music = withoutSkins(urls);
    if (music.isEmpty())
        return;
    if (m_remote.isHere()) { // the rows are the server's
        m_remote.deselect();
        m_imports.insert(music, -1);
    } else if (m_remote.isSelected()) {
        showNotice(tr("Files play on this computer only"));
    } else {
        m_imports.insert(music, row);
    }
}

void PlayerModel::clearQueue() {
    m_imports.cancel();
    m_player.clearQueue();
}

void PlayerModel::tellOf(int added, const std::vector<SkippedFile> &skipped) {
    for (const SkippedFile &file : skipped) {
        qCWarning(playerModelLog, "%s%s: %s", file.isPartial ? "" : "could not play ",
                  qUtf8Printable(file.name()), qUtf8Printable(file.reason));
        if (file.isPartial)
            Q_EMIT partRefused(file.name(), file.reason);
        else
            Q_EMIT trackRefused(file.name(), file.reason);
    }
    if (const auto notice =
            StatusNotice::skipped(static_cast<int>(skipped.size()), added, StatusNotice::Clock::now()))
        notify(*notice);
    else if (added == 0)
        showNotice(tr("No audio files found"));
}

void PlayerModel::handle(const PlayerEvent &event) {
    if (const auto *failed = std::get_if<PlayerEvents::Failed>(&event)) {
        handleFailure(failed->failure);
    } else if (std::holds_alternative<PlayerEvents::TrackChanged>(event)) {
        updateTitle();
        if (m_draggedPosition && !m_remote.isSelected())
            cancelSlider(); // it was a place in the track before
    } else if (std::holds_alternative<PlayerEvents::StreamStarted>(event)) {
        m_remote.followHere(m_stream.isStreaming()); // and not only ticks
    } else if (const auto *changed = std::get_if<PlayerEvents::StateChanged>(&event)) {
        if (m_player.wantsToPlay())
            m_remote.followHere(false);
        if (changed->state == PlaybackState::stopped && m_draggedPosition && !m_remote.isSelected())
            cancelSlider();
    }
    Q_EMIT sceneChanged();
}

void PlayerModel::handleFailure(const PlaybackFailure &failure) {
    const bool named = failure.track && !failure.track->title.isEmpty();
    const QString name = named ? failure.track->title : QStringLiteral("this track");
    qCWarning(playerModelLog, "could not play %s: %s", qUtf8Printable(name), qUtf8Printable(failure.message));
    notify(StatusNotice::playbackFailed(failure, StatusNotice::Clock::now()));
    Q_EMIT trackRefused(name, failure.message);
}

void PlayerModel::watchOutput() {
    const std::optional<QString> before = std::exchange(m_outputProblem, m_output.problem());
    if (m_outputProblem == before)
        return;
    if (before)
        m_marquee.withdrawNotice(*before);
    if (m_outputProblem)
        showNotice(*m_outputProblem);
    else
        Q_EMIT sceneChanged();
}

void PlayerModel::updateTitle() {
    if (m_remote.isSelected()) {
        m_marquee.setTitle(m_remote.title());
        return;
    }
    if (m_stream.isStreaming()) {
        m_marquee.setTitle(tr("Streaming: %1").arg(m_stream.name()));
        return;
    }
    const std::optional<Track> track = m_player.queue().current();
    if (!track) {
        m_marquee.setTitle(MarqueeText::idle());
        return;
    }
    const int number = m_player.queue().currentIndex().value_or(0) + 1;
    if (m_player.isBuffering())
        m_marquee.setTitle(MarqueeText::buffering());
    else if (const std::optional<QString> title = m_player.streamTitle())
        m_marquee.setTitle(MarqueeText::track({}, *title, 0, number));
    else
        m_marquee.setTitle(MarqueeText::track(track->artist, track->title, track->duration, number));
}

void PlayerModel::notify(const StatusNotice &notice) {
    m_marquee.setNotice(notice);
    // Not a moment too early, or the notice would be painted once more and then stay.
    constexpr std::chrono::milliseconds margin{20};
    QTimer::singleShot(StatusNotice::duration + margin, Qt::PreciseTimer, this, &PlayerModel::sceneChanged);
    Q_EMIT sceneChanged();
}

void PlayerModel::showNotice(const QString &text) {
    notify({text, std::nullopt, StatusNotice::Clock::now()});
}

void PlayerModel::showDragText(const std::optional<QString> &text) {
    m_marquee.setDragText(text);
    Q_EMIT sceneChanged();
}

// Options

void PlayerModel::setTimeMode(TimeMode mode) {
    m_timeMode = mode;
    store("timeMode", rawValue(mode));
    Q_EMIT sceneChanged();
}

void PlayerModel::transport(const TransportCommand &command) {
    target().transport(command);
    Q_EMIT sceneChanged();
}

void PlayerModel::toggleShuffle() {
    transport(TransportCommand::setShuffle(!target().view().isShuffled));
}

void PlayerModel::toggleRepeat() {
    setRepeatMode(toggled(target().view().repeat));
}

void PlayerModel::setRepeatMode(RepeatMode mode) {
    if (m_remote.isSelected()) {
        transport(TransportCommand::setRepeat(mode != RepeatMode::off));
        return;
    }
    m_local.setRepeatMode(mode);
    Q_EMIT sceneChanged();
}

void PlayerModel::setVolume(double volume) {
    transport(TransportCommand::setVolume(std::clamp(volume, 0.0, 1.0)));
    if (const std::optional<double> set = target().view().volume)
        showNotice(MarqueeText::volume(*set));
}

void PlayerModel::setBalance(double balance) {
    if (m_remote.isSelected() && !m_remote.isHere())
        return transport(TransportCommand::setBalance(balance)); // which it refuses
    m_local.transport(TransportCommand::setBalance(balance));
    showNotice(MarqueeText::balance(m_local.view().balance));
}

void PlayerModel::changeVolume(double by) {
    setVolume(target().view().volume.value_or(1) + by);
}

void PlayerModel::seekBy(double seconds) {
    const PlaybackView view = target().view();
    if (view.state != PlaybackState::stopped)
        transport(TransportCommand::seek(std::max(0.0, view.elapsed + seconds)));
}

// Sliders

void PlayerModel::dragSlider(MainWindowControl slider, double fraction) {
    switch (slider) {
    case MainWindowControl::volume:
        target().transport(TransportCommand::setVolume(fraction));
        if (target().view().volume)
            m_marquee.setDragText(MarqueeText::volume(fraction));
        break;
    case MainWindowControl::balance: {
        const double balance = MainSliders::snappedBalance(MainSliders::balance(fraction));
        if (m_remote.isSelected() && !m_remote.isHere())
            break; // it has none
        m_local.transport(TransportCommand::setBalance(balance));
        m_marquee.setDragText(MarqueeText::balance(balance));
        break;
    }
    case MainWindowControl::position:
        m_draggedPosition = fraction;
        m_marquee.setDragText(MarqueeText::seek(fraction, target().view().duration));
        break;
    default:
        return;
    }
    Q_EMIT sceneChanged();
}

void PlayerModel::releaseSlider() {
    if (m_draggedPosition)
        target().transport(TransportCommand::seek(*m_draggedPosition * target().view().duration));
    cancelSlider();
}

void PlayerModel::cancelSlider() {
    m_draggedPosition.reset();
    m_marquee.setDragText(std::nullopt);
    Q_EMIT sliderCancelled();
    Q_EMIT sceneChanged();
}

// Settings

void PlayerModel::restoreSettings() {
    m_player.setReplayGainMode(
        replayGainModeFromRawValue(m_settings.value(QStringLiteral("replayGain")).toString())
            .value_or(ReplayGainMode::off));
    m_player.setLimiterEnabled(StoredValue::boolean(m_settings, QStringLiteral("limiter"), false));
    m_timeMode = timeModeFromRawValue(m_settings.value(QStringLiteral("timeMode")).toString())
                     .value_or(TimeMode::elapsed);
}

void PlayerModel::store(const char *key, const QVariant &value) {
    m_settings.setValue(QLatin1String(key), value);
}

} // namespace vantor
