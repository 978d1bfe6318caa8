#include "AudioCore/NowPlaying/NowPlayingBridge.h"

#include "AudioCore/NowPlaying/NowPlayingCommandTarget.h"
#include "AudioCore/NowPlaying/NowPlayingInfoBuilder.h"
#include "AudioCore/Playback/Player.h"
#include "tests/Support/AudioFileBuilder.h"
#include "tests/Support/HttpTestServer.h"
#include "tests/Support/TestFolder.h"
#include "tests/Support/TestOutput.h"
#include "tests/Support/WaitFor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace vantor;
using Command = NowPlayingCommand;

namespace {

struct Center final : NowPlayingCenter {
    std::optional<NowPlayingInfo> shown;
    std::map<Command, Handler> handlers;
    std::map<Command, bool> enabled;

    void publish(const NowPlayingInfo &info) override { shown = info; }
    void clear() override { shown.reset(); }
    void setHandler(Command command, Handler handler) override {
        handlers.erase(command);
        if (handler)
            handlers.emplace(command, std::move(handler));
    }
    void setEnabled(Command command, bool on) override { enabled[command] = on; }
};

struct Target final : NowPlayingCommandTarget {
    std::string called;

    void play() override { called = "play"; }
    void pause() override { called = "pause"; }
    void togglePlayPause() override { called = "toggle"; }
    void stop() override { called = "stop"; }
    void next() override { called = "next"; }
    void previous() override { called = "previous"; }
    void seek(double seconds) override { called = "seek " + std::to_string(seconds); }
};

class NowPlayingBridgeTest : public testing::Test {
  protected:
    Track writeTrack(const char *name, const char *title) const {
        writeAudioFile(
            m_folder.path(name),
            {.seconds = 5, .tags = {{u"title"_qs, QLatin1String(title)}, {u"album"_qs, u"Dusk"_qs}}});
        return Track::file(QUrl::fromLocalFile(m_folder.path(name)));
    }
    void writeCover(const char *name, QColor color) const {
        QImage cover(8, 8, QImage::Format_RGB32);
        cover.fill(color);
        ASSERT_TRUE(cover.save(m_folder.path(name)));
    }
    [[nodiscard]] bool showsCover(QColor color) const {
        return m_center.shown && !m_center.shown->artwork.isNull() &&
               m_center.shown->artwork.pixelColor(0, 0) == color;
    }

    TestFolder m_folder;
    Player m_player{std::make_unique<FileTrackResolver>(), std::make_unique<SilentOutputDevices>()};
    Target m_target;
    Center m_center;
    NowPlayingBridge m_bridge{m_player, m_target, m_center};
};

} // namespace

TEST_F(NowPlayingBridgeTest, TheCommandsReachTheTargetWhileInstalled) {
    m_bridge.install();
    const std::pair<Command, const char *> rows[] = {{Command::play, "play"},
                                                     {Command::pause, "pause"},
                                                     {Command::stop, "stop"},
                                                     {Command::togglePlayPause, "toggle"},
                                                     {Command::nextTrack, "next"},
                                                     {Command::previousTrack, "previous"},
                                                     {Command::changePlaybackPosition, "seek 12.500000"}};
    for (const auto &[command, expected] : rows) {
        EXPECT_TRUE(m_center.enabled[command]) << expected;
        m_center.handlers.at(command)(12.5);
        EXPECT_EQ(m_target.called, expected);
    }
    EXPECT_EQ(m_center.handlers.size(), std::size(rows));
    for (const Command command :
         {Command::seekForward, Command::seekBackward, Command::skipForward, Command::skipBackward})
        EXPECT_EQ(m_center.enabled.at(command), false);
    m_bridge.uninstall();
    EXPECT_TRUE(m_center.handlers.empty());
}

