#include "MusicAssistantKit/Settings/MusicAssistantSettingsModel.h"
#include "tests/MusicAssistantKit/Awaited.h"
#include "tests/Support/FakeComputer.h"
#include "tests/Support/FakeMusicAssistant/FakeMusicAssistant.h"
#include "tests/Support/TestFolder.h"

#include <QJsonDocument>
#include <QSettings>

#include <gtest/gtest.h>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;

namespace {

class MusicAssistantSettingsModelTest : public testing::Test {
  protected:
    using Kind = MusicAssistantSettingsModel::Status::Kind;
    using Failure = MusicAssistantConnectionFailure;

    void SetUp() override {
        ASSERT_TRUE(server.listen());
        const auto added = model.add(u" Home "_s, server.url().toString());
        ASSERT_TRUE(std::holds_alternative<QUuid>(added));
        id = std::get<QUuid>(added);
    }
    /// What the test of the connection says.
    QString test() {
        model.test(id);
        waitUntil([&] { return model.status(id).kind != Kind::testing; });
        return model.status(id).text;
    }
    bool tokenWasSent(const FakeMusicAssistant &to) const {
        return to.receivedFrames().join(u' ').contains(token.reveal());
    }

    const MusicAssistantToken token{u"secret-token\n"_s};
    TestFolder folder;
    QSettings settings{folder.path("servers.conf"), QSettings::IniFormat};
    MusicAssistantServerList list{settings};
    FakeTokenStore tokens;
    QtHTTPTransport http;
    QtWebSocketTransports transports;
    SystemScheduler clock;
    MusicAssistantSettingsModel model{{list, tokens, http, transports, clock}};
    FakeMusicAssistant server;
    QUuid id;
};

} // namespace

TEST_F(MusicAssistantSettingsModelTest, FromTheAddressToTheVerifiedServer) {
    EXPECT_EQ(list.server(id)->name, u"Home"_s);
    EXPECT_EQ(test(), u"Found a Music Assistant server. Enter a token."_s);
    EXPECT_EQ(model.status(id).failure->foundName, u"Fake Home"_s);
    EXPECT_FALSE(list.server(id)->address.isVerified());
    EXPECT_EQ(server.clientCount(), 0);

    model.setToken(id, MusicAssistantToken(u"wrong"_s));
    EXPECT_EQ(model.status(id).text, u"Saved in Keychain"_s);
    EXPECT_EQ(test(), u"Music Assistant rejected this token."_s);
    EXPECT_FALSE(list.server(id)->address.isVerified());

    tokens.failure = MusicAssistantTokenStoreError::keychain(4); // whom a typed token needs only to be kept
    model.test(id, token);
    waitUntil([&] { return model.status(id).kind != Kind::testing; });
    EXPECT_EQ(model.status(id).text, u"The Keychain refused the request (4)"_s);
    EXPECT_FALSE(model.asksKeychain(id));
    tokens.failure.reset();
    EXPECT_EQ(test(), u"Music Assistant rejected this token."_s); // the one that is kept still
    model.test(id, token);
    waitUntil([&] { return model.status(id).kind != Kind::testing; });
    EXPECT_EQ(model.status(id).text, u"Connected to Fake Home."_s);
    EXPECT_EQ(list.server(id)->address.serverID, u"fake-server"_s);
    EXPECT_TRUE(waitUntil([&] { return server.clientCount() == 0; }))
        << "the test leaves its connection behind";

    model.checkToken(id);
    EXPECT_EQ(model.status(id).text, u"Saved in Keychain"_s);
    for (const QString &key : settings.allKeys())
        EXPECT_FALSE(settings.value(key).toString().contains(token.reveal()));

    model.remove(id);
    EXPECT_TRUE(tokens.saved.isEmpty());
    EXPECT_TRUE(list.servers().empty());
}

TEST_F(MusicAssistantSettingsModelTest, ATokenGoesOnlyToItsServer) {
    auto nameless = *list.server(id);
    nameless.name = server.url().host();
    list.update(nameless);
    model.setToken(id, token);
    ASSERT_EQ(test(), u"Connected to Fake Home."_s);
    EXPECT_EQ(list.server(id)->name, u"Fake Home"_s);
    FakeMusicAssistant stranger;
    ASSERT_TRUE(stranger.listen());
    stranger.info.insert("server_id"_L1, u"stranger"_s);
    stranger.info.insert("name"_L1, u"Stranger"_s);
    EXPECT_FALSE(model.setAddress(id, stranger.url().toString()));
    EXPECT_EQ(test(), u"A different server answered (Stranger). Its token was not sent."_s);
    stranger.info.remove("name"_L1);
    EXPECT_EQ(test(), u"A different server answered. Its token was not sent."_s);
    EXPECT_FALSE(tokenWasSent(stranger));
    EXPECT_EQ(list.server(id)->address.serverID, u"fake-server"_s);

    model.replace(id);
    EXPECT_EQ(model.status(id).text,
              u"Replacing forgets this server's token. Enter the token of the server that answers now."_s);
    EXPECT_EQ(test(), u"Found a Music Assistant server. Enter a token."_s);
    // Between the two tests somebody else takes the address.
    stranger.info.insert("server_id"_L1, u"third"_s);
    model.setToken(id, token);
    EXPECT_EQ(test(), u"A different server answered. Its token was not sent."_s);
    EXPECT_FALSE(tokenWasSent(stranger));
    stranger.info.insert("server_id"_L1, u"stranger"_s);
    EXPECT_EQ(test(), u"Connected to Fake Home."_s);
    EXPECT_EQ(list.server(id)->address.serverID, u"stranger"_s);
}

