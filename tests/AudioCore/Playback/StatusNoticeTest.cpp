#include "AudioCore/Playback/PlaybackState.h"

#include <gtest/gtest.h>

using namespace vantor;

static const StatusNotice::Clock::time_point shown{std::chrono::seconds(100)};

TEST(StatusNoticeTest, CountsSkippedFiles) {
    struct Row {
        int skipped, added;
        const char *text;
    };
    for (const Row &row : {Row{1, 0, "Skipped 1 file"}, Row{3, 0, "Skipped 3 files"},
                           Row{1, 1, "Skipped 1 of 2 files"}, Row{2, 10, "Skipped 2 of 12 files"}}) {
        const StatusNotice expected{QLatin1String(row.text), QStringLiteral("see Console"), shown};
        EXPECT_EQ(StatusNotice::skipped(row.skipped, row.added, shown), expected) << row.text;
    }
    EXPECT_EQ(StatusNotice::skipped(0, 5, shown), std::nullopt);
}

TEST(StatusNoticeTest, NamesWhatDidNotPlay) {
    Track track;
    track.title = QStringLiteral("Dusk");
    struct Row {
        std::optional<Track> track;
        int failures;
        bool skipped;
        const char *text;
    };
    for (const Row &row :
         {Row{track, 1, false, "Could not play Dusk"}, Row{track, 3, true, "Could not play Dusk"},
          Row{track, 2, false, "Could not play 2 tracks"}, Row{{}, 1, true, "Could not play this track"}}) {
        const PlaybackFailure failure{row.track, QStringLiteral("Why."), row.failures, row.skipped};
        const StatusNotice expected{QLatin1String(row.text), QStringLiteral("Why."), shown};
        EXPECT_EQ(StatusNotice::playbackFailed(failure, shown), expected) << row.text;
    }
}

TEST(StatusNoticeTest, IsShownForThreeSeconds) {
    using namespace std::chrono_literals;
    const StatusNotice notice = StatusNotice::skinFailed(QStringLiteral("Dusk"), shown);
    EXPECT_EQ(notice, (StatusNotice{QStringLiteral("Could not load Dusk"), std::nullopt, shown}));
    EXPECT_TRUE(notice.isActive(shown + 2999ms));
    EXPECT_FALSE(notice.isActive(shown + 3s));
}
