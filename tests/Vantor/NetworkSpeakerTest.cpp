#include "Vantor/Speaker/NetworkSpeaker.h"

#include "tests/Support/FakeSendspin/FakeSendspin.h"
#include "tests/Vantor/ServersFixture.h"

using namespace vantor;
using namespace Qt::Literals::StringLiterals;

namespace {

class NetworkSpeakerTest : public ServersFixture {
  protected:
    NetworkSpeakerTest() {
        m_server.tokens.clear();
        EXPECT_TRUE(m_server.listen());
        m_settings.setValue(u"sendspin.server"_s, m_server.url().toString());
        m_model.setSpeaker(&m_speaker);
        m_speaker.begin();
    }

    [[nodiscard]] QJsonObject told() const {
        const QList<QJsonObject> states = m_server.received(u"client/state"_s);
        return states.isEmpty() ? QJsonObject() : states.last();
    }
    bool waitUntilHeard() {
        return waitFor([this] { return m_speaker.figures().value_or(SendspinFigures()).isPlaying; });
    }

    RealTimeline m_time;
    FakeSendspin m_server{m_time};
    NetworkSpeaker m_speaker{m_player, m_servers, m_settings};
};

} // namespace

TEST_F(NetworkSpeakerTest, PlaysWhatAServerStreamsUntilALocalCommandTakesTheOutputBack) {
    EXPECT_EQ(m_speaker.state(), NetworkSpeaker::State::Off);
    m_speaker.setName(u"Desk"_s);
    m_speaker.setEnabled(true);
    ASSERT_TRUE(waitFor([this] { return m_speaker.state() == NetworkSpeaker::State::Connected; }));
    EXPECT_EQ(m_speaker.statusText(), u"Connected: shows in Music Assistant as Desk"_s);

    m_player.enqueue({Track{.id = QUuid::createUuid(), .source = writeTone("a.wav", 60)}});
    m_player.play();
    ASSERT_TRUE(waitFor([this] { return m_player.currentTime() > 0.1; }));
    m_server.play({});
    ASSERT_TRUE(waitUntilHeard());
    EXPECT_EQ(m_player.state(), PlaybackState::paused);
    EXPECT_EQ(m_model.marquee().text(StatusNotice::Clock::now()), u"Streaming: Living room"_s);
    EXPECT_EQ(m_model.scene().status.sampleRate, 48000);
    m_server.seek(7, FakeSendspin::Seek::restarts);
    ASSERT_TRUE(waitUntilHeard());

    m_model.transport(TransportCommand::setVolume(0.25));
    ASSERT_TRUE(waitFor([this] { return told()["player"_L1]["volume"_L1] == 25; }));
    m_server.command(u"volume"_s, {{u"volume"_s, 60}});
    ASSERT_TRUE(waitFor([this] { return m_model.target().view().volume == 0.6; }));

    m_model.transport(TransportCommand::play());
    EXPECT_FALSE(m_speaker.isStreaming());
    ASSERT_TRUE(waitFor([this] { return told()["available"_L1] == false; }));
    ASSERT_TRUE(waitFor([this] { return m_player.state() == PlaybackState::playing; }));
    m_model.transport(TransportCommand::pause());
    ASSERT_TRUE(waitFor([this] { return told()["available"_L1] == true; }));
    EXPECT_FALSE(m_player.isStreaming());
    m_server.play({.codec = u"pcm"_s, .bitDepth = 24});
    ASSERT_TRUE(waitUntilHeard());

    m_server.endStream();
    ASSERT_TRUE(waitFor([this] { return !m_player.isStreaming(); }));
    m_speaker.setEnabled(false);
    ASSERT_TRUE(waitFor([this] { return !m_server.received(u"client/goodbye"_s).isEmpty(); }));
    EXPECT_EQ(m_server.received(u"client/goodbye"_s).last()["reason"_L1], u"user_request"_s);
    EXPECT_EQ(m_speaker.statusText(), QString());
}
