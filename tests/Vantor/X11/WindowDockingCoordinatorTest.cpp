#include "Vantor/Docking/WindowDockingCoordinator.h"

#include "tests/Support/TestFolder.h"
#include "tests/Vantor/X11/TestDisplay.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSettings>
#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>

using namespace vantor;
using enum WindowKind;

namespace {

using Frames = std::map<WindowKind, QRect>;

class TestWindow : public QWidget, public SkinWindowController {
  public:
    TestWindow(WindowKind kind, Qt::GlobalColor color)
        : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::WindowMinimizeButtonHint),
          m_kind(kind) {
        setFixedSize(275, 116);
        setPalette(QPalette(QPalette::Window, color));
    }

    [[nodiscard]] WindowKind windowKind() const override { return m_kind; }
    [[nodiscard]] QWidget &widget() override { return *this; }
    [[nodiscard]] double titleBarHeight() const override { return 14; }

  private:
    WindowKind m_kind;
};

/// Three windows of plain colours, which are told apart on the screen itself.
class WindowDockingCoordinatorTest : public testing::TestWithParam<bool> {
  protected:
    void SetUp() override {
        testDisplay().setWindowManager(GetParam());
        for (auto *const window : {&m_playlist, &m_main, &m_equalizer})
            m_docking.register_(*window);
    }
    void TearDown() override { setScreens({}); }

    static void setScreens(const QList<QRect> &screens) {
        testDisplay().setScreens(screens);
        const QRect first = screens.value(0, {0, 0, 1600, 900});
        const qsizetype count = std::max<qsizetype>(1, screens.size());
        EXPECT_TRUE(QTest::qWaitFor([&] {
            const QList<QScreen *> seen = QGuiApplication::screens();
            return seen.size() == count && seen.front()->geometry() == first;
        }));
    }

    void start(const Frames &expected) {
        m_docking.restoreOrDefaultLayout();
        for (auto *const window : {&m_main, &m_equalizer, &m_playlist})
            window->show();
        m_docking.ensureOnScreen();
        EXPECT_TRUE(stand(expected));
    }

    void dragTo(TestWindow &window, QPoint to) {
        m_docking.dragBegan(window);
        const QPoint from = window.pos();
        for (int step = 1; step <= 4; ++step)
            m_docking.drag(window, from + (to - from) * step / 4);
        m_docking.dragEnded(window);
    }

    QRgb pixel(QPoint at) {
        return QGuiApplication::primaryScreen()->grabWindow(0, at.x(), at.y(), 1, 1).toImage().pixel(0, 0);
    }
    /// Whether the screen comes to show the window there.
    bool isSeenAt(TestWindow &window, QPoint at) {
        const QRgb color = window.palette().color(QPalette::Window).rgb();
        return QTest::qWaitFor([&] { return pixel(at) == color; }, 3000);
    }
    /// Whether the screen comes to show each window in all of its frame, and they believe to be there.
    bool stand(const Frames &frames) {
        return std::ranges::all_of(frames, [&](const auto &entry) {
            TestWindow &window = entry.first == main        ? m_main
                                 : entry.first == equalizer ? m_equalizer
                                                            : m_playlist;
            const QRect &frame = entry.second;
            const bool seen = isSeenAt(window, frame.topLeft()) && isSeenAt(window, frame.bottomRight());
            const bool knows = QTest::qWaitFor([&] { return window.geometry() == frame; }, 1000);
            if (!seen || !knows)
                ADD_FAILURE() << rawValue(entry.first).toStdString()
                              << (seen ? " thinks to be at " : " is not there but at ") << window.x() << ','
                              << window.y();
            return seen && knows;
        });
    }
    QString savedText() { return m_settings.value(QStringLiteral("windowLayout")).toString(); }

    TestFolder m_folder;
    QSettings m_settings{m_folder.path("settings.ini"), QSettings::IniFormat};
    TestWindow m_main{main, Qt::red};
    TestWindow m_equalizer{equalizer, Qt::green};
    TestWindow m_playlist{playlist, Qt::blue};
    WindowDockingCoordinator m_docking{m_settings};
};

constexpr QSize usual(275, 116);
// One column in the middle of 1600 × 900.
const Frames stack{
    {main, {{663, 276}, usual}}, {equalizer, {{663, 392}, usual}}, {playlist, {{663, 508}, usual}}};

} // namespace

