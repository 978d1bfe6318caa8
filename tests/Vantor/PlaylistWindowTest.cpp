#include "Vantor/Windows/PlaylistWindow.h"

#include "PlayerFixture.h"
#include "PlaylistShown.h"
#include "SkinKit/Layout/PlaylistWindowLayout.h"

#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QScreen>
#include <QTest>

using namespace vantor;
using List = PlaylistWindowControl;
namespace Layout = PlaylistWindowLayout;

namespace {

class PlaylistWindowTest : public PlayerFixture {
  protected:
    void SetUp() override {
        m_playlist.setSize({275, 145});
        std::vector<Track> tracks;
        for (const char letter : {'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h'}) {
            Track track;
            track.id = QUuid::createUuid();
            track.title = QString(QLatin1Char(letter));
            track.source = QUrl::fromLocalFile(QStringLiteral("/music/%1.wav").arg(track.title));
            tracks.push_back(track);
        }
        m_player.enqueue(tracks);
        m_model.windows().setOpen(WindowKind::playlist, true);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
    }

    [[nodiscard]] std::string shown() const { return shownRows(m_playlist); }
    [[nodiscard]] QPoint line(int number) const {
        return Layout::row(number, m_playlist.size()).center() * m_window.zoom();
    }
    [[nodiscard]] QPoint centre(List control) const {
        return Layout::rect(control, m_playlist.size(), m_window.isShaded()).center() * m_window.zoom();
    }
    void press(QPoint at) { QTest::mousePress(&m_window, Qt::LeftButton, {}, at); }
    void move(QPoint at) {
        QMouseEvent event(QEvent::MouseMove, QPointF(at), QPointF(m_window.mapToGlobal(at)), Qt::NoButton,
                          Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&m_window, &event);
    }
    void release(QPoint at) { QTest::mouseRelease(&m_window, Qt::LeftButton, {}, at); }
    void click(QPoint at, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(&m_window, Qt::LeftButton, modifiers, at);
    }
    void key(Qt::Key pressed, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(&m_window, pressed, modifiers);
    }

    Commands m_commands{m_model};
    PlaylistModel m_playlist{m_model, m_settings};
    PlaylistWindow m_window{m_playlist, m_model, m_commands};
};

} // namespace

TEST_F(PlaylistWindowTest, ClicksSelectAtEitherSize) {
    for (const bool doubled : {false, true}) {
        m_model.windows().setDoubleSize(doubled);
        click(line(1));
        click(line(3), Qt::ShiftModifier);
        EXPECT_EQ(shown(), "a[b][c][d]efgh");
        click(line(2), Qt::ControlModifier);
        EXPECT_EQ(shown(), "a[b]c[d]efgh");
        click(line(3));
        EXPECT_EQ(shown(), "abc[d]efgh");
    }
}

TEST_F(PlaylistWindowTest, RowsFollowThePointerThatDragsThem) {
    click(line(1));
    click(line(2), Qt::ShiftModifier);
    press(line(1));
    move(line(2));
    EXPECT_EQ(shown(), "ad[b][c]efgh");
    move(line(0));
    EXPECT_EQ(shown(), "[b][c]adefgh");
    release(line(0));
    EXPECT_EQ(shown(), "[b][c]adefgh"); // a drag is no click on the row
    press(line(0));
    move(QPoint(50, 400)); // below the window the list scrolls on
    EXPECT_TRUE(waitFor([&] { return m_playlist.firstRow() == 2; }));
    release(QPoint(50, 400));
    EXPECT_EQ(shown(), "adefgh[b][c]");
}

