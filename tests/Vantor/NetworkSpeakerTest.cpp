#include "Vantor/Speaker/NetworkSpeaker.h"

#include "tests/Support/FakeMusicAssistant/FakeHouse.h"
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
    void playFile() {
        Track track;
        track.id = QUuid::createUuid();
        track.source = writeTone("a.wav", 60);
        m_player.enqueue({track});
        m_player.play();
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

    playFile();
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

TEST_F(NetworkSpeakerTest, WhatTheLibraryPlaysHereIsCommandedAtItsServer) {
    m_settings.remove(u"sendspin.server"_s);
    FakeLibrary made(m_fake, {.tracks = 50});
    FakePlayers players(m_fake, made);
    FakeHouse house(m_fake, players);
    players.run();
    addServer(m_fake, u"Home"_s);
    m_library->choose(*m_library->sources().last());
    m_library->open();
    QObject::connect(&m_library->browser(), &LibraryBrowser::aboutToPlay, &m_speaker,
                     &NetworkSpeaker::makeWay);
    m_speaker.setEnabled(true);
    ASSERT_TRUE(waitFor([this] { return m_speaker.state() == NetworkSpeaker::State::Connected; }));
    EXPECT_FALSE(m_model.remote().isSelected());
    const QString playerID = FakePlayers::shownID(m_speaker.clientID());
    ASSERT_TRUE(waitFor([&] { return players.players.contains(playerID); }));
    const QList<MediaID> items{MediaID{MediaKind::track, FakeLibrary::uri(u"track"_s, 3)}};
    m_library->browser().play({items, PlayMode::replace(0)});
    ASSERT_TRUE(waitUntilHeard());
    ASSERT_TRUE(waitFor([this] { return m_model.remote().isHere(); }));
    const auto shows = [this](PlaybackState state) {
        return waitFor([this, state] { return m_model.target().view().state == state; });
    };
    const auto serverIs = [&](const char *state) {
        return waitFor([&] { return players.queues[playerID].state == QLatin1String(state); });
    };
    ASSERT_TRUE(shows(PlaybackState::playing));
    const QString title = made.itemByURI(items.first().rawValue)[u"name"].toString();
    EXPECT_TRUE(m_model.marquee().text(StatusNotice::Clock::now()).contains(title));

    m_model.transport(TransportCommand::setVolume(0.3));
    ASSERT_TRUE(waitFor([this] { return m_speaker.volume() == 0.3; })) << "the server tells the speaker";
    m_model.transport(TransportCommand::pause());
    ASSERT_TRUE(serverIs("paused"));
    ASSERT_TRUE(waitFor([this] { return !m_player.isStreaming(); }));
    EXPECT_TRUE(shows(PlaybackState::paused)) << "of the server's music, which can go on";
    m_model.transport(TransportCommand::play());
    ASSERT_TRUE(waitUntilHeard());

    playFile();
    ASSERT_TRUE(serverIs("paused")) << "it was told that the speaker is taken";
    EXPECT_FALSE(m_model.remote().isSelected());
    m_library->browser().play({items, PlayMode::replace(0)});
    ASSERT_TRUE(waitUntilHeard()) << "which makes way";
    EXPECT_EQ(m_player.state(), PlaybackState::paused);
}
