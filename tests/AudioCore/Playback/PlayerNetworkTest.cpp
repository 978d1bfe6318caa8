#include "AudioCore/Playback/Player.h"
#include "tests/Support/AudioFileBuilder.h"
#include "tests/Support/HttpTestServer.h"
#include "tests/Support/TestFolder.h"
#include "tests/Support/TestOutput.h"

#include <QTcpServer>

#include <gtest/gtest.h>

using namespace vantor;
using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;
using Request = HttpTestServer::Request;
using Connection = HttpTestServer::Connection;

class PlayerNetworkTest : public testing::Test, protected TestFolder {
  protected:
    PlayerNetworkTest() {
        m_player.addEventObserver([this](const PlayerEvent &event) {
            if (const auto *failed = std::get_if<PlayerEvents::Failed>(&event))
                m_failures << failed->failure.message;
        });
    }

    QByteArray song(const char *name, double seconds) {
        writeAudioFile(path(name), {.seconds = seconds, .amplitude = 1});
        return read(path(name));
    }
    static Track track(const QUrl &url) {
        Track track;
        track.id = QUuid::createUuid();
        track.title = QStringLiteral("a");
        track.source = url;
        return track;
    }
    void play(const std::vector<Track> &tracks) {
        m_player.enqueue(tracks);
        m_player.play();
    }

    bool pumpUntilHeard(double seconds) {
        return m_output.pump([&] { return m_player.currentTime() >= seconds; });
    }
    [[nodiscard]] double loudSeconds() const {
        return static_cast<double>(std::ranges::count_if(
                   m_output.heard, [](const StereoFrame &frame) { return frame.left != 0; })) /
               44100;
    }

    TestOutput::Shared m_output;
    QStringList m_failures;
    Player m_player{std::make_unique<FileTrackResolver>(), std::make_unique<TestOutputDevices>(m_output)};
};

} // namespace

TEST_F(PlayerNetworkTest, ASongPlaysWhileItDownloadsAndSaysHowFarItIs) {
    const QByteArray body = song("a.wav", 6);
    std::atomic<bool> goesOn = false;
    const HttpTestServer server([&](const Request &request, Connection &connection) {
        const qint64 half = body.size() / 2;
        HttpTestServer::sendFile(request, connection, body, {.closeAfter = 0});
        connection.send(body.first(half));
        while (!goesOn && connection.pause(20)) {
        }
        connection.send(body.mid(half));
    });
    play({track(server.url())});
    EXPECT_TRUE(m_player.isBuffering()) << "before the first sound";
    ASSERT_TRUE(pumpUntilHeard(0.5));
    EXPECT_FALSE(m_player.isBuffering());
    EXPECT_NEAR(m_player.bufferedTime().value_or(0), 3, 0.1);
    ASSERT_TRUE(m_output.pump([&] { return m_player.isBuffering(); }));
    EXPECT_NEAR(m_player.currentTime(), 3, 0.3);
    EXPECT_EQ(m_player.state(), PlaybackState::playing);
    goesOn = true;
    ASSERT_TRUE(m_output.pump([&] { return m_player.state() == PlaybackState::stopped; }));
    EXPECT_FALSE(m_player.isBuffering());
    EXPECT_NEAR(loudSeconds(), 6, 0.05) << "nothing is lost";
    EXPECT_EQ(m_failures, QStringList());
}

TEST_F(PlayerNetworkTest, RadioShowsItsTitlesIgnoresSeeksAndSurvivesADrop) {
    const QByteArray sound = song("a.mp3", 5);
    const HttpTestServer server([&](const Request &request, Connection &connection) {
        const QByteArray title = "StreamTitle='Song " + QByteArray::number(request.number) + "';";
        connection.send("ICY 200 OK\r\nicy-br: 96\r\nicy-metaint: 1000\r\n\r\n" +
                        HttpTestServer::withMetadata(sound, 1000, {title}));
        if (request.number == 1)
            connection.stall();
    });
    play({track(server.url())});
    ASSERT_TRUE(pumpUntilHeard(1));
    EXPECT_EQ(m_player.streamTitle(), QStringLiteral("Song 0"));
    EXPECT_EQ(m_player.streamBitrate(), 96);
    EXPECT_EQ(m_player.bufferedTime(), std::nullopt);
    m_player.seek(60);
    EXPECT_LT(m_player.currentTime(), 30);
    m_output.current->lose();
    ASSERT_TRUE(pumpUntilHeard(7)) << "behind the drop, and on another output";
    EXPECT_EQ(m_player.streamTitle(), QStringLiteral("Song 1"));
    EXPECT_EQ(m_failures, QStringList());
    m_player.stop();
    EXPECT_EQ(m_player.streamTitle(), std::nullopt);
}

