#include "AudioCore/Playback/PlaybackState.h"

#include <gtest/gtest.h>

using namespace vantor;

static const StatusNotice::Clock::time_point shown{std::chrono::seconds(100)};

TEST(StatusNoticeTest, SaysWhatHappenedForThreeSeconds) {
    using namespace std::chrono_literals;
    for (const auto &[skipped, added, text] :
         {std::tuple(1, 0, "Skipped 1 file"), {3, 0, "Skipped 3 files"}, {2, 10, "Skipped 2 of 12 files"}}) {
        const StatusNotice expected{QLatin1String(text), QStringLiteral("see Console"), shown};
        EXPECT_EQ(StatusNotice::skipped(skipped, added, shown), expected);
    }
    EXPECT_EQ(StatusNotice::skipped(0, 5, shown), std::nullopt);

    const auto failed = [](std::optional<Track> track, int failures, bool skipped) {
        return StatusNotice::playbackFailed({std::move(track), QStringLiteral("Why."), failures, skipped},
                                            shown);
    };
    Track dusk;
    dusk.title = QStringLiteral("Dusk");
    EXPECT_EQ(failed(dusk, 3, true), (StatusNotice{u"Could not play Dusk"_qs, u"Why."_qs, shown}));
    EXPECT_EQ(failed(dusk, 2, false).text, QStringLiteral("Could not play 2 tracks"));
    EXPECT_EQ(failed({}, 1, true).text, QStringLiteral("Could not play this track"));
    EXPECT_TRUE(failed(dusk, 1, false).isActive(shown + 2999ms));
    EXPECT_FALSE(failed(dusk, 1, false).isActive(shown + 3s));
}
