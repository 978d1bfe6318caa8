#include "Vantor/Remote/RemoteOutput.h"

#include "RemoteFixture.h"
#include "Vantor/Windows/Commands.h"
#include "Vantor/Windows/MainMenu.h"

#include <QMenu>

#include <cmath>

using namespace vantor;
using State = PlaybackState;

namespace {

class RemoteOutputTest : public RemoteFixture {
  protected:
    [[nodiscard]] QList<TransportCommand> sent() const {
        QList<TransportCommand> commands;
        for (const auto &[command, output] : m_made->commands)
            commands.append(command);
        return commands;
    }
    [[nodiscard]] QStringList outputMenu() {
        QMenu menu;
        MainMenu::fill(menu, m_commands, m_model);
        QStringList texts;
        for (const QAction *const entry : menu.actions()) {
            if (entry->menu() && entry->text() == u"Output"_qs) {
                for (const QAction *const output : entry->menu()->actions())
                    texts.append((output->isChecked() ? u"✓ "_qs : QString()) + output->text());
            }
        }
        return texts;
    }

    Commands m_commands{m_model};
};

} // namespace

TEST_F(RemoteOutputTest, TheWindowsShowTheSpeakerWhileThePlayerGoesOn) {
    m_player.enqueue({Track::file(writeTone("a.wav", 60))});
    m_player.play();
    ASSERT_TRUE(waitFor([&] { return m_player.state() == State::playing; }));
    m_made->speaker(u"kitchen"_qs).playing.elapsed = 50;
    m_made->speaker(u"kitchen"_qs).playing.state = NowPlaying::State::paused;
    m_made->speaker(u"kitchen"_qs).isShuffled = true;
    select(u"kitchen"_qs);
    ASSERT_TRUE(waitFor([&] { return m_model.scene().shuffle; }));
    const MainWindowScene scene = m_model.scene();
    EXPECT_EQ(scene.marquee, u"1. Kitchen 1 (3:20)"_qs);
    EXPECT_EQ(scene.status.transport, MainWindowStatus::Transport::paused);
    EXPECT_EQ(scene.status.elapsed, 50);
    EXPECT_EQ(scene.position, 0.25);
    EXPECT_EQ(scene.volume, 0.5);
    EXPECT_FALSE(scene.showsRates);
    EXPECT_EQ(scene.status.channels, std::nullopt);
    EXPECT_FALSE(scene.repeat);
    EXPECT_EQ(m_player.state(), State::playing);
    EXPECT_EQ(sent(), QList<TransportCommand>());
    EXPECT_EQ(outputMenu(), QStringList({u"This Computer"_qs,
                                         u"✓ Kitchen"_qs,
                                         u"Bath"_qs,
                                         {},
                                         u"Plays Along"_qs,
                                         u"Mute"_qs,
                                         u"Speakers…"_qs,
                                         u"Add to Favourites"_qs}));

    m_remote.deselect();
    EXPECT_EQ(m_model.scene().status.sampleRate, 8000);
    EXPECT_EQ(m_model.scene().status.transport, MainWindowStatus::Transport::playing);
}

TEST_F(RemoteOutputTest, EveryCommandGoesToTheSelectedSpeaker) {
    using Id = Commands::Id;
    using Command = TransportCommand;
    select(u"kitchen"_qs);
    letPlay(u"kitchen"_qs);
    const struct {
        Id id;
        Command expected;
    } rows[] = {
        {Id::pause, Command::pause()},
        {Id::pause, Command::play()},
        {Id::play, Command::seek(0)}, // it plays already
        {Id::next, Command::next()},
        {Id::previous, Command::previous()},
        {Id::shuffle, Command::setShuffle(true)},
        {Id::shuffle, Command::setShuffle(false)},
        {Id::repeat, Command::setRepeat(true)},
        {Id::volumeUp, Command::setVolume(0.52)},
        {Id::stop, Command::stop()},
        {Id::play, Command::play()},
    };
    for (const auto &[id, expected] : rows) {
        SCOPED_TRACE(static_cast<int>(id));
        m_made->commands.clear();
        m_commands.trigger(id);
        ASSERT_TRUE(waitFor([&] { return !m_made->commands.isEmpty(); }));
        EXPECT_EQ(sent(), QList<Command>({expected}));
        EXPECT_EQ(m_made->commands.first().second, u"kitchen"_qs);
    }
    EXPECT_EQ(m_player.volume(), 0.8F);
    EXPECT_FALSE(m_player.isShuffled());
    EXPECT_EQ(m_told, QStringList());
    m_made->commands.clear();
    m_remote.deselect();
    m_commands.trigger(Id::shuffle);
    EXPECT_TRUE(m_player.isShuffled());
    EXPECT_EQ(sent(), QList<Command>());
}

