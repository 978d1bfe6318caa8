#include "MusicBackendKit/PlayRequest.h"

#include <gtest/gtest.h>

using namespace vantor;

namespace {

MediaID id(int number) {
    return {MediaKind::track, QString::number(number)};
}

QList<MediaID> ids(std::initializer_list<int> numbers) {
    QList<MediaID> all;
    for (const int number : numbers)
        all.append(id(number));
    return all;
}

} // namespace

TEST(PlayRequestTest, FromATrackList) {
    QList<LibraryTrack> tracks; // 1 2 3 2
    for (const int number : {1, 2, 3, 2}) {
        LibraryTrack track;
        track.id = id(number);
        tracks.append(track);
    }
    const MediaID album{MediaKind::album, u"a"_qs};
    using Selection = std::optional<QSet<MediaID>>;
    const PlayMode start = PlayMode::replace(0);

    struct Row {
        const char *name;
        Selection selection;
        std::optional<MediaID> album;
        std::optional<PlayRequest> expected;
    };
    const Row rows[] = {
        {"no selection", {}, {}, PlayRequest{ids({1, 2, 3, 2}), start}},
        {"no selection of an album", {}, album, PlayRequest{ids({1, 2, 3, 2}), start}},
        {"in the list's order", QSet{id(3), id(1)}, {}, PlayRequest{ids({1, 3}), start}},
        {"one", QSet{id(3)}, {}, PlayRequest{ids({3}), start}},
        {"one of an album", QSet{id(3)}, album, PlayRequest{ids({1, 2, 3, 2}), PlayMode::replace(2)}},
        {"one that is listed twice", QSet{id(2)}, {}, PlayRequest{ids({2, 2}), start}},
        {"some of an album", QSet{id(3), id(2)}, album, PlayRequest{ids({2, 3, 2}), start}},
        {"none of these", QSet{id(9)}, album, {}},
        {"an empty selection", QSet<MediaID>(), {}, {}},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(PlayRequest::play(row.selection, tracks, row.album), row.expected);
        const auto appended = PlayRequest::append(row.selection, tracks);
        ASSERT_EQ(appended.has_value(), row.expected.has_value());
        if (!appended || row.album)
            continue;
        EXPECT_EQ(appended->mode, PlayMode::append());
        EXPECT_EQ(appended->items, row.expected->items);
    }
    EXPECT_FALSE(PlayRequest::play(std::nullopt, {}, album));
    EXPECT_EQ(PlayRequest::append(album), (PlayRequest{{album}, PlayMode::append()}));
}