TEST_F(MusicAssistantSettingsModelTest, AServerThatChangesBetweenTheQuestionAndTheConnection) {
    model.setToken(id, token);
    server.onHTTP(u"/info"_s, [this](const QUrl &) {
        auto shown = server.info;
        server.info.insert("server_id"_L1, u"other"_s);
        return FakeMusicAssistant::HTTPAnswer{.body = QJsonDocument(shown).toJson()};
    });
    EXPECT_EQ(test(), u"A different server answered. Its token was not sent."_s);
    EXPECT_FALSE(tokenWasSent(server));
}

TEST_F(MusicAssistantSettingsModelTest, SaysWhatIsWrong) {
    const auto problemOf = [&](const char *address) {
        const auto failure = model.setAddress(id, QString::fromLatin1(address));
        return failure ? failure->description() : QString();
    };
    EXPECT_EQ(problemOf(""), u"Enter the server's address."_s);
    EXPECT_EQ(problemOf("a b"), u"That address isn't valid."_s);
    EXPECT_EQ(problemOf("gopher://nas"), u"Use an http or https address."_s);
    EXPECT_EQ(problemOf("me:pw@nas"), u"Don't put a user name or password in the address."_s);
    EXPECT_EQ(problemOf("http://music.example.org"),
              u"Use https for this address; plain http works only on the local network or Tailscale."_s);
    EXPECT_EQ(list.server(id)->address.baseURL, server.url());

    server.info.insert("schema_version"_L1, 27);
    EXPECT_EQ(test(), u"This Music Assistant server is too old for Vantor (schema 27; needs 28 or later)."_s);
    server.info.insert("schema_version"_L1, 28);
    tokens.failure = MusicAssistantTokenStoreError::notReadable();
    EXPECT_EQ(test(), u"The Keychain could not be read."_s);
    tokens.failure = MusicAssistantTokenStoreError::keychain(4);
    model.setToken(id, token);
    EXPECT_EQ(model.status(id).text, u"The Keychain refused the request (4)"_s);
    EXPECT_EQ(model.status(id).failure->failureCase, Failure::Case::keychain);
    server.stop();
    EXPECT_EQ(test(), u"Can't reach the Music Assistant server."_s);
    EXPECT_EQ(problemOf("https://localhost:8095"), QString());
    EXPECT_TRUE(test().contains(u"plain http on port 8095"_s)) << model.status(id).text.toStdString();
    const auto blocked = Failure::from(
        MusicAssistantError::transport({.kind = MATransportError::Kind::securityRequired, .detail = {}}), {});
    EXPECT_EQ(
        blocked.description(),
        u"macOS blocks this connection. Use https; plain http works only on the local network or Tailscale."_s);
}

TEST_F(MusicAssistantSettingsModelTest, AnOutdatedTestSaysNothing) {
    model.setToken(id, token);
    model.test(id);
    EXPECT_EQ(model.status(id).kind, Kind::testing);
    EXPECT_FALSE(model.setAddress(id, u"127.0.0.1:1"_s));
    runEvents();
    EXPECT_EQ(model.status(id), MusicAssistantSettingsModel::Status());
    EXPECT_FALSE(list.server(id)->address.isVerified());
    EXPECT_FALSE(tokenWasSent(server));

    auto going = std::make_unique<MusicAssistantSettingsModel>(
        MusicAssistantSettingsModel::Collaborators{list, tokens, http, transports, clock});
    EXPECT_FALSE(model.setAddress(id, server.url().toString()));
    going->test(id);
    going.reset();
    runEvents();
    EXPECT_FALSE(list.server(id)->address.isVerified());
}

TEST(KeychainMusicAssistantTokenStoreTest, WithoutAKeychainATokenStaysForTheSession) {
    // A message bus where nobody keeps secrets is what a computer without a desktop offers.
    const QByteArray before = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    KeychainMusicAssistantTokenStore store(u"co.kelvane.vantor.test"_s);
    const MusicAssistantToken token(u"secret-token"_s);
    const auto isEmpty = [&](const QString &account) {
        const auto found = ended(store.token(account));
        const auto where = ended(store.kept(account));
        return found.value && !found.value->has_value() && where.value && !where.value->has_value();
    };
    EXPECT_TRUE(isEmpty(u"account"_s));
    const auto saved = ended(store.save(u"account"_s, token));
    EXPECT_EQ(saved.value, MusicAssistantTokenStore::Kept::untilQuit);
    EXPECT_EQ(ended(store.token(u"account"_s)).value, std::optional(token));
    EXPECT_TRUE(isEmpty(u"other"_s));
    EXPECT_EQ(ended(store.kept(u"account"_s)).value,
              std::optional(MusicAssistantTokenStore::Kept::untilQuit));
    EXPECT_EQ(MusicAssistantTokenStore::message(*saved.value),
              u"No keychain is running on this computer: the token is kept until Vantor quits."_s);
    [[maybe_unused]] const auto removing = store.remove(u"account"_s);
    EXPECT_TRUE(isEmpty(u"account"_s));
    qputenv("DBUS_SESSION_BUS_ADDRESS", before);
}