TEST_F(RemoteOutputTest, WhatIsCommandedShowsAtOnceAndIsPutRight) {
    select(u"kitchen"_qs);
    letPlay(u"kitchen"_qs);
    m_made->delay = std::chrono::milliseconds(100);
    m_commands.trigger(Commands::Id::pause);
    EXPECT_EQ(m_remote.view().state, State::paused);
    m_made->tell(u"kitchen"_qs); // what it was before the command arrived
    ASSERT_TRUE(
        waitFor([&] { return m_made->speaker(u"kitchen"_qs).playing.state == NowPlaying::State::paused; }));
    EXPECT_EQ(m_remote.view().state, State::paused);

    m_made->failure = u"The kitchen refused."_qs;
    m_commands.trigger(Commands::Id::repeat);
    m_commands.trigger(Commands::Id::pause);
    EXPECT_EQ(m_remote.view().state, State::playing);
    EXPECT_TRUE(m_model.scene().repeat);
    ASSERT_TRUE(waitFor([&] { return m_told.size() == 2; }));
    EXPECT_EQ(m_remote.view().state, State::paused);
    EXPECT_FALSE(m_model.scene().repeat);
    EXPECT_EQ(m_model.scene().marquee, u"The kitchen refused."_qs);
}

TEST_F(RemoteOutputTest, ADraggedSliderSendsNoMoreThanTheServerTakes) {
    select(u"kitchen"_qs);
    m_made->delay = std::chrono::milliseconds(20);
    for (int step = 0; step <= 100; ++step) {
        m_model.dragSlider(MainWindowControl::volume, step / 100.0);
        ASSERT_EQ(m_model.scene().volume, step / 100.0);
    }
    EXPECT_EQ(m_model.scene().marquee, u"Volume: 100%"_qs);
    m_model.releaseSlider();
    ASSERT_TRUE(waitFor([&] { return m_made->speaker(u"kitchen"_qs).playing.volume == 1.0; }));
    EXPECT_EQ(sent(), QList({TransportCommand::setVolume(0), TransportCommand::setVolume(1)}));

    letPlay(u"kitchen"_qs);
    m_made->commands.clear();
    m_made->peakCommands = 0;
    for (int i = 0; i < 20; ++i)
        m_commands.trigger(Commands::Id::seekForward);
    EXPECT_NEAR(m_remote.view().elapsed, 100, 2);
    ASSERT_TRUE(waitFor([&] { return m_made->speaker(u"kitchen"_qs).playing.elapsed > 99; }));
    EXPECT_EQ(m_made->peakCommands, 1);
    EXPECT_LT(sent().size(), 5);
}

TEST_F(RemoteOutputTest, WithoutAVolumeOrABalanceNothingIsSent) {
    m_made->addSpeaker(u"old"_qs, u"Old Radio"_qs, 1, std::nullopt);
    ASSERT_TRUE(waitFor([&] { return m_browser.outputs().size() == 4; })); // as the source announced it
    select(u"old"_qs);
    m_commands.trigger(Commands::Id::volumeUp);
    EXPECT_EQ(m_told, QStringList(u"This music source does not support that."_qs));
    m_model.dragSlider(MainWindowControl::balance, 0);
    EXPECT_EQ(m_model.scene().balance, 0);
    EXPECT_EQ(m_player.balance(), 0);
    EXPECT_EQ(sent(), QList<TransportCommand>());
}

