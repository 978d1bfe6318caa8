#include "AudioCore/Analysis/VisReadCursor.h"

#include <gtest/gtest.h>

using namespace vantor;

static VisReadCursor makeCursor() {
    VisReadCursor cursor;
    cursor.window = 1024;
    cursor.readable = 28672;
    return cursor;
}

TEST(VisReadCursorTest, MovesEvenlyThroughBurstyDelivery) {
    for (const int burst : {440, 1000, 4410, 9000}) {
        SCOPED_TRACE(burst);
        VisReadCursor cursor = makeCursor();
        std::optional<int64_t> last;
        for (int refresh = 0; refresh < 600; ++refresh) {
            const int64_t written = 735 * refresh / burst * burst; // at 60 Hz, in whole bursts
            const std::optional<int64_t> end = cursor.next(written, 1 / 60.0, 44100);
            EXPECT_EQ(end.has_value(), written >= cursor.window);
            if (!end)
                continue;
            EXPECT_LE(*end, written);
            EXPECT_GE(*end, written - cursor.readable + cursor.window);
            if (refresh > 100) // settled
                EXPECT_EQ(*end - last.value(), 735);
            last = end;
        }
    }
}

TEST(VisReadCursorTest, ShowsTheEndWhenNothingMoreComes) {
    VisReadCursor cursor = makeCursor();
    (void)cursor.next(10000, 0, 44100);
    EXPECT_EQ(cursor.next(14410, 0.1, 44100), 13528); // as close as the slack allows
    EXPECT_EQ(cursor.next(14410, 0.1, 44100), 9118);  // one delivery and the slack behind
    EXPECT_EQ(cursor.next(14410, 0.09, 44100), 13087);
    EXPECT_EQ(cursor.next(14410, 0.02, 44100), 14410); // two deliveries are overdue
}

TEST(VisReadCursorTest, ComesBackFromOutsideTheRing) {
    // Too far ahead, overwritten, readable but far behind, in range.
    for (const auto &[position, expected] :
         {std::pair(200000, 100000 - 1000 - 882), {60000, 98118}, {96000, 98118}, {97500, 97500}}) {
        VisReadCursor cursor = makeCursor();
        cursor.lastWriteCount = 99000;
        cursor.position = position;
        EXPECT_EQ(cursor.next(100000, 0, 44100), expected) << position;
    }
    VisReadCursor cursor = makeCursor();
    for (const double elapsed : {-5.0, 1e300, static_cast<double>(NAN), static_cast<double>(INFINITY)})
        EXPECT_LE(cursor.next(50000, elapsed, 192000), 50000);
}
