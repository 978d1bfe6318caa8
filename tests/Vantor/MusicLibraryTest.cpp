#include "ServersFixture.h"
#include "Vantor/Library/SourceSwitcher.h"

#include <QSignalSpy>

using namespace vantor;

namespace {

class MusicLibraryTest : public ServersFixture {
  protected:
    using State = LibraryBrowser::State;

    [[nodiscard]] LibraryBrowser &browser() const { return m_library->browser(); }
    [[nodiscard]] bool isConnectedTo(const QString &name) const {
        return waitFor([&] { return browser().connected() && browser().backend()->displayName() == name; });
    }
    [[nodiscard]] bool does(const QString &activity) const {
        return waitFor([&] { return m_library->current().activity() == activity; });
    }
};

} // namespace

TEST_F(MusicLibraryTest, NothingIsAskedBeforeSomebodyLooks) {
    addServer(m_fake, u"Home"_qs);
    makeLibrary();
    EXPECT_FALSE(waitFor([&] { return m_fake.httpRequestCount() > 0; }, std::chrono::milliseconds(50)));
    m_library->open();
    EXPECT_TRUE(isConnectedTo(u"Home"_qs));
}

TEST_F(MusicLibraryTest, AServerThatGoesAwayIsWaitedForWithWhatWasRead) {
    addServer(m_fake, u"Home"_qs);
    m_library->open();
    ASSERT_TRUE(isConnectedTo(u"Home"_qs));
    EXPECT_TRUE(does(QString()));
    const auto backend = browser().backend();
    const QSignalSpy refreshed(&browser(), &LibraryBrowser::refreshed);
    const quint16 port = m_fake.port();
    m_fake.stop();
    EXPECT_TRUE(does(u"Reconnecting to Home…"_qs));
    m_servers.select(); // and is not reachable meanwhile
    EXPECT_TRUE(waitFor([&] { return !m_servers.selection()->isFinding(); }));
    EXPECT_EQ(browser().connected(), backend);
    ASSERT_TRUE(m_fake.listen(port));
    EXPECT_TRUE(does(QString()));
    EXPECT_TRUE(waitFor([&] { return !refreshed.isEmpty(); }));
    EXPECT_EQ(browser().connected(), backend);
}

TEST_F(MusicLibraryTest, TheServerOfTheNetworkTakesTheOthersPlace) {
    FakeMusicAssistant cabin;
    cabin.info[u"server_id"] = u"cabin"_qs;
    ASSERT_TRUE(cabin.listen());
    addServer(m_fake, u"Home"_qs);
    addServer(cabin, u"Cabin"_qs, {u"Lake"_qs});
    m_library->open();
    ASSERT_TRUE(isConnectedTo(u"Home"_qs));
    m_wifi.join(u"Lake"_qs);
    ASSERT_TRUE(isConnectedTo(u"Cabin"_qs));
    EXPECT_TRUE(waitFor([&] { return m_fake.clientCount() == 0; }));
}

TEST_F(MusicLibraryTest, TheFirstChoiceWaitsToHearWhichNetworkThisIs) {
    FakeMusicAssistant cabin;
    cabin.info[u"server_id"] = u"cabin"_qs;
    ASSERT_TRUE(cabin.listen());
    addServer(m_fake, u"Home"_qs);
    addServer(cabin, u"Cabin"_qs, {u"Lake"_qs});
    m_wifi.permission = WiFiAuthorization::notDetermined;
    m_library->open();
    EXPECT_EQ(browser().state(), State::connecting);
    m_wifi.permission = WiFiAuthorization::authorized;
    m_wifi.join(u"Lake"_qs);
    ASSERT_TRUE(isConnectedTo(u"Cabin"_qs));
    EXPECT_TRUE(m_fake.receivedFrames().isEmpty());
}