TEST_F(PlayerNetworkTest, AStalledServerHoldsNothingUp) {
    const QByteArray body = song("a.wav", 30);
    const HttpTestServer server([&](const Request &request, Connection &connection) {
        if (request.path == "/silent")
            connection.stall();
        else
            HttpTestServer::sendFile(request, connection, body, {.stallAfter = 500'000});
    });
    const auto start = Clock::now();
    play({track(server.url("/silent")), track(server.url())});
    m_output.pump([&] { return !server.requests().empty(); });
    m_player.next();
    ASSERT_TRUE(pumpUntilHeard(0.3));
    m_player.seek(20);
    ASSERT_TRUE(m_output.pump([&] { return m_player.isBuffering(); }));
    m_player.seek(1);
    ASSERT_TRUE(pumpUntilHeard(1.5)) << "what has come is there";
    EXPECT_LT(m_player.currentTime(), 3);
    m_player.seek(25);
    m_player.play(0);
    m_output.pump([start = Clock::now()] { return Clock::now() - start > 100ms; });
    EXPECT_EQ(m_player.state(), PlaybackState::loading);
    EXPECT_TRUE(m_player.isBuffering());
    m_player.stop();
    EXPECT_FALSE(m_player.isBuffering());
    m_player.play(0);
    EXPECT_LT(Clock::now() - start, 6s);
    EXPECT_EQ(m_failures, QStringList());
}

TEST_F(PlayerNetworkTest, WhatDoesNotPlayFollowsTheRulesOfFailure) {
    const QByteArray body = song("a.wav", 0.5);
    const QByteArray indexed = song("b.m4a", 90);
    const HttpTestServer server([&](const Request &request, Connection &connection) {
        if (request.path == "/song")
            HttpTestServer::sendFile(request, connection, body);
        else if (request.path == "/mp4")
            HttpTestServer::sendFile(request, connection, indexed, {.ranges = false, .stallAfter = 100'000});
        else if (request.path == "/text")
            HttpTestServer::sendFile(request, connection, "no song");
        else
            connection.send("HTTP/1.1 404 Not Found\r\n\r\n");
    });
    play({track(server.url("/gone")), track(server.url("/text")), track(server.url("/mp4")),
          track(server.url("/song")), track(QUrl(QStringLiteral("ftp://h/a")))});
    ASSERT_TRUE(m_output.pump([&] { return m_failures.size() == 4; }));
    EXPECT_EQ(m_failures, (QStringList{QStringLiteral("This audio file could not be read."),
                                       QStringLiteral("This file is not a supported audio file."),
                                       QStringLiteral("This file cannot be played while it downloads."),
                                       QStringLiteral("This track is not available as a local file.")}));
    EXPECT_NEAR(loudSeconds(), 0.5, 0.01);
}

TEST_F(PlayerNetworkTest, WhatCameBeforeAFailureIsHeardFirst) {
    const QByteArray broken = song("a.mp3", 6);
    const QByteArray whole = song("b.wav", 0.5);
    std::atomic<int> asked = 0; // every other time for the rest
    const HttpTestServer server([&](const Request &request, Connection &connection) {
        if (request.path == "/whole")
            HttpTestServer::sendFile(request, connection, whole);
        else if (asked++ % 2 == 0)
            HttpTestServer::sendFile(request, connection, broken,
                                     {.ranges = false, .closeAfter = broken.size() / 4});
        else
            connection.send("HTTP/1.1 404 Not Found\r\n\r\n");
    });
    double heardBefore = 0;
    m_player.addEventObserver([&](const PlayerEvent &event) {
        if (std::holds_alternative<PlayerEvents::Failed>(event))
            heardBefore = loudSeconds();
    });
    const QString unreadable = QStringLiteral("This audio file could not be read.");
    const struct {
        const char *name;
        std::vector<const char *> paths;
        RepeatMode repeatMode;
        double heardBefore;
        double heard;
        int failures;
    } rows[] = {
        {"the next one follows", {"/broken", "/whole"}, RepeatMode::off, 1.5, 2, 1},
        {"and fails as well", {"/whole", "/broken", "/broken"}, RepeatMode::off, 3.5, 3.5, 2},
        {"none follows", {"/broken", "/whole"}, RepeatMode::one, 1.5, 1.5, 1},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        m_failures.clear();
        std::vector<Track> tracks;
        for (const char *path : row.paths)
            tracks.push_back(track(server.url(path)));
        m_player.restoreQueue(tracks, 0, row.repeatMode, false);
        m_output.heard.clear();
        m_player.play();
        ASSERT_TRUE(m_output.pump([&] { return m_player.state() == PlaybackState::stopped; }));
        EXPECT_EQ(m_failures.size(), row.failures);
        EXPECT_EQ(m_player.errorMessage(), unreadable);
        EXPECT_NEAR(heardBefore, row.heardBefore, 0.15);
        EXPECT_NEAR(loudSeconds(), row.heard, 0.15) << "and nothing else";
    }
}

TEST_F(PlayerNetworkTest, TheLogSaysWhyAnAddressCannotBeRead) {
    static QStringList log;
    const HttpTestServer server([](const Request &request, Connection &connection) {
        if (request.path == "/gone")
            connection.send("HTTP/1.1 404 Not Found\r\n\r\n");
        else if (request.path == "/mute")
            connection.send("SSH-2.0\r\n\r\n");
        else
            connection.send("HTTP/1.1 302 Found\r\nLocation: file:///etc/passwd\r\n\r\n");
    });
    QTcpServer nobody;
    ASSERT_TRUE(nobody.listen(QHostAddress::LocalHost));
    QUrl refused = server.url("/refused");
    refused.setPort(nobody.serverPort());
    nobody.close();
    const std::pair<QUrl, const char *> rows[] = {{refused, "(Connection refused)"},
                                                  {server.url("/gone"), "(the server answers 404)"},
                                                  {server.url("/mute"), "(this is no HTTP)"},
                                                  {server.url("/away"), "not the web)"}};
    const QtMessageHandler usual = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &message) { log << message; });
    for (const auto &[url, reason] : rows) {
        log.clear();
        m_player.restoreQueue({track(url)}, 0, RepeatMode::off, false);
        m_player.play();
        EXPECT_TRUE(m_output.pump([&] { return m_player.state() == PlaybackState::stopped; }));
        EXPECT_EQ(m_player.errorMessage(), QStringLiteral("This audio file could not be read."));
        EXPECT_EQ(log.filter(QLatin1String(reason)).size(), 1) << reason;
    }
    qInstallMessageHandler(usual);
}
