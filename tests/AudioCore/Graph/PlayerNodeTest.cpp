#include "AudioCore/Graph/PlayerNode.h"

#include <gtest/gtest.h>

#include <thread>

using namespace vantor;

namespace {

constexpr int rate = 44100;
std::vector<StereoFrame> ramp(int first, int frames) {
    std::vector<StereoFrame> sound;
    for (int i = first; i < first + frames; ++i)
        sound.push_back({static_cast<float>(i), static_cast<float>(-i)});
    return sound;
}

struct StartedNode : PlayerNode {
    explicit StartedNode(int sampleRate = rate) : PlayerNode(sampleRate) { discardBefore(1); }
};

void feed(PlayerNode &node, std::uint32_t generation, std::int64_t start,
          const std::vector<StereoFrame> &sound) {
    ASSERT_TRUE(node.beginSegment(generation, start));
    ASSERT_EQ(node.write(sound), sound.size());
}

std::vector<StereoFrame> render(PlayerNode &node, int frames) {
    std::vector<StereoFrame> out(static_cast<std::size_t>(frames), StereoFrame{9, 9});
    node.render(out);
    return out;
}

} // namespace

TEST(PlayerNodeTest, SegmentsPlayBackToBackWithoutAnyChange) {
    StartedNode node;
    feed(node, 1, 0, ramp(1, 1000));
    ASSERT_TRUE(node.endSegment());
    feed(node, 1, 0, ramp(1001, 500));
    ASSERT_TRUE(node.endSegment());
    node.play();

    std::vector<StereoFrame> expected = ramp(1, 1500);
    expected.resize(1600);
    EXPECT_EQ(render(node, 1600), expected);
    EXPECT_EQ(node.progress(), (PlayerNode::Progress{1, 500, true}));
    EXPECT_EQ(node.underruns(), 0);
}

TEST(PlayerNodeTest, OnlyTheCurrentSegmentAndItsFollowersAreHeard) {
    const struct {
        const char *name;
        std::vector<std::uint32_t> followers;
        std::vector<std::uint32_t> heard; ///< behind the first segment
    } rows[] = {{"planned", {2}, {2}},
                {"replaced", {3}, {3}},
                {"not yet there", {4}, {}},
                {"none", {}, {}},
                {"two", {2, 3}, {2, 3}},
                {"the first of two", {2, 4}, {2}},
                {"the second of two", {3, 19}, {3}}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        StartedNode node;
        node.follow(1, {2});
        for (const int generation : {1, 2, 3}) {
            feed(node, static_cast<std::uint32_t>(generation), 0, ramp(generation * 1000 + 1, 500));
            ASSERT_TRUE(node.endSegment());
        }
        node.play();
        std::vector<StereoFrame> heard = render(node, 300);
        node.follow(1, row.followers);
        for (const StereoFrame &frame : render(node, 1300))
            heard.push_back(frame);
        std::vector<StereoFrame> expected = ramp(1001, 500);
        for (const std::uint32_t generation : row.heard)
            for (const StereoFrame &frame : ramp(static_cast<int>(generation) * 1000 + 1, 500))
                expected.push_back(frame);
        expected.resize(1600);
        EXPECT_EQ(heard, expected);
        EXPECT_EQ(node.progress(),
                  (PlayerNode::Progress{row.heard.empty() ? 1 : row.heard.back(), 500, true}));
    }
}

TEST(PlayerNodeTest, PausingAtAJoinFadesAcrossItAndGoesOnBehindIt) {
    const std::vector<StereoFrame> second(rate, StereoFrame{1, 1});
    StartedNode node;
    node.follow(1, {2});
    feed(node, 1, 0, second);
    ASSERT_TRUE(node.endSegment());
    feed(node, 2, 0, second);
    node.play();
    render(node, rate - 5); // much less is left than the fade takes
    node.pause();
    std::vector<StereoFrame> heard = render(node, 1000);
    EXPECT_EQ(heard.back(), StereoFrame{});
    node.play();
    for (const StereoFrame &frame : render(node, 1000))
        heard.push_back(frame);
    EXPECT_EQ(heard.back(), (StereoFrame{1, 1}));
    EXPECT_EQ(node.progress().generation, 2U);
    for (std::size_t i = 1; i < heard.size(); ++i)
        ASSERT_NEAR(heard[i].left, heard[i - 1].left, 0.004) << i;
    node.discardBefore(3);
    heard = render(node, 1000);
    EXPECT_EQ(heard.back(), StereoFrame{});
    EXPECT_NEAR(heard.front().left, 1, 0.004) << "a follower that was entered fades out as well";
}

TEST(PlayerNodeTest, DiscardedSoundVanishesAlsoWhilePaused) {
    StartedNode node;
    feed(node, 1, 0, ramp(1, rate));
    node.play();
    render(node, 100);
    node.pause();
    render(node, 1000);
    feed(node, 2, 0, ramp(1, rate)); // its request is still on the way to the node
    render(node, 1000);
    node.discardBefore(2);
    EXPECT_EQ(render(node, 10).back(), StereoFrame{});
    EXPECT_EQ(node.framesAhead(), rate);
    node.play();
    EXPECT_EQ(render(node, 300), ramp(1, 300));
}