TEST_F(MusicLibraryTest, TheChosenSourceIsRememberedAsLongAsThereIsSuch) {
    m_model.preferences().setLibraryFolder(m_folder.path());
    const QUuid id = addServer(m_fake, u"Home"_qs);
    SourceSwitcher switcher(*m_library);
    m_library->open();
    ASSERT_EQ(switcher.count(), 2);
    EXPECT_EQ(switcher.currentIndex(), 0);
    Q_EMIT switcher.activated(1);
    ASSERT_TRUE(isConnectedTo(u"Home"_qs));
    EXPECT_EQ(switcher.currentText(), u"Home"_qs);
    makeLibrary();
    EXPECT_EQ(m_library->current().key(), u"musicAssistant"_qs);
    m_library->open();
    ASSERT_TRUE(isConnectedTo(u"Home"_qs));
    m_servers.settings().remove(id);
    EXPECT_EQ(m_library->current().key(), u"folder"_qs);
    EXPECT_EQ(m_library->sources().size(), 1);
    EXPECT_TRUE(waitFor([&] { return m_fake.clientCount() == 0; }));
}

TEST_F(MusicLibraryTest, WhatIsMissingIsSaidAndWhereItIsSet) {
    using Given = std::function<void()>;
    struct Row {
        const char *name;
        Given given;
        QString sentence;
        bool isSetup;
    };
    const QUuid id = addServer(m_fake, u"Home"_qs);
    const MusicAssistantServerConfiguration home = *m_servers.list().server(id);
    const auto change = [&](const std::function<void(MusicAssistantServerConfiguration &)> &how) {
        auto server = home;
        how(server);
        m_servers.list().update(server);
    };
    const Row rows[] = {
        {"untested", [&] { change([](auto &server) { server.address.serverID.reset(); }); },
         u"No Music Assistant server tested yet"_qs, true},
        {"unreachable",
         [&] { change([](auto &server) { server.address.baseURL = QUrl(u"http://127.0.0.1:1"_qs); }); },
         u"No Music Assistant server reachable"_qs, false},
        {"no token", [&] { m_tokens.saved.clear(); },
         u"Enter the Music Assistant token under Settings › Music Assistant."_qs, true},
        {"locked keychain", [&] { m_tokens.failure = MusicAssistantTokenStoreError::notReadable(); },
         u"The Music Assistant token could not be read."_qs, true},
        {"wrong token", [&] { m_fake.tokens = {u"another"_qs}; },
         u"The Music Assistant token was rejected."_qs, true}};
    const auto saved = m_tokens.saved;
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        row.given();
        makeLibrary();
        m_library->open();
        EXPECT_TRUE(waitFor([&] { return browser().state() == State::failed; }));
        EXPECT_EQ(browser().failure().value_or(LibraryFailure()).sentence, row.sentence);
        EXPECT_EQ(browser().failure().value_or(LibraryFailure()).isSetup, row.isSetup);
        m_tokens.saved = saved;
        m_tokens.failure.reset();
        m_servers.list().update(home);
    }
    // What was the matter is put right while somebody looks.
    m_fake.tokens = {u"secret-token"_qs};
    m_servers.settings().setToken(id, MusicAssistantToken(u"secret-token"_qs));
    EXPECT_TRUE(isConnectedTo(u"Home"_qs));
}

TEST_F(MusicLibraryTest, WhatAServerHoldsItPlaysItself) {
    addServer(m_fake, u"Home"_qs);
    m_library->open();
    ASSERT_TRUE(isConnectedTo(u"Home"_qs));
    const QSignalSpy failed(&browser(), &LibraryBrowser::failed);
    m_model.imports().enqueueItems({{MediaKind::track, u"library://track/1"_qs}});
    ASSERT_TRUE(waitFor([&] { return !failed.isEmpty(); }));
    EXPECT_TRUE(failed.first().first().toString().contains(u"This Mac isn't connected to Music Assistant"));
    EXPECT_EQ(m_player.queue().count(), 0);
}
