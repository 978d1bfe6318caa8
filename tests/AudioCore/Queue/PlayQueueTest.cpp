#include "AudioCore/Queue/PlayQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>
#include <random>

using namespace vantor;

namespace {

/// One track for each letter; the letter is its title and its file's name.
std::vector<Track> makeTracks(const char *letters) {
    std::vector<Track> tracks;
    for (const QChar letter : QString::fromLatin1(letters)) {
        tracks.emplace_back().id = QUuid::createUuid();
        tracks.back().title = letter;
        tracks.back().source = QUrl::fromLocalFile(QStringLiteral("/music/") + letter);
    }
    return tracks;
}

PlayQueue makeQueue(const char *letters, std::optional<int> current = {}) {
    PlayQueue queue(makeTracks(letters));
    queue.select(current.value_or(-1));
    return queue;
}

std::string title(const std::optional<Track> &track) {
    return track ? track->title.toStdString() : "-";
}

std::string titles(const PlayQueue &queue, const std::vector<int> &pass) {
    std::string text;
    for (const int index : pass)
        text += title(queue.tracks().at(static_cast<size_t>(index)));
    return text;
}

std::vector<int> allRows(const PlayQueue &queue) {
    std::vector<int> rows(queue.tracks().size());
    std::iota(rows.begin(), rows.end(), 0);
    return rows;
}

std::string titles(const PlayQueue &queue) {
    return titles(queue, allRows(queue));
}

void expectInvariants(const PlayQueue &queue) {
    const auto pass =
        testing::UnorderedElementsAreArray(queue.isShuffled() ? allRows(queue) : std::vector<int>());
    EXPECT_THAT(queue.shuffleOrder(), pass);
    EXPECT_THAT(queue.nextPass(), pass);
    EXPECT_EQ(queue.shufflePosition() >= 0, queue.isShuffled() && queue.currentIndex());
    if (queue.shufflePosition() >= 0)
        EXPECT_EQ(queue.shuffleOrder().at(static_cast<size_t>(queue.shufflePosition())),
                  queue.currentIndex());
    if (queue.currentIndex())
        EXPECT_TRUE(*queue.currentIndex() >= 0 && *queue.currentIndex() < queue.count());
}

} // namespace