TEST_F(NowPlayingBridgeTest, WhatIsShownFollowsThePlayer) {
    const Track track = writeTrack("a.flac", "One");
    m_player.enqueue({track});
    m_player.play();
    m_bridge.install();
    ASSERT_TRUE(waitFor([&] { return m_center.shown && m_center.shown->playbackRate == 1; }));
    m_player.pause();
    m_player.seek(2);
    NowPlayingInfo paused;
    paused.title = u"One"_qs;
    paused.albumTitle = u"Dusk"_qs;
    paused.playbackDuration = 5;
    paused.elapsedPlaybackTime = 2;
    EXPECT_EQ(m_center.shown, paused);
    m_bridge.uninstall();
    EXPECT_EQ(m_center.shown, std::nullopt);
    m_player.play();
    EXPECT_EQ(m_center.shown, std::nullopt);
    m_bridge.install();
    EXPECT_NE(m_center.shown, std::nullopt);
    m_player.clearQueue();
    EXPECT_EQ(m_center.shown, std::nullopt);
}

TEST_F(NowPlayingBridgeTest, AStationsTitlesAreShownAsTheyCome) {
    writeAudioFile(m_folder.path("a.mp3"), {.seconds = 30});
    const QByteArray sound = m_folder.read(m_folder.path("a.mp3"));
    std::atomic<bool> goesOn = false;
    const HttpTestServer server([&](const HttpTestServer::Request &, HttpTestServer::Connection &connection) {
        connection.send(
            "ICY 200 OK\r\nicy-metaint: 1000\r\n\r\n" +
            HttpTestServer::withMetadata(sound.first(60'000), 1000, {"StreamTitle='Ana - One';"}));
        while (!goesOn && connection.pause(20)) {
        }
        connection.send(HttpTestServer::withMetadata(sound.mid(60'000), 1000, {"StreamTitle='Two';"}));
        connection.stall();
    });
    Track station;
    station.id = QUuid::createUuid();
    station.title = u"The Station"_qs;
    station.source = server.url();
    m_player.enqueue({station});
    m_bridge.install();
    m_player.play();
    EXPECT_EQ(m_center.shown->title, u"The Station"_qs);
    const auto shows = [this](const QString &title) {
        return waitFor([&] { return m_center.shown && m_center.shown->title == title; },
                       std::chrono::seconds(20));
    };
    ASSERT_TRUE(shows(u"Ana - One"_qs));
    EXPECT_EQ(m_center.shown->albumTitle, u"The Station"_qs);
    goesOn = true;
    ASSERT_TRUE(shows(u"Two"_qs));
    m_player.stop();
    EXPECT_EQ(m_center.shown->title, u"The Station"_qs);
    EXPECT_EQ(m_center.shown->albumTitle, std::nullopt);
}

TEST_F(NowPlayingBridgeTest, APictureIsAddedWhenItIsReadyUnlessTheTrackChanged) {
    for (const char *name : {"red/a.flac", "blue/b.flac", "none/c.flac"})
        m_folder.write(name, {});
    writeCover("red/cover.png", Qt::red);
    writeCover("blue/cover.png", Qt::blue);
    m_player.enqueue(
        {writeTrack("red/a.flac", "a"), writeTrack("blue/b.flac", "b"), writeTrack("none/c.flac", "c")});
    m_bridge.install();
    m_player.play(0);
    EXPECT_FALSE(showsCover(Qt::red)); // it is read elsewhere
    EXPECT_TRUE(waitFor([&] { return showsCover(Qt::red); }));
    EXPECT_EQ(m_center.shown->title, u"a"_qs);

    m_player.play(1);
    EXPECT_TRUE(m_center.shown->artwork.isNull());
    m_player.play(0);
    m_player.play(2); // two that are overtaken
    const QDeadlineTimer meanwhile(300);
    ASSERT_TRUE(waitFor([&] { return meanwhile.hasExpired() || !m_center.shown->artwork.isNull(); }));
    EXPECT_TRUE(m_center.shown->artwork.isNull());
}