TEST_F(PlaylistWindowTest, KeysThatCommandsHaveTooAreTheLists) {
    m_player.setVolume(0.5F);
    key(Qt::Key_Down);
    key(Qt::Key_Down);
    key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(shown(), "a[b][c]defgh");
    EXPECT_EQ(m_player.volume(), 0.5F);
    key(Qt::Key_I, Qt::ControlModifier);
    key(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(shown(), "[a][d][e][f][g][h]");
    key(Qt::Key_Escape);
    key(Qt::Key_End);
    key(Qt::Key_Delete);
    EXPECT_EQ(shown(), "adef[g]");
    key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(shown(), "[a][d][e][f][g]");
    EXPECT_FALSE(m_model.windows().isAlwaysOnTop());
    // Shuffle's letter, until a word is being typed.
    key(Qt::Key_S);
    EXPECT_TRUE(m_player.isShuffled());
    key(Qt::Key_Slash);
    key(Qt::Key_S);
    EXPECT_TRUE(m_player.isShuffled());
    key(Qt::Key_Escape);
    key(Qt::Key_F);
    EXPECT_EQ(shown(), "ade[f]g");
    key(Qt::Key_Home);
    key(Qt::Key_Return);
    EXPECT_EQ(m_player.queue().currentIndex(), 0);
}

TEST_F(PlaylistWindowTest, TheMenuIsForTheRowOfTheCursorOrUnderThePointer) {
    const auto placeOfMenu = [&](QContextMenuEvent::Reason reason, QPoint at) {
        QContextMenuEvent event(reason, at, m_window.mapToGlobal(at));
        QCoreApplication::sendEvent(&m_window, &event);
        QWidget *const menu = QApplication::activePopupWidget();
        EXPECT_TRUE(menu);
        const QPoint place = menu ? m_window.mapFromGlobal(menu->pos()) : QPoint();
        if (menu)
            menu->close();
        return place;
    };
    click(line(3));
    EXPECT_EQ(placeOfMenu(QContextMenuEvent::Keyboard, m_window.rect().center()), line(3));
    EXPECT_EQ(shown(), "abc[d]efgh");
    click(line(1), Qt::ShiftModifier);
    EXPECT_EQ(placeOfMenu(QContextMenuEvent::Mouse, line(2)), line(2));
    EXPECT_EQ(shown(), "a[b][c][d]efgh");
    EXPECT_EQ(m_playlist.cursor(), 2);
}

TEST_F(PlaylistWindowTest, FramesAreMadeOnlyForWhatMoves) {
    m_player.insertTracks({Track::file(writeTone("long.wav", 60))}, 0);
    m_player.play(0);
    ASSERT_TRUE(waitFor([&] { return m_player.state() == PlaybackState::playing; }));
    const FrameClock &clock = m_model.clock();
    EXPECT_FALSE(clock.isRunning());
    m_playlist.setSize({400, 145}); // with a visualizer
    EXPECT_TRUE(clock.isRunning());
    m_model.windows().setShaded(WindowKind::playlist, true);
    EXPECT_FALSE(clock.isRunning());
    m_model.windows().setShaded(WindowKind::playlist, false);
    m_playlist.setSize({275, 145});
    EXPECT_FALSE(clock.isRunning());
    m_player.pause(); // the clock blinks
    EXPECT_TRUE(clock.isRunning());
}

TEST_F(PlaylistWindowTest, PopUpsRunWhatThePointerIsLetGoOn) {
    const QSize size = m_playlist.size();
    const auto entry = [&](PlaylistMenu menu, int index) {
        return PlaylistMenus::entryRect(menu, index, size).center();
    };
    press(centre(List::select));
    move(entry(PlaylistMenu::select, 0));
    release(entry(PlaylistMenu::select, 0));
    EXPECT_EQ(shown(), "[a][b][c][d][e][f][g][h]"); // inverted
    press(centre(List::select));
    move(QPoint(200, 60));
    release(QPoint(200, 60));
    EXPECT_EQ(shown(), "[a][b][c][d][e][f][g][h]");
    // Clicked open, it waits for a second click, and a click elsewhere only closes it.
    click(centre(List::select));
    click(entry(PlaylistMenu::select, 1));
    EXPECT_EQ(shown(), "abcdefgh");
    const QImage before = m_window.picture();
    click(centre(List::remove));
    EXPECT_NE(m_window.picture(), before);
    click(line(0));
    EXPECT_EQ(m_window.picture(), before);
    click(centre(List::select));
    click(centre(List::select)); // its last entry lies over the button
    EXPECT_EQ(shown(), "[a][b][c][d][e][f][g][h]");
    click(centre(List::list));
    click(entry(PlaylistMenu::list, 0));
    EXPECT_EQ(shown(), "");
}

TEST_F(PlaylistWindowTest, AssistiveToolsGetTheSameEntriesAsText) {
    m_window.pressControl(static_cast<int>(List::select));
    auto *menu = m_window.findChild<QMenu *>();
    ASSERT_NE(menu, nullptr);
    QStringList texts;
    for (const QAction *action : menu->actions())
        texts += action->text();
    EXPECT_EQ(texts, QStringList({QStringLiteral("Invert Selection"), QStringLiteral("Select None"),
                                  QStringLiteral("Select All")}));
    menu->actions().at(2)->trigger();
    EXPECT_EQ(shown(), "[a][b][c][d][e][f][g][h]");
    m_window.setControlValue(static_cast<int>(List::scrollBar), 99);
    EXPECT_EQ(m_playlist.firstRow(), 2);
    for (const SkinControl &control : m_window.controls())
        EXPECT_FALSE(control.name.isEmpty()) << control.id;

    const auto rows = [&] {
        QStringList rows;
        for (const SkinControl &control : m_window.controls()) {
            if (control.kind == SkinControl::Kind::row)
                rows.append(control.checked ? u"> "_qs + control.name : control.name);
        }
        return rows;
    };
    EXPECT_EQ(rows().first(), QStringLiteral("> 3. c"));
    m_window.pressControl(m_window.controls()[1].id);
    EXPECT_EQ(rows().mid(0, 3), QStringList({u"3. c"_qs, u"> 4. d"_qs, u"5. e"_qs}));
}

TEST_F(PlaylistWindowTest, TheGripAndTheHandleFollowThePointer) {
    const QPoint grip = centre(List::resize);
    press(grip);
    move(grip + QPoint(40, 20));
    EXPECT_EQ(m_window.size(), QSize(325, 174));
    move(grip + QPoint(-500, -500));
    EXPECT_EQ(m_window.size(), QSize(275, 116));
    release(grip);
    const QPoint handle = Layout::scrollHandle(0, m_playlist.size()).center();
    press(handle);
    move(handle + QPoint(0, 200));
    EXPECT_EQ(m_playlist.firstRow(), 4);
    move(handle);
    EXPECT_EQ(m_playlist.firstRow(), 0);
    release(handle);
    m_model.windows().setShaded(WindowKind::playlist, true);
    EXPECT_EQ(m_window.size(), QSize(275, 14));
    press(centre(List::resize));
    move(centre(List::resize) + QPoint(50, 300));
    release(centre(List::resize));
    EXPECT_EQ(m_playlist.size(), QSize(325, 116));
}

TEST_F(PlaylistWindowTest, KeysChangeTheSizeByATile) {
    const QSize before = m_window.size();
    key(Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
    key(Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(m_window.size(), before + Layout::step);
    key(Qt::Key_Left, Qt::ControlModifier | Qt::ShiftModifier);
    key(Qt::Key_Up, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(m_window.size(), before);
}

TEST_F(PlaylistWindowTest, ASizeFromALargerScreenIsTakenBack) {
    const QSize screen = m_window.screen()->size();
    m_playlist.setSize(screen * 2);
    const PlaylistWindow again(m_playlist, m_model, m_commands);
    EXPECT_EQ(again.size().boundedTo(screen), again.size());
}

TEST_F(PlaylistWindowTest, DropsGoBetweenTheRowsUnderThem) {
    QMimeData data;
    data.setUrls({writeTone("y.wav", 1), writeTone("z.wav", 1)});
    const QPoint gap = Layout::row(2, m_playlist.size()).topLeft() + QPoint(20, 2);
    QDragEnterEvent enter(gap, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&m_window, &enter);
    const QImage before = m_window.picture();
    QDragMoveEvent over(gap, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&m_window, &over);
    EXPECT_NE(m_window.picture(), before); // a line shows the place
    QDropEvent drop(QPointF(gap), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&m_window, &drop);
    EXPECT_TRUE(waitFor([&] { return shown() == "abyzcdefgh"; })) << shown();
    EXPECT_EQ(m_player.state(), PlaybackState::stopped);
}

TEST_F(PlaylistWindowTest, TheWindowOpensAndClosesWithItsButton) {
    m_commands.trigger(Commands::Id::playlist);
    EXPECT_FALSE(m_window.isVisible());
    m_commands.trigger(Commands::Id::playlist);
    EXPECT_TRUE(m_window.isVisible());
    click(centre(List::close));
    EXPECT_FALSE(m_window.isVisible());
    EXPECT_FALSE(m_settings.value(QStringLiteral("playlist.open")).toBool());
}
