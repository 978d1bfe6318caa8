#include "Vantor/Speaker/SpeakerGraph.h"

#include <QImage>

#include <gtest/gtest.h>

using namespace vantor;

namespace {

using Scale = SpeakerGraph::Scale;

SpeakerGraph::Look look(Scale scale) {
    const auto text = [](double value) { return QString::number(value); };
    return {.title = QStringLiteral("Figure"),
            .hint = {},
            .scale = scale,
            .least = 1,
            .text = text,
            .rangeText = text};
}

/// Where a graph's line or bars are, seen as a grid over it: how high the colour reaches at a share of its
/// width, as a share of its height; none where there is none.
class Drawn {
  public:
    Drawn(SpeakerGraph &graph, bool isDark) {
        QPalette palette;
        palette.setColor(QPalette::Base, isDark ? Qt::black : Qt::white);
        palette.setColor(QPalette::Text, isDark ? Qt::white : Qt::black);
        palette.setColor(QPalette::PlaceholderText, Qt::gray);
        palette.setColor(QPalette::Highlight, Qt::red);
        graph.setPalette(palette);
        graph.resize(200, graph.sizeHint().height());
        m_image = QImage(graph.size() * 2, QImage::Format_RGB32);
        m_image.setDevicePixelRatio(2);
        graph.render(&m_image);
    }
    /// In pixels from the top; none: −1.
    [[nodiscard]] int topAt(double age) const {
        const int x =
            m_image.width() - 2 * 8 - static_cast<int>(age / SpeakerGraph::seconds * 2 * (200 - 2 * 8));
        for (int y = 0; y < m_image.height(); ++y) {
            if (const QColor color = m_image.pixelColor(x, y); color.red() > color.blue() + 60)
                return y;
        }
        return -1;
    }

  private:
    QImage m_image;
};

} // namespace

TEST(SpeakerGraphTest, DrawsWhatItWasToldWhereItBelongs) {
    for (const bool isDark : {false, true}) {
        SCOPED_TRACE(isDark);
        SpeakerGraph graph(look(Scale::aroundZero));
        // Of the last minute: 20 s below, a gap, 20 s in the middle, 10 s at the top.
        for (int i = 0; i <= 600; ++i) {
            const double time = 1000 + i * 0.1;
            if (i < 200)
                graph.add(time, -4);
            else if (i < 300)
                graph.add(time, std::nullopt);
            else
                graph.add(time, i < 500 ? 0 : 4);
        }
        EXPECT_EQ(graph.rangeText(), QStringLiteral("within ±5"));
        EXPECT_EQ(graph.valueText(), QStringLiteral("4"));
        const Drawn drawn(graph, isDark);
        const int high = drawn.topAt(5);
        const int middle = drawn.topAt(20);
        const int low = drawn.topAt(50);
        ASSERT_GT(high, 0);
        EXPECT_NEAR(middle - high, low - middle, 2);
        EXPECT_NEAR(middle - high, 2 * 17 * 4 / 5, 3);
        EXPECT_EQ(drawn.topAt(35), -1) << "the gap";
        graph.add(2000, 1);
        EXPECT_EQ(graph.rangeText(), QStringLiteral("within ±1")) << "the last minute counts";
    }
}

TEST(SpeakerGraphTest, ShowsOfTotalsWhenTheyGrew) {
    SpeakerGraph graph(look(Scale::perSecond));
    for (int i = 0; i < 300; ++i)
        graph.add(i * 0.2, 7000 + (i > 100 ? 4 : 0) + (i > 200 ? 2 : 0));
    EXPECT_EQ(graph.rangeText(), QStringLiteral("up to 5 a second"));
    const Drawn drawn(graph, true);
    const int four = drawn.topAt(39.5);
    const int two = drawn.topAt(19.5);
    ASSERT_GT(four, 0);
    EXPECT_GT(two, four);
    EXPECT_EQ(drawn.topAt(50), -1);
    EXPECT_EQ(drawn.topAt(30), -1);
}
