#include "Vantor/App/Program.h"

#include "AudioCore/NowPlaying/NowPlayingBridge.h"
#include "AudioCore/Output/SystemAudioOutput.h"
#include "AudioCore/Playback/Player.h"
#include "LocalPlayback/Queue/QueueAutosaver.h"
#include "Platform/AppPaths.h"
#include "Vantor/App/LaunchOptions.h"
#include "Vantor/App/TimedRun.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Mpris/MprisService.h"
#include "Vantor/Windows/EqualizerWindow.h"
#include "Vantor/Windows/MainWindow.h"
#include "Vantor/Windows/SkinAccessibility.h"

#include <QApplication>
#include <QIcon>
#include <QSettings>

#include <cmath>
#include <cstdio>

namespace vantor {

namespace {

constexpr double headlessSeconds = 10;
constexpr std::chrono::seconds autosaveDelay{1};

bool hasDisplay() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

// Classic windows place themselves, which X11 (and XWayland) allows and Wayland does not.
void choosePlatform() {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", hasDisplay() ? "xcb;wayland" : "offscreen");
    // The pixels of a skin are squares of whole pixels. Qt rounds the screen's scale, but not what is asked
    // for here.
    const double asked = qEnvironmentVariable("QT_SCALE_FACTOR").toDouble();
    if (asked > 0)
        qputenv("QT_SCALE_FACTOR", QByteArray::number(std::max(1.0, std::ceil(asked - 0.5))));
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::RoundPreferFloor);
}

void setUpApplication() {
    QApplication::setApplicationName(QStringLiteral("Vantor"));
    QApplication::setApplicationVersion(QStringLiteral(VANTOR_VERSION));
    QApplication::setDesktopFileName(QLatin1String(AppPaths::bundleIdentifier));
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256})
        icon.addFile(QStringLiteral(":/icons/vantor-%1.png").arg(size));
    QApplication::setWindowIcon(icon);
}

QUrl demoTrack() {
    const QString path = AppPaths::sharedFile(QStringLiteral("demo.flac"));
    return path.isEmpty() ? QUrl() : QUrl::fromLocalFile(path);
}

bool isOnlyTheDemo(const std::vector<Track> &tracks) {
    return tracks.size() == 1 && tracks.front().source == Track::Source(demoTrack());
}

/// The queue of the last run, kept from now on. A timed run neither takes it nor touches it.
class SavedQueue {
  public:
    explicit SavedQueue(Player &player)
        : m_store(QueueStore::defaultURL()), m_autosaver(player, m_store, autosaveDelay) {
        if (const std::optional<QueueSnapshot> saved = m_store.load();
            saved && !isOnlyTheDemo(saved->items)) {
            player.restoreQueue(saved->items, saved->currentIndex, saved->repeatMode, saved->isShuffled);
            m_hasTracks = !saved->items.empty();
        }
        m_autosaver.start();
    }
    ~SavedQueue() { m_autosaver.flush(); }

    /// There was something of the user's own in it.
    [[nodiscard]] bool hasTracks() const { return m_hasTracks; }

  private:
    QueueStore m_store;
    QueueAutosaver m_autosaver;
    bool m_hasTracks = false;
};

/// What the desktop shows and commands: its media keys and widgets.
class DesktopPresence {
  public:
    DesktopPresence(PlayerModel &model, MainWindow &window)
        : m_service(model, {.raise = [&window] { bringToFront(window); }, .quit = &QApplication::quit}),
          m_bridge(model.player(), model.player(), m_service.center()) {
        m_bridge.install();
        m_service.connectToBus();
    }

  private:
    static void bringToFront(MainWindow &window) {
        window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
        window.show();
        window.raise();
        window.activateWindow();
    }

    MprisService m_service;
    NowPlayingBridge m_bridge;
};

// The skin asked for, else the one worn last; and the files asked for, else the demo track if there is no
// saved queue that could be played.
void openWhatWasAskedFor(PlayerModel &model, const LaunchOptions &options, bool withDemo) {
    const QUrl skin = options.skin.value_or(model.skins().lastWorn());
    if (!skin.isEmpty())
        model.wear(skin);

    if (!options.files.isEmpty())
        model.open(options.files);
    const bool nothingToPlay = !model.isImporting() && model.player().queue().count() == 0;
    if (nothingToPlay && withDemo && demoTrack().isValid())
        model.open({demoTrack()});
}

int print(const LaunchOptions::Message &message) {
    std::fprintf(message.exitStatus == 0 ? stdout : stderr, "%s\n", qUtf8Printable(message.text));
    return message.exitStatus;
}

} // namespace

int runProgram(int argc, char **argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const auto parsed = LaunchOptions::parse(arguments);
    if (const auto *message = std::get_if<LaunchOptions::Message>(&parsed))
        return print(*message);
    LaunchOptions options = std::get<LaunchOptions>(parsed);
    if (!hasDisplay()) {
        options.seconds = options.seconds.value_or(headlessSeconds);
        options.screenshot = options.screenshot.value_or(QStringLiteral("vantor.png"));
    }

    choosePlatform();
    int qtArgc = 1; // the arguments are ours alone
    QApplication application(qtArgc, argv);
    setUpApplication();

    QSettings settings(QLatin1String(AppPaths::bundleIdentifier), QStringLiteral("vantor"));
    Player player(std::make_unique<FileTrackResolver>(), makeSystemAudioOutput);
    PlayerModel model(player, settings);
    std::optional<SavedQueue> savedQueue;
    if (!options.seconds)
        savedQueue.emplace(player);
    EqualizerModel equalizer(player, settings, AppPaths::dataFolder());
    Commands commands(model);
    installSkinAccessibility();
    MainWindow window(model, commands);
    EqualizerWindow equalizerWindow(model, equalizer, commands);
    std::optional<TimedRun> timedRun;
    if (options.seconds)
        timedRun.emplace(model, window, *options.seconds, options.screenshot.value_or(QString()));
    window.showIfOpen();
    equalizerWindow.showIfOpen();
    std::optional<DesktopPresence> presence; // from when the window is there
    const bool withDemo = !savedQueue || !savedQueue->hasTracks();
    QMetaObject::invokeMethod(
        &model,
        [&] {
            openWhatWasAskedFor(model, options, withDemo);
            if (timedRun)
                timedRun->begin();
            else
                presence.emplace(model, window);
        },
        Qt::QueuedConnection);
    const int status = QApplication::exec();
    if (!timedRun && options.screenshot && !window.savePicture(*options.screenshot))
        return print({QStringLiteral("Could not write ") + *options.screenshot, 1});
    return status;
}

} // namespace vantor