TEST(PlayQueueTest, StepsThroughAnOrderedQueue) {
    struct Row {
        const char *name;
        std::optional<int> current;
        RepeatMode repeat;
        const char *next, *previous, *afterEnd;
    };
    const Row rows[] = {
        {"nothing current", {}, RepeatMode::all, "a", "-", "-"},
        {"first", 0, RepeatMode::off, "b", "-", "b"},
        {"first, wrapping", 0, RepeatMode::all, "b", "c", "b"},
        {"last", 2, RepeatMode::off, "-", "b", "-"},
        {"last, wrapping", 2, RepeatMode::all, "a", "b", "a"},
        {"repeating itself", 2, RepeatMode::one, "-", "b", "c"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        PlayQueue queue = makeQueue("abc", row.current);
        queue.setRepeatMode(row.repeat);
        PlayQueue forward = queue, back = queue, ended = queue;
        EXPECT_EQ(title(forward.next()), row.next);
        EXPECT_EQ(title(back.previous()), row.previous);
        EXPECT_EQ(title(ended.advanceAfterTrackEnd()), row.afterEnd);
        EXPECT_EQ(queue.indexAfterCurrentEnds(),
                  row.afterEnd == std::string("-") ? std::nullopt : ended.currentIndex());
        EXPECT_EQ(queue.hasForwardTarget(), forward != queue);
    }
    EXPECT_EQ(PlayQueue().next(), std::nullopt);
    EXPECT_EQ(toggled(RepeatMode::one), RepeatMode::off);
}

TEST(PlayQueueTest, AShuffledPassIsRetracedAndFollowedByTheOneDrawn) {
    PlayQueue queue = makeQueue("abcdefgh");
    queue.setShuffle(true);
    queue.setRepeatMode(RepeatMode::all);
    const std::string pass = titles(queue, queue.shuffleOrder()), following = titles(queue, queue.nextPass());
    std::string played = title(queue.next());
    while (played.size() < 8)
        played += title(queue.advanceAfterTrackEnd());
    for (size_t back = 7; back-- > 0;)
        EXPECT_EQ(title(queue.previous()), pass.substr(back, 1));
    EXPECT_EQ(title(queue.previous()), pass.substr(7)) << "wrapping back stays within the pass";
    while (played.size() < 16)
        played += title(queue.next());
    EXPECT_EQ(played, pass + following);
    queue.setRepeatMode(RepeatMode::off);
    EXPECT_EQ(queue.next(), std::nullopt);
}

TEST(PlayQueueTest, ShufflingAndSelectingLeadWithThatTrack) {
    PlayQueue queue = makeQueue("abcdefgh", 5);
    QRandomGenerator generator(7);
    queue.setShuffle(true, generator);
    EXPECT_EQ(queue.shufflePosition(), 0);
    expectInvariants(queue);
    const std::vector<int> nextPass = queue.nextPass();
    queue.next();
    queue.select(2);
    EXPECT_EQ(queue.shuffleOrder().front(), 2);
    EXPECT_EQ(queue.nextPass(), nextPass);
    const PlayQueue before = queue;
    queue.select(8);
    queue.setShuffle(true);
    EXPECT_EQ(queue, before);
}

TEST(PlayQueueTest, AppendedTracksComeAnywhereAfterWhatHasPlayed) {
    std::set<std::string> passes, nextPasses;
    PlayQueue queue = makeQueue("abc", 0);
    queue.setShuffle(true);
    queue.next();
    for (int attempt = 0; attempt < 200; ++attempt) {
        PlayQueue longer = queue;
        longer.append(makeTracks("D"));
        passes.insert(titles(longer, longer.shuffleOrder()));
        nextPasses.insert(titles(longer, longer.nextPass()));
    }
    const std::string pass = titles(queue, queue.shuffleOrder());
    EXPECT_EQ(passes, (std::set{pass + "D", pass.substr(0, 2) + "D" + pass.substr(2)}));
    EXPECT_EQ(nextPasses.size(), 4U);
}

TEST(PlayQueueTest, RemovingTheCurrentTrackGoesToItsFollower) {
    struct Row {
        std::optional<int> current;
        IndexSet removed;
        const char *titles, *playing;
    };
    const Row rows[] = {
        {2, {0}, "bcd", "c"},      {1, {3}, "abc", "b"},       {1, {1}, "acd", "c"},
        {3, {3}, "abc", "c"},      {1, {1, 2}, "ad", "d"},     {2, {2, 3}, "ab", "b"},
        {1, {-1, 4}, "abcd", "b"}, {1, {0, 1, 2, 3}, "", "-"}, {{}, {0}, "bcd", "-"},
    };
    for (const Row &row : rows) {
        PlayQueue queue = makeQueue("abcd", row.current);
        queue.remove(row.removed);
        EXPECT_EQ(titles(queue) + title(queue.current()), std::string(row.titles) + row.playing);
    }
    PlayQueue shuffled = makeQueue("abcd", 1);
    shuffled.setShuffle(true);
    for (std::string pass = titles(shuffled, shuffled.shuffleOrder()); pass.size() > 1;) {
        const size_t place = pass.size() == 3 ? 2 : 0; // once at the end of the pass
        while (shuffled.shufflePosition() < static_cast<int>(place))
            shuffled.next();
        shuffled.remove(*shuffled.currentIndex());
        pass.erase(place, 1);
        EXPECT_EQ(title(shuffled.current()), pass.substr(std::min(place, pass.size() - 1), 1));
        while (shuffled.previous()) {
        }
    }
}

TEST(PlayQueueTest, MovesRowsAndKeepsTheirDistances) {
    struct Row {
        IndexSet rows;
        int offset;
        const char *expected;
    };
    for (const Row &row : {Row{{1}, 2, "acdbe"}, Row{{3, 4}, -1, "abdec"}, Row{{1, 3}, 100, "acbed"},
                           Row{{1, 3}, std::numeric_limits<int>::min(), "badce"}, Row{{-3, 9}, 1, "abcde"},
                           Row{{-3, 0, 9}, 1, "bacde"}}) {
        PlayQueue queue = makeQueue("abcde", 2);
        queue.move(row.rows, row.offset);
        EXPECT_EQ(titles(queue) + title(queue.current()), row.expected + std::string("c"));
    }
}

TEST(PlayQueueTest, SortsStablyAndSaysWhetherAnythingChanged) {
    std::vector<Track> tracks = makeTracks("xyz");
    tracks[0].source = QUrl::fromLocalFile(QStringLiteral("/b/Two"));
    tracks[1].source = QUrl::fromLocalFile(QStringLiteral("/c/one"));
    tracks[2].source = QUrl::fromLocalFile(QStringLiteral("/a/one"));
    PlayQueue queue(tracks);
    EXPECT_TRUE(queue.sort(PlaylistSortKey::fileName));
    EXPECT_EQ(titles(queue), "yzx");
    EXPECT_FALSE(queue.sort(PlaylistSortKey::fileName));
    EXPECT_TRUE(queue.sort(PlaylistSortKey::path));
    EXPECT_EQ(titles(queue), "zxy");
    for (const std::vector<int> &bad : {std::vector<int>{0, 1}, {0, 1, 1}, {0, 1, 3}, {-1, 0, 1}, {0, 1, 2}})
        EXPECT_FALSE(queue.reorder(bad));
    EXPECT_EQ(titles(queue), "zxy");
}

// Any sequence of edits keeps the invariants; rearranging keeps the current track and the order in which both
// passes play; removing many rows at once equals removing them one after the other.
TEST(PlayQueueTest, KeepsItsInvariantsUnderRandomEdits) {
    std::mt19937 random(20240607);
    const auto draw = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    PlayQueue queue;
    IndexSet rows;
    const std::function<void()> edits[] = {
        [&] { queue.append(makeTracks("abc")); },
        [&] { queue.select(draw(-1, queue.count())); },
        [&] { queue.next(); },
        [&] { queue.previous(); },
        [&] { queue.setRepeatMode(allRepeatModes[static_cast<size_t>(draw(0, 2))]); },
        [&] { queue.setShuffle(draw(0, 2) > 0); },
        [&] {
            PlayQueue oneByOne = queue;
            std::for_each(rows.rbegin(), rows.rend(), [&](int row) { oneByOne.remove(row); });
            queue.remove(rows);
            EXPECT_EQ(queue, oneByOne);
        },
        [&] {
            if (queue.count() > 12)
                queue.crop(rows);
        },
    };
    const std::function<bool()> rearrangements[] = {[&] { return queue.sort(PlaylistSortKey::path); },
                                                    [&] { return queue.reverse(); },
                                                    [&] { return queue.randomize(); },
                                                    [&] {
                                                        const PlayQueue before = queue;
                                                        queue.move(rows, draw(-3, 3));
                                                        return queue != before;
                                                    }};
    for (int round = 0; round < 4000 && !testing::Test::HasFailure(); ++round) {
        SCOPED_TRACE(round);
        rows = {draw(-1, queue.count()), draw(-1, queue.count()), draw(-1, queue.count())};
        edits[draw(0, 7)]();
        expectInvariants(queue);
        const PlayQueue before = queue;
        EXPECT_EQ(rearrangements[draw(0, 3)](), queue.tracks() != before.tracks());
        expectInvariants(queue);
        EXPECT_EQ(queue.current(), before.current());
        EXPECT_EQ(titles(queue, queue.shuffleOrder()), titles(before, before.shuffleOrder()));
        EXPECT_EQ(titles(queue, queue.nextPass()), titles(before, before.nextPass()));
    }
}
