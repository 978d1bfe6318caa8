#include "AudioCore/Queue/PlayQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>
#include <random>

using namespace vantor;
using testing::ElementsAre;

namespace {

Track makeTrack(const QString &path) {
    Track track;
    track.id = QUuid::createUuid();
    track.title = QUrl::fromLocalFile(path).fileName();
    track.source = QUrl::fromLocalFile(path);
    return track;
}

std::vector<Track> makeTracks(const QString &letters) {
    std::vector<Track> tracks;
    for (const QChar letter : letters)
        tracks.push_back(makeTrack(QStringLiteral("/music/") + letter));
    return tracks;
}

QString titles(const PlayQueue &queue) {
    QString text;
    for (const Track &track : queue.tracks())
        text += track.title;
    return text;
}

QString title(const std::optional<Track> &track) {
    return track ? track->title : QStringLiteral("-");
}

QString passTitles(const PlayQueue &queue, const std::vector<int> &pass) {
    QString text;
    for (const int index : pass)
        text += queue.tracks()[static_cast<size_t>(index)].title;
    return text;
}

PlayQueue makeQueue(const QString &letters, std::optional<int> current = {}, bool shuffled = false) {
    PlayQueue queue(makeTracks(letters));
    queue.setShuffle(shuffled);
    if (current)
        queue.select(*current);
    return queue;
}

void expectInvariants(const PlayQueue &queue) {
    std::vector<int> all(queue.tracks().size());
    std::iota(all.begin(), all.end(), 0);
    if (queue.isShuffled()) {
        EXPECT_THAT(queue.shuffleOrder(), testing::UnorderedElementsAreArray(all));
        EXPECT_THAT(queue.nextPass(), testing::UnorderedElementsAreArray(all));
        EXPECT_EQ(queue.shufflePosition() >= 0, queue.currentIndex().has_value());
        if (queue.shufflePosition() >= 0)
            EXPECT_EQ(queue.shuffleOrder().at(static_cast<size_t>(queue.shufflePosition())),
                      queue.currentIndex());
    } else {
        EXPECT_TRUE(queue.shuffleOrder().empty() && queue.nextPass().empty());
        EXPECT_EQ(queue.shufflePosition(), -1);
    }
    if (queue.currentIndex()) {
        EXPECT_GE(*queue.currentIndex(), 0);
        EXPECT_LT(*queue.currentIndex(), queue.count());
    }
}

} // namespace

TEST(PlayQueueTest, StepsThroughAnOrderedQueue) {
    struct Row {
        const char *name;
        std::optional<int> current;
        RepeatMode repeat;
        std::optional<int> next, previous, afterEnd;
    };
    const Row rows[] = {
        {"nothing current", {}, RepeatMode::all, 0, {}, {}},
        {"first", 0, RepeatMode::off, 1, {}, 1},
        {"first, wrapping", 0, RepeatMode::all, 1, 2, 1},
        {"last", 2, RepeatMode::off, {}, 1, {}},
        {"last, wrapping", 2, RepeatMode::all, 0, 1, 0},
        {"last, repeating itself", 2, RepeatMode::one, {}, 1, 2},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        PlayQueue queue = makeQueue(QStringLiteral("abc"), row.current);
        queue.setRepeatMode(row.repeat);
        const auto expectStep = [&](auto step, std::optional<int> target) {
            PlayQueue stepped = queue;
            const std::optional<Track> track = step(stepped);
            EXPECT_EQ(track.has_value(), target.has_value());
            EXPECT_EQ(stepped.currentIndex(), target ? target : row.current);
            if (track)
                EXPECT_EQ(track, stepped.current());
        };
        EXPECT_EQ(queue.hasForwardTarget(), row.next.has_value());
        EXPECT_EQ(queue.indexAfterCurrentEnds(), row.afterEnd);
        expectStep([](PlayQueue &q) { return q.next(); }, row.next);
        expectStep([](PlayQueue &q) { return q.previous(); }, row.previous);
        expectStep([](PlayQueue &q) { return q.advanceAfterTrackEnd(); }, row.afterEnd);
    }
    EXPECT_EQ(PlayQueue().next(), std::nullopt);
    EXPECT_EQ(toggled(RepeatMode::one), RepeatMode::off);
}

