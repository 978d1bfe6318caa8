#include "Vantor/Windows/MainWindow.h"

#include "PlayerFixture.h"
#include "SkinKit/Layout/MainSliders.h"
#include "SkinKit/Layout/MainWindowLayout.h"
#include "Vantor/App/CarryOut.h"
#include "Vantor/App/LaunchOptions.h"
#include "Vantor/Windows/EqualizerWindow.h"
#include "Vantor/Windows/JumpToFileDialog.h"
#include "Vantor/Windows/MainMenu.h"
#include "Vantor/Windows/PlaylistWindow.h"

#include <QDropEvent>
#include <QListView>
#include <QMenu>
#include <QMimeData>
#include <QTest>

using namespace vantor;

namespace {

class MainWindowTest : public PlayerFixture {
  protected:
    void SetUp() override {
        m_window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
    }
    void press(QPoint at) { QTest::mousePress(&m_window, Qt::LeftButton, {}, at); }
    void release(QPoint at) { QTest::mouseRelease(&m_window, Qt::LeftButton, {}, at); }
    void click(QPoint at) { QTest::mouseClick(&m_window, Qt::LeftButton, {}, at); }

    Commands m_commands{m_model};
    MainWindow m_window{m_model, m_commands};
};

} // namespace

TEST_F(MainWindowTest, AButtonActsOnlyWhenItIsLetGoOnIt) {
    const QPoint shuffle = MainSliders::frame(MainSliders::Toggle::shuffle).center();
    press(shuffle);
    EXPECT_FALSE(m_player.isShuffled());
    const QImage pressed = m_window.picture();
    QTest::mouseMove(&m_window, QPoint(5, 110));
    EXPECT_NE(m_window.picture(), pressed);
    release(QPoint(5, 110));
    EXPECT_FALSE(m_player.isShuffled());
    click(shuffle);
    EXPECT_TRUE(m_player.isShuffled());
}

TEST_F(MainWindowTest, TransportButtonsDriveThePlayer) {
    m_player.enqueue({Track::file(writeTone("a.wav", 60)), Track::file(writeTone("b.wav", 60))});
    using enum MainWindowLayout::Transport;
    for (const auto &[button, state, index] : {std::tuple(play, PlaybackState::playing, 0),
                                               {next, PlaybackState::playing, 1},
                                               {pause, PlaybackState::paused, 1},
                                               {previous, PlaybackState::playing, 0},
                                               {stop, PlaybackState::stopped, 0}}) {
        click(MainWindowLayout::rect(button).center());
        EXPECT_TRUE(
            waitFor([&] { return m_player.state() == state && m_player.queue().currentIndex() == index; }));
    }
}

TEST_F(MainWindowTest, SlidersFollowThePointerAtDoubleSizeToo) {
    for (const bool doubled : {false, true}) {
        SCOPED_TRACE(doubled);
        m_model.windows().setDoubleSize(doubled);
        const int zoom = doubled ? 2 : 1;
        const MainSliders::Slider &slider = MainSliders::Slider::volume;
        const int y = slider.origin.y() + 5;
        press(QPoint(slider.origin.x() + 7, y) * zoom);
        EXPECT_FLOAT_EQ(m_player.volume(), 0);
        QTest::mouseMove(&m_window, QPoint(slider.origin.x() + 7 + slider.travel, y) * zoom);
        EXPECT_FLOAT_EQ(m_player.volume(), 1);
        release(QPoint(0, 0));
        EXPECT_FLOAT_EQ(m_player.volume(), 1);
    }
}

// A menu or a dialog can take the release away.
TEST_F(MainWindowTest, ASliderLetsGoWhenTheReleaseWasLost) {
    m_player.setVolume(1);
    press(MainSliders::Slider::volume.rect().center());
    const float held = m_player.volume();
    const QPointF elsewhere(MainSliders::Slider::volume.origin);
    QMouseEvent move(QEvent::MouseMove, elsewhere, elsewhere, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&m_window, &move);
    EXPECT_EQ(m_player.volume(), held);
    EXPECT_EQ(m_model.scene().marquee, QStringLiteral("Vantor"));
}