TEST(PlayerNodeTest, FollowersThatAreReplacedInAPauseTakeNoRoom) {
    for (const bool isAwake : {false, true}) {
        SCOPED_TRACE(isAwake ? "the output runs on" : "the output sleeps");
        StartedNode node;
        feed(node, 1, 0, ramp(1, 2 * rate));
        ASSERT_TRUE(node.endSegment());
        node.play();
        std::vector<StereoFrame> heard = render(node, rate);
        node.pause();
        ASSERT_EQ(render(node, 1000).back(), StereoFrame{});
        for (std::uint32_t follower = 2; follower <= 40; ++follower) {
            node.follow(1, {follower});
            feed(node, follower, 0, ramp(static_cast<int>(follower) * rate, rate));
            if (follower % 2 == 0) // the others are given up half-way
                ASSERT_TRUE(node.endSegment());
            if (isAwake)
                EXPECT_EQ(render(node, 64).back(), StereoFrame{});
        }
        EXPECT_EQ(node.framesAhead(), rate);
        node.play();
        render(node, 1000); // fades in
        const std::int64_t rest = 2 * rate - node.progress().frame;
        EXPECT_EQ(render(node, static_cast<int>(rest)).back(), ramp(2 * rate, 1).back());
        EXPECT_EQ(render(node, rate), ramp(40 * rate, rate));
    }
}

TEST(PlayerNodeTest, SoundWaitsForALittleReserve) {
    StartedNode node;
    node.play();
    feed(node, 1, 0, ramp(1, 100));
    EXPECT_EQ(render(node, 50), std::vector<StereoFrame>(50)) << "a single small block would run dry at once";
    ASSERT_TRUE(node.endSegment());
    EXPECT_EQ(render(node, 100), ramp(1, 100)) << "unless it is the whole segment";
    EXPECT_EQ(node.underruns(), 0);
}

TEST(PlayerNodeTest, RunningDryFadesIsCountedAndFadesInAgain) {
    StartedNode node;
    node.discardBefore(7);
    node.play();
    feed(node, 7, 100'000'000'000, std::vector<StereoFrame>(10'000, StereoFrame{1, 1}));
    std::vector<StereoFrame> heard = render(node, 11'000);
    EXPECT_EQ(node.progress(), (PlayerNode::Progress{7, 100'000'010'000, false}));
    EXPECT_EQ(node.underruns(), 1);
    ASSERT_EQ(node.write(std::vector<StereoFrame>(10'000, StereoFrame{1, 1})), 10'000U);
    for (const StereoFrame &frame : render(node, 2000))
        heard.push_back(frame);
    EXPECT_EQ(heard.back(), (StereoFrame{1, 1}));
    for (std::size_t i = 1; i < heard.size(); ++i)
        ASSERT_NEAR(heard[i].left, heard[i - 1].left, 0.004) << i;
}

// One thread writes followers that are replaced, one renders, one pauses and plays: the current segment is
// heard frame by frame whatever is taken back behind it.
TEST(PlayerNodeTest, TakingBackNeverTouchesWhatSounds) {
    StartedNode node(8000);
    feed(node, 1, 0, ramp(1, 20'000));
    ASSERT_TRUE(node.endSegment());
    std::atomic<bool> done{false};
    std::atomic<std::uint32_t> newest{1};
    std::thread writer([&] {
        const std::vector<StereoFrame> follower(700, {-1, 0});
        for (std::uint32_t written = 1; !done;) {
            if (const std::uint32_t next = newest; next != written && node.beginSegment(next, 0)) {
                written = next;
                static_cast<void>(node.write(follower));
            }
            std::this_thread::yield();
        }
    });
    std::thread listener([&] {
        std::vector<StereoFrame> out(16);
        std::int64_t last = 0;
        while (!done) {
            if (last < 15'000) // whatever the scheduler does, the segment's end stays far
                node.render(out);
            const PlayerNode::Progress progress = node.progress();
            EXPECT_EQ(progress.generation, progress.generation == 0 ? 0U : 1U);
            EXPECT_GE(progress.frame, last);
            last = progress.frame;
            for (const StereoFrame &frame : out)
                EXPECT_GE(frame.left, 0) << "no follower before its turn";
            std::this_thread::yield();
        }
    });
    for (std::uint32_t follower = 2; follower < 400; ++follower) {
        node.follow(1, {follower});
        newest = follower;
        if (follower % 2 == 0)
            node.play();
        else
            node.pause();
        std::this_thread::sleep_for(std::chrono::microseconds(follower % 7 * 50));
    }
    done = true;
    writer.join();
    listener.join();
    node.play();
    render(node, 64);
    EXPECT_LT(node.progress().frame, 20'000) << "the test needs the segment's end to be far";
    EXPECT_GT(node.progress().frame, 0);
}

// One thread writes segments, one renders, one seeks: every sample that is heard belongs to the segment that
// progress() names, and the whole is clean under the thread sanitizer.
TEST(PlayerNodeTest, ThreadsNeverMixSegments) {
    StartedNode node(8000);
    std::atomic<std::uint32_t> wanted{1};
    std::atomic<bool> done{false};
    node.play();
    std::thread writer([&] {
        std::uint32_t current = 0;
        std::vector<StereoFrame> block;
        while (!done) {
            if (const std::uint32_t newest = wanted; newest != current) {
                if (!node.beginSegment(newest, 0))
                    continue;
                current = newest;
                block.assign(700, {static_cast<float>(current), 0});
            }
            if (node.write(block) == 0)
                std::this_thread::yield();
        }
    });
    std::thread listener([&] {
        std::vector<StereoFrame> out(64);
        while (!done) {
            node.render(out);
            const auto generation = static_cast<float>(node.progress().generation);
            for (const StereoFrame &frame : out)
                EXPECT_LE(frame.left, generation);
            std::this_thread::yield();
        }
    });
    for (std::uint32_t generation = 2; generation < 300; ++generation) {
        node.discardBefore(generation);
        wanted = generation;
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
        while (node.progress().generation != generation && std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
        ASSERT_EQ(node.progress().generation, generation);
    }
    done = true;
    writer.join();
    listener.join();
}
