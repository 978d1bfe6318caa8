#include "Vantor/App/Program.h"

#include "AudioCore/NowPlaying/NowPlayingBridge.h"
#include "AudioCore/Output/SystemOutputDeviceProvider.h"
#include "AudioCore/Playback/Player.h"
#include "MusicAssistantKit/Discovery/AvahiServiceBrowser.h"
#include "MusicAssistantKit/Discovery/NetworkManagerWiFi.h"
#include "Platform/AppPaths.h"
#include "Vantor/App/BusSearch.h"
#include "Vantor/App/CarryOut.h"
#include "Vantor/App/IndexedSkins.h"
#include "Vantor/App/LaunchOptions.h"
#include "Vantor/App/QuitSignals.h"
#include "Vantor/App/SavedQueue.h"
#include "Vantor/App/SingleInstance.h"
#include "Vantor/App/TimedRun.h"
#include "Vantor/Library/MusicLibrary.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Model/ResumePoint.h"
#include "Vantor/Model/StoredValue.h"
#include "Vantor/Mpris/MprisService.h"
#include "Vantor/Mpris/SessionBus.h"
#include "Vantor/Speaker/NetworkSpeaker.h"
#include "Vantor/Windows/DialogPlace.h"
#include "Vantor/Windows/SkinnedWindows.h"
#include "Vantor/Windows/WelcomeDialog.h"

#include <QApplication>
#include <QIcon>
#include <QSettings>
#include <QTimer>

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
    // Frames are small. Handed over in shared memory, each would wait for an answer to the one before.
    if (qEnvironmentVariableIsEmpty("QT_XCB_NO_MITSHM"))
        qputenv("QT_XCB_NO_MITSHM", "1");
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
    DesktopPresence(PlayerModel &model, SkinnedWindows &windows)
        : m_service(model, windows.commands(), [&windows] { windows.bringToFront(); }),
          m_bridge(model.player(), windows.commands(), m_service.center()) {
        m_bridge.install();
        m_service.connectToBus();
    }

  private:
    MprisService m_service;
    NowPlayingBridge m_bridge;
};

/// What this computer tells of its network, and keeps of the servers' secrets.
class ThisComputer {
  public:
    [[nodiscard]] MusicAssistantServers::Computer asked() {
        return {m_tokens, m_wifi, m_services, [this] { findBus(); }};
    }

  private:
    void findBus() {
        m_bus.emplace(QDBusConnection::SystemBus, QStringLiteral("vantor-system"),
                      [this](const QDBusConnection &bus) {
                          m_wifi.setBus(bus);
                          m_services.setBus(bus);
                      });
    }

    KeychainMusicAssistantTokenStore m_tokens;
    NetworkManagerWiFi m_wifi;
    AvahiServiceBrowser m_services;
    std::optional<BusSearch> m_bus;
};

// Once, and where somebody can see it.
void welcome(PlayerModel &model, SkinnedWindows &windows) {
    if (model.preferences().wasWelcomed() || QGuiApplication::platformName() == QLatin1String("offscreen"))
        return;
    model.preferences().setWelcomed();
    MainWindow &window = windows.mainWindow();
    auto *const dialog = new WelcomeDialog(model, &window);
    QObject::connect(dialog, &WelcomeDialog::serverAsked, &windows.commands(),
                     [&windows] { windows.commands().showPreferences(PreferencesPage::musicAssistant); });
    dialog->adjustSize();
    DialogPlace::beside(*dialog, {window.frameGeometry()});
    dialog->show();
}

/// Has something done once a window stands on the screen, and not before: the start shall not wait for it.
class AfterFirstPaint : public QObject {
  public:
    AfterFirstPaint(QWidget &window, const std::function<void()> &action)
        : QObject(&window), m_action(action) {
        window.installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject *window, QEvent *event) override {
        if (event->type() == QEvent::Paint) {
            window->removeEventFilter(this);
            QTimer::singleShot(0, window, m_action);
            deleteLater();
        }
        return false;
    }

  private:
    std::function<void()> m_action;
};

// The skin asked for, else the one worn last.
void dress(PlayerModel &model, const std::optional<QUrl> &asked) {
    const QUrl skin = asked.value_or(model.skins().lastWorn());
    if (!skin.isEmpty())
        model.wear(skin);
}

void playDemo(PlayerModel &model) {
    const bool hasSomething =
        model.imports().isImporting() || model.player().queue().count() > 0 || model.remote().isSelected();
    if (!hasSomething && demoTrack().isValid())
        model.open({demoTrack()});
}

