#include "tests/SendspinPlayback/PlaybackRig.h"
#include "tests/Support/AllocationCounter.h"

#include <gtest/gtest.h>

using namespace vantor;
using namespace std::chrono_literals;

namespace {

// Memory checkers make the sound of hours last.
#ifdef VANTOR_HAS_SANITIZER_ALLOCATOR
constexpr auto longTime = 5min;
#else
constexpr auto longTime = 2h;
#endif

const MadeFormat timeCode{.codec = QStringLiteral("pcm"), .sampleRate = 8000, .channels = 1, .bitDepth = 32};

struct Case {
    const char *name;
    FakeNetwork network;
    ModelOutput output;
    std::chrono::seconds length;
    double steady; ///< microseconds that 99 of 100 sounds are off by at most
};

const Case cases[] = {
    {"ideal", {.base = 1ms}, {.callbackFrames = 80}, 2min, 150},
    {"an output that drifts", {.base = 1ms}, {.callbackFrames = 171, .drift = -120}, 5min, 150},
    {"10 ms jitter", {.base = 1ms, .jitter = 10ms}, {80, 50, 40ms, 2ms}, longTime, 1000},
    {"50 ms bursts",
     {.base = 1ms, .jitter = 10ms, .burst = 50ms, .burstLength = 500ms, .burstPeriod = 5s},
     {80, -50, 120ms, 2ms},
     20min,
     2000},
};

} // namespace

TEST(SendspinInStepTest, HearsEverySoundAtItsTime) {
    for (const Case &row : cases) {
        SCOPED_TRACE(row.name);
        PlaybackRig rig(timeCode.sampleRate, row.output, true);
        rig.simulation.server.network = row.network;
        rig.simulation.server.setClock(3'600'000'000'000, 50);
        rig.start();
        rig.simulation.server.play(timeCode);
        std::vector<double> errors;
        for (std::chrono::seconds time = 0s; time < row.length; time += 1s) {
            rig.listen(1s);
            for (std::size_t i = 40; time >= 30s && i < rig.heard.size(); i += 40) {
                if (const auto late = rig.lateness(i))
                    errors.push_back(std::abs(*late));
            }
        }
        const SendspinFigures figures = rig.player.figures();
        EXPECT_TRUE(figures.isPlaying);
        EXPECT_EQ(figures.resyncs, 0);
        EXPECT_EQ(figures.late, 0);
        ASSERT_GT(errors.size(), static_cast<std::size_t>(row.length.count()));
        std::sort(errors.begin(), errors.end());
        const auto part = [&errors](double share) {
            return errors[static_cast<std::size_t>(share * static_cast<double>(errors.size() - 1))];
        };
        EXPECT_LT(part(0.99), row.steady);
        RecordProperty(std::string(row.name) + " p50 p99 max µs", std::to_string(part(0.5)) + " " +
                                                                      std::to_string(part(0.99)) + " " +
                                                                      std::to_string(errors.back()));
    }
}

TEST(SendspinInStepTest, BeginsAtItsTimeAndLaterByTheStaticDelay) {
    PlaybackRig rig(timeCode.sampleRate, {.callbackFrames = 80, .jitter = 1ms}, true);
    rig.start();
    rig.listen(1s);
    rig.simulation.server.play(timeCode);
    rig.listen(600ms);
    const auto begin = std::find_if(rig.heard.begin(), rig.heard.end(),
                                    [](const PlaybackRig::Heard &sound) { return sound.left != 0; });
    ASSERT_NE(begin, rig.heard.end());
    EXPECT_NEAR(begin->when - rig.heard.front().when, 450'000, 3000)
        << "500 ms less the latency and a callback";

    const auto worst = [&rig] {
        double most = 0;
        for (std::size_t i = 0; i < rig.heard.size(); ++i)
            most = std::max(most, std::abs(rig.lateness(i).value_or(0)));
        return most;
    };
    rig.listen(1s);
    EXPECT_LT(worst(), 1500);
    rig.simulation.server.command(QStringLiteral("set_static_delay"),
                                  {{QStringLiteral("static_delay_ms"), 330}});
    rig.listen(3s);
    EXPECT_EQ(rig.player.state().staticDelayMs, 330);
    rig.listen(1s);
    EXPECT_LT(worst(), 1500) << "where the delay counts as due";
}

TEST(SendspinInStepTest, ComesBackInStepAfterAStall) {
    PlaybackRig rig(timeCode.sampleRate, {.callbackFrames = 80}, true);
    rig.start();
    rig.simulation.server.play(timeCode);
    rig.listen(5s);
    ASSERT_TRUE(rig.player.figures().isPlaying);
    rig.stall(2s);
    rig.listen(500ms);
    rig.listen(1s);
    const SendspinFigures figures = rig.player.figures();
    EXPECT_TRUE(figures.isPlaying);
    EXPECT_GE(figures.resyncs, 1);
    EXPECT_LE(figures.resyncs, 2);
    for (std::size_t i = 0; i < rig.heard.size(); i += 10)
        EXPECT_LT(std::abs(rig.lateness(i).value_or(0)), 300);
    EXPECT_FALSE(rig.isSilent());
}
