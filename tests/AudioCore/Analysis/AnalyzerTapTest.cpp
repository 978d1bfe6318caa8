#include "AudioCore/Analysis/AnalyzerTap.h"

#include "tests/Support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <numbers>
#include <numeric>
#include <thread>

using namespace vantor;

namespace {

TEST(VisSampleRingTest, CopiesWhatItStillHolds) {
    VisSampleRing ring(1000);
    ASSERT_EQ(ring.capacity(), 1024);
    std::vector<float> samples(5000);
    std::iota(samples.begin(), samples.end(), 0.0F);
    ring.write(samples.data(), 700);
    ring.write(samples.data() + 700, 4300); // more than it can hold
    ASSERT_EQ(ring.writeCount(), 5000);
    const std::tuple<const char *, int, int64_t, bool> rows[] = {
        {"older", 100, 4500, true},
        {"all that is safe", 896, 5000, true},
        {"one more", 897, 5000, false},
        {"not yet written", 10, 5001, false},
        {"overwritten", 10, 4000, false},
        {"before the beginning", 10, 5, false},
        {"nothing", 0, 5000, true},
        {"negative", -1, 5000, false},
        {"larger than the buffer", 1001, 5000, false},
    };
    for (const auto &[name, count, end, copies] : rows) {
        std::vector<float> copied(1000);
        EXPECT_EQ(ring.copy(count, end, copied), copies) << name;
        if (copies)
            EXPECT_TRUE(std::equal(copied.begin(), copied.begin() + count, samples.begin() + end - count))
                << name;
    }
    std::vector<float> newest(3);
    EXPECT_TRUE(ring.copyLatest(3, newest));
    EXPECT_EQ(newest, (std::vector<float>{4997, 4998, 4999}));
}

// The reader asks for the oldest samples there are while the writer laps it: whatever a copy that succeeds
// holds is one unbroken stretch that ends where it was asked to.
TEST(VisSampleRingTest, ACopyIsWholeWhileTheWriterRuns) {
    VisSampleRing ring(512);
    constexpr int64_t period = 1 << 20; // counts up to here are exact in a float
    std::atomic<bool> done = false;
    std::thread writer([&] {
        std::vector<float> block(96);
        for (int64_t written = 0; !done; written += 96) {
            for (size_t i = 0; i < block.size(); ++i)
                block[i] = static_cast<float>((written + static_cast<int64_t>(i)) % period);
            ring.write(block.data(), static_cast<int>(block.size()));
        }
    });
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(400);
    int64_t whole = 0, broken = 0;
    std::vector<float> copied(64);
    while (std::chrono::steady_clock::now() < deadline) {
        const int64_t end = ring.writeCount() - ring.readable() + 64 + whole % 100;
        if (!ring.copy(64, end, copied))
            continue;
        ++whole;
        for (int64_t i = 0; i < 64; ++i)
            broken += copied[static_cast<size_t>(i)] != static_cast<float>((end - 64 + i) % period);
    }
    done = true;
    writer.join();
    EXPECT_GT(whole, 0);
    EXPECT_EQ(broken, 0) << "of " << whole << " copies";
}

TEST(AnalyzerTapTest, ShowsTheSoundThatWasWritten) {
    AnalyzerTap tap(1024, 32768);
    std::vector<float> sound;
    for (int i = 0; i < 8192; ++i) {
        const auto sample = static_cast<float>(std::sin(2 * std::numbers::pi * 360 * i / 1024));
        sound.insert(sound.end(), {sample, 0}); // on the left alone: the mean is half of it
    }
    EXPECT_EQ(tap.frame(0.01), std::nullopt);
    tap.prepare(44100);
    tap.write(sound.data(), 1000);
    EXPECT_EQ(tap.frame(0.01), std::nullopt) << "less than one picture";
    const int64_t earlier = allocationCount();
    sound.reserve(sound.capacity() + 1);
    const int64_t allocations = allocationCount();
    ASSERT_GT(allocations, earlier) << "nothing is counted";
    tap.write(sound.data(), 8192);
    const std::optional<VisFrame> frame = tap.frame(0.01);
    EXPECT_EQ(allocationCount(), allocations);
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->sampleCount, 1024);
    // Half of full scale, and half again by the window; the side bins add 1.76 dB.
    EXPECT_NEAR(frame->spectrum[74], 1 - (12.04 - 1.76) / 60, 0.001);
    EXPECT_NEAR(std::ranges::max(frame->scope), 0.5, 0.02);
    EXPECT_EQ(tap.columnMap(), SpectrumColumnMap(1024, 44100, 75));

    tap.resetCursor();
    EXPECT_TRUE(tap.latestFrame());
    tap.prepare(0);
    EXPECT_EQ(tap.columnMap(), std::nullopt);
    EXPECT_EQ(tap.latestFrame(), std::nullopt);
}

} // namespace
