#include "Vantor/Windows/FramePane.h"

#include "SkinKit/Layout/MainWindowLayout.h"
#include "Vantor/Windows/MainWindow.h"
#include "tests/Vantor/PlayerFixture.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTest>

using namespace vantor;

namespace {

QImage screenPart(const QWidget &window, QRect part) {
    const QPoint at = window.mapToGlobal(part.topLeft());
    const QPixmap shot =
        QGuiApplication::primaryScreen()->grabWindow(0, at.x(), at.y(), part.width(), part.height());
    return shot.toImage().convertToFormat(QImage::Format_RGB32);
}

class PlainWindow : public QWidget {
  public:
    PlainWindow() {
        setPalette(QPalette(QPalette::Window, Qt::white));
        setFixedSize(100, 60);
        show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(this));
    }
    [[nodiscard]] QImage shown() const { return screenPart(*this, area); }
    [[nodiscard]] bool shows(const QImage &image) const {
        return QTest::qWaitFor([&] { return shown() == image; });
    }

    static constexpr QRect area{10, 20, 6, 4};
};

/// What a picture of two by three pixels looks like there, which tells its number.
QImage enlarged(int number) {
    QImage image(PlainWindow::area.size(), QImage::Format_RGB32);
    image.fill(qRgb(10, number, 0));
    image.setPixel(4, 2, qRgb(0, 0, 200));
    for (const QPoint also : {QPoint(5, 2), QPoint(4, 3), QPoint(5, 3)})
        image.setPixelColor(also, image.pixelColor(4, 2));
    return image;
}

std::vector<QImage> pictures(int count) {
    std::vector<QImage> all;
    for (int i = 0; i < count; ++i)
        all.push_back(enlarged(i).scaled(3, 2));
    return all;
}

/// The first pictures may be too early for the pane.
bool comesToShow(FramePane &pane, PlainWindow &window) {
    return QTest::qWaitFor([&] {
        return pane.show(*window.windowHandle(), PlainWindow::area, pictures(3)) &&
               window.shown() == enlarged(2);
    });
}

class AheadTest : public PlayerFixture {
  protected:
    Commands m_commands{m_model};
    MainWindow m_window{m_model, m_commands};
};

} // namespace

TEST(FramePaneTest, PicturesComeOneAfterAnotherAndGoWithThePane) {
    PlainWindow window;
    QImage white = enlarged(0);
    white.fill(Qt::white);
    ASSERT_TRUE(window.shows(white));

    FramePane pane;
    EXPECT_TRUE(comesToShow(pane, window));
    QTest::qWait(50); // until the last of them has been waited for
    // Four seconds of pictures, of which the pane goes in the midst.
    ASSERT_TRUE(pane.show(*window.windowHandle(), PlainWindow::area, pictures(240)));
    int last = 0;
    EXPECT_TRUE(QTest::qWaitFor([&] {
        const int number = qGreen(window.shown().pixel(0, 0));
        EXPECT_TRUE(number >= last || last == 2);
        last = number;
        return number > 20;
    }));
    EXPECT_LT(last, 239);
    pane.hide();
    EXPECT_TRUE(window.shows(white));
    QTest::qWait(50);
    EXPECT_EQ(window.shown(), white);
}

TEST(FramePaneTest, WindowsThatGoTakeNothingWithThem) {
    FramePane pane;
    for (int i = 0; i < 3; ++i) {
        PlainWindow window;
        EXPECT_TRUE(comesToShow(pane, window));
    }
    EXPECT_FALSE(pane.isShown());
    PlainWindow window;
    // More at once than the connection surely takes, and a scale that is not whole.
    EXPECT_FALSE(pane.show(*window.windowHandle(), PlainWindow::area, pictures(1000)));
    EXPECT_FALSE(pane.show(*window.windowHandle(), {10, 20, 7, 4}, pictures(3)));
}

TEST_F(AheadTest, TheScreenShowsWhatTheWindowShowsWhenTheVisualizerRests) {
    m_window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
    m_model.open({writeTone("tone.wav", 60)});
    const QRect area = MainWindowLayout::visualizer;
    const auto isSame = [&] {
        return screenPart(m_window, area) ==
               m_window.picture().convertToFormat(QImage::Format_RGB32).copy(area);
    };
    for (const bool stops : {false, true}) {
        m_player.play();
        ASSERT_TRUE(waitFor([&] {
            const auto *const bars = std::get_if<VisualizerBars>(&m_model.visualizer().picture());
            return m_model.clock().period() > FrameClock::everyFrame && bars &&
                   std::ranges::max(bars->heights) > 3;
        }));
        if (stops)
            m_player.stop();
        else
            m_player.pause();
        ASSERT_TRUE(waitFor([&] { return !m_model.clock().isRunning() || !m_model.isVisualizerMoving(); }));
        EXPECT_TRUE(QTest::qWaitFor(isSame));
        QTest::qWait(120); // as long as pictures could still come
        EXPECT_TRUE(isSame());
    }
}