TEST(PlayQueueTest, AShuffledPassIsRetracedAndFollowedByTheOneDrawn) {
    PlayQueue queue = makeQueue(QStringLiteral("abcdefgh"), {}, true);
    queue.setRepeatMode(RepeatMode::all);
    EXPECT_EQ(queue.shufflePosition(), -1);
    const QString pass = passTitles(queue, queue.shuffleOrder());
    const QString following = passTitles(queue, queue.nextPass());
    QString played;
    for (int step = 0; step < 16; ++step) {
        if (step == 8) { // at the end of the pass: back to its beginning and forth again
            for (int back = 6; back >= 0; --back)
                EXPECT_EQ(title(queue.previous()), pass.mid(back, 1));
            EXPECT_EQ(title(queue.previous()), pass.mid(7, 1)) << "wrapping back stays within the pass";
            EXPECT_EQ(passTitles(queue, queue.nextPass()), following);
        }
        played += title(step == 0 ? queue.next() : queue.advanceAfterTrackEnd());
    }
    EXPECT_EQ(played, pass + following);
    expectInvariants(queue);

    queue.setRepeatMode(RepeatMode::off);
    const PlayQueue atEnd = queue;
    EXPECT_EQ(queue.next(), std::nullopt);
    EXPECT_EQ(queue, atEnd);
}

TEST(PlayQueueTest, ShufflingLeadsWithTheCurrentTrack) {
    PlayQueue queue = makeQueue(QStringLiteral("abcdefgh"), 5);
    QRandomGenerator generator(7);
    queue.setShuffle(true, generator);
    EXPECT_EQ(queue.shufflePosition(), 0);
    expectInvariants(queue);
    const std::vector<int> nextPass = queue.nextPass();
    queue.next();
    queue.select(2); // a new pass begins with the chosen row
    EXPECT_EQ(queue.shuffleOrder().front(), 2);
    EXPECT_EQ(queue.nextPass(), nextPass);
    expectInvariants(queue);
    const PlayQueue before = queue;
    queue.select(8);
    queue.setShuffle(true);
    EXPECT_EQ(queue, before);
    queue.setShuffle(false);
    EXPECT_EQ(queue.currentIndex(), 2);
    expectInvariants(queue);
}

TEST(PlayQueueTest, AppendedTracksComeAfterWhatHasPlayed) {
    std::set<int> places, nextPlaces;
    for (int attempt = 0; attempt < 200; ++attempt) {
        PlayQueue queue = makeQueue(QStringLiteral("abc"), 0, true);
        queue.next();
        const std::vector<int> played(queue.shuffleOrder().begin(), queue.shuffleOrder().begin() + 2);
        queue.append(makeTracks(QStringLiteral("d")));
        expectInvariants(queue);
        ASSERT_TRUE(std::ranges::equal(played, std::span(queue.shuffleOrder()).first(2)));
        places.insert(
            static_cast<int>(std::ranges::find(queue.shuffleOrder(), 3) - queue.shuffleOrder().begin()));
        nextPlaces.insert(
            static_cast<int>(std::ranges::find(queue.nextPass(), 3) - queue.nextPass().begin()));
    }
    EXPECT_THAT(places, ElementsAre(2, 3));
    EXPECT_THAT(nextPlaces, ElementsAre(0, 1, 2, 3));
}