// So that nothing plays on in the house when its user goes, if that is wanted.
void stopSpeaker(PlayerModel &model, const QSettings &settings) {
    constexpr std::chrono::milliseconds farewell{300}; // for the command to be on its way
    const bool isWanted = StoredValue::boolean(settings, QStringLiteral("musicAssistant.stopOnQuit"), false);
    if (!isWanted || !model.remote().isSelected() || !model.remote().view().wantsToPlay)
        return;
    model.remote().transport(TransportCommand::stop());
    QEventLoop loop;
    QTimer::singleShot(farewell, &loop, &QEventLoop::quit);
    loop.exec();
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
    SessionBus::avoidIfSilent();
    int qtArgc = 1; // the arguments are ours alone
    QApplication application(qtArgc, argv);
    setUpApplication();
    const QuitSignals quitSignals;

    SingleInstance instance(SingleInstance::defaultPath());
    if (!options.isOnItsOwn()) {
        const SingleInstance::Outcome outcome = instance.claim(options);
        if (outcome == SingleInstance::Outcome::handedOver)
            return 0;
        if (outcome == SingleInstance::Outcome::unanswered)
            return print({QStringLiteral("Vantor runs already, but does not answer"), 1});
    }

    QSettings settings(QLatin1String(AppPaths::bundleIdentifier), QStringLiteral("vantor"));
    Player player(std::make_unique<FileTrackResolver>(), std::make_unique<SystemOutputDeviceProvider>());
    PlayerModel model(player, settings);
    std::optional<SavedQueue> savedQueue;
    if (!options.seconds)
        savedQueue.emplace(model, demoTrack());
    ThisComputer computer;
    MusicAssistantServers servers(settings, computer.asked());
    NetworkSpeaker speaker(player, servers, settings);
    model.setSpeaker(&speaker);
    SkinnedWindows windows(model, settings);
    MusicLibrary library(model, settings, servers);
    QObject::connect(&library.browser(), &LibraryBrowser::aboutToPlay, &speaker, [&](const OutputDevice &on) {
        if (on.kind == OutputDevice::Kind::thisMac && !library.playsHere())
            speaker.makeWay();
    });
    windows.commands().setLibrary(&library);
    windows.commands().setSpeaker(&speaker);
    std::optional<TimedRun> timedRun;
    if (options.seconds) {
        timedRun.emplace(model, windows.mainWindow(), *options.seconds,
                         options.screenshot.value_or(QString()));
        windows.showUndocked();
    } else {
        windows.show();
    }
    QObject::connect(&instance, &SingleInstance::requested, &model, [&](const LaunchOptions &request) {
        carryOut(request, model, windows.commands());
        if (request == LaunchOptions()) // it only wants to see the player
            windows.bringToFront();
    });
    std::optional<DesktopPresence> presence; // from when the window is there
    std::optional<IndexedSkins> indexedSkins;
    if (!timedRun)
        new AfterFirstPaint(windows.mainWindow(), [&] {
            indexedSkins.emplace(model, windows.commands(), settings);
            library.resume();
            speaker.begin();
        });
    bool hasBegun = false;
    // What was asked for, else on from where the last run ended, else the demo.
    const auto begin = [&](bool hasTracks) {
        hasBegun = true;
        const bool goesOn =
            options.files.isEmpty() && options.command.value_or(LaunchCommand::play) == LaunchCommand::play;
        if (goesOn && hasTracks && model.preferences().resumesOnStart())
            ResumePoint::resume(settings, player);
        carryOut(options, model, windows.commands());
        if (!hasTracks && options.files.isEmpty())
            playDemo(model);
    };
    if (savedQueue)
        QObject::connect(&*savedQueue, &SavedQueue::restored, &model, begin);
    QMetaObject::invokeMethod(
        &model,
        [&] {
            dress(model, std::exchange(options.skin, std::nullopt));
            if (!options.isOnItsOwn())
                welcome(model, windows);
            if (timedRun) {
                begin(false);
                timedRun->begin();
            } else {
                presence.emplace(model, windows);
            }
        },
        Qt::QueuedConnection);
    const int status = QApplication::exec();
    stopSpeaker(model, settings);
    if (savedQueue && hasBegun)
        ResumePoint::save(settings, player);
    if (!timedRun && options.screenshot && !windows.mainWindow().savePicture(*options.screenshot))
        return print({QStringLiteral("Could not write ") + *options.screenshot, 1});
    return status;
}

} // namespace vantor
