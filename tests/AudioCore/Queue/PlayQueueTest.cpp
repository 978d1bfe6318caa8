#include "AudioCore/Queue/PlayQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
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
    const std::tuple<std::optional<int>, RepeatMode, const char *> rows[] = {
        // next, previous, after the end
        {std::nullopt, RepeatMode::all, "a--"},
        {0, RepeatMode::off, "b-b"},
        {0, RepeatMode::all, "bcb"},
        {2, RepeatMode::off, "-b-"},
        {2, RepeatMode::all, "aba"},
        {2, RepeatMode::one, "-bc"},
    };
    for (const auto &[current, repeat, expected] : rows) {
        SCOPED_TRACE(expected);
        PlayQueue queue = makeQueue("abc", current);
        queue.setRepeatMode(repeat);
        PlayQueue forward = queue, back = queue, ended = queue;
        EXPECT_EQ(title(forward.next()) + title(back.previous()) + title(ended.advanceAfterTrackEnd()),
                  expected);
        EXPECT_EQ(queue.indexAfterCurrentEnds(), expected[2] == '-' ? std::nullopt : ended.currentIndex());
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

TEST(PlayQueueTest, IsBuiltFromItsFieldsAsFarAsTheyAgree) {
    struct Fields {
        std::optional<int> current;
        std::vector<int> order;
        int position;
        std::vector<int> nextPass;
        bool areKept;
    };
    const Fields rows[] = {
        {1, {2, 1, 0}, 1, {0, 2, 1}, true},   {{}, {2, 1, 0}, -1, {0, 2, 1}, true},
        {1, {2, 1, 0}, 2, {0, 2, 1}, false},  {1, {2, 1, 0}, -1, {0, 2, 1}, false},
        {{}, {2, 1, 0}, 0, {0, 2, 1}, false}, {1, {2, 1, 0}, 3, {0, 2, 1}, false},
        {1, {1, 1, 0}, 0, {0, 2, 1}, false},  {1, {1, 2, 0}, 0, {}, false},
        {3, {2, 1, 0}, 0, {0, 2, 1}, false},
    };
    for (const Fields &row : rows) {
        SCOPED_TRACE(&row - rows);
        const PlayQueue queue(makeTracks("abc"), row.current, RepeatMode::one, true, row.order, row.position,
                              row.nextPass);
        expectInvariants(queue);
        EXPECT_EQ(queue.repeatMode(), RepeatMode::one);
        EXPECT_EQ(queue.currentIndex(), row.current == 3 ? std::nullopt : row.current);
        if (row.areKept)
            EXPECT_EQ(std::tuple(queue.shuffleOrder(), queue.shufflePosition(), queue.nextPass()),
                      std::tuple(row.order, row.position, row.nextPass));
    }
    expectInvariants(PlayQueue(makeTracks("abc"), 1, RepeatMode::off, false, {2, 1, 0}, 1, {0, 2, 1}));
}

TEST(PlayQueueTest, AppendedTracksComeAnywhereAfterWhatHasPlayed) {
    std::set<std::string> passes, nextPasses, longerPasses, longerNextPasses;
    PlayQueue queue = makeQueue("abc", 0);
    queue.setShuffle(true);
    queue.next();
    for (int attempt = 0; attempt < 500; ++attempt) {
        PlayQueue longer = queue;
        longer.append(makeTracks("D"));
        passes.insert(titles(longer, longer.shuffleOrder()));
        nextPasses.insert(titles(longer, longer.nextPass()));
        longer = queue;
        longer.append(makeTracks("DE"));
        longerPasses.insert(titles(longer, longer.shuffleOrder()));
        longerNextPasses.insert(titles(longer, longer.nextPass()));
    }
    const std::string pass = titles(queue, queue.shuffleOrder());
    EXPECT_EQ(passes, (std::set{pass + "D", pass.substr(0, 2) + "D" + pass.substr(2)}));
    EXPECT_EQ(nextPasses.size(), 4U);
    EXPECT_EQ(longerPasses.size(), 6U); // both orders in every pair of the three places
    EXPECT_EQ(longerNextPasses.size(), 20U);
}

TEST(PlayQueueTest, RemovingTheCurrentTrackGoesToItsFollower) {
    const std::tuple<std::optional<int>, IndexSet, const char *> rows[] = {
        // the titles, then the current one
        {2, {0}, "bcdc"},      {1, {3}, "abcb"},       {1, {1}, "acdc"},
        {3, {3}, "abcc"},      {1, {1, 2}, "add"},     {2, {2, 3}, "abb"},
        {1, {-1, 4}, "abcdb"}, {1, {0, 1, 2, 3}, "-"}, {{}, {0}, "bcd-"},
    };
    for (const auto &[current, removed, expected] : rows) {
        PlayQueue queue = makeQueue("abcd", current);
        queue.remove(removed);
        EXPECT_EQ(titles(queue) + title(queue.current()), expected);
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
    const std::tuple<IndexSet, int, const char *> cases[] = {
        {{1}, 2, "acdbe"},          {{3, 4}, -1, "abdec"}, {{1, 3}, 100, "acbed"},
        {{1, 3}, INT_MIN, "badce"}, {{-3, 9}, 1, "abcde"}, {{-3, 0, 9}, 1, "bacde"}};
    for (const auto &[rows, offset, expected] : cases) {
        PlayQueue queue = makeQueue("abcde", 2);
        queue.move(rows, offset);
        EXPECT_EQ(titles(queue), expected);
    }
}

TEST(PlayQueueTest, SortsStablyAndSaysWhetherAnythingChanged) {
    std::vector<Track> tracks = makeTracks("xyz");
    tracks[0].source = QUrl::fromLocalFile(QStringLiteral("/b/Two"));
    tracks[1].source = QUrl::fromLocalFile(QStringLiteral("/c/one"));
    tracks[2].source = QUrl::fromLocalFile(QStringLiteral("/a/one"));
    PlayQueue queue(tracks);
    EXPECT_FALSE(queue.sort(PlaylistSortKey::fileName));
    EXPECT_EQ(titles(queue), "xyz"); // by code points: capitals first
    tracks[0].source = MediaID{MediaKind::track, QStringLiteral("1")};
    queue = PlayQueue({tracks[1], tracks[0], tracks[2]});
    EXPECT_TRUE(queue.sort(PlaylistSortKey::fileName));
    EXPECT_EQ(titles(queue), "xyz"); // what has no file comes first, equal names stay in their order
    EXPECT_FALSE(queue.sort(PlaylistSortKey::fileName));
    EXPECT_TRUE(queue.sort(PlaylistSortKey::path));
    EXPECT_EQ(titles(queue), "xzy");
    for (const std::vector<int> &bad : {std::vector<int>{0, 1}, {0, 1, 1}, {0, 1, 3}, {-1, 0, 1}, {0, 1, 2}})
        EXPECT_FALSE(queue.reorder(bad));
    EXPECT_EQ(titles(queue), "xzy");
    tracks[0].source = QUrl(QStringLiteral("http://host/b"));
    tracks[1].source = QUrl(QStringLiteral("http://host/a"));
    queue = PlayQueue(tracks);
    EXPECT_TRUE(queue.sort(PlaylistSortKey::path));
    EXPECT_EQ(titles(queue), "zyx"); // addresses by the whole of them
}

TEST(PlayQueueTest, SortsManyLongPathsAsTheirCodePointsAre) {
    std::mt19937 random(5);
    std::vector<Track> tracks;
    for (int i = 0; i < 25'000; ++i) {
        QString path = QStringLiteral("/a long beginning/");
        for (unsigned length = random() % 20; length > 0; --length)
            path += std::array{u"a"_qs, u"b"_qs, u"\uFFFD"_qs, u"𝄞"_qs}[random() % 4];
        tracks.emplace_back().source = QUrl::fromLocalFile(path);
    }
    std::shuffle(tracks.begin(), tracks.end(), random);
    for (int i = 0; i < 25'000; ++i)
        tracks[static_cast<size_t>(i)].duration = i;
    PlayQueue queue(tracks);
    queue.sort(PlaylistSortKey::path);
    std::ranges::sort(tracks, {}, [](const Track &track) {
        return std::pair(std::get<QUrl>(track.source).toLocalFile().toStdU32String(), track.duration);
    });
    EXPECT_TRUE(queue.tracks() == tracks);
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
    const auto moveSome = [&] {
        const PlayQueue before = queue;
        queue.move(rows, draw(-3, 3));
        return queue != before;
    };
    const std::function<bool()> rearrangements[] = {[&] { return queue.sort(PlaylistSortKey::path); },
                                                    [&] { return queue.reverse(); },
                                                    [&] { return queue.randomize(); }, moveSome};
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
