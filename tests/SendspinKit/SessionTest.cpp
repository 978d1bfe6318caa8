#include "tests/Support/FakeSendspin/SendspinSimulation.h"

#include <QJsonArray>

#include <gmock/gmock.h>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Fault = FakeSendspin::Fault;
using Case = SendspinError::Case;

class SendspinSessionTest : public testing::Test, protected SendspinSimulation {
  protected:
    SendspinSessionTest() { server.network = {.base = 100us}; }

    void connectPlayer() {
        session.start(configuration);
        advance(1s);
        ASSERT_EQ(count<SendspinEvent::Synchronized>(), 1);
    }
    /// Lets what was sent arrive, and the answers to it.
    void deliver() { advance(1ms); }
    void command(const QString &name, const QJsonObject &members) {
        server.command(name, members);
        deliver();
    }
    template <typename Event>
    [[nodiscard]] std::vector<Event> all() const {
        std::vector<Event> found;
        for (const SendspinEvent &event : events) {
            if (const auto *one = std::get_if<Event>(&event.content))
                found.push_back(*one);
        }
        return found;
    }
    template <typename Event>
    [[nodiscard]] std::ptrdiff_t count() const {
        return std::ssize(all<Event>());
    }
    [[nodiscard]] QJsonObject lastState() const {
        return server.received(u"client/state"_s).value(server.received(u"client/state"_s).size() - 1);
    }
};

QJsonObject expectedState(bool available, int volume, bool muted, int delay) {
    return {{u"available"_s, available},
            {u"player"_s, QJsonObject{{u"volume"_s, volume},
                                      {u"muted"_s, muted},
                                      {u"static_delay_ms"_s, delay},
                                      {u"required_lead_time_ms"_s, 200},
                                      {u"min_buffer_ms"_s, 500},
                                      {u"supported_commands"_s, QJsonArray{u"set_static_delay"_s}}}}};
}

} // namespace

