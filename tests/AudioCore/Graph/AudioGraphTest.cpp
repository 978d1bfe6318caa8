#include "AudioCore/Graph/AudioGraph.h"

#include "AudioCore/Analysis/AnalyzerTap.h"
#include "tests/Support/AllocationCounter.h"

#include <gtest/gtest.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <functional>

using namespace vantor;

namespace {

constexpr int rate = 48000;

// A graph that plays an endless constant, so that the output is the mixer's gain.
struct ConstantGraph {
    explicit ConstantGraph(StereoFrame frame = {1, 1}, AnalyzerTap *tap = nullptr)
        : graph(rate, tap), sound(rate, frame) {
        start(1, 0);
    }
    void start(std::uint32_t generation, std::int64_t place) {
        graph.node()->discardBefore(generation);
        EXPECT_TRUE(graph.node()->beginSegment(generation, place));
        EXPECT_EQ(graph.node()->write(sound), sound.size());
        graph.node()->play();
    }
    std::vector<StereoFrame> render(int frames) {
        std::vector<StereoFrame> out(static_cast<std::size_t>(frames));
        graph.render(&out.front().left, frames);
        return out;
    }
    AudioGraph graph;
    const std::vector<StereoFrame> sound;
};

} // namespace

TEST(AudioGraphTest, VolumeIsLinearAndBalanceAttenuatesTheOtherSide) {
    const struct {
        const char *name;
        float volume, balance;
        StereoFrame expected;
    } rows[] = {
        {"full", 1, 0, {1, 1}},    {"half", 0.5F, 0, {0.5F, 0.5F}},
        {"mute", 0, 0.5F, {0, 0}}, {"left", 1, -1, {1, 0}},
        {"right", 1, 1, {0, 1}},   {"half right, quarter loud", 0.25F, 0.5F, {0.125F, 0.25F}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        ConstantGraph constant;
        constant.graph.setVolume(row.volume);
        constant.graph.setBalance(row.balance);
        EXPECT_EQ(constant.render(1).front(), row.expected) << "from the very first frame";
    }
}

TEST(AudioGraphTest, PeakIsTheLoudestSinceLastAsked) {
    ConstantGraph constant({-1.5F, -1.5F});
    EXPECT_EQ(constant.graph.takePeak(), 0.0F);
    constant.render(600);
    constant.graph.setVolume(0);
    constant.render(5000);
    EXPECT_EQ(constant.graph.takePeak(), 1.5F);
    constant.render(600);
    EXPECT_EQ(constant.graph.takePeak(), 0.0F);
}

TEST(AudioGraphTest, TheTapHearsTheSoundBeforeTheMixer) {
    AnalyzerTap tap(1024, 32768);
    ConstantGraph constant({0.5F, 0.25F}, &tap);
    constant.graph.setVolume(0);
    EXPECT_EQ(constant.render(3000), std::vector<StereoFrame>(3000));
    std::vector<float> tapped(3000);
    ASSERT_TRUE(tap.ring().copyLatest(3000, tapped));
    EXPECT_EQ(tapped, std::vector<float>(3000, 0.375F));
}

TEST(AudioGraphTest, RenderingNeverAllocates) {
    AnalyzerTap tap(1024, 32768);
    tap.prepare(rate);
    ConstantGraph constant({0.5F, 0.5F}, &tap);
    AudioGraph &graph = constant.graph;
    std::vector<float> out(2 * 2048);
    const std::pair<const char *, std::function<void()>> rows[] = {
        {"a start", [] {}},
        {"a parameter", [&] { graph.setVolume(0.3F); }},
        {"a pause", [&] { graph.node()->pause(); }},
        {"a seek", [&] { constant.start(2, 500); }},
        {"running dry", [&] { constant.render(60'000); }}};
    for (const auto &[name, command] : rows) {
        command();
        const std::int64_t before = allocationCount();
        for (int block = 0; block < 5; ++block)
            graph.render(out.data(), 2048);
        EXPECT_EQ(allocationCount() - before, 0) << name;
    }
    EXPECT_EQ(graph.node()->underruns(), 1);

    const std::int64_t before = allocationCount();
    void *volatile memory = malloc(3); // what the counter must see
    free(memory);
    EXPECT_EQ(allocationCount() - before, 1);
}

#ifndef VANTOR_HAS_SANITIZER_ALLOCATOR // sanitizers make system calls of their own
namespace {

// Ends with 0 when rendering got by with no system call at all: in this mode any is deadly but exit.
[[noreturn]] void renderWithoutSystemCalls() {
    AnalyzerTap tap(1024, 32768);
    ConstantGraph constant({0, 0}, &tap);
    std::vector<float> out(2 * 1024);
    if (prctl(PR_SET_SECCOMP, SECCOMP_MODE_STRICT) != 0)
        _exit(2);
    for (int block = 0; block < 100; ++block) {
        constant.graph.setVolume(static_cast<float>(block % 2));
        constant.graph.render(out.data(), 1024);
    }
    syscall(SYS_exit, constant.graph.node()->underruns() == 1 ? 0 : 3);
    __builtin_unreachable();
}

} // namespace

TEST(AudioGraphTest, RenderingMakesNoSystemCall) {
    EXPECT_EXIT(renderWithoutSystemCalls(), testing::ExitedWithCode(0), "");
}
#endif