TEST_F(RemoteOutputTest, TheClockTurnsWithTheSpeakersSeconds) {
    select(u"kitchen"_qs);
    m_made->speaker(u"kitchen"_qs).playing.elapsed = 30.4;
    letPlay(u"kitchen"_qs);
    std::vector<double> shown;
    const auto showing = QObject::connect(&m_model, &PlayerModel::sceneChanged, &m_browser, [&] {
        shown.push_back(std::floor(m_model.scene().status.elapsed));
    });
    EXPECT_TRUE(waitFor([&] { return shown.size() >= 3; }));
    QObject::disconnect(showing);
    // Never twice the same second: a tick that comes too early would show it again.
    EXPECT_TRUE(std::ranges::adjacent_find(shown, std::greater_equal()) == shown.end());
}

TEST_F(RemoteOutputTest, ASpeakerThatGoesStaysSelectedUntilItComesBack) {
    select(u"kitchen"_qs);
    m_made->removeSpeaker(u"kitchen"_qs);
    ASSERT_TRUE(waitFor([&] { return !m_remote.isAvailable(); }));
    EXPECT_EQ(m_told, QStringList(u"Kitchen is not available"_qs));
    EXPECT_TRUE(m_remote.isSelected());
    EXPECT_EQ(m_remote.title(), u"Kitchen is not available"_qs);
    EXPECT_EQ(m_model.scene().status.transport, MainWindowStatus::Transport::stopped);
    m_commands.trigger(Commands::Id::next);
    EXPECT_EQ(m_told.last(), u"That output is not available."_qs);
    EXPECT_EQ(sent(), QList<TransportCommand>());
    EXPECT_TRUE(outputMenu().contains(u"✓ Kitchen (not available)"_qs));
    m_made->addSpeaker(u"kitchen"_qs, u"Kitchen"_qs, 2);
    ASSERT_TRUE(waitFor([&] { return m_remote.isAvailable() && m_remote.queue().total == 2; }));

    m_browser.setBackend(nullptr);
    EXPECT_FALSE(m_remote.isSelected());
    m_made->failure = u"Nobody is there."_qs;
    m_browser.setBackend(m_made);
    EXPECT_TRUE(m_remote.isSelected()); // remembered, and not there
    EXPECT_EQ(m_remote.title(), u"Connecting to Kitchen…"_qs);
    ASSERT_TRUE(waitFor([&] { return m_browser.state() == LibraryBrowser::State::failed; }));
    EXPECT_EQ(m_remote.title(), u"Kitchen is not available"_qs);
}

TEST_F(RemoteOutputTest, FilesPlayHereAndItemsWhereTheMusicIs) {
    m_model.imports().openItems({{MediaKind::album, u"c"_qs}}); // a server's, where it plays
    ASSERT_TRUE(waitFor([&] { return m_made->played.size() == 1; }));
    EXPECT_EQ(m_made->played.last().first.mode, PlayMode::replace(0));
    EXPECT_EQ(m_made->played.last().second, OutputDevice::thisMacID());
    m_made->played.clear();
    select(u"bath"_qs);
    m_model.imports().openItems({{MediaKind::album, u"a"_qs}});
    m_model.imports().insertItems({{MediaKind::album, u"b"_qs}}, 0);
    ASSERT_TRUE(waitFor([&] { return m_made->played.size() == 2; }));
    const QList<MediaID> second{{MediaKind::album, u"b"_qs}};
    EXPECT_EQ(m_made->played.last(),
              std::pair(PlayRequest{second, PlayMode::append()}, OutputDevice::ID{u"bath"_qs}));
    ASSERT_TRUE(waitFor([&] { return m_remote.title() == u"1. a"_qs; }));

    m_model.insert({writeTone("a.wav", 1)}, 0);
    EXPECT_EQ(m_model.scene().marquee, u"Files play on this computer only"_qs);
    EXPECT_FALSE(m_model.imports().isImporting());
    m_model.open({writeTone("a.wav", 60)});
    EXPECT_FALSE(m_remote.isSelected());
    EXPECT_TRUE(waitFor([&] { return m_player.state() == State::playing; }));
    EXPECT_EQ(m_made->speaker(u"bath"_qs).playing.state, NowPlaying::State::playing);
}
