#include "MusicAssistantKit/Discovery/AvahiServiceBrowser.h"
#include "MusicAssistantKit/Discovery/MusicAssistantDiscovery.h"
#include "MusicAssistantKit/Discovery/NetworkManagerWiFi.h"
#include "tests/MusicAssistantKit/Awaited.h"
#include "tests/Support/FakeMusicAssistant/FakeMusicAssistant.h"
#include "tests/Support/ManualScheduler.h"
#include "tests/Support/TestFolder.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QFile>
#include <QProcess>
#include <QSettings>
#include <QSignalSpy>
#include <QStandardPaths>

#include <gtest/gtest.h>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Answers every call on a bus name with what a test says.
class ScriptedService : public QDBusVirtualObject {
  public:
    using Script = std::function<QVariantList(const QDBusMessage &)>;
    ScriptedService(const QDBusConnection &bus, const QString &name, Script script)
        : m_bus(bus), m_name(name), m_script(std::move(script)) {
        m_bus.registerVirtualObject(u"/"_s, this, QDBusConnection::SubPath);
        m_bus.registerService(m_name);
    }
    ~ScriptedService() override {
        m_bus.unregisterService(m_name);
        m_bus.unregisterObject(u"/"_s, QDBusConnection::UnregisterTree);
    }

    [[nodiscard]] QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override {
        const QVariantList values = m_script(message);
        if (values.isEmpty())
            connection.send(message.createErrorReply(QDBusError::Failed, u"no"_s));
        else
            connection.send(message.createReply(values));
        return true;
    }
    void say(const QString &path, const QString &interface, const QString &signal,
             const QVariantList &values) {
        auto message = QDBusMessage::createSignal(path, interface, signal);
        message.setArguments(values);
        m_bus.send(message);
    }

  private:
    QDBusConnection m_bus;
    const QString m_name;
    const Script m_script;
};

QVariant path(const QString &text) {
    return QVariant::fromValue(QDBusObjectPath(text));
}

/// A message bus of its own, with a connection for the services and one for who asks.
class BusTest : public testing::Test {
  protected:
    void SetUp() override {
        const QString program = QStandardPaths::findExecutable(u"dbus-daemon"_s);
        if (program.isEmpty())
            GTEST_SKIP() << "NOT TESTED: dbus-daemon is not installed";
        const QString address = u"unix:path="_s + m_folder.path("bus");
        m_daemon.start(program, {u"--session"_s, u"--nofork"_s, u"--nopidfile"_s, u"--address="_s + address});
        ASSERT_TRUE(waitUntil([&] { return QFile::exists(m_folder.path("bus")); }));
        // The library keeps connections by name, also those to a bus that has gone.
        static int number = 0;
        m_names = {u"service%1"_s.arg(++number), u"client%1"_s.arg(number)};
        services.emplace(QDBusConnection::connectToBus(address, m_names[0]));
        client.emplace(QDBusConnection::connectToBus(address, m_names[1]));
        ASSERT_TRUE(services->isConnected() && client->isConnected());
    }
    void TearDown() override {
        for (const QString &name : m_names)
            QDBusConnection::disconnectFromBus(name);
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

    std::optional<QDBusConnection> services;
    std::optional<QDBusConnection> client;

  private:
    TestFolder m_folder;
    QProcess m_daemon;
    QStringList m_names;
};

class AvahiDiscoveryTest : public BusTest {
  protected:
    struct Announced {
        QString type;
        QString name;
        QString host;
        int port = 0;
    };