INSTANTIATE_TEST_SUITE_P(, WindowDockingCoordinatorTest, testing::Bool(), [](const auto &param) {
    return param.param ? "WithWindowManager" : "WithoutWindowManager";
});

TEST_P(WindowDockingCoordinatorTest, MainWindowCarriesItsGroupAndOthersGoAlone) {
    start(stack);
    m_docking.dragBegan(m_main);
    const QString before = savedText();
    m_docking.drag(m_main, {700, 8}); // near the top
    EXPECT_TRUE(stand(
        {{main, {{700, 0}, usual}}, {equalizer, {{700, 116}, usual}}, {playlist, {{700, 232}, usual}}}));
    EXPECT_EQ(savedText(), before) << "nothing is saved while dragging";
    m_docking.drag(m_main, {-800, 100});
    m_docking.dragEnded(m_main);
    EXPECT_TRUE(
        stand({{main, {{0, 100}, usual}}, {equalizer, {{0, 216}, usual}}, {playlist, {{0, 332}, usual}}}));

    dragTo(m_equalizer, {284, 91}); // jumps onto the main window's side
    dragTo(m_playlist, {900, 700});
    EXPECT_TRUE(stand(
        {{main, {{0, 100}, usual}}, {equalizer, {{275, 100}, usual}}, {playlist, {{900, 700}, usual}}}));
    EXPECT_EQ(savedText().toStdString(),
              R"({"version":1,"windows":{"equalizer":{"left":275,"top":100},)"
              R"("main":{"left":0,"top":100},"playlist":{"left":900,"top":700}}})");
}

TEST_P(WindowDockingCoordinatorTest, NeighboursFollowAChangeOfSize) {
    start(stack);
    dragTo(m_main, {100, 276});
    m_docking.resize(m_main, [&] { m_main.setFixedSize(275, 14); });
    EXPECT_TRUE(stand(
        {{main, {100, 276, 275, 14}}, {equalizer, {{100, 290}, usual}}, {playlist, {{100, 406}, usual}}}));
    dragTo(m_playlist, {100 + 275, 290});
    m_docking.resize(m_equalizer, [&] {
        for (TestWindow *const window : {&m_main, &m_equalizer, &m_playlist})
            window->setFixedSize(window->size() * 2);
    });
    EXPECT_TRUE(stand({{main, {100, 276, 550, 28}},
                       {equalizer, {{100, 304}, usual * 2}},
                       {playlist, {{650, 304}, usual * 2}}}));
}

TEST_P(WindowDockingCoordinatorTest, NeighbourPushedOffTheScreenBringsTheGroupBack) {
    start(stack);
    dragTo(m_equalizer, {938, 276});
    dragTo(m_main, {1050, 276});
    m_docking.resize(m_main, [&] { m_main.setFixedSize(usual * 2); });
    EXPECT_TRUE(stand({{main, {{775, 276}, usual * 2}}, {equalizer, {{1325, 276}, usual}}}));
}

TEST_P(WindowDockingCoordinatorTest, AWindowTallerThanTheScreenComesBackByItsTitle) {
    start(stack);
    m_docking.resize(m_playlist, [&] { m_playlist.setFixedSize(275, 1000); });
    m_docking.resize(m_main, [&] { m_main.setFixedSize(275, 520); }); // pushes it under the screen
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_playlist.pos() == QPoint(663, 900 - 14); }, 3000))
        << m_playlist.y();
}

TEST_P(WindowDockingCoordinatorTest, LayoutIsRestoredAndNewWindowsAreStacked) {
    m_settings.setValue(
        QStringLiteral("windowLayout"),
        QStringLiteral(
            R"({"version":1,"windows":{"main":{"left":40,"top":30},"browser":{"left":1,"top":1}}})"));
    start({{main, {{40, 30}, usual}}, {equalizer, {{663, 334}, usual}}, {playlist, {{663, 450}, usual}}});

    m_playlist.hide();
    EXPECT_EQ(m_docking.showPosition(m_playlist, m_equalizer), QPoint(663, 450));
    dragTo(m_equalizer, {600, 500});
    EXPECT_EQ(m_docking.showPosition(m_playlist, m_main), QPoint(40, 146)) << "its place is taken";
    dragTo(m_equalizer, {40, 146});
    m_settings.remove(QStringLiteral("windowLayout"));
    m_docking.prepareToShow(m_playlist);
    EXPECT_EQ(m_playlist.pos(), QPoint(40, 262)) << "the first with room under it";
}

