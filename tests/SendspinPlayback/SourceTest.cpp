#include "SendspinPlayback/Source/SendspinSource.h"
#include "tests/Support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace vantor;

namespace {

constexpr int rate = 48'000;
constexpr int block = 480;
constexpr double frequency = 3000;
constexpr double step = 2 * std::numbers::pi * frequency / rate;

/// A source that is fed a sine on a clock that it knows exactly.
class SendspinSourceTest : public testing::Test {
  protected:
    void SetUp() override {
        SendspinTiming timing;
        timing.filter.update(0, 100, 1);
        timing.isKnown = true;
        source.setTiming(timing);
    }
    /// Renders blocks of which the first frame is heard `off` microseconds after it should.
    void play(int blocks, double off = 0, double drift = 0) {
        for (int i = 0; i < blocks; ++i) {
            while (source.queue().buffered() < rate / 2)
                feed();
            out.resize(out.size() + 2 * block);
            const auto now = static_cast<std::int64_t>(time + off);
            const std::int64_t before = allocationCount();
            source.render(out.data() + out.size() - 2 * block, block, now);
            allocations += allocationCount() - before;
            time += 10'000 * (1 + drift);
        }
    }
    void feed() {
        std::array<StereoFrame, 1200> frames{};
        for (StereoFrame &frame : frames) {
            const auto value = static_cast<float>(0.8 * std::sin(step * static_cast<double>(fed++)));
            frame = {value, -value};
        }
        source.queue().append((fed - 1200) * 1'000'000 / rate, fed > 1200, frames);
    }
    /// Of the frames from `first` on, the largest change of the slope.
    [[nodiscard]] double sharpest(std::size_t first) const {
        double most = 0;
        for (std::size_t i = first + 2; i < out.size() / 2; ++i)
            most = std::max(most,
                            std::abs(static_cast<double>(out[2 * i] - 2 * out[2 * i - 2] + out[2 * i - 4])));
        return most;
    }

    SendspinSource source{rate};
    std::vector<float> out;
    std::int64_t fed = 0;
    std::int64_t allocations = 0;
    double time = 0; ///< when the next frame is heard, microseconds
};

// A sine's slope changes by no more than this; half a percent faster, by one percent more.
const double sineBend = 0.8 * 4 * std::sin(step / 2) * std::sin(step / 2);

} // namespace

TEST_F(SendspinSourceTest, IsExactWhereNothingIsToBeCorrected) {
    play(100);
    double most = 0;
    for (std::size_t i = 4800; i < out.size() / 2; ++i)
        most = std::max(
            most, std::abs(static_cast<double>(out[2 * i]) - 0.8 * std::sin(step * static_cast<double>(i))));
    EXPECT_LT(most, 1e-5);
    EXPECT_EQ(source.figures().ratio, 1);
}

TEST_F(SendspinSourceTest, CompensatesWithoutClicks) {
    struct Row {
        const char *name;
        double off; ///< microseconds
        double drift;
    };
    for (const Row &row : {Row{"late", 15'000, 0}, Row{"early", -15'000, 0}, Row{"drifting", 0, 900e-6}}) {
        SCOPED_TRACE(row.name);
        play(100);
        const std::size_t first = out.size() / 2;
        play(1000, row.off, row.drift);
        EXPECT_LT(sharpest(first), sineBend * 1.012);
        EXPECT_LT(std::abs(source.figures().error), 600e-6);
        EXPECT_EQ(source.figures().resyncs, 0);
        time += row.off;
    }
}

