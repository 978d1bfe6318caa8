#include "SendspinKit/Clock/SendspinClockState.h"

#include <gtest/gtest.h>

#include <limits>

using namespace vantor;

namespace {

constexpr std::int64_t second = 1'000'000;
constexpr auto largest = std::numeric_limits<std::int64_t>::max();

SendspinClockSample sampleWithRoundTrip(std::int64_t roundTrip, std::int64_t offset) {
    return {.t1 = 1000, .t2 = 1000 + offset, .t3 = 1000 + offset, .t4 = 1000 + roundTrip};
}

} // namespace

// The figures come from a separate calculation of the filter's formulas.
TEST(SendspinTimeFilter, EstimatesOffsetAndDrift) {
    struct Step {
        double measurement;
        std::int64_t maxError;
        double offset;
        double drift;
        bool useDrift;
        std::int64_t error;
    };
    const Step steps[] = {{1000.5, 100, 1000.5, 0, false, 50},
                          {1100.5, 100, 1100.5, 1e-4, false, 50},
                          {1180, 50, 1181.576923076923, 8.738461538461539e-05, false, 24},
                          {1290, 200, 1274.1449276557194, 9.104347839184624e-05, true, 50}};
    SendspinTimeFilter filter;
    EXPECT_EQ(filter.error(), largest);
    std::int64_t time = 0;
    for (const Step &step : steps) {
        filter.update(step.measurement, step.maxError, time += second);
        EXPECT_NEAR(filter.offset(), step.offset, 1e-6);
        EXPECT_NEAR(filter.drift(), step.drift, 1e-12);
        EXPECT_EQ(filter.useDrift(), step.useDrift);
        EXPECT_EQ(filter.error(), step.error);
    }
    // A second later, with 91 µs of drift; before the drift was significant, without.
    EXPECT_EQ(filter.computeServerTime(5 * second), 5 * second + 1365);
    EXPECT_EQ(filter.computeClientTime(5 * second + 1365), 5 * second);
    SendspinTimeFilter early;
    early.update(1000.5, 100, second);
    early.update(1100.5, 100, 2 * second);
    EXPECT_EQ(early.computeServerTime(9 * second), 9 * second + 1101);
    EXPECT_EQ(early.computeClientTime(9 * second + 1101), 9 * second + 1); // half a microsecond, rounded up

    const SendspinTimeFilter before = filter;
    filter.update(9000, 100, 4 * second); // no later than the last one
    filter.update(9000, 100, 3 * second);
    filter.update(9000, 0, 5 * second);
    EXPECT_EQ(filter, before);
    filter.reset();
    EXPECT_EQ(filter, SendspinTimeFilter());
}

TEST(SendspinTimeFilter, ForgetsOnlyAfterEnoughSamples) {
    struct Row {
        int jumpAt; ///< the number of the sample
        double offset;
    };
    for (const Row &row : {Row{100, 44801.292018621396}, Row{101, 145970.76894439527}}) {
        SCOPED_TRACE(row.jumpAt);
        SendspinTimeFilter filter;
        for (int i = 1; i < row.jumpAt; ++i)
            filter.update(5000, 1000, i * second);
        filter.update(1'005'000, 1000, row.jumpAt * second);
        EXPECT_NEAR(filter.offset(), row.offset, 1e-3);
    }
}

TEST(SendspinTimeFilter, ConvertsWhatNoClockShows) {
    SendspinTimeFilter filter;
    filter.update(1e18, 100, second);
    EXPECT_GT(filter.computeClientTime(largest), 4e18);
    EXPECT_LT(filter.computeClientTime(-largest), -4e18);
    EXPECT_EQ(filter.computeServerTime(largest), largest);
    filter.update(1e18 - 1e6, 100, 2 * second); // the server's clock stands still
    filter.update(1e18 - 2e6, 100, 3 * second);
    (void)filter.computeClientTime(5 * second);
}

TEST(SendspinClockBurst, FindsTheSampleThatWasDelayedLeast) {
    struct Row {
        const char *name;
        std::vector<std::int64_t> roundTrips;
        std::optional<std::size_t> best;
    };
    const Row rows[] = {
        {"none", {}, {}},
        {"all too short", {1, 0, -70}, {}},
        {"shortest", {90, 40, 60}, 1},
        {"half round trips tie", {91, 41, 40, 41}, 1},
        {"too short among others", {50, 1, 2}, 2},
        {"beyond its size", {50, 60, 70, 80, 50, 50, 50, 50, 10}, 0},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        SendspinClockBurst burst;
        for (std::size_t i = 0; i < row.roundTrips.size(); ++i)
            burst.add(sampleWithRoundTrip(row.roundTrips[i], static_cast<std::int64_t>(i) * 1000));
        std::optional<SendspinClockSample> expected;
        if (row.best)
            expected =
                sampleWithRoundTrip(row.roundTrips[*row.best], static_cast<std::int64_t>(*row.best) * 1000);
        EXPECT_EQ(burst.best(), expected);
    }
}

TEST(SendspinClockState, CountsBurstsAndWhatTheFilterTook) {
    SendspinClockState state;
    SendspinClockBurst burst;
    burst.add({.t1 = 1000, .t2 = 6003, .t3 = 6004, .t4 = 1010});
    state.finish(burst);
    EXPECT_EQ(state.filter.offset(), 4998.5); // (5003 + 4994) / 2
    EXPECT_EQ(state.filter.error(), 2);       // half of 4, of 9 µs on the way
    EXPECT_EQ(state.filter.lastUpdate(), 1010);
    state.finish(burst); // no later
    state.finish({});
    EXPECT_EQ(state.acceptedSamples, 1);
    EXPECT_EQ(state.finishedBursts, 3);
    state.reset();
    EXPECT_EQ(state, SendspinClockState());
}