TEST_P(WindowDockingCoordinatorTest, StackWiderThanTheScreenIsWithinReach) {
    m_playlist.setFixedSize(2100, 116);
    start({{main, {0, 276, 275, 116}}, {equalizer, {0, 392, 275, 116}}});
}

TEST_P(WindowDockingCoordinatorTest, OldFramesAreTakenOver) {
    m_settings.setValue(QStringLiteral("NSWindow Frame MainWindow"),
                        QStringLiteral("40 700 275 116 0 0 1600 900 "));
    m_settings.setValue(QStringLiteral("NSWindow Frame EqualizerWindow"), QStringLiteral("90 -500  275 116"));
    m_settings.setValue(QStringLiteral("NSWindow Frame PlaylistWindow"), QStringLiteral("600 300 275 wide"));
    m_playlist.move(600, 0);
    // The equalizer was under the screen. No shift brings all of them onto it: they are stacked.
    start(stack);

    m_settings.remove(QStringLiteral("windowLayout"));
    m_settings.setValue(QStringLiteral("NSWindow Frame EqualizerWindow"), QStringLiteral("90 500 275 116"));
    m_docking.restoreOrDefaultLayout();
    EXPECT_TRUE(stand({{main, {{40, 84}, usual}}, {equalizer, {{90, 284}, usual}}}));
}

TEST_P(WindowDockingCoordinatorTest, RemovedScreenGivesItsWindowsBack) {
    setScreens({QRect(0, 0, 800, 900), QRect(800, 0, 800, 900)});
    start({{main, {{263, 276}, usual}}, {equalizer, {{263, 392}, usual}}, {playlist, {{263, 508}, usual}}});
    dragTo(m_main, {1000, 300});
    EXPECT_TRUE(stand({{main, {{1000, 300}, usual}}, {playlist, {{1000, 532}, usual}}}));

    setScreens({QRect(0, 0, 800, 900)});
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_playlist.pos() == QPoint(525, 532); }, 3000));
    EXPECT_TRUE(stand(
        {{main, {{525, 300}, usual}}, {equalizer, {{525, 416}, usual}}, {playlist, {{525, 532}, usual}}}));
}

TEST_P(WindowDockingCoordinatorTest, ClickBringsTheGroupToTheFront) {
    start(stack);
    dragTo(m_playlist, {100, 700});
    QWidget other; // of another program, for all that the docking knows
    other.setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
    other.setPalette(QPalette(QPalette::Window, Qt::yellow));
    other.setGeometry(650, 270, 300, 300);
    other.show();
    const QRgb yellow = QColor(Qt::yellow).rgb();
    ASSERT_TRUE(QTest::qWaitFor([&] { return pixel({663, 276}) == yellow; }));
    m_docking.raiseGroup(m_equalizer);
    EXPECT_TRUE(stand({{main, stack.at(main)}, {equalizer, stack.at(equalizer)}}));
    EXPECT_EQ(pixel({660, 274}), yellow);

    // Child windows stay above the main window, each other's order is that of the clicks.
    m_docking.dragBegan(m_main);
    m_docking.dragEnded(m_main);
    m_equalizer.move(700, 300);
    m_playlist.move(720, 320);
    m_docking.raiseGroup(m_equalizer);
    m_docking.raiseGroup(m_main);
    EXPECT_TRUE(isSeenAt(m_equalizer, {730, 330}));
    EXPECT_TRUE(isSeenAt(m_playlist, {730, 420}));
    EXPECT_TRUE(isSeenAt(m_main, {690, 290}));
}

// Minimising is the window manager's work.
class MinimisingTest : public WindowDockingCoordinatorTest {};
INSTANTIATE_TEST_SUITE_P(, MinimisingTest, testing::Values(true),
                         [](const auto &) { return "WithWindowManager"; });

TEST_P(MinimisingTest, WindowsAreMinimisedAndComeBackTogether) {
    start(stack);
    m_docking.skinnedWindowWillMinimize();
    m_main.showMinimized();
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return pixel({670, 280}) == pixel({5, 5}) && pixel({670, 400}) == pixel({5, 5}) &&
               pixel({670, 520}) == pixel({5, 5});
    }));
    m_main.showNormal();
    m_docking.skinnedWindowDidDeminimize();
    EXPECT_TRUE(stand(stack));
    EXPECT_FALSE(m_equalizer.isMinimized());
}