TEST_F(SendspinSourceTest, IgnoresOneWrongLatencyAndFadesWhereItJumps) {
    play(100);
    const std::size_t first = out.size() / 2;
    play(3, 80'000);
    play(100);
    EXPECT_EQ(source.figures().resyncs, 0);
    EXPECT_LT(sharpest(first), sineBend * 1.012);
    play(100, 80'000);
    EXPECT_EQ(source.figures().resyncs, 1);
    EXPECT_LT(sharpest(first), sineBend * 1.1) << "a fade of 5 ms adds little";
    EXPECT_LT(std::abs(source.figures().error), 100e-6);
}

TEST_F(SendspinSourceTest, FadesOutWhenTheSoundEndsAndCountsWhatIsMissing) {
    play(50);
    const std::size_t first = out.size() / 2;
    out.resize(out.size() + 2 * rate);
    source.render(out.data() + 2 * first, rate, static_cast<std::int64_t>(time));
    EXPECT_LT(sharpest(first), sineBend * 1.1);
    EXPECT_EQ(out.back(), 0);
    EXPECT_EQ(source.figures().resyncs, 1);
    EXPECT_FALSE(source.figures().isPlaying);
    time += 1'000'000;
    feed(); // all of it is for a time that is over
    feed();
    source.render(out.data(), block, static_cast<std::int64_t>(time));
    EXPECT_EQ(source.figures().late, 2);
}

TEST_F(SendspinSourceTest, RampsVolumeAndMute) {
    play(50);
    const std::size_t first = out.size() / 2;
    source.setVolume(0);
    play(5);
    EXPECT_EQ(out.back(), 0);
    source.setVolume(100);
    play(5);
    source.setMuted(true);
    play(5);
    EXPECT_EQ(out.back(), 0);
    EXPECT_LT(sharpest(first), sineBend * 1.1);
}

TEST_F(SendspinSourceTest, RendersWithoutAllocation) {
    play(50);
    play(200, 10'000, 100e-6);
    source.setVolume(30);
    source.queue().drop();
    play(200, 70'000);
    EXPECT_TRUE(source.figures().isPlaying);
    EXPECT_EQ(allocations, 0);
}

// Two computers whose clocks differ, whose callbacks have other lengths and whose latencies are measured
// badly.
TEST(SendspinClickTest, ComputersThatAreInStepTickAsOne) {
    struct Row {
        std::int64_t offset; ///< of the server's clock, microseconds
        int frames;
        int jitter; ///< of the times that are told, microseconds
        int delayMs;
    };
    for (const Row &row :
         {Row{0, 480, 0, 0}, Row{1'763'000'000'123'457, 441, 900, 0}, Row{-7'300'001, 1024, 900, 250}}) {
        SCOPED_TRACE(row.offset);
        SendspinTiming timing;
        timing.staticDelayMs = row.delayMs;
        timing.filter.update(static_cast<double>(row.offset), 100, 1);
        SendspinClick click(rate);
        click.setOn(true);
        std::vector<double> ticks; // when they begin, microseconds of the server's clock
        std::vector<float> out;
        const double begin = 5'000'000;
        for (int call = 0; call * row.frames < 11 * rate; ++call) {
            timing.isKnown = call > 0;
            out.assign(static_cast<std::size_t>(2 * row.frames), 0);
            const double now = begin + 1e6 * call * row.frames / rate;
            const int wrong = row.jitter * (call * 7 % 11 - 5) / 5;
            click.mix(out.data(), row.frames, static_cast<std::int64_t>(now) + wrong, timing);
            for (std::size_t i = 0; i < out.size(); i += 2) {
                const double server =
                    now + 1e6 * static_cast<double>(i / 2) / rate + static_cast<double>(row.offset);
                if (out[i] > 0.3F && (ticks.empty() || server - ticks.back() > 50'000))
                    ticks.push_back(server);
                ASSERT_EQ(out[i], out[i + 1]);
            }
        }
        ASSERT_GE(ticks.size(), 10U);
        ASSERT_LE(ticks.size(), 11U);
        for (const double tick : ticks)
            EXPECT_NEAR(std::remainder(tick - row.delayMs * 1000, 1e6), 0, 300);
        click.setOn(false);
        out.assign(static_cast<std::size_t>(2 * rate), 0);
        click.mix(out.data(), rate, 30'000'000, timing);
        click.mix(out.data(), rate, 31'000'000, timing);
        EXPECT_EQ(*std::ranges::max_element(out), 0);
    }
}
