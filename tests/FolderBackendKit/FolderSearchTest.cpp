#include "FolderBackendKit/FolderLibrary.h"

#include <gmock/gmock.h>

namespace vantor {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct MadeAlbum {
    const char *artist;
    const char *title;
    std::vector<const char *> tracks;
};

/// Artists have to follow each other.
FolderLibrary library(const std::vector<MadeAlbum> &albums) {
    FolderIndex index;
    for (const MadeAlbum &made : albums) {
        const QString artist = QString::fromUtf8(made.artist);
        const QString path = artist + u'/' + QString::fromUtf8(made.title);
        const MediaID artistID{MediaKind::artist, artist};
        if (index.artists.empty() || index.artists.back().id != artistID)
            index.artists.push_back({artistID, artist, artist, std::nullopt, std::nullopt});
        StoredAlbum album;
        album.id.rawValue = path;
        album.title = QString::fromUtf8(made.title);
        album.artistID = artistID;
        album.artistName = artist;
        index.albums.push_back(album);
        for (const char *title : made.tracks) {
            FolderTrack track;
            track.library.title = QString::fromUtf8(title);
            track.relativePath = path + u'/' + track.library.title;
            track.album = static_cast<int>(index.albums.size() - 1);
            index.tracks.push_back(track);
        }
    }
    return FolderLibrary(std::move(index));
}

std::vector<std::string> titles(const SearchResults &results) {
    std::vector<std::string> list;
    for (const LibraryTrack &track : results.tracks)
        list.push_back(track.title.toStdString());
    return list;
}

} // namespace

TEST(FolderSearchTest, EveryWordBeginsAWordOfTitleAlbumOrArtist) {
    const FolderLibrary music =
        library({{"Björk", "Début", {"Human Behaviour", "Don't Stop", "Extraordinarily Long"}},
                 {"椎名林檎", "無罪モラトリアム", {"歌舞伎町の女王"}},
                 {"Mötley", "Øre", {"Straße", "1999"}}});
    const std::pair<const char *, std::vector<std::string>> rows[] = {
        {"HUM", {"Human Behaviour"}},
        {"behav bjork deb", {"Human Behaviour"}},
        {"bjork motley", {}},
        {"uman", {}},
        {"dont", {"Don't Stop"}},
        {"don’t  stop!", {"Don't Stop"}},
        {"extraordinarily", {"Extraordinarily Long"}},
        {"extraordinariness", {}},
        {"ore strass", {"Straße"}},
        {"女王", {"歌舞伎町の女王"}},
        {"モラ 歌舞", {"歌舞伎町の女王"}},
        {"19", {"1999"}},
        {"BJO\u0308RK human", {"Human Behaviour"}},
        {"", {}},
        {" - ", {}},
    };
    for (const auto &[query, expected] : rows) {
        SCOPED_TRACE(query);
        EXPECT_EQ(titles(music.search(QString::fromUtf8(query), 10)), expected);
    }
}

TEST(FolderSearchTest, TheBestComesFirst) {
    const FolderLibrary music = library({{"Abba", "Songs", {"Moonlight Serenade", "My Moon Song"}},
                                         {"Moon", "Moon", {"Other", "Moon"}},
                                         {"Zed", "Last", {"Moon River"}}});
    const SearchResults results = music.search(QStringLiteral("moon"), 10);
    EXPECT_THAT(titles(results),
                ElementsAre("Moon", "Moon River", "My Moon Song", "Moonlight Serenade", "Other"));
    EXPECT_EQ(results.artists.at(0).name, u"Moon");
    EXPECT_EQ(results.albums.at(0).title, u"Moon");
    EXPECT_THAT(titles(music.search(QStringLiteral("moon"), 2)), ElementsAre("Moon", "Moon River"));
    EXPECT_TRUE(music.search(QStringLiteral("moon"), 0).isEmpty());
    EXPECT_TRUE(music.search(QString(100'000, u'm'), 10).isEmpty());
}

TEST(FolderLibraryTest, ListsComeInPages) {
    const FolderLibrary music =
        library({{"A", "Zebra", {"1"}}, {"A", "Éclair", {"2"}}, {"B", "Dove", {"3", "4"}}});
    const auto albums = [&](PageRequest request) {
        const Page<LibraryAlbum> page = music.albums(request);
        EXPECT_EQ(page.total, 3);
        std::vector<std::string> list{std::to_string(page.nextOffset.value_or(-1))};
        for (const LibraryAlbum &album : page.items)
            list.push_back(album.title.toStdString());
        return list;
    };
    EXPECT_THAT(albums({0, 2}), ElementsAre("2", "Dove", "Éclair"));
    EXPECT_THAT(albums({2, 2}), ElementsAre("-1", "Zebra"));
    EXPECT_THAT(albums({7, 2}), ElementsAre("-1"));
    EXPECT_THAT(albums({-5, -1}), ElementsAre("-1"));
    EXPECT_EQ(music.albums({MediaKind::artist, QStringLiteral("A")}, {})->items.at(0).title, u"Zebra");
    EXPECT_EQ(music.albums({MediaKind::album, QStringLiteral("A")}, {}), std::nullopt);
    EXPECT_EQ(music.tracks({MediaKind::album, QStringLiteral("B/Dove")})->at(1).artistName, u"B");
    EXPECT_EQ(music.tracks({MediaKind::album, QStringLiteral("B")}), std::nullopt);
    EXPECT_EQ(music.places({MediaKind::artist, QStringLiteral("B")}), (std::vector{2, 3}));
}

} // namespace vantor
