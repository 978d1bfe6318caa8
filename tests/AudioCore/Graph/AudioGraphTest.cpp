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
    explicit ConstantGraph(float value = 1) : graph(rate, nullptr) {
        graph.node()->discardBefore(1);
        EXPECT_TRUE(graph.node()->beginSegment(1, 0));
        const std::vector<StereoFrame> sound(rate, StereoFrame{value, value});
        EXPECT_EQ(graph.node()->write(sound), sound.size());
        graph.node()->play();
    }
    std::vector<StereoFrame> render(int frames) {
        std::vector<StereoFrame> out(static_cast<std::size_t>(frames));
        graph.render(&out.front().left, frames);
        return out;
    }
    AudioGraph graph;
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
    ConstantGraph constant(-1.5F);
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
    AudioGraph graph(rate, &tap);
    graph.setVolume(0);
    graph.node()->discardBefore(1);
    ASSERT_TRUE(graph.node()->beginSegment(1, 0));
    ASSERT_GT(graph.node()->write(std::vector<StereoFrame>(rate, StereoFrame{0.5F, 0.25F})), 0U);
    graph.node()->play();
    std::vector<float> out(2 * 3000);
    graph.render(out.data(), 3000);
    EXPECT_EQ(out, std::vector<float>(2 * 3000));
    std::vector<float> tapped(3000);
    ASSERT_TRUE(tap.ring().copyLatest(3000, tapped));
    EXPECT_EQ(tapped, std::vector<float>(3000, 0.375F));
}

TEST(AudioGraphTest, RenderingNeverAllocates) {
    AnalyzerTap tap(1024, 32768);
    tap.prepare(rate);
    AudioGraph graph(rate, &tap);
    const std::vector<StereoFrame> second(rate, StereoFrame{0.5F, 0.5F});
    std::vector<float> out(2 * 2048);
    PlayerNode &node = *graph.node();
    const auto start = [&](std::uint32_t generation, std::int64_t frame) {
        node.discardBefore(generation);
        EXPECT_TRUE(node.beginSegment(generation, frame));
        EXPECT_EQ(node.write(second), second.size());
        node.play();
    };
    const struct {
        const char *name;
        std::function<void()> command;
    } rows[] = {{"silence", [] {}},
                {"a start", [&] { start(1, 0); }},
                {"a parameter", [&] { graph.setVolume(0.3F); }},
                {"a pause", [&] { node.pause(); }},
                {"a seek", [&] { start(2, 500); }},
                {"playing on", [] {}},
                {"running dry", [&] {
                     for (int block = 0; block < 30; ++block)
                         graph.render(out.data(), 2048);
                     EXPECT_EQ(node.underruns(), 1);
                 }}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        row.command();
        const std::int64_t before = allocationCount();
        for (int block = 0; block < 5; ++block)
            graph.render(out.data(), 2048);
        EXPECT_EQ(allocationCount() - before, 0);
    }

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
    AudioGraph graph(rate, &tap);
    graph.node()->discardBefore(1);
    const bool begun = graph.node()->beginSegment(1, 0) &&
                       graph.node()->write(std::vector<StereoFrame>(rate)) == static_cast<std::size_t>(rate);
    graph.node()->play();
    std::vector<float> out(2 * 1024);
    if (!begun || prctl(PR_SET_SECCOMP, SECCOMP_MODE_STRICT) != 0)
        _exit(2);
    for (int block = 0; block < 100; ++block) {
        graph.setVolume(static_cast<float>(block % 2));
        graph.render(out.data(), 1024);
    }
    syscall(SYS_exit, graph.node()->underruns() == 1 ? 0 : 3);
    __builtin_unreachable();
}

} // namespace

TEST(AudioGraphTest, RenderingMakesNoSystemCall) {
    EXPECT_EXIT(renderWithoutSystemCalls(), testing::ExitedWithCode(0), "");
}
#endif
