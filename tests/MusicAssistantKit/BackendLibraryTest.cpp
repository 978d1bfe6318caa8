#include "tests/MusicAssistantKit/BackendFixture.h"

#include <QImage>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;

namespace {
using MusicAssistantLibraryTest = BackendFixture;
}

TEST_F(MusicAssistantLibraryTest, ListsComeInPagesThatFollowOneAnother) {
    open({.tracks = 2'340});
    QSet<MediaID> seen;
    std::optional<PageRequest> request = PageRequest{0, 50};
    int pages = 0;
    while (request) {
        const auto page = outcomeOf(backend->albums({}, *request));
        ASSERT_TRUE(page.value) << page.failure.toStdString();
        EXPECT_EQ(page.value->total, 234);
        for (const LibraryAlbum &album : page.value->items)
            seen.insert(album.id);
        request = page.value->next(50);
        ++pages;
    }
    EXPECT_EQ(seen.size(), 234);
    EXPECT_EQ(pages, 5);
    EXPECT_EQ(countOf("music/albums/count"), 1) << "the first page asks for all";
    library->longestPage = 100;
    EXPECT_EQ(outcomeOf(backend->albums({}, {100, 120})).value->nextOffset, 200) << "all are not there yet";
    library->longestPage = 500;
    setFault("music/albums/count", {.kind = FakeMusicAssistant::CommandFault::Kind::fails});
    const auto uncounted = outcomeOf(backend->albums({}, {0, 234}));
    EXPECT_EQ(uncounted.value->total, std::nullopt);
    EXPECT_EQ(uncounted.value->nextOffset, 234) << "a full page may have another behind it";
    EXPECT_FALSE(outcomeOf(backend->albums({}, {234, 234})).value->hasMore());
}

TEST_F(MusicAssistantLibraryTest, ItemsKeepWhatTheServerKnows) {
    open();
    const auto artist = outcomeOf(backend->artists({})).value->items[1];
    EXPECT_EQ(artist.id, id(MediaKind::artist, 1));
    EXPECT_EQ(artist.isFavorite, false);
    EXPECT_TRUE(artist.artwork);
    const auto album = outcomeOf(backend->albums(artist.id, {})).value->items[2];
    EXPECT_EQ(album.id, id(MediaKind::album, 7));
    EXPECT_EQ(album.artistID, artist.id);
    EXPECT_EQ(album.artistName, artist.name);
    EXPECT_EQ(album.year, 1977);
    EXPECT_EQ(album.isFavorite, true);
    const auto tracks = *outcomeOf(backend->tracks(album.id)).value;
    ASSERT_EQ(tracks.size(), 10);
    const LibraryTrack &track = tracks[3];
    EXPECT_EQ(track.id, id(MediaKind::track, 73));
    EXPECT_EQ(track.artistName, artist.name);
    EXPECT_EQ(track.albumID, album.id);
    EXPECT_EQ(track.albumName, album.title);
    EXPECT_EQ(track.trackNumber, 4);
    EXPECT_EQ(track.discNumber, 1);
    EXPECT_EQ(track.duration, 193.0);
    EXPECT_EQ(track.bitrate, 900);
    EXPECT_EQ(track.sampleRate, 44100.0);
    EXPECT_EQ(track.channels, 2);
    EXPECT_EQ(track.playlistPosition, std::nullopt);
    const auto found = outcomeOf(backend->search(track.title, 3));
    EXPECT_TRUE(found.value->tracks.contains(track));
    EXPECT_LE(found.value->tracks.size(), 3);
}

TEST_F(MusicAssistantLibraryTest, PlaylistsTellWhatMayBeDoneToThem) {
    open();
    const auto playlists = outcomeOf(backend->playlists({})).value->items;
    using enum PlaylistEditingOption;
    EXPECT_EQ(playlists[0].source, PlaylistSource::user());
    EXPECT_EQ(playlists[0].editing, PlaylistEditing(addRemove) | rename | delete_);
    EXPECT_EQ(playlists[2].source, PlaylistSource::builtIn());
    EXPECT_EQ(playlists[2].editing, PlaylistEditing());
    EXPECT_TRUE(playlists[2].isDynamic);
    EXPECT_EQ(playlists[3].source, PlaylistSource::provider(u"Some Streaming"_s));
    EXPECT_EQ(playlists[3].editing, PlaylistEditing());
    EXPECT_EQ(playlists[3].libraryID, u"4"_s);
}

TEST_F(MusicAssistantLibraryTest, ALongPlaylistComesInPiecesAndKeepsItsPositions) {
    open({.tracks = 1'800});
    QStringList tracks;
    for (int i = 0; i < 1'234; ++i)
        tracks.append(FakeLibrary::uri(u"track"_s, i));
    const int playlist = library->addPlaylist(u"Long"_s, tracks);
    const auto found = outcomeOf(backend->tracksOfPlaylist(id(MediaKind::playlist, playlist)));
    ASSERT_EQ(found.value->size(), 1'234);
    for (int i = 0; i < 1'234; ++i)
        ASSERT_EQ(found.value->at(i).playlistPosition, i + 1);
}

TEST_F(MusicAssistantLibraryTest, EditsOfAPlaylistAreAnnouncedWhenTheyAreDone) {
    open();
    const auto changes = watch(backend->libraryChanges());
    const MediaID mine = id(MediaKind::playlist, 0);
    EXPECT_EQ(failureOf(backend->add({id(MediaKind::artist, 0)}, mine)), QString());
    EXPECT_EQ(library->tracksOf(0).size(), 30 + 50) << "an artist stands for all tracks";
    ASSERT_TRUE(waitUntil([&] { return changes->value == LibraryChange::playlistUpdated(mine); }));
    EXPECT_EQ(failureOf(backend->remove({1, 80}, mine)), QString());
    EXPECT_EQ(library->tracksOf(0).size(), 78);
    EXPECT_EQ(failureOf(backend->renamePlaylist(mine, u" Renamed "_s)), QString());
    EXPECT_EQ(outcomeOf(backend->playlists({})).value->items[0].name, u"Renamed"_s);
    const auto created = outcomeOf(backend->createPlaylist(u"Fresh"_s));
    ASSERT_TRUE(created.value);
    ASSERT_TRUE(waitUntil([&] { return changes->value == LibraryChange::playlistAdded(created.value->id); }));
    EXPECT_EQ(failureOf(backend->deletePlaylist(created.value->id)), QString());
    ASSERT_TRUE(
        waitUntil([&] { return changes->value == LibraryChange::playlistDeleted(created.value->id); }));
}

TEST_F(MusicAssistantLibraryTest, ALongListIsAddedToAPlaylistInSeveralMessages) {
    open();
    QList<MediaID> many;
    for (int i = 0; i < 6'000; ++i) // with URIs of a kilobyte, as long file names make them
        many.append({MediaKind::track, u"library://track/%1"_s.arg(i % 1'000 + 1) + QString(1'000, u' ')});
    EXPECT_EQ(failureOf(backend->add(many, id(MediaKind::playlist, 0))), QString());
    EXPECT_EQ(countOf("music/playlists/add_playlist_tracks"), 2);
    EXPECT_EQ(library->tracksOf(0).size(), 30 + 6'000);
}

TEST_F(MusicAssistantLibraryTest, FavouritesAreCountedListedAndAnnounced) {
    open({.tracks = 700, .favoriteEvery = 10});
    EXPECT_EQ(outcomeOf(backend->favoriteCount(MediaKind::track)).value, 70);
    EXPECT_EQ(outcomeOf(backend->favoriteAlbums({})).value->total, 7);
    const auto changes = watch(backend->libraryChanges());
    const MediaID track = id(MediaKind::track, 1);
    EXPECT_EQ(failureOf(backend->setFavorite(track, true)), QString());
    EXPECT_EQ(outcomeOf(backend->favoriteTracks({})).value->items[1].id, track);
    ASSERT_TRUE(waitUntil([&] { return changes->value == LibraryChange::favoriteChanged(track, true); }));
    EXPECT_EQ(failureOf(backend->setFavorite(track, false)), QString());
    ASSERT_TRUE(waitUntil([&] { return changes->value == LibraryChange::favoriteChanged(track, false); }));
    QJsonObject silent = library->itemByURI(track.rawValue).toObject();
    silent.remove("favorite"_L1);
    server.sendEvent(u"media_item_updated"_s, track.rawValue, silent);
    ASSERT_TRUE(
        waitUntil([&] { return changes->value == LibraryChange::favoriteChanged(track, std::nullopt); }));
    // One's own only.
    const QJsonObject other{{u"user_id"_s, u"somebody"_s}, {u"favorite"_s, true}};
    const QJsonObject own{{u"user_id"_s, u"u1"_s}, {u"favorite"_s, true}};
    server.sendEvent(u"favorite_updated"_s, id(MediaKind::album, 1).rawValue, other);
    server.sendEvent(u"favorite_updated"_s, id(MediaKind::album, 2).rawValue, own);
    ASSERT_TRUE(waitUntil([&] { return changes->value && changes->value->id.kind == MediaKind::album; }));
    runEvents();
    EXPECT_EQ(changes->value, LibraryChange::favoriteChanged(id(MediaKind::album, 2), true));
}

TEST_F(MusicAssistantLibraryTest, AStormOfChangesIsOneReload) {
    open({.tracks = 3'000});
    const auto changes = watch(backend->libraryChanges());
    const auto stream = backend->libraryChanges();
    for (int i = 0; i < 3'000; ++i)
        library->sendItemEvent(u"media_item_updated"_s, FakeLibrary::uri(u"track"_s, i));
    ASSERT_TRUE(waitUntil([&] { return stream.missed() > 0; }));
    runEvents();
    EXPECT_EQ(changes->count, 1);
}

TEST_F(MusicAssistantLibraryTest, RecommendationsAreRecordsOrReferences) {
    open();
    const auto rows = *outcomeOf(backend->recommendationRows()).value;
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(rows[1].kind, RecommendationRow::Kind::timeline);
    EXPECT_EQ(rows[0].name, u"A bit of all"_s);
    const auto items = *outcomeOf(backend->recommendationItems(rows[0])).value;
    ASSERT_EQ(items.size(), 7);
    EXPECT_EQ(items[0].mediaID(), id(MediaKind::album, 0));
    EXPECT_EQ(items[3].mediaID(), id(MediaKind::playlist, 0));
    EXPECT_TRUE(items[4].isMapping());
    EXPECT_FALSE(items[5].isMapping()) << "a station is as it is";
    EXPECT_FALSE(items[6].isMapping());
    const auto resolved = outcomeOf(backend->resolve(items[4]));
    EXPECT_EQ(resolved.value->mediaID(), id(MediaKind::album, 1));
}

TEST_F(MusicAssistantLibraryTest, PicturesComeInTheServersSizes) {
    open();
    const ArtworkRef picture = *outcomeOf(backend->artists({})).value->items[0].artwork;
    const std::pair<int, int> rows[] = {{1, 80},    {80, 80},     {159, 80},
                                        {300, 256}, {1024, 1024}, {99999, 1024}};
    for (const auto &[wanted, sent] : rows) {
        const auto bytes = outcomeOf(backend->artwork(picture, wanted));
        ASSERT_TRUE(bytes.value) << bytes.failure.toStdString();
        EXPECT_EQ(QImage::fromData(*bytes.value).width(), sent) << wanted;
    }
    EXPECT_EQ(failureOf(backend->artwork({u"/imageproxy?path=x"_s}, 80)),
              u"Music Assistant could not provide the artwork."_s);
}

TEST_F(MusicAssistantLibraryTest, OffersWhatTheServerHas) {
    make();
    library->unlistCommand(u"music/recommendations"_s);
    EXPECT_TRUE(backend->capabilities().testFlag(MusicBackendCapability::recommendations)) << "not known yet";
    const auto statuses = watch(backend->statusUpdates());
    connectBackend();
    ASSERT_TRUE(waitUntil(
        [&] { return !statuses->value->capabilities.testFlag(MusicBackendCapability::recommendations); }));
    EXPECT_TRUE(backend->capabilities().testFlag(MusicBackendCapability::radio));
}
