#include "Vantor/Model/PlayerModel.h"

#include "MusicBackendKit/MarqueeText.h"
#include "SkinKit/Layout/MainSliders.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QSettings>
#include <QTimer>

#include <algorithm>
#include <cmath>

Q_LOGGING_CATEGORY(playerModelLog, "co.kelvane.vantor.PlayerModel")

namespace vantor {

namespace {

constexpr std::chrono::milliseconds displayInterval{16};
constexpr std::chrono::milliseconds marqueeInterval{33}; // a pixel a step
constexpr std::chrono::milliseconds blinkInterval{100};
constexpr double blinkHalfPeriod = 0.5; // seconds

bool isSkinFolder(const QString &path) {
    return !QDir(path)
                .entryList({QStringLiteral("main.bmp"), QStringLiteral("main.png")}, QDir::Files)
                .isEmpty();
}

bool isSkin(const QUrl &url) {
    const QFileInfo file(url.toLocalFile());
    return file.suffix().compare(QLatin1String("wsz"), Qt::CaseInsensitive) == 0 ||
           (file.isDir() && isSkinFolder(file.filePath()));
}

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

VisualizerBars picture(const VisBars &bars) {
    return {bars.heights, bars.peaks};
}

} // namespace

PlayerModel::PlayerModel(Player &player, QSettings &settings, QObject *parent)
    : QObject(parent), m_player(player), m_settings(settings), m_skin(SkinLoader::defaultSkin()) {
    restoreSettings();
    updateTitle();

    m_observer = player.addEventObserver([this](const PlayerEvent &event) { handle(event); });
    connect(&player, &Player::queueChanged, this, [this] {
        updateTitle();
        Q_EMIT sceneChanged();
    });
    for (const auto signal : {&Player::stateChanged, &Player::currentTimeChanged, &Player::formatChanged,
                              &Player::volumeChanged, &Player::balanceChanged})
        connect(&player, signal, this, &PlayerModel::sceneChanged);

    connect(&player, &Player::outputDevicesChanged, this,
            [this] { store("outputDevice", m_player.chosenOutputDevice().value_or(QString())); });

    connect(&m_skinLoader, &SkinLoader::loaded, this, &PlayerModel::setSkin);
    connect(&m_skinLoader, &SkinLoader::refused, this, [this](const QUrl &url, const QString &message) {
        const QString name = url.fileName();
        qCWarning(playerModelLog, "could not load skin %s: %s", qUtf8Printable(name),
                  qUtf8Printable(message));
        notify(StatusNotice::skinFailed(name, StatusNotice::Clock::now()));
        Q_EMIT skinRefused(name, message);
    });
    connect(&m_importer, &TrackImporter::imported, this, &PlayerModel::takeTracks);
    connect(&m_importer, &TrackImporter::finished, this,
            [this](quint64, int added, const std::vector<SkippedFile> &skipped) {
                finishImport(added, skipped);
            });
}

PlayerModel::~PlayerModel() {
    m_player.removeEventObserver(m_observer);
}

MainWindowScene PlayerModel::scene() const {
    const auto now = StatusNotice::Clock::now();
    const std::optional<Track> track = m_player.queue().current();
    const double duration = m_player.duration();
    const bool seekable = m_player.state() != PlaybackState::stopped && duration > 0;

    MainWindowScene scene;
    scene.status.transport = transportOf(m_player.state());
    scene.status.timeMode = m_timeMode;
    scene.status.elapsed = m_player.currentTime();
    scene.status.duration = duration;
    if (track) {
        scene.status.bitrateKbps = track->bitrate;
        scene.status.sampleRate = track->sampleRate;
        scene.status.channels = track->channels;
    }
    if (const std::optional<PlaybackFormat> format = m_player.currentFormat()) {
        scene.status.sampleRate = format->sampleRate;
        scene.status.channels = format->channels;
    }
    scene.timeLit = std::fmod(m_blinkTime, 2 * blinkHalfPeriod) < blinkHalfPeriod;
    scene.shaded = m_shaded;
    scene.volume = m_player.volume();
    scene.balance = m_player.balance();
    if (seekable)
        scene.position = m_draggedPosition.value_or(std::clamp(m_player.currentTime() / duration, 0.0, 1.0));
    scene.shuffle = m_player.isShuffled();
    scene.repeat = m_player.repeatMode() != RepeatMode::off;
    scene.alwaysOnTop = m_alwaysOnTop;
    scene.doubleSize = m_doubleSize;
    scene.marquee = m_marquee.text(now);
    scene.marqueeOffset = m_marquee.offset(now);
    scene.visualizer = m_picture;
    return scene;
}

std::optional<std::chrono::milliseconds> PlayerModel::frameInterval() const {
    const bool playing = m_player.state() == PlaybackState::playing;
    const bool stopped = m_player.state() == PlaybackState::stopped;
    if (m_visualizerMode != VisualizerMode::off && playing)
        return displayInterval;
    if (stopped && !std::holds_alternative<std::monostate>(m_picture))
        return displayInterval; // the bars are still falling
    if (m_marquee.scrolls(StatusNotice::Clock::now()))
        return marqueeInterval;
    if (m_player.state() == PlaybackState::paused)
        return blinkInterval;
    return std::nullopt;
}

void PlayerModel::advance(double elapsed) {
    m_marquee.advance(elapsed);
    m_blinkTime = m_player.state() == PlaybackState::paused ? m_blinkTime + elapsed : 0;
    advanceVisualizer(elapsed);
    Q_EMIT sceneChanged();
}

// Paused keeps the last picture; stopped lets the bars fall and then clears it.
void PlayerModel::advanceVisualizer(double elapsed) {
    const PlaybackState state = m_player.state();
    if (state == PlaybackState::paused || state == PlaybackState::loading)
        return;
    if (m_visualizerMode == VisualizerMode::off) {
        m_picture = std::monostate();
        return;
    }
    const std::optional<VisFrame> frame =
        state == PlaybackState::playing ? nextPicture(elapsed) : std::nullopt;
    if (m_visualizerMode == VisualizerMode::oscilloscope) {
        if (frame)
            m_picture = VisualizerScope{frame->scope};
        else if (state == PlaybackState::stopped)
            m_picture = std::monostate();
        return;
    }
    m_bars.step(frame ? std::span<const float>(frame->spectrum) : std::span<const float>());
    m_picture = picture(m_bars);
    const bool atRest = std::ranges::all_of(m_bars.fallingBars, [](float bar) { return bar <= 0; }) &&
                        std::ranges::all_of(m_bars.peakPositions, [](int peak) { return peak <= 0; });
    if (state == PlaybackState::stopped && atRest)
        m_picture = std::monostate();
}

// After a time without pictures (a pause, a hidden window) the analyser must not take the sound that went by
// for one enormous delivery.
std::optional<VisFrame> PlayerModel::nextPicture(double elapsed) {
    constexpr qint64 longestGap = 250; // ms
    if (!m_sincePicture.isValid() || m_sincePicture.elapsed() > longestGap)
        m_player.analyzer().resetCursor();
    m_sincePicture.start();
    return m_player.analyzer().frame(elapsed);
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
    store("skin", url.toLocalFile()); // once it is on the window
}

// Music

void PlayerModel::open(const QList<QUrl> &urls) {
    startImport(urls, true);
}

void PlayerModel::enqueue(const QList<QUrl> &urls) {
    startImport(urls, false);
}

void PlayerModel::startImport(const QList<QUrl> &urls, bool replace) {
    QList<QUrl> music;
    for (const QUrl &url : urls) {
        if (isSkin(url))
            wear(url);
        else
            music.append(url);
    }
    if (music.isEmpty())
        return;
    if (replace)
        m_importer.cancel();
    ++m_pendingImports;
    const quint64 import = m_importer.import(music);
    if (replace)
        m_replacingImport = import;
}

void PlayerModel::takeTracks(quint64 import, const std::vector<Track> &tracks) {
    const bool replace = m_replacingImport == import;
    if (replace) {
        m_replacingImport.reset();
        m_player.clearQueue();
    }
    const bool idle = m_player.state() == PlaybackState::stopped;
    const int first = m_player.queue().count();
    m_player.enqueue(tracks);
    if (idle || replace)
        m_player.play(first);
}

void PlayerModel::finishImport(int added, const std::vector<SkippedFile> &skipped) {
    for (const SkippedFile &file : skipped) {
        const QString name = file.url.isLocalFile() ? file.url.fileName() : file.url.toDisplayString();
        qCWarning(playerModelLog, "could not play %s: %s", qUtf8Printable(name), qUtf8Printable(file.reason));
        Q_EMIT trackRefused(name, file.reason);
    }
    if (const auto notice =
            StatusNotice::skipped(static_cast<int>(skipped.size()), added, StatusNotice::Clock::now()))
        notify(*notice);
    else if (added == 0)
        showNotice(tr("No audio files found"));
    if (--m_pendingImports == 0)
        Q_EMIT importsFinished();
}

void PlayerModel::handle(const PlayerEvent &event) {
    if (const auto *failed = std::get_if<PlayerEvents::Failed>(&event)) {
        handleFailure(failed->failure);
    } else if (std::holds_alternative<PlayerEvents::TrackChanged>(event)) {
        updateTitle();
        if (m_draggedPosition)
            cancelSlider(); // it was a place in the track before
    } else if (const auto *changed = std::get_if<PlayerEvents::StateChanged>(&event)) {
        if (changed->state == PlaybackState::stopped && m_draggedPosition)
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

void PlayerModel::updateTitle() {
    const std::optional<Track> track = m_player.queue().current();
    if (!track) {
        m_marquee.setTitle(MarqueeText::idle());
        return;
    }
    const int number = m_player.queue().currentIndex().value_or(0) + 1;
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

// Windows and options

void PlayerModel::setShaded(bool shaded) {
    if (m_shaded == shaded)
        return;
    m_shaded = shaded;
    store("shaded", shaded);
    Q_EMIT windowStateChanged();
}

void PlayerModel::setDoubleSize(bool doubled) {
    if (m_doubleSize == doubled)
        return;
    m_doubleSize = doubled;
    store("doubleSize", doubled);
    Q_EMIT windowStateChanged();
}

void PlayerModel::setAlwaysOnTop(bool onTop) {
    if (m_alwaysOnTop == onTop)
        return;
    m_alwaysOnTop = onTop;
    store("alwaysOnTop", onTop);
    Q_EMIT windowStateChanged();
}

void PlayerModel::setTimeMode(TimeMode mode) {
    m_timeMode = mode;
    store("timeMode", rawValue(mode));
    Q_EMIT sceneChanged();
}

void PlayerModel::setVisualizerMode(VisualizerMode mode) {
    m_visualizerMode = mode;
    m_picture = std::monostate();
    m_bars = VisBars();
    store("visualizer", static_cast<int>(mode));
    Q_EMIT sceneChanged();
}

void PlayerModel::cycleVisualizer() {
    const int next = (static_cast<int>(m_visualizerMode) + 1) % 3;
    setVisualizerMode(static_cast<VisualizerMode>(next));
}

void PlayerModel::toggleShuffle() {
    m_player.setShuffled(!m_player.isShuffled());
    store("shuffle", m_player.isShuffled());
    Q_EMIT sceneChanged();
}

void PlayerModel::toggleRepeat() {
    m_player.setRepeatMode(toggled(m_player.repeatMode()));
    store("repeat", m_player.repeatMode() != RepeatMode::off);
    Q_EMIT sceneChanged();
}

void PlayerModel::changeVolume(double by) {
    const double volume = std::clamp(m_player.volume() + by, 0.0, 1.0);
    m_player.setVolume(static_cast<float>(volume));
    store("volume", volume);
    showNotice(MarqueeText::volume(volume));
}

void PlayerModel::seekBy(double seconds) {
    if (m_player.state() != PlaybackState::stopped)
        m_player.seek(std::max(0.0, m_player.currentTime() + seconds));
}

// Sliders

void PlayerModel::dragSlider(MainWindowControl slider, double fraction) {
    switch (slider) {
    case MainWindowControl::volume:
        m_player.setVolume(static_cast<float>(fraction));
        m_marquee.setDragText(MarqueeText::volume(fraction));
        break;
    case MainWindowControl::balance: {
        const double balance = MainSliders::snappedBalance(MainSliders::balance(fraction));
        m_player.setBalance(static_cast<float>(balance));
        m_marquee.setDragText(MarqueeText::balance(balance));
        break;
    }
    case MainWindowControl::position:
        m_draggedPosition = fraction;
        m_marquee.setDragText(MarqueeText::seek(fraction, m_player.duration()));
        break;
    default:
        return;
    }
    Q_EMIT sceneChanged();
}

void PlayerModel::releaseSlider() {
    if (m_draggedPosition)
        m_player.seek(*m_draggedPosition * m_player.duration());
    cancelSlider();
}

void PlayerModel::cancelSlider() {
    store("volume", static_cast<double>(m_player.volume()));
    store("balance", static_cast<double>(m_player.balance()));
    m_draggedPosition.reset();
    m_marquee.setDragText(std::nullopt);
    Q_EMIT sliderCancelled();
    Q_EMIT sceneChanged();
}

// Settings

void PlayerModel::restoreSettings() {
    const auto number = [this](const char *key, double fallback) {
        const double value = m_settings.value(QLatin1String(key), fallback).toDouble();
        return std::isfinite(value) ? value : fallback;
    };
    m_player.setVolume(static_cast<float>(std::clamp(number("volume", 0.8), 0.0, 1.0)));
    m_player.setBalance(static_cast<float>(std::clamp(number("balance", 0), -1.0, 1.0)));
    m_player.setShuffled(m_settings.value(QStringLiteral("shuffle")).toBool());
    m_player.setRepeatMode(m_settings.value(QStringLiteral("repeat")).toBool() ? RepeatMode::all
                                                                               : RepeatMode::off);
    if (const QString device = m_settings.value(QStringLiteral("outputDevice")).toString(); !device.isEmpty())
        m_player.chooseOutputDevice(device);
    m_shaded = m_settings.value(QStringLiteral("shaded")).toBool();
    m_doubleSize = m_settings.value(QStringLiteral("doubleSize")).toBool();
    m_alwaysOnTop = m_settings.value(QStringLiteral("alwaysOnTop")).toBool();
    m_timeMode = timeModeFromRawValue(m_settings.value(QStringLiteral("timeMode")).toString())
                     .value_or(TimeMode::elapsed);
    m_visualizerMode =
        static_cast<VisualizerMode>(static_cast<int>(std::clamp(number("visualizer", 0), 0.0, 2.0)));
}

void PlayerModel::store(const char *key, const QVariant &value) {
    m_settings.setValue(QLatin1String(key), value);
}

} // namespace vantor
