#include "Vantor/Mpris/MprisService.h"

#include "Platform/AppPaths.h"
#include "Vantor/Windows/Commands.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFileInfo>
#include <QLoggingCategory>

Q_LOGGING_CATEGORY(mprisLog, "co.kelvane.vantor.Mpris")

namespace vantor {

namespace {

constexpr QLatin1String objectPath("/org/mpris/MediaPlayer2");
constexpr QLatin1String serviceName("org.mpris.MediaPlayer2.vantor");
constexpr QLatin1String connectionName("vantor-mpris");

/// Without one the bus's library would start a bus of its own, which nobody else is on.
bool hasSessionBus() {
    return !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") ||
           QFileInfo::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus"));
}

} // namespace

MprisService::MprisService(PlayerModel &model, Commands &commands, std::function<void()> raise) {
    new MprisRoot(this, {std::move(raise), [&commands] { commands.trigger(Commands::Id::quit); }});
    m_player =
        new MprisPlayer(this, model, commands, AppPaths::cacheFolder() + QStringLiteral("/now-playing"),
                        [this](const QVariantMap &changed) { tell(changed); });
}

MprisService::~MprisService() = default;

void MprisService::connectToBus() {
    if (hasSessionBus())
        m_search.emplace(QDBusConnection::SessionBus, connectionName,
                         [this](const QDBusConnection &bus) { takeConnection(bus); });
    else
        qCInfo(mprisLog, "no session bus: the desktop does not see the player");
}

void MprisService::takeConnection(const QDBusConnection &bus) {
    m_connected = true;
    QDBusConnection connection = bus;
    if (!connection.isConnected() || !connection.registerObject(objectPath, this)) {
        qCInfo(mprisLog, "no session bus: %s", qUtf8Printable(connection.lastError().message()));
        return;
    }
    requestName(serviceName, [this] {
        const QString instance = QStringLiteral(".instance%1").arg(QCoreApplication::applicationPid());
        requestName(serviceName + instance, [] { qCWarning(mprisLog, "no name on the session bus"); });
    });
}

// By a call of our own, because Qt's waits for the answer.
void MprisService::requestName(const QString &name, const std::function<void()> &taken) {
    constexpr uint doNotQueue = 4;
    constexpr uint isOwner = 1;
    QDBusMessage request = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("RequestName"));
    request << name << doNotQueue;
    auto *const watcher =
        new QDBusPendingCallWatcher(QDBusConnection(connectionName).asyncCall(request), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, taken] {
        watcher->deleteLater();
        if (const QDBusPendingReply<uint> reply = *watcher; reply.isError() || reply.value() != isOwner)
            taken();
    });
}

void MprisService::tell(const QVariantMap &changed) const {
    if (!m_connected)
        return;
    QDBusMessage message = QDBusMessage::createSignal(
        objectPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"));
    message << QStringLiteral("org.mpris.MediaPlayer2.Player") << changed << QStringList();
    QDBusConnection(connectionName).send(message);
}

} // namespace vantor
