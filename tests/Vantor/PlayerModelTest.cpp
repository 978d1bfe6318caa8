#include "PlayerFixture.h"
#include "Vantor/Model/ResumePoint.h"

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
    EXPECT_EQ(
        m_model.imports().skippedFiles(),
        (std::vector<SkippedFile>{{file("rubbish.mp3"), u"This file is not a supported audio file."_qs}}));
    m_model.enqueue({file("good.wav")});
    EXPECT_TRUE(waitFor([&] { return m_model.imports().skippedFiles().empty(); }));
}

TEST_F(PlayerModelTest, AListThatBreaksOffIsNotCalledUnplayable) {
    writeTone("good.wav", 5);
    QSignalSpy refused(&m_model, &PlayerModel::trackRefused);
    QSignalSpy partRefused(&m_model, &PlayerModel::partRefused);
    m_model.open(
        {writeFile("list.xspf", "<playlist><trackList><track><location>good.wav</location></track>")});
    ASSERT_TRUE(waitFor([&] { return partRefused.count() == 1; }));
    EXPECT_EQ(partRefused.first(), (QVariantList{u"list.xspf"_qs, u"This playlist file is damaged."_qs}));
    EXPECT_TRUE(refused.isEmpty());
    EXPECT_EQ(m_player.queue().count(), 1);
}

TEST_F(PlayerModelTest, AFolderPlaysInNameOrderAndSkipsWhatIsNoAudio) {
    writeTone("b.wav", 5);
    writeTone("a.wav", 5);
    writeFile("cover.txt", "no sound");
    m_model.open({QUrl::fromLocalFile(m_folder.path())});
    ASSERT_TRUE(waitFor(
        [&] { return !m_model.imports().isImporting() && m_player.state() == PlaybackState::playing; }));
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

    Visualizer &visualizer = m_model.visualizer();
    for (const PlaybackState state : {PlaybackState::stopped, PlaybackState::loading}) {
        m_player.play();
        ASSERT_TRUE(waitFor(showsBars));
        int frames = 0;
        for (; visualizer.moves(state) && frames < 300; ++frames)
            visualizer.advance(state, 0.016);
        EXPECT_GT(frames, 5); // they fall
        EXPECT_EQ(visualizer.picture(), VisualizerPicture());
    }
    m_player.stop();
    EXPECT_EQ(m_model.frameInterval(), std::nullopt);
}

TEST_F(PlayerModelTest, DevicesAreToldApartAndTheirLossIsSaidOnce) {
    TestOutput::Shared outputs;
    using Shared = TestOutput::Shared;
    outputs.devices = {Shared::device(1, "a"), Shared::device(2, "b"), Shared::device(3, "c")};
    for (OutputDeviceDescription &device : outputs.devices)
        device.name = device.id == 3 ? u"Speakers"_qs : u"Headset"_qs;
    auto provider = std::make_unique<TestOutputDevices>(outputs);
    TestOutputDevices *const devices = provider.get();
    Player player(std::make_unique<FileTrackResolver>(), std::move(provider));
    PlayerModel model(player, m_settings);
    QStringList labels;
    for (const OutputChoice::Item &item : model.output().items())
        labels.append(item.label);
    EXPECT_EQ(labels,
              QStringList({u"System Default"_qs, u"Headset (a)"_qs, u"Headset (b)"_qs, u"Speakers"_qs}));

    model.output().choose(u"b"_qs);
    const std::vector<OutputDeviceDescription> all = outputs.devices;
    const struct {
        std::vector<OutputDeviceDescription> devices;
        QString before; ///< in the marquee
        QString after;
    } rows[] = {{{all[0], all[2]}, u"before"_qs, u"Sound device not connected"_qs},
                {{all[2]}, u"it was said"_qs, u"it was said"_qs},
                {{}, u"before"_qs, u"No sound device"_qs},
                {all, {}, u"Vantor"_qs}};
    for (const auto &[there, before, after] : rows) {
        if (!before.isEmpty())
            model.showNotice(before);
        outputs.devices = there;
        Q_EMIT devices->changed();
        EXPECT_EQ(model.scene().marquee, after);
    }
}

TEST_F(PlayerModelTest, ARunGoesOnWhereTheLastOneWasClosed) {
    m_player.enqueue({Track::file(writeTone("a.wav", 60)), Track::file(writeTone("b.wav", 60))});
    m_player.play(1);
    m_player.seek(30);
    ASSERT_TRUE(waitFor([&] { return m_player.state() == PlaybackState::playing; }));
    const auto nextRun = [&](auto check) {
        const QSettings stored(m_settings.fileName(), QSettings::IniFormat);
        Player player(std::make_unique<FileTrackResolver>(), std::make_unique<SilentOutputDevices>());
        player.restoreQueue(m_player.queue().tracks(), 1, RepeatMode::off, false);
        ResumePoint::resume(stored, player);
        check(player);
    };
    ResumePoint::save(m_settings, m_player);
    m_settings.sync();
    nextRun([&](Player &player) {
        EXPECT_TRUE(waitFor([&] { return player.state() == PlaybackState::playing; }));
        EXPECT_EQ(player.queue().currentIndex(), 1);
        EXPECT_GE(player.currentTime(), 30);
        EXPECT_LT(player.currentTime(), 40);
    });
    for (const char *stored : {"-3", "nan", "soon"}) {
        m_settings.setValue(QStringLiteral("resumeSeconds"), QLatin1String(stored));
        m_settings.sync();
        nextRun([&](Player &player) { EXPECT_EQ(player.state(), PlaybackState::stopped) << stored; });
    }
    m_player.pause();
    ResumePoint::save(m_settings, m_player);
    m_settings.sync();
    nextRun([&](Player &player) {
        EXPECT_TRUE(waitFor([&] { return player.state() == PlaybackState::paused; }));
        EXPECT_GE(player.currentTime(), 30);
    });
    m_player.stop();
    ResumePoint::save(m_settings, m_player);
    m_settings.sync();
    nextRun([](Player &player) { EXPECT_EQ(player.state(), PlaybackState::stopped); });
}