    void SetUp() override {
        BusTest::SetUp();
        if (IsSkipped())
            return;
        ASSERT_TRUE(server.listen());
        browser.setBus(*client);
        discovery.emplace(MusicAssistantDiscovery::Collaborators{browser, http, list, clock});
    }
    void startAvahi() {
        qDBusRegisterMetaType<QByteArrayList>();
        avahi.emplace(*services, u"org.freedesktop.Avahi"_s,
                      [this](const QDBusMessage &message) { return answer(message); });
    }
    QVariantList answer(const QDBusMessage &message) {
        const QVariantList args = message.arguments();
        if (message.member() == "ServiceBrowserNew"_L1) {
            const QString type = args[2].toString();
            types.append(type);
            const QString own = u"/browser%1"_s.arg(types.size());
            QTimer::singleShot(0, &server, [this, type, own] { announce(type, own); });
            return {path(own)};
        }
        if (message.member() != "ResolveService"_L1)
            return {};
        for (const Announced &item : announced) {
            if (item.type == args[3].toString() && item.name == args[2].toString())
                return {args[0],
                        0,
                        item.name,
                        item.type,
                        u"local"_s,
                        item.host,
                        0,
                        u"127.0.0.1"_s,
                        QVariant::fromValue(static_cast<ushort>(item.port)),
                        QVariant::fromValue(QByteArrayList{"path=/x"}),
                        0U};
        }
        return {};
    }
    void announce(const QString &type, const QString &own) {
        const QString interface = u"org.freedesktop.Avahi.ServiceBrowser"_s;
        for (const Announced &item : announced) {
            if (item.type == type)
                avahi->say(own, interface, u"ItemNew"_s, {1, 0, item.name, item.type, u"local"_s, 0U});
        }
        avahi->say(own, interface, u"AllForNow"_s, {});
    }
    bool waitUntilSettled() {
        return waitUntil([&] { return !discovery->isLooking(); });
    }

    FakeMusicAssistant server;
    TestFolder folder;
    QSettings settings{folder.path("servers.conf"), QSettings::IniFormat};
    MusicAssistantServerList list{settings};
    QtHTTPTransport http;
    ManualScheduler clock;
    QList<Announced> announced;
    QStringList types;
    std::optional<ScriptedService> avahi;
    AvahiServiceBrowser browser;
    std::optional<MusicAssistantDiscovery> discovery;
};

} // namespace

TEST_F(AvahiDiscoveryTest, WithoutAvahiNothingIsFound) {
    discovery->start();
    EXPECT_EQ(discovery->statusText(), u"Looking for Music Assistant servers…"_s);
    ASSERT_TRUE(waitUntilSettled());
    EXPECT_EQ(discovery->statusText(), u"No servers found."_s);
    startAvahi();
    discovery->start();
    ASSERT_TRUE(waitUntilSettled());
    EXPECT_EQ(types.size(), 4) << "Avahi came later and was not asked";
}

TEST_F(AvahiDiscoveryTest, FindsServersByWhatTheyAnnounce) {
    startAvahi();
    // A name that means nothing on this machine: the address behind it answers.
    announced = {{u"_mass._tcp"_s, u"ma"_s, u"no-such-host.invalid"_s, server.port()},
                 {u"_music-assistant._tcp"_s, u"same"_s, u"127.0.0.1"_s, server.port()},
                 {u"_home-assistant._tcp"_s, u"hub"_s, u"127.0.0.1"_s, server.port()}};
    discovery->start();
    ASSERT_TRUE(waitUntil([&] { return discovery->servers().size() == 1; }));
    ASSERT_TRUE(waitUntilSettled());
    ASSERT_EQ(discovery->servers().size(), 1U) << "one server, however often it is announced";
    EXPECT_EQ(discovery->servers().front(),
              (MusicAssistantDiscoveredServer{
                  .id = u"fake-server"_s, .url = server.url(), .name = u"Fake Home"_s}));
    EXPECT_EQ(discovery->statusText(), QString());
    types.sort();
    EXPECT_EQ(types, (QStringList{u"_home-assistant._tcp"_s, u"_mass._tcp"_s, u"_music-assistant._tcp"_s,
                                  u"_sendspin-server._tcp"_s}));

    announced = {{u"_sendspin-server._tcp"_s, u"player"_s, u"127.0.0.1"_s, server.port()}};
    discovery->start();
    ASSERT_TRUE(waitUntilSettled());
    EXPECT_TRUE(discovery->servers().empty()) << "asked at another service's port";
    EXPECT_EQ(discovery->statusText(), u"No Music Assistant server reachable on this network."_s);
}

