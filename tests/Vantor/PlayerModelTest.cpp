#include "PlayerFixture.h"

#include <QSignalSpy>

using namespace vantor;

using PlayerModelTest = PlayerFixture;

TEST_F(PlayerModelTest, ARefusedSkinLeavesTheCurrentOneAndSaysSo) {
    const Skin before = m_model.skin();
    m_model.wear(writeFile("broken.wsz", "PK\x03\x04 this is no archive"));
    ASSERT_TRUE(waitFor([&] { return m_model.scene().marquee != QStringLiteral("Vantor"); }));
    EXPECT_EQ(m_model.scene().marquee, QStringLiteral("Could not load broken.wsz"));
    EXPECT_EQ(m_model.skin(), before);
    EXPECT_FALSE(m_settings.contains(QStringLiteral("skin")));
}

TEST_F(PlayerModelTest, OpeningRubbishKeepsWhatPlays) {
    m_model.open({writeTone("good.wav", 5)});
    ASSERT_TRUE(waitFor([&] { return m_player.state() == PlaybackState::playing; }));
    const std::optional<Track> playing = m_player.queue().current();

    QSignalSpy refused(&m_model, &PlayerModel::trackRefused);
    m_model.open({writeFile("rubbish.mp3", QByteArray(5000, 'x'))});
    ASSERT_TRUE(waitFor([&] { return refused.count() == 1; }));
    EXPECT_EQ(m_player.state(), PlaybackState::playing);
    EXPECT_EQ(m_player.queue().current(), playing);
    EXPECT_EQ(m_model.scene().marquee, QStringLiteral("Skipped 1 file (see Console)"));
}

TEST_F(PlayerModelTest, AFolderPlaysInNameOrderAndSkipsWhatIsNoAudio) {
    writeTone("b.wav", 5);
    writeTone("a.wav", 5);
    writeFile("cover.txt", "no sound");
    m_model.open({QUrl::fromLocalFile(m_folder.path())});
    ASSERT_TRUE(
        waitFor([&] { return !m_model.isImporting() && m_player.state() == PlaybackState::playing; }));
    ASSERT_EQ(m_player.queue().count(), 2);
    EXPECT_EQ(m_player.queue().current()->title, QStringLiteral("a"));
    EXPECT_EQ(m_model.scene().marquee, QStringLiteral("1. a (0:05)"));
}

TEST_F(PlayerModelTest, ThePositionIsSoughtWhenTheSliderIsLetGo) {
    m_model.open({writeTone("tone.wav", 60)});
    ASSERT_TRUE(waitFor([&] { return m_player.state() == PlaybackState::playing; }));
    m_model.dragSlider(MainWindowControl::position, 0.5);
    EXPECT_EQ(m_model.scene().marquee, QStringLiteral("Seek to: 0:30/1:00 (50%)"));
    EXPECT_EQ(m_model.scene().position, 0.5);
    EXPECT_LT(m_player.currentTime(), 5);
    m_model.releaseSlider();
    EXPECT_TRUE(waitFor([&] { return m_player.currentTime() >= 30; }));
    EXPECT_EQ(m_model.scene().marquee, QStringLiteral("1. tone (1:00)"));
}

TEST_F(PlayerModelTest, APlaceInATrackIsNotSoughtInTheNext) {
    m_player.enqueue({Track::file(writeTone("a.wav", 60)), Track::file(writeTone("b.wav", 60))});
    m_player.play(0);
    ASSERT_TRUE(waitFor([&] { return m_player.state() == PlaybackState::playing; }));
    m_model.dragSlider(MainWindowControl::position, 0.9);
    m_player.next();
    m_model.releaseSlider();
    ASSERT_TRUE(waitFor([&] { return m_player.state() == PlaybackState::playing; }));
    EXPECT_LT(m_player.currentTime(), 5);
    EXPECT_EQ(m_model.scene().marquee, QStringLiteral("2. b (1:00)"));
}

TEST_F(PlayerModelTest, SlidersClampSnapAndAreRemembered) {
    m_model.dragSlider(MainWindowControl::balance, 0.6);
    EXPECT_EQ(m_model.scene().marquee, QStringLiteral("Balance: Center"));
    m_model.dragSlider(MainWindowControl::balance, 0.0);
    EXPECT_EQ(m_model.scene().marquee, QStringLiteral("Balance: 100% Left"));
    m_model.dragSlider(MainWindowControl::volume, 0.25);
    m_model.releaseSlider();

    Player again(std::make_unique<FileTrackResolver>(), std::make_unique<SilentOutputDevices>());
    const PlayerModel restored(again, m_settings);
    EXPECT_FLOAT_EQ(again.volume(), 0.25F);
    EXPECT_FLOAT_EQ(again.balance(), -1);
}

TEST_F(PlayerModelTest, TheVisualizerMovesWhilePlayingFreezesPausedAndComesToRest) {
    EXPECT_EQ(m_model.frameInterval(), std::nullopt);
    m_model.open({writeTone("tone.wav", 60)});
    const auto showsBars = [&] {
        m_model.advance(0.016);
        const VisualizerPicture picture = m_model.scene().visualizer;
        const auto *bars = std::get_if<VisualizerBars>(&picture);
        return bars != nullptr && std::ranges::any_of(bars->heights, [](int height) { return height > 3; });
    };
    ASSERT_TRUE(waitFor(showsBars));
    EXPECT_TRUE(m_model.frameInterval());

    m_player.pause();
    const VisualizerPicture frozen = m_model.scene().visualizer;
    m_model.advance(1);
    EXPECT_EQ(m_model.scene().visualizer, frozen);

    m_player.stop();
    int frames = 0;
    while (m_model.frameInterval() && ++frames < 1000)
        m_model.advance(0.016);
    EXPECT_LT(frames, 300);
    EXPECT_EQ(m_model.scene().visualizer, VisualizerPicture());
}