TEST(PlayQueueTest, RemovingTheCurrentTrackGoesToItsFollower) {
    struct Row {
        const char *name;
        std::optional<int> current;
        IndexSet removed;
        const char *titles, *current_;
    };
    const Row rows[] = {
        {"before the current", 2, {0}, "bcd", "c"},
        {"after the current", 1, {3}, "abc", "b"},
        {"the current", 1, {1}, "acd", "c"},
        {"the current, last", 3, {3}, "abc", "c"},
        {"the current and followers", 1, {1, 2}, "ad", "d"},
        {"the current and the rest", 2, {2, 3}, "ab", "b"},
        {"outside the queue", 1, {-1, 4}, "abcd", "b"},
        {"everything", 1, {0, 1, 2, 3}, "", "-"},
        {"nothing current", {}, {0}, "bcd", "-"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        PlayQueue queue = makeQueue(QStringLiteral("abcd"), row.current);
        queue.remove(row.removed);
        EXPECT_EQ(titles(queue), QLatin1String(row.titles));
        EXPECT_EQ(title(queue.current()), QLatin1String(row.current_));
    }
}

TEST(PlayQueueTest, RemovingTheCurrentTrackFollowsTheShuffledPass) {
    for (int position = 0; position < 4; ++position) {
        PlayQueue queue = makeQueue(QStringLiteral("abcd"), {}, true);
        for (int step = 0; step <= position; ++step)
            queue.next();
        QString pass = passTitles(queue, queue.shuffleOrder());
        QString following = passTitles(queue, queue.nextPass());
        const QString gone = title(queue.current());
        queue.remove(*queue.currentIndex());
        pass.remove(gone);
        following.remove(gone);
        EXPECT_EQ(passTitles(queue, queue.shuffleOrder()), pass);
        EXPECT_EQ(passTitles(queue, queue.nextPass()), following);
        EXPECT_EQ(title(queue.current()), pass.mid(std::min(position, 2), 1));
        expectInvariants(queue);
    }
}

TEST(PlayQueueTest, MovesRowsAndKeepsTheirDistances) {
    struct Row {
        const char *name;
        IndexSet rows;
        int offset;
        const char *expected;
    };
    const Row rows[] = {
        {"down", {1}, 2, "acdbe"},
        {"up", {3, 4}, -1, "abdec"},
        {"stops at the end", {1, 3}, 100, "acbed"}, // one step is left for the lower row
        {"stops at the top", {1, 3}, std::numeric_limits<int>::min(), "badce"},
        {"rows outside", {-3, 9}, 1, "abcde"},
        {"row and rows outside", {-3, 0, 9}, 1, "bacde"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        PlayQueue queue = makeQueue(QStringLiteral("abcde"), 2);
        queue.move(row.rows, row.offset);
        EXPECT_EQ(titles(queue), QLatin1String(row.expected));
        EXPECT_EQ(title(queue.current()), QStringLiteral("c"));
    }
}

TEST(PlayQueueTest, SortsStablyAndSaysWhetherAnythingChanged) {
    PlayQueue queue({makeTrack(QStringLiteral("/b/Two")), makeTrack(QStringLiteral("/c/one")),
                     makeTrack(QStringLiteral("/a/one"))});
    queue.select(0);
    EXPECT_TRUE(queue.sort(PlaylistSortKey::fileName));
    EXPECT_EQ(std::get<QUrl>(queue.tracks()[0].source).path(), QStringLiteral("/c/one"));
    EXPECT_EQ(queue.currentIndex(), 2);
    EXPECT_FALSE(queue.sort(PlaylistSortKey::fileName));
    EXPECT_TRUE(queue.sort(PlaylistSortKey::path));
    EXPECT_EQ(titles(queue), QStringLiteral("oneTwoone"));
    EXPECT_TRUE(queue.reverse());
    EXPECT_EQ(queue.currentIndex(), 1);

    const PlayQueue before = queue;
    EXPECT_FALSE(queue.reorder({0, 1, 2}));
    for (const std::vector<int> &bad : {std::vector<int>{0, 1}, {0, 1, 1}, {0, 1, 3}, {-1, 0, 1}})
        EXPECT_FALSE(queue.reorder(bad));
    EXPECT_EQ(queue, before);
}

// Any sequence of edits keeps the invariants; edits that only rearrange keep the current track and the order
// in which both passes play; removing many rows at once equals removing them one after the other.
TEST(PlayQueueTest, KeepsItsInvariantsUnderRandomEdits) {
    std::mt19937 random(20240607);
    const auto draw = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    PlayQueue queue;
    for (int round = 0; round < 4000 && !testing::Test::HasFailure(); ++round) {
        SCOPED_TRACE(round);
        IndexSet rows;
        for (int row = draw(-1, 4); row > 0; --row)
            rows.insert(draw(-1, queue.count()));
        const PlayQueue before = queue;
        const int action = draw(0, 13);
        switch (action) {
        case 0:
            queue.append(makeTracks(QStringLiteral("abcde").left(draw(0, 5))));
            break;
        case 1:
            queue.select(draw(-1, queue.count()));
            break;
        case 2:
            queue.next();
            break;
        case 3:
            queue.previous();
            break;
        case 4:
            queue.setRepeatMode(allRepeatModes[static_cast<size_t>(draw(0, 2))]);
            break;
        case 5:
            queue.setShuffle(draw(0, 2) > 0);
            break;
        case 6: {
            queue.remove(rows);
            PlayQueue oneByOne = before;
            for (auto row = rows.rbegin(); row != rows.rend(); ++row)
                oneByOne.remove(*row);
            EXPECT_EQ(queue, oneByOne);
            break;
        }
        case 7:
            if (queue.count() > 12)
                queue.crop(rows);
            break;
        case 8: {
            const std::optional<int> expected = queue.indexAfterCurrentEnds();
            EXPECT_EQ(queue.advanceAfterTrackEnd().has_value(), expected.has_value());
            EXPECT_EQ(queue.currentIndex(), expected ? expected : before.currentIndex());
            break;
        }
        default: {
            bool changed = true;
            if (action == 9)
                queue.move(rows, draw(-3, 3));
            else if (action == 10)
                changed = queue.sort(PlaylistSortKey::path);
            else if (action == 11)
                changed = queue.reverse();
            else
                changed = queue.randomize();
            if (action > 9)
                EXPECT_EQ(changed, queue.tracks() != before.tracks());
            EXPECT_EQ(queue.current(), before.current());
            EXPECT_EQ(passTitles(queue, queue.shuffleOrder()), passTitles(before, before.shuffleOrder()));
            EXPECT_EQ(passTitles(queue, queue.nextPass()), passTitles(before, before.nextPass()));
        }
        }
        expectInvariants(queue);
    }
}
