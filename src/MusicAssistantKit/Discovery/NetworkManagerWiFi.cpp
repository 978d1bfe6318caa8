#include "MusicAssistantKit/Discovery/NetworkManagerWiFi.h"

#include <QCoroDBusPendingCall>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QPointer>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

const QString service = u"org.freedesktop.NetworkManager"_s;
const QString managerPath = u"/org/freedesktop/NetworkManager"_s;
const QString managerInterface = service;
const QString activeInterface = u"org.freedesktop.NetworkManager.Connection.Active"_s;
const QString accessPointInterface = u"org.freedesktop.NetworkManager.AccessPoint"_s;
const QString propertiesInterface = u"org.freedesktop.DBus.Properties"_s;

constexpr uint activated = 2; // 1 is on its way there, and knows its access point already

QStringList pathsOf(const QVariant &value) {
    QStringList paths;
    for (const auto &path : qdbus_cast<QList<QDBusObjectPath>>(value))
        paths.append(path.path());
    return paths;
}

} // namespace

NetworkManagerWiFi::NetworkManagerWiFi() {
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &NetworkManagerWiFi::refresh);
}

void NetworkManagerWiFi::setBus(const QDBusConnection &bus) {
    m_bus = bus;
    m_watcher.setConnection(bus);
    m_watcher.addWatchedService(service);
    m_bus.connect(service, managerPath, propertiesInterface, u"PropertiesChanged"_s, this, SLOT(refresh()));
    refresh();
}

void NetworkManagerWiFi::refresh() {
    read();
}

QCoro::Task<> NetworkManagerWiFi::read() {
    const QPointer self(this);
    const int round = ++m_round;
    const QVariantMap manager = co_await properties(managerPath, managerInterface);
    if (!self || m_round != round)
        co_return;
    const auto name = co_await ssidOf(pathsOf(manager.value(u"ActiveConnections"_s)));
    if (!self || m_round != round)
        co_return;
    const QString primary = manager.value(u"PrimaryConnection"_s).value<QDBusObjectPath>().path();
    const auto before = std::exchange(m_authorization, WiFiAuthorization::authorized);
    if (m_ssid == name && m_primaryConnection == primary && before == m_authorization)
        co_return;
    m_ssid = name;
    m_primaryConnection = primary;
    Q_EMIT networkChanged();
}

QCoro::Task<std::optional<QString>> NetworkManagerWiFi::ssidOf(QStringList connections) {
    const QPointer self(this);
    for (const QString &path : connections) {
        const QVariantMap active = co_await properties(path, activeInterface);
        if (!self)
            co_return std::nullopt;
        const uint state = active.value(u"State"_s).toUInt();
        if (active.value(u"Type"_s).toString() != "802-11-wireless"_L1 || state == 0 || state > activated)
            continue;
        const QString accessPoint = active.value(u"SpecificObject"_s).value<QDBusObjectPath>().path();
        const QVariantMap found = co_await properties(accessPoint, accessPointInterface);
        if (!self)
            co_return std::nullopt;
        const QString name = QString::fromUtf8(found.value(u"Ssid"_s).toByteArray());
        if (!name.isEmpty())
            co_return name;
    }
    co_return std::nullopt;
}

QCoro::Task<QVariantMap> NetworkManagerWiFi::properties(QString path, QString interface) {
    auto message = QDBusMessage::createMethodCall(service, path, propertiesInterface, u"GetAll"_s);
    message.setArguments({interface});
    const QDBusPendingCall call = m_bus.asyncCall(message);
    const QDBusMessage reply = co_await call;
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        co_return {};
    co_return qdbus_cast<QVariantMap>(reply.arguments().constFirst());
}

} // namespace vantor