TEST_F(AvahiDiscoveryTest, TellsOfAKnownServerThatMoved) {
    startAvahi();
    announced = {{u"_mass._tcp"_s, u"ma"_s, u"127.0.0.1"_s, server.port()}};
    MusicAssistantServerConfiguration known{
        .id = QUuid::createUuid(),
        .name = u"Home"_s,
        .address = {.baseURL = QUrl(u"http://nas:8095"_s), .serverID = u"fake-server"_s},
        .networks = {}};
    list.add(known);
    std::vector<std::pair<QUuid, QUrl>> moved;
    discovery->onConfiguredServerMoved = [&](const auto &configuration, const QUrl &url) {
        moved.emplace_back(configuration.id, url);
    };
    discovery->start();
    ASSERT_TRUE(waitUntilSettled());
    ASSERT_EQ(moved.size(), 1U);
    EXPECT_EQ(moved.front(), std::pair(known.id, server.url()));
    EXPECT_TRUE(discovery->servers().empty());

    known.address.baseURL = server.url();
    list.update(known);
    discovery->start();
    ASSERT_TRUE(waitUntilSettled());
    EXPECT_EQ(moved.size(), 1U) << "it is where it is said to be";
}

TEST_F(AvahiDiscoveryTest, ANetworkFullOfHostsEndsInTime) {
    startAvahi();
    for (int i = 0; i < 500; ++i)
        announced.append({u"_mass._tcp"_s, u"n%1"_s.arg(i), u"127.0.0.1"_s, server.port()});
    for (int i = 0; i < 500; ++i)
        announced[i].host = u"127.0.0.%1"_s.arg(i % 250 + 2);
    discovery->start();
    waitUntil([&] { return server.httpRequestCount() > 0; });
    clock.advance(10s);
    EXPECT_FALSE(discovery->isLooking());
    discovery.reset();
    runEvents();
    EXPECT_LE(server.httpRequestCount(), 64);
}

using NetworkManagerTest = BusTest;

TEST_F(NetworkManagerTest, KnowsTheWiFiNetworkAndItsChanges) {
    NetworkManagerWiFi wifi;
    wifi.setBus(*client);
    runEvents();
    EXPECT_EQ(wifi.ssid(), std::nullopt);
    QSignalSpy changes(&wifi, &WiFiNetworkProvider::networkChanged);

    QString ssid = u"Heim-WLAN ☕"_s;
    QString primary = u"/active/1"_s;
    uint state = 2;
    const QString manager = u"/org/freedesktop/NetworkManager"_s;
    const auto script = [&](const QDBusMessage &message) -> QVariantList {
        if (message.member() != "GetAll"_L1)
            return {};
        if (message.path() == manager)
            return {QVariantMap{
                {u"ActiveConnections"_s,
                 QVariant::fromValue(QList{QDBusObjectPath(u"/active/1"_s), QDBusObjectPath(u"/gone"_s),
                                           QDBusObjectPath(u"/active/2"_s)})},
                {u"PrimaryConnection"_s, path(primary)}}};
        if (message.path() == "/active/1"_L1)
            return {QVariantMap{
                {u"Type"_s, u"802-3-ethernet"_s}, {u"State"_s, 2U}, {u"SpecificObject"_s, path(u"/"_s)}}};
        if (message.path() == "/active/2"_L1)
            return {QVariantMap{{u"Type"_s, u"802-11-wireless"_s},
                                {u"State"_s, state},
                                {u"SpecificObject"_s, path(u"/ap"_s)}}};
        if (message.path() == "/ap"_L1)
            return {QVariantMap{{u"Ssid"_s, ssid.toUtf8()}}};
        return {};
    };
    auto service = std::make_unique<ScriptedService>(*services, u"org.freedesktop.NetworkManager"_s, script);
    ASSERT_TRUE(waitUntil([&] { return wifi.ssid() == ssid; })) << "a service that starts later";
    const auto change = [&] {
        const auto before = changes.size();
        service->say(manager, u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s,
                     {manager, QVariantMap(), QStringList()});
        return QTest::qWaitFor([&] { return changes.size() > before; }, 500);
    };
    EXPECT_FALSE(change()) << "nothing is another network";
    ssid = u"Work"_s;
    EXPECT_TRUE(change());
    EXPECT_EQ(wifi.ssid(), u"Work"_s);
    primary = u"/active/2"_s;
    EXPECT_TRUE(change()) << "another way to the network";
    state = 4; // going down
    EXPECT_TRUE(change());
    EXPECT_EQ(wifi.ssid(), std::nullopt);
    state = 2;
    EXPECT_TRUE(change());
    service.reset();
    EXPECT_TRUE(waitUntil([&] { return wifi.ssid() == std::nullopt; })) << "the service ended";
}
