#include "Vantor/Model/MarqueeLine.h"

#include "SkinKit/Rendering/SkinTextFont.h"

#include <gtest/gtest.h>

using namespace vantor;

static const QString longTitle = QStringLiteral("1. A Rather Long Name - An Even Longer Title (3:45)");
static constexpr StatusNotice::Clock::time_point start{};

TEST(MarqueeLineTest, DragTextBeatsNoticeBeatsTitle) {
    MarqueeLine line;
    const StatusNotice notice = StatusNotice::skinFailed(QStringLiteral("x.wsz"), start);
    line.setTitle(longTitle);
    line.setNotice(notice);
    EXPECT_EQ(line.text(start), QStringLiteral("Could not load x.wsz"));
    EXPECT_EQ(line.text(start + StatusNotice::duration), longTitle);
    EXPECT_TRUE(line.scrolls(start + StatusNotice::duration));

    line.setDragText(QStringLiteral("Volume: 4%"));
    line.setDragText(QStringLiteral("Volume: 5%"));
    EXPECT_EQ(line.text(start), QStringLiteral("Volume: 5%"));
    EXPECT_FALSE(line.scrolls(start));
    line.setDragText(std::nullopt);
    EXPECT_EQ(line.text(start), longTitle) << "what was shown before the drag is over";

    line.setDragText(QStringLiteral("Volume: 5%"));
    line.setNotice(notice);
    line.setDragText(QStringLiteral("Volume: 6%"));
    line.setDragText(std::nullopt);
    EXPECT_EQ(line.text(start), QStringLiteral("Could not load x.wsz")) << "nobody has seen that one";
}

TEST(MarqueeLineTest, StandsStillAtFirstThenMovesAndWraps) {
    MarqueeLine line;
    line.setTitle(longTitle);
    line.advance(1);
    EXPECT_EQ(line.offset(start), 0);
    line.advance(2);
    const int moved = line.offset(start);
    EXPECT_GT(moved, 0);

    const int period = Marquee::period(longTitle);
    line.dragBy(moved + 1); // a pixel to the right of the start is the end of the picture before
    EXPECT_EQ(line.offset(start), period - 1);

    line.grab();
    line.advance(5);
    EXPECT_EQ(line.offset(start), period - 1);
    line.release();
    line.setTitle(QStringLiteral("Short"));
    line.advance(5);
    EXPECT_EQ(line.offset(start), 0);
}

TEST(MarqueeLineTest, ComesRoundOnceWhileNothingPlays) {
    MarqueeLine line;
    line.setTitle(longTitle);
    line.setIdle(true);
    bool moved = false;
    for (int frames = 0; line.moves(start) && frames < 3000; ++frames) {
        line.advance(0.03);
        moved = moved || line.offset(start) > 0;
    }
    EXPECT_TRUE(moved);
    EXPECT_FALSE(line.moves(start));
    EXPECT_EQ(line.offset(start), 0);
    line.setIdle(false);
    EXPECT_TRUE(line.moves(start));
}
