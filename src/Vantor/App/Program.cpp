#include "Vantor/App/Program.h"

#include "AudioCore/NowPlaying/NowPlayingBridge.h"
#include "AudioCore/Output/SystemAudioOutput.h"
#include "AudioCore/Playback/Player.h"
#include "Platform/AppPaths.h"
#include "Vantor/App/LaunchOptions.h"
#include "Vantor/App/SavedQueue.h"
#include "Vantor/App/TimedRun.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Mpris/MprisService.h"
#include "Vantor/Windows/MainWindow.h"

#include <QApplication>
#include <QFileInfo>
#include <QIcon>
#include <QSettings>

#include <cmath>
#include <cstdio>

namespace vantor {

namespace {

constexpr double headlessSeconds = 10;

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

// The skin asked for, else the one worn last; and the files asked for.
void openWhatWasAskedFor(PlayerModel &model, const LaunchOptions &options, const QSettings &settings) {
    const QString lastSkin = settings.value(QStringLiteral("skin")).toString();
    if (options.skin)
        model.wear(*options.skin);
    else if (QFileInfo::exists(lastSkin))
        model.wear(QUrl::fromLocalFile(lastSkin));
    if (!options.files.isEmpty())
        model.open(options.files);
}

void playDemo(PlayerModel &model) {
    const bool hasSomething = model.isImporting() || model.player().queue().count() > 0;
    if (!hasSomething && demoTrack().isValid())
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
        savedQueue.emplace(model, demoTrack());
    MainWindow window(model);
    std::optional<TimedRun> timedRun;
    if (options.seconds)
        timedRun.emplace(model, window, *options.seconds, options.screenshot.value_or(QString()));
    std::optional<DesktopPresence> presence; // from when the window is there
    window.show();
    if (savedQueue)
        QObject::connect(&*savedQueue, &SavedQueue::restored, &model, [&](bool hasTracks) {
            if (!hasTracks && options.files.isEmpty())
                playDemo(model);
        });
    QMetaObject::invokeMethod(
        &model,
        [&] {
            openWhatWasAskedFor(model, options, settings);
            if (timedRun) {
                playDemo(model);
                timedRun->begin();
            } else {
                presence.emplace(model, window);
            }
        },
        Qt::QueuedConnection);
    const int status = QApplication::exec();
    if (!timedRun && options.screenshot && !window.savePicture(*options.screenshot))
        return print({QStringLiteral("Could not write ") + *options.screenshot, 1});
    return status;
}

} // namespace vantor
