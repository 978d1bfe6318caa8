#include "MusicBackendKit/NowPlaying.h"

#include <gtest/gtest.h>

using namespace vantor;

namespace {

NowPlaying remote(NowPlaying::State state, double elapsed, std::optional<double> duration = {}) {
    NowPlaying playing = NowPlaying::idle({u"speaker"_qs}, 1000);
    playing.state = state;
    playing.elapsed = elapsed;
    playing.duration = duration;
    return playing;
}

} // namespace

TEST(NowPlayingTest, ElapsedStaysWithinTheItem) {
    using State = NowPlaying::State;
    const std::tuple<NowPlaying, double, double> rows[] = {
        {remote(State::playing, 10), 1002.5, 12.5},
        {remote(State::playing, 10), 990, 10}, // the server's clock is ahead
        {remote(State::playing, 10, 11), 1002.5, 11},
        {remote(State::playing, 10, 0), 1002.5, 12.5}, // of a radio station
        {remote(State::paused, 10, 11), 1002.5, 10},
        {remote(State::loading, 10), 1002.5, 10},
        {remote(State::paused, 30, 11), 1000, 11},
        {remote(State::playing, -3), 1001, 0},
    };
    for (const auto &[playing, instant, expected] : rows)
        EXPECT_DOUBLE_EQ(playing.elapsedAt(instant), expected);
}

TEST(NowPlayingTest, TheAnchorIsWhenTheRemoteSecondChanges) {
    const NowPlaying playing = remote(NowPlaying::State::playing, 12.25);
    const OutputDevice::ID speaker{u"speaker"_qs};
    ASSERT_TRUE(playing.remoteClockAnchor(speaker));
    EXPECT_DOUBLE_EQ(*playing.remoteClockAnchor(speaker), 999.80);
    EXPECT_DOUBLE_EQ(*remote(NowPlaying::State::playing, 12).remoteClockAnchor(false), 1000.05);

    EXPECT_FALSE(playing.remoteClockAnchor(OutputDevice::thisMac().id));
    EXPECT_FALSE(playing.remoteClockAnchor(true));
    EXPECT_FALSE(remote(NowPlaying::State::paused, 12.25).remoteClockAnchor(speaker));
    EXPECT_FALSE(remote(NowPlaying::State::loading, 12.25).remoteClockAnchor(false));
}