TEST_F(MainWindowTest, ShadeAndSizeChangeTheWindow) {
    EXPECT_EQ(m_window.size(), QSize(275, 116));
    QTest::keyClick(&m_window, Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(m_window.size(), QSize(550, 232));
    QTest::keyClick(&m_window, Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(m_window.size(), QSize(550, 28));
    QTest::mouseDClick(&m_window, Qt::LeftButton, {}, QPoint(120, 6));
    EXPECT_EQ(m_window.size(), QSize(550, 232));
}

TEST_F(MainWindowTest, DroppedMusicPlaysAndShiftOnlyAddsIt) {
    const auto drop = [&](const QUrl &url, Qt::KeyboardModifiers modifiers) {
        QMimeData data;
        data.setUrls({url});
        QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, modifiers);
        QCoreApplication::sendEvent(&m_window, &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent event(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, modifiers);
        QCoreApplication::sendEvent(&m_window, &event);
    };
    drop(writeTone("a.wav", 30), {});
    ASSERT_TRUE(waitFor([&] { return m_player.state() == PlaybackState::playing; }));
    drop(writeTone("b.wav", 30), Qt::ShiftModifier);
    ASSERT_TRUE(waitFor([&] { return m_player.queue().count() == 2; }));
    EXPECT_EQ(m_player.queue().current()->title, QStringLiteral("a"));
    drop(file("b.wav"), {});
    ASSERT_TRUE(waitFor([&] { return m_player.queue().count() == 1; }));
    EXPECT_EQ(m_player.queue().current()->title, QStringLiteral("b"));
    m_player.stop();
    drop(file("a.wav"), Qt::ShiftModifier);
    ASSERT_TRUE(waitFor([&] { return m_player.queue().count() == 2 && !m_model.imports().isImporting(); }));
    EXPECT_EQ(m_player.state(), PlaybackState::stopped);
}

TEST_F(MainWindowTest, WhatPlaysIsNotBegunAgainByAnotherStartOrAMediaKey) {
    m_model.open({writeTone("a.wav", 60)});
    ASSERT_TRUE(waitFor([&] { return m_player.state() == PlaybackState::playing; }));
    m_player.seek(30);
    LaunchOptions options;
    options.command = LaunchCommand::play;
    carryOut(options, m_model, m_commands);
    EXPECT_GE(m_player.currentTime(), 30);
    for (const PlaybackState state : {PlaybackState::paused, PlaybackState::playing}) {
        QTest::keyClick(&m_window, Qt::Key_MediaPlay);
        EXPECT_EQ(m_player.state(), state);
        EXPECT_GE(m_player.currentTime(), 30);
    }
}

TEST_F(MainWindowTest, MinimisingWithoutTheMainWindowIsForTheActiveOne) {
    EqualizerModel equalizerModel(m_player, m_settings, m_folder.path("data"));
    EqualizerWindow equalizer(m_model, equalizerModel, m_commands);
    m_window.hide();
    equalizer.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&equalizer));
    m_commands.trigger(Commands::Id::minimize);
    EXPECT_FALSE(m_window.isVisible());
    EXPECT_TRUE(equalizer.isMinimized());
}

TEST_F(MainWindowTest, TheTrackToJumpToStaysChosenWhileTheQueueChanges) {
    const Track tracks[] = {Track::file(writeTone("a.wav", 60)), Track::file(writeTone("b.wav", 60)),
                            Track::file(writeTone("c.wav", 60))};
    m_player.enqueue({tracks[0], tracks[1]});
    m_commands.trigger(Commands::Id::jumpToFile);
    auto *const dialog = m_window.findChild<JumpToFileDialog *>();
    ASSERT_TRUE(dialog);
    auto *const list = dialog->findChild<QListView *>();
    list->setCurrentIndex(list->model()->index(1, 0));
    m_player.insertTracks({tracks[2]}, 0);
    EXPECT_TRUE(waitFor([&] { return list->model()->rowCount() == 3; }));
    EXPECT_EQ(list->currentIndex().row(), 2);
    m_player.removeTrack(0); // and at once:
    QTest::keyClick(dialog, Qt::Key_Return);
    EXPECT_EQ(m_player.queue().current(), tracks[1]);
}

TEST_F(MainWindowTest, TheMainMenuHoldsEveryCommandOfEveryWindow) {
    EqualizerModel equalizerModel(m_player, m_settings, m_folder.path("data"));
    PlaylistModel playlistModel(m_model, m_settings);
    EqualizerWindow equalizer(m_model, equalizerModel, m_commands);
    PlaylistWindow playlist(playlistModel, m_model, m_commands);
    m_player.enqueue({Track::file(writeTone("a.wav", 5)), Track::file(writeTone("b.wav", 5))});
    QMenu menu;
    MainMenu::fill(menu, m_commands, m_model);
    QHash<QString, QAction *> texts;
    QList<QAction *> all;
    const std::function<void(const QMenu &)> gather = [&](const QMenu &part) {
        for (QAction *const action : part.actions()) {
            all.append(action);
            texts.insert(action->text(), action);
            if (const QMenu *const below = action->menu())
                gather(*below);
        }
    };
    gather(menu);
    for (QAction *const action : m_window.actions())
        EXPECT_TRUE(all.contains(action)) << action->text().toStdString();
    EXPECT_FALSE(m_commands.action(Commands::Id::skippedFiles).isEnabled());
    for (const char *text : {"Auto", "Techno", "Save Preset…", "Select All", "Remove Duplicates"}) {
        ASSERT_TRUE(texts.contains(QString::fromUtf8(text))) << text;
        texts.value(QString::fromUtf8(text))->trigger();
    }
    EXPECT_TRUE(equalizerModel.isAuto());
    EXPECT_EQ(m_player.eq().gains(), EQPreset::builtIn().back().gains());
    EXPECT_TRUE(playlistModel.isSelected(1));
    QWidget *const dialog = QApplication::activeModalWidget();
    ASSERT_TRUE(dialog);
    EXPECT_TRUE(dialog->parentWidget()->isVisible()); // the equalizer, whose preset it is, is not
    dialog->close();
}