TEST_F(SendspinSessionTest, IntroducesItselfAndReportsOnceTheClockIsKnown) {
    configuration.deviceInfo = {u"Kelvane"_s, u"Vantor"_s, u"1.2"_s};
    session.report({.volume = 40, .staticDelayMs = 30});
    session.start(configuration);
    EXPECT_EQ(session.clock(), SendspinClockState());
    advance(1s);
    const QList<QJsonObject> &received = server.received();
    ASSERT_EQ(received.size(), 3);
    EXPECT_EQ(received[0],
              (QJsonObject{
                  {u"type"_s, u"auth"_s}, {u"token"_s, u"secret-token"_s}, {u"client_id"_s, u"vantor-1"_s}}));
    QJsonObject hello = received[1].value("payload"_L1).toObject();
    QJsonObject support = hello.take("player@v1_support"_L1).toObject();
    EXPECT_EQ(hello, (QJsonObject{{u"client_id"_s, u"vantor-1"_s},
                                  {u"name"_s, u"Vantor (desk)"_s},
                                  {u"version"_s, 1},
                                  {u"supported_roles"_s, QJsonArray{u"player@v1"_s}},
                                  {u"device_info"_s, QJsonObject{{u"manufacturer"_s, u"Kelvane"_s},
                                                                 {u"product_name"_s, u"Vantor"_s},
                                                                 {u"software_version"_s, u"1.2"_s}}}}));
    const QJsonArray formats = support.take("supported_formats"_L1).toArray();
    const QJsonObject preferred{
        {u"codec"_s, u"flac"_s}, {u"channels"_s, 2}, {u"sample_rate"_s, 48'000}, {u"bit_depth"_s, 16}};
    EXPECT_EQ(formats.first(), preferred);
    EXPECT_EQ(std::count(formats.begin(), formats.end(), QJsonValue(preferred)), 1);
    EXPECT_EQ(support, (QJsonObject{{u"buffer_capacity"_s, 1'000'000},
                                    {u"supported_commands"_s, QJsonArray{u"volume"_s, u"mute"_s}}}));
    EXPECT_EQ(received[2].value("payload"_L1), expectedState(true, 40, false, 30));

    ASSERT_GE(events.size(), 2U);
    const auto *connected = std::get_if<SendspinEvent::Connected>(&events[0].content);
    ASSERT_TRUE(connected);
    EXPECT_EQ(connected->server.name, u"Fake Home"_s);
    EXPECT_EQ(all<SendspinEvent::GroupUpdated>().at(0).update.groupName, u"Living room"_s);
    EXPECT_EQ(count<SendspinEvent::Synchronized>(), 1);
    EXPECT_GE(session.clock().acceptedSamples, 4);
}

TEST_F(SendspinSessionTest, ObeysCommandsAndReportsEveryChange) {
    connectPlayer();
    command(u"volume"_s, {{u"volume"_s, 25}});
    EXPECT_EQ(lastState(), expectedState(true, 25, false, 0));
    command(u"mute"_s, {{u"mute"_s, true}});
    EXPECT_EQ(lastState(), expectedState(true, 25, true, 0));
    command(u"set_static_delay"_s, {{u"static_delay_ms"_s, 120}});
    command(u"set_output_delay"_s, {{u"output_delay_ms"_s, 6000}});
    EXPECT_EQ(lastState(), expectedState(true, 25, true, 5000));
    EXPECT_EQ(all<SendspinEvent::SetVolume>(), std::vector{SendspinEvent::SetVolume{25}});
    EXPECT_EQ(all<SendspinEvent::SetMute>(), std::vector{SendspinEvent::SetMute{true}});
    EXPECT_EQ(all<SendspinEvent::SetStaticDelay>(),
              (std::vector{SendspinEvent::SetStaticDelay{120}, SendspinEvent::SetStaticDelay{5000}}));

    command(u"volume"_s, {{u"volume"_s, 26}});
    auto before = server.received().size();
    command(u"volume"_s, {{u"volume"_s, 26}}); // the server waits to hear that it is so
    EXPECT_EQ(server.received().size(), ++before);
    command(u"volume"_s, {{u"volume"_s, 25}});
    before = server.received().size();
    command(u"volume"_s, {}); // malformed
    command(u"sing"_s, {});
    session.report({.volume = 25, .muted = true, .staticDelayMs = 5000}); // what it knows already
    deliver();
    EXPECT_EQ(server.received().size(), before);
    session.report({.available = false, .volume = 26, .muted = true, .staticDelayMs = 5000});
    deliver();
    EXPECT_EQ(lastState(), expectedState(false, 26, true, 5000));

    server.dropClients();
    events.clear();
    advance(5s);
    ASSERT_EQ(count<SendspinEvent::Synchronized>(), 1);
    EXPECT_EQ(lastState(), expectedState(false, 26, true, 5000)) << "of the next connection";
}

TEST_F(SendspinSessionTest, PassesStreamsOn) {
    connectPlayer();
    server.network = {.base = 3ms, .jitter = 5ms};
    std::vector<MadeFormat> formats{{.codec = u"pcm"_s, .bitDepth = 24},
                                    {.codec = u"flac"_s, .sampleRate = 44'100, .bitDepth = 24}};
    if (const MadeFormat opus{.codec = u"opus"_s}; MadeEncoder(opus, 0).isValid())
        formats.push_back(opus);
    for (const MadeFormat &format : formats) {
        SCOPED_TRACE(qPrintable(format.codec));
        events.clear();
        server.play(format);
        advance(5s);
        server.changeFormat({.codec = u"pcm"_s});
        advance(20s);
        const auto starts = all<SendspinEvent::StreamStarted>();
        ASSERT_EQ(starts.size(), 2U);
        EXPECT_EQ(starts[0].format.codec, format.codec);
        EXPECT_EQ(starts[0].format.sampleRate, format.sampleRate);
        EXPECT_EQ(starts[0].format.codecHeader.startsWith("fLaC"), format.codec == "flac"_L1);
        const auto chunks = all<SendspinEvent::Audio>();
        ASSERT_GT(chunks.size(), 200U);
        // In order and without a gap, also where the format changes.
        for (std::size_t i = 1; i < chunks.size(); ++i)
            ASSERT_LT(std::abs(chunks[i].chunk.timestamp - chunks[i - 1].chunk.timestamp - 23'000), 4000)
                << i;
        EXPECT_LE(server.clients().at(0)->mostBuffered(), configuration.bufferCapacity);

        server.seek(100, FakeSendspin::Seek::clears);
        advance(100ms);
        EXPECT_EQ(count<SendspinEvent::StreamCleared>(), 1);
        EXPECT_EQ(count<SendspinEvent::StreamStarted>(), 2);
        events.clear();
        server.seek(7, FakeSendspin::Seek::restarts);
        advance(100ms);
        EXPECT_TRUE(std::holds_alternative<SendspinEvent::Audio>(events.back().content));
        EXPECT_EQ(count<SendspinEvent::StreamEnded>(), 1);
        EXPECT_EQ(count<SendspinEvent::StreamStarted>(), 1);
    }
}

TEST_F(SendspinSessionTest, SaysWhyAConnectionFailed) {
    struct Row {
        const char *name;
        Fault fault;
        QString token;
        SendspinError error;
    };
    const QString good = u"secret-token"_s;
    const Row rows[] = {
        {"token", Fault::none, u"stale"_s, SendspinError::unauthorized(u"Invalid or expired token"_s)},
        {"silence", Fault::saysNothing, good, SendspinError::timeout(u"sign-in"_s)},
        {"proxy", Fault::unreachable, good,
         SendspinError::handshake(u"closed by the server, code 1011: Internal server unreachable"_s)},
        {"encryption", Fault::closesDuringHello, good,
         SendspinError::handshake(u"closed by the server, code 1002: Encryption required"_s)},
        {"broken", Fault::brokenHello, good,
         SendspinError::malformed(u"server/hello: missing value at payload.active_roles"_s,
                                  u"server/hello"_s)},
        {"role", Fault::refusesRole, good, SendspinError::roleRejected()},
        {"time", Fault::ignoresTime, good, SendspinError::timeout(u"server/time"_s)},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        events.clear();
        server.fault = row.fault;
        configuration.token = MusicAssistantToken(row.token);
        session.start(configuration);
        advance(10'100ms);
        const auto ends = all<SendspinEvent::Disconnected>();
        ASSERT_FALSE(ends.empty());
        EXPECT_EQ(ends.back().reason, row.error);
        EXPECT_EQ(count<SendspinEvent::Synchronized>(), 0);

        events.clear();
        server.fault = Fault::none;
        configuration.token = MusicAssistantToken(good);
        session.start(configuration);
        advance(2s);
        EXPECT_EQ(count<SendspinEvent::Synchronized>(), 1) << "recovers";
    }
}

TEST_F(SendspinSessionTest, ComesBackUntilItIsStopped) {
    connectPlayer();
    server.fault = Fault::saysNothing;
    server.dropClients();
    events.clear();
    advance(5min);
    const auto attempts = count<SendspinEvent::Disconnected>();
    EXPECT_GE(attempts, 6);
    EXPECT_LE(attempts, 12) << "waits longer and longer";
    server.fault = Fault::none;
    advance(50s);
    EXPECT_EQ(count<SendspinEvent::Synchronized>(), 1);
    EXPECT_LT(std::abs(clockError()), 1000);

    events.clear();
    session.stop(SendspinGoodbyeReason::userRequest);
    deliver();
    EXPECT_EQ(server.received(u"client/goodbye"_s), (QList<QJsonObject>{{{u"reason"_s, u"user_request"_s}}}));
    EXPECT_EQ(all<SendspinEvent::Disconnected>(), std::vector{SendspinEvent::Disconnected{}});
    advance(1h);
    EXPECT_EQ(events.size(), 1U);
    EXPECT_TRUE(server.clients().empty());
}

TEST_F(SendspinSessionTest, LeavesAServerThatGoesSilent) {
    connectPlayer();
    server.fault = Fault::ignoresTime;
    advance(12s);
    const auto ends = all<SendspinEvent::Disconnected>();
    ASSERT_FALSE(ends.empty());
    EXPECT_EQ(ends.front().reason, SendspinError::timeout(u"server/time"_s));
}

TEST_F(SendspinSessionTest, PassesOverWhatIsMalformedButNotForEver) {
    connectPlayer();
    FakeSendspinPeer *peer = server.clients().at(0);
    for (int i = 0; i < 24; ++i) {
        peer->sendText(u"{\"type\":"_s);
        peer->sendBinary("\4short");
    }
    peer->send(u"server/surprise"_s, {});
    command(u"volume"_s, {{u"volume"_s, 7}});
    EXPECT_EQ(lastState(), expectedState(true, 7, false, 0));
    EXPECT_EQ(count<SendspinEvent::Disconnected>(), 0);
    for (int i = 0; i < 50; ++i)
        peer->sendBinary("\4");
    deliver();
    ASSERT_EQ(count<SendspinEvent::Disconnected>(), 1);
    EXPECT_EQ(all<SendspinEvent::Disconnected>()[0].reason,
              SendspinError::malformed(u"binary frame of 1 bytes"_s, {}));
}

TEST_F(SendspinSessionTest, NeedsNoTokenAtTheServerItself) {
    server.tokens.clear();
    configuration.token = MusicAssistantToken(QString());
    connectPlayer();
    EXPECT_EQ(server.received().front().value("type"_L1), u"client/hello"_s);
}
