#include "AudioCore/Output/NullAudioOutput.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace vantor;
using Clock = std::chrono::steady_clock;

TEST(NullAudioOutputTest, KeepsThePaceOfTheClockAndRestsWhenTold) {
    std::atomic<int> frames{0};
    NullAudioOutput output(44100);
    const auto began = Clock::now();
    output.start(
        [&frames](float *interleaved, int count) {
            interleaved[2 * count - 1] = 1; // the whole block is there to be written
            frames += count;
        },
        {});
    output.setSuspended(false);
    while (frames < 22050 && Clock::now() - began < std::chrono::seconds(20))
        std::this_thread::yield();
    // The last of 50 blocks is due 490 ms after the first; a busy machine may only add to that.
    EXPECT_GE(Clock::now() - began, std::chrono::milliseconds(489));
    EXPECT_LT(Clock::now() - began, std::chrono::milliseconds(700));

    output.setSuspended(true);
    std::this_thread::sleep_for(std::chrono::milliseconds(15)); // a block that had begun ends
    const int before = frames;
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_EQ(frames, before);
    output.setSuspended(false);
    while (frames == before && Clock::now() - began < std::chrono::seconds(20))
        std::this_thread::yield();
    EXPECT_GT(frames, before);
    output.stop();
}
