#include "MusicAssistantKit/Servers/MusicAssistantSelectionController.h"
#include "tests/MusicAssistantKit/Awaited.h"
#include "tests/Support/FakeComputer.h"
#include "tests/Support/FakeMusicAssistant/FakeMusicAssistant.h"
#include "tests/Support/ManualScheduler.h"
#include "tests/Support/TcpRelay.h"
#include "tests/Support/TestFolder.h"

#include <QSettings>

#include <gtest/gtest.h>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

class MusicAssistantSelectionTest : public testing::Test {
  protected:
    void SetUp() override {
        for (auto *fake : {&home, &office})
            ASSERT_TRUE(fake->listen());
        home.info.insert("server_id"_L1, u"home"_s);
        office.info.insert("server_id"_L1, u"office"_s);
    }
    QUuid add(const QString &serverID, const QUrl &url, const QStringList &networks = {}) {
        const auto id = QUuid::createUuid();
        const auto known = serverID.isEmpty() ? std::nullopt : std::optional(serverID);
        list.add({.id = id,
                  .name = serverID,
                  .address = {.baseURL = url, .serverID = known},
                  .networks = networks});
        return id;
    }
    void makeController() { controller.emplace(list, wifi, selector, clock); }
    [[nodiscard]] QString current() const {
        return controller->current() ? controller->current()->name : u"-"_s;
    }
    bool waitForReason(const QString &reason) {
        return waitUntil([&] { return controller->reason() == reason; });
    }

    TestFolder folder;
    QSettings settings{folder.path("servers.conf"), QSettings::IniFormat};
    MusicAssistantServerList list{settings};
    FakeMusicAssistant home;
    FakeMusicAssistant office;
    FakeWiFi wifi;
    QtHTTPTransport http;
    MusicAssistantServerSelector selector{http, 3s};
    ManualScheduler clock;
    std::optional<MusicAssistantSelectionController> controller;

    const QString first = u"First reachable server in the list"_s;
    const QString none = u"No Music Assistant server reachable"_s;
};

} // namespace

TEST_F(MusicAssistantSelectionTest, FollowsTheListAndTheNetwork) {
    makeController();
    EXPECT_EQ(controller->reason(), u"No Music Assistant server tested yet"_s);
    const QUuid untested = add(QString(), home.url());
    runEvents();
    EXPECT_EQ(controller->reason(), u"No Music Assistant server tested yet"_s);
    EXPECT_EQ(home.httpRequestCount(), 0);

    add(u"home"_s, home.url());
    EXPECT_EQ(controller->reason(), u"Finding a server…"_s);
    const QUuid officeID = add(u"office"_s, office.url(), {u"Work"_s});
    ASSERT_TRUE(waitForReason(first));
    EXPECT_EQ(current(), u"home"_s);
    EXPECT_EQ(controller->libraryName(), u"home"_s);
    ASSERT_TRUE(waitUntil([&] { return controller->outcomeText(officeID) == u"Reachable"_s; }));
    EXPECT_EQ(controller->outcomeText(untested), u"Not checked yet"_s);

    wifi.join(u"Lobby"_s);
    wifi.join(u"Work"_s);
    EXPECT_EQ(controller->reason(), first) << "before the network came to rest";
    clock.advance(MusicAssistantSelectionController::networkDebounce);
    EXPECT_EQ(current(), u"home"_s) << "the former server stays until another is known";
    ASSERT_TRUE(waitForReason(u"Preferred on the Wi-Fi network “Work”"_s));
    EXPECT_EQ(current(), u"office"_s);

    list.remove(officeID);
    EXPECT_EQ(current(), u"-"_s) << "a server that was removed is gone at once";
    ASSERT_TRUE(waitForReason(first));
    EXPECT_EQ(current(), u"home"_s);
}

TEST_F(MusicAssistantSelectionTest, AnEarlierServerGetsItsTimeAndNoMore) {
    TcpRelay silent(home.port());
    silent.freeze();
    const QUuid silentID = add(u"home"_s, silent.url());
    add(u"office"_s, office.url());
    makeController();
    ASSERT_TRUE(waitUntil([&] { return office.httpRequestCount() == 1; }));
    runEvents();
    EXPECT_EQ(current(), u"-"_s) << "a later server won over one that may still answer";
    ASSERT_TRUE(waitForReason(first));
    EXPECT_EQ(current(), u"office"_s);
    EXPECT_EQ(controller->outcomeText(silentID), u"No answer"_s);
}

TEST_F(MusicAssistantSelectionTest, NoServerMeansTryingAgain) {
    home.info.insert("schema_version"_L1, 20);
    const QUuid old = add(u"home"_s, home.url());
    const QUuid other = add(u"someone else"_s, office.url());
    const QUuid gone = add(u"gone"_s, QUrl(u"http://127.0.0.1:1"_s));
    makeController();
    ASSERT_TRUE(waitForReason(none));
    EXPECT_EQ(controller->outcomeText(old), u"Unsupported server version"_s);
    EXPECT_EQ(controller->outcomeText(other), u"A different server answered"_s);
    EXPECT_EQ(controller->outcomeText(gone), u"Not reachable"_s);
    EXPECT_EQ(controller->libraryName(), u"Music Assistant"_s);

    home.info.insert("schema_version"_L1, 65);
    clock.advance(MusicAssistantSelectionController::retryInterval);
    ASSERT_TRUE(waitForReason(first));
    EXPECT_EQ(current(), u"home"_s);
    EXPECT_LT(clock.untilNext(), 0ms) << "it goes on asking though a server is chosen";
}

TEST_F(MusicAssistantSelectionTest, ControllersMayGoWhileTheyAsk) {
    add(u"home"_s, home.url());
    makeController();
    controller.reset();
    runEvents();
}

TEST_F(MusicAssistantSelectionTest, TheListSurvivesARestartAndDamage) {
    const QUuid a = add(u"home"_s, home.url(), {u"Work"_s});
    const QUuid b = add(QString(), office.url());
    list.move(b, 0);
    MusicAssistantServerList again(settings);
    EXPECT_EQ(again.servers(), list.servers());
    EXPECT_EQ(again.servers().front().id, b);
    EXPECT_EQ(again.server(a)->networks, QStringList{u"Work"_s});

    const QString key = settings.allKeys().constFirst();
    const QString broken = u"[7, {\"id\": \"x\"}, {\"id\": \"%1\"}, "_s.arg(QUuid::createUuid().toString());
    settings.setValue(key, broken + settings.value(key).toString().sliced(1));
    EXPECT_EQ(MusicAssistantServerList(settings).servers().size(), 2U)
        << "broken entries took others with them";
    settings.setValue(key, u"{broken"_s);
    EXPECT_TRUE(MusicAssistantServerList(settings).servers().empty());
}

TEST(WiFiNetworkProviderTest, SaysWhyThereIsNoName) {
    FakeWiFi wifi;
    EXPECT_EQ(wifi.locationMessage(), WiFiLocationMessage::notOnWiFi);
    wifi.permission = WiFiAuthorization::denied;
    EXPECT_EQ(wifi.locationMessage(), WiFiLocationMessage::needsLocationAccess);
    wifi.join(u"Home"_s);
    EXPECT_EQ(wifi.locationMessage(), std::nullopt);
}
