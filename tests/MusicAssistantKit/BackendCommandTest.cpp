#include "tests/MusicAssistantKit/BackendFixture.h"

#include <QJsonDocument>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;

namespace {

using MusicAssistantCommandTest = BackendFixture;

QJsonObject object(const char *text) {
    return QJsonDocument::fromJson(text).object();
}

} // namespace

TEST_F(MusicAssistantCommandTest, OperationsBecomeCommands) {
    open();
    players->append(u"kitchen"_s, library->expanded(FakeLibrary::uri(u"album"_s, 0)));
    MusicAssistantBackend &b = *backend;
    const OutputDevice speaker{.id = kitchen, .name = {}, .groupableWith = {}};
    RecommendationRow mixed;
    mixed.provider = u"library"_s;
    mixed.itemID = u"mixed"_s;
    using Transport = TransportCommand;
    struct Row {
        std::function<QString()> operation;
        const char *command;
        const char *args;
    };
    const Row rows[] = {
        {[&] { return failureOf(b.artists({0, 50})); }, "music/artists/library_items",
         R"({"album_artists_only":true,"limit":50,"offset":0,"order_by":"sort_name"})"},
        {[&] { return failureOf(b.artists({0, 50})); }, "music/artists/count",
         R"({"album_artists_only":true})"},
        {[&] { return failureOf(b.albums({}, {100, 50})); }, "music/albums/library_items",
         R"({"limit":50,"offset":100,"order_by":"sort_name"})"},
        {[&] { return failureOf(b.albums(id(MediaKind::artist, 1), {})); }, "music/artists/artist_albums",
         R"({"item_id":"2","provider_instance_id_or_domain":"library","album_artists_only":true})"},
        {[&] { return failureOf(b.tracks(id(MediaKind::album, 3))); }, "music/albums/album_tracks",
         R"({"item_id":"4","provider_instance_id_or_domain":"library"})"},
        {[&] { return failureOf(b.tracksOfPlaylist(id(MediaKind::playlist, 0))); },
         "music/playlists/playlist_tracks", R"({"item_id":"1","provider_instance_id_or_domain":"library"})"},
        {[&] { return failureOf(b.radios({})); }, "music/radios/library_items",
         R"({"limit":100,"offset":0,"order_by":"sort_name"})"},
        {[&] { return failureOf(b.search(u" silver "_s, 7)); }, "music/search",
         R"({"search_query":"silver","media_types":["artist","album","track"],"limit":7})"},
        {[&] { return failureOf(b.favoriteTracks({})); }, "music/tracks/library_items",
         R"({"favorite":true,"limit":100,"offset":0,"order_by":"sort_name","summary":false})"},
        {[&] { return failureOf(b.favoriteCount(MediaKind::radio)); }, "music/radios/count",
         R"({"favorite":true,"favorite_only":true})"},
        {[&] { return failureOf(b.setFavorite(id(MediaKind::album, 1), true)); }, "music/favorites/add_item",
         R"({"item":"library://album/2"})"},
        {[&] { return failureOf(b.setFavorite(id(MediaKind::album, 1), false)); },
         "music/favorites/remove_item", R"({"media_type":"album","library_item_id":"2"})"},
        {[&] { return failureOf(b.createPlaylist(u" New "_s)); }, "music/playlists/create_playlist",
         R"({"name":"New"})"},
        {[&] {
             return failureOf(
                 b.add({id(MediaKind::track, 4), id(MediaKind::album, 1)}, id(MediaKind::playlist, 0)));
         },
         "music/playlists/add_playlist_tracks",
         R"({"db_playlist_id":"1","uris":["library://track/5","library://album/2"]})"},
        {[&] { return failureOf(b.remove({3, 1}, id(MediaKind::playlist, 0))); },
         "music/playlists/remove_playlist_tracks", R"({"db_playlist_id":"1","positions_to_remove":[3,1]})"},
        {[&] { return failureOf(b.importPlaylist(u"#EXTM3U\na"_s)); }, "music/playlists/import_playlist",
         R"({"m3u_data":"#EXTM3U\na"})"},
        {[&] { return failureOf(b.exportPlaylist(id(MediaKind::playlist, 0))); },
         "music/playlists/export_playlist", R"({"db_playlist_id":"1"})"},
        {[&] { return failureOf(b.deletePlaylist(id(MediaKind::playlist, 4))); }, "music/library/remove_item",
         R"({"media_type":"playlist","library_item_id":"5"})"},
        {[&] { return failureOf(b.addRadio(u"http://x.invalid"_s, u"X"_s)); }, "builtin/add_radio",
         R"({"url":"http://x.invalid","name":"X"})"},
        {[&] { return failureOf(b.transport(Transport::play(), kitchen)); }, "players/cmd/play",
         R"({"player_id":"kitchen"})"},
        {[&] { return failureOf(b.transport(Transport::pause(), kitchen)); }, "players/cmd/pause",
         R"({"player_id":"kitchen"})"},
        {[&] { return failureOf(b.transport(Transport::togglePlayPause(), kitchen)); },
         "players/cmd/play_pause", R"({"player_id":"kitchen"})"},
        {[&] { return failureOf(b.transport(Transport::stop(), kitchen)); }, "players/cmd/stop",
         R"({"player_id":"kitchen"})"},
        {[&] { return failureOf(b.transport(Transport::next(), kitchen)); }, "player_queues/next",
         R"({"queue_id":"kitchen"})"},
        {[&] { return failureOf(b.transport(Transport::previous(), kitchen)); }, "player_queues/previous",
         R"({"queue_id":"kitchen"})"},
        {[&] { return failureOf(b.transport(Transport::seek(61.6), kitchen)); }, "players/cmd/seek",
         R"({"player_id":"kitchen","position":62})"},
        {[&] { return failureOf(b.transport(Transport::setVolume(0.335), kitchen)); },
         "players/cmd/volume_set", R"({"player_id":"kitchen","volume_level":34})"},
        {[&] { return failureOf(b.transport(Transport::setVolume(7), kitchen)); }, "players/cmd/volume_set",
         R"({"player_id":"kitchen","volume_level":100})"},
        {[&] { return failureOf(b.setMuted(kitchen, true)); }, "players/cmd/volume_mute",
         R"({"player_id":"kitchen","muted":true})"},
        {[&] { return failureOf(b.transport(Transport::setShuffle(true), kitchen)); }, "players/cmd/shuffle",
         R"({"player_id":"kitchen","shuffle_enabled":true})"},
        {[&] { return failureOf(b.transport(Transport::setRepeat(true), kitchen)); }, "players/cmd/repeat",
         R"({"player_id":"kitchen","repeat_mode":"all"})"},
        {[&] { return failureOf(b.transport(Transport::setRepeat(false), kitchen)); }, "players/cmd/repeat",
         R"({"player_id":"kitchen","repeat_mode":"off"})"},
        {[&] { return failureOf(b.edit(QueueEdit::remove({u"q9"_s}), kitchen)); },
         "player_queues/delete_item", R"({"queue_id":"kitchen","item_id_or_index":"q9"})"},
        {[&] { return failureOf(b.edit(QueueEdit::move(u"q8"_s, -2), kitchen)); }, "player_queues/move_item",
         R"({"queue_id":"kitchen","queue_item_id":"q8","pos_shift":-2})"},
        {[&] { return failureOf(b.play({id(MediaKind::album, 0)}, speaker, PlayMode::append())); },
         "player_queues/play_media",
         R"({"queue_id":"kitchen","media":["library://album/1"],"option":"add"})"},
        {[&] {
             return failureOf(
                 b.play({id(MediaKind::track, 0), id(MediaKind::track, 1)}, speaker, PlayMode::replace(0)));
         },
         "player_queues/play_media",
         R"({"queue_id":"kitchen","media":["library://track/1","library://track/2"],"option":"replace"})"},
        {[&] {
             return failureOf(
                 b.play({id(MediaKind::track, 0), id(MediaKind::track, 1)}, speaker, PlayMode::replace(1)));
         },
         "player_queues/play_media",
         R"({"queue_id":"kitchen","media":["library://track/1","library://track/2"],"option":"replace",)"
         R"("start_item":"library://track/2"})"},
        {[&] { return failureOf(b.play({id(MediaKind::track, 0)}, speaker, PlayMode::replace(1))); },
         "player_queues/play_media",
         R"({"queue_id":"kitchen","media":["library://track/1"],"option":"replace"})"},
        {[&] { return failureOf(b.edit(QueueEdit::play(0), kitchen)); }, "player_queues/play_index",
         R"({"queue_id":"kitchen","index":0,"item_id_or_index":0})"},
        {[&] { return failureOf(b.queueItems(kitchen, {20, 5})); }, "player_queues/items",
         R"({"queue_id":"kitchen","limit":5,"offset":20})"},
        {[&] {
             return failureOf(b.resolve(RecommendationItem::other({.name = u"x"_s,
                                                                   .uri = u"library://album/3"_s,
                                                                   .subtitle = {},
                                                                   .kind = MediaKind::album,
                                                                   .artwork = {}})));
         },
         "music/item_by_uri", R"({"uri":"library://album/3"})"},
        {[&] { return failureOf(b.favoriteCurrentTrack(kitchen)); },
         "players/add_currently_playing_to_favorites", R"({"player_id":"kitchen"})"},
        {[&] { return failureOf(b.saveQueueAsPlaylist(kitchen, u"Evening"_s)); },
         "player_queues/save_as_playlist", R"({"queue_id":"kitchen","name":"Evening"})"},
        {[&] { return failureOf(b.transfer(kitchen, bedroom, true)); }, "player_queues/transfer",
         R"({"source_queue_id":"kitchen","target_queue_id":"bedroom","auto_play":true})"},
        {[&] { return failureOf(b.edit(QueueEdit::clear(), kitchen)); }, "player_queues/clear",
         R"({"queue_id":"kitchen"})"},
        {[&] { return failureOf(b.setGroupMembers(kitchen, {bedroom}, {{u"office"_s}})); },
         "players/cmd/set_members",
         R"({"target_player":"kitchen","player_ids_to_add":["bedroom"],"player_ids_to_remove":["office"]})"},
        {[&] { return failureOf(b.recommendationItems(mixed)); }, "music/recommendations/items",
         R"({"provider":"library","item_id":"mixed"})"},
        {[&] { return failureOf(b.removeFromLibrary(id(MediaKind::album, 5))); }, "music/library/remove_item",
         R"({"media_type":"album","library_item_id":"6"})"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.command);
        EXPECT_EQ(row.operation(), QString());
        EXPECT_EQ(argsOf(row.command), object(row.args));
    }
    // The whole item goes back, under its new name.
    QJsonObject renamed = library->item(u"playlist"_s, 0).toObject();
    renamed.insert("name"_L1, u"Other"_s);
    EXPECT_EQ(failureOf(b.renamePlaylist(id(MediaKind::playlist, 0), u"Other"_s)), QString());
    EXPECT_EQ(argsOf("music/playlists/update"),
              (QJsonObject{{u"item_id"_s, u"1"_s}, {u"update"_s, renamed}, {u"overwrite"_s, true}}));
}

TEST_F(MusicAssistantCommandTest, FailuresHaveTheirSentences) {
    open();
    MusicAssistantBackend &b = *backend;
    const MediaID mine = id(MediaKind::playlist, 0);
    const MediaID builtIn = id(MediaKind::playlist, 2);
    const MediaID streamed = id(MediaKind::playlist, 3);
    const QString name = outcomeOf(b.playlists({})).value->items[3].name;
    struct Row {
        const char *name;
        std::function<QString()> operation;
        QString sentence;
    };
    const Row rows[] = {
        {"create without a name", [&] { return failureOf(b.createPlaylist(u" "_s)); },
         u"A playlist needs a name."_s},
        {"rename without a name", [&] { return failureOf(b.renamePlaylist(mine, {})); },
         u"The playlist needs a name."_s},
        {"rename the server's", [&] { return failureOf(b.renamePlaylist(builtIn, u"x"_s)); },
         u"Built-in playlists can't be renamed."_s},
        {"delete the server's", [&] { return failureOf(b.deletePlaylist(builtIn)); },
         u"Built-in playlists can't be deleted."_s},
        {"add to a provider's", [&] { return failureOf(b.add({id(MediaKind::track, 0)}, streamed)); },
         u"“%1” is read-only."_s.arg(name)},
        {"remove from a provider's", [&] { return failureOf(b.remove({1}, streamed)); },
         u"“%1” is read-only."_s.arg(name)},
        {"move", [&] { return failureOf(b.movePlaylistTrack(mine, 1, 2)); },
         u"Reordering needs a newer Music Assistant."_s},
        {"import nothing", [&] { return failureOf(b.importPlaylist(u" \n"_s)); },
         u"The playlist file is empty."_s},
        {"import a head only", [&] { return failureOf(b.importPlaylist(u"#EXTM3U\n"_s)); },
         u"The playlist file is empty."_s},
        {"import what no message holds", [&] { return failureOf(b.importPlaylist(QString(5 << 20, u'x'))); },
         u"That is too large for Music Assistant."_s},
        {"add what no message holds",
         [&] {
             return failureOf(
                 b.add({{MediaKind::track, u"library://track/"_s + QString(5 << 20, u'x')}}, mine));
         },
         u"That is too large for Music Assistant."_s},
        {"save an empty queue", [&] { return failureOf(b.saveQueueAsPlaylist(kitchen, u"x"_s)); },
         u"The queue is empty: there is nothing to save."_s},
        {"unfavour what is elsewhere",
         [&] { return failureOf(b.setFavorite({MediaKind::track, u"spotify://track/1"_s}, false)); },
         u"Only items in the Music Assistant library can be unfavorited."_s},
        {"an item that is no URI", [&] { return failureOf(b.tracks({MediaKind::album, u"42"_s})); },
         u"Could not find album 42."_s},
        {"an item that is gone", [&] { return failureOf(b.tracks(id(MediaKind::album, 9999))); },
         u"Could not find album library://album/10000."_s},
        {"a favourite of nothing", [&] { return failureOf(b.favoriteCurrentTrack(kitchen)); },
         u"The Music Assistant request failed."_s},
        {"an output that is not there",
         [&] { return failureOf(b.transport(TransportCommand::play(), {u"attic"_s})); },
         u"That output is not available."_s},
        {"an output that is off",
         [&] { return failureOf(b.transport(TransportCommand::play(), {u"garden"_s})); },
         u"That output is not available."_s},
        {"no volume", [&] { return failureOf(b.transport(TransportCommand::setVolume(1), {u"office"_s})); },
         u"This music source does not support that."_s},
        {"no balance", [&] { return failureOf(b.transport(TransportCommand::setBalance(1), kitchen)); },
         u"This music source does not support that."_s},
        {"a picture of nothing", [&] { return failureOf(b.artwork({u"/imageproxy/x"_s}, 100)); },
         u"Music Assistant refused the artwork size."_s},
        {"a picture that is no path", [&] { return failureOf(b.artwork({u"http://other.invalid/"_s}, 100)); },
         u"Music Assistant could not provide the artwork."_s},
        {"this computer does not take part",
         [&] { return failureOf(b.transport(TransportCommand::play(), OutputDevice::thisMacID())); },
         u"This Mac isn't connected to Music Assistant. Turn on Play on this Mac in Settings › Music Assistant."_s},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.operation(), row.sentence);
    }
}

TEST_F(MusicAssistantCommandTest, ServerErrorsHaveTheirSentences) {
    open();
    players->append(u"kitchen"_s, {FakeLibrary::uri(u"track"_s, 0)});
    MusicAssistantBackend &b = *backend;
    struct Row {
        const char *command;
        int code;
        std::function<QString()> operation;
        QString sentence;
    };
    const auto unsupported = u"This music source does not support that."_s;
    const auto general = u"The Music Assistant server reported an error."_s;
    const Row rows[] = {
        {"builtin/add_radio", 12, [&] { return failureOf(b.addRadio(u"u"_s, u"n"_s)); },
         general}, // listed: something else
        {"music/library/remove_item", 22,
         [&] { return failureOf(b.removeFromLibrary(id(MediaKind::album, 0))); },
         u"The Music Assistant request failed."_s},
        {"player_queues/next", 12, [&] { return failureOf(b.transport(TransportCommand::next(), kitchen)); },
         general},
        {"players/cmd/play", 10, [&] { return failureOf(b.transport(TransportCommand::play(), kitchen)); },
         u"That output is not available."_s},
        {"players/cmd/play", 777, [&] { return failureOf(b.transport(TransportCommand::play(), kitchen)); },
         general},
        {"players/cmd/play", 20, [&] { return failureOf(b.transport(TransportCommand::play(), kitchen)); },
         u"Music Assistant needs a token before it will answer."_s},
        {"player_queues/save_as_playlist", 3,
         [&] { return failureOf(b.saveQueueAsPlaylist(kitchen, u"x"_s)); },
         u"Nothing in this queue can go in a playlist."_s},
        {"player_queues/move_item", 999,
         [&] { return failureOf(b.edit(QueueEdit::move(u"q1"_s, 1), kitchen)); },
         u"Track already buffered"_s},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.command);
        setFault(row.command, {.kind = FakeMusicAssistant::CommandFault::Kind::fails, .code = row.code});
        EXPECT_EQ(row.operation(), row.sentence);
        server.commandFaults.clear();
    }
    library->unlistCommand(u"music/search"_s);
    outcomeOf(b.disconnect());
    connectBackend();
    setFault("music/search", {.kind = FakeMusicAssistant::CommandFault::Kind::fails, .code = 12});
    EXPECT_EQ(failureOf(b.search(u"x"_s, 1)), unsupported);
    server.commandFaults.clear();
    EXPECT_EQ(failureOf(b.search(u"x"_s, 1)), unsupported) << "it has been noted";
    EXPECT_EQ(countOf("music/search"), 1);
}

TEST_F(MusicAssistantCommandTest, OlderServersAreAskedInTheirWay) {
    open({}, FakeLibrary::Dialect::old);
    EXPECT_EQ(failureOf(backend->transport(TransportCommand::setShuffle(true), kitchen)), QString());
    EXPECT_EQ(argsOf("player_queues/shuffle"), object(R"({"queue_id":"kitchen","shuffle_enabled":true})"));
    EXPECT_EQ(failureOf(backend->addRadio(u"http://x.invalid"_s, u"x"_s)),
              u"This music source does not support that."_s);
    const auto rows = outcomeOf(backend->recommendationRows());
    ASSERT_EQ(rows.value->size(), 2);
    EXPECT_EQ(outcomeOf(backend->recommendationItems(rows.value->first())).value->size(), 7);
    EXPECT_EQ(countOf("music/recommendations/items"), 1) << "only while it was not known";
    server.dropClients();
    ASSERT_TRUE(waitUntil([&] { return backend->status().connection == 2; }));
    EXPECT_EQ(outcomeOf(backend->recommendationItems(rows.value->first())).value->size(), 7);
    const auto albums = outcomeOf(backend->albums({}, {}));
    const ArtworkRef picture = *albums.value->items[0].artwork;
    EXPECT_TRUE(picture.rawValue.startsWith("/imageproxy?path=album%252F1%252F"_L1))
        << picture.rawValue.toStdString();
    EXPECT_GT(outcomeOf(backend->artwork(picture, 300)).value->size(), 100);
}

TEST_F(MusicAssistantCommandTest, MovesAPlaylistsTracksWhereTheServerSaysHow) {
    struct Row {
        QStringList parameters;
        const char *args; ///< null: the server is not understood
    };
    const Row rows[] = {
        {{u"db_playlist_id"_s, u"position"_s, u"new_position"_s},
         R"({"db_playlist_id":"1","position":4,"new_position":2})"},
        {{u"playlist_id"_s, u"from_pos"_s, u"to_pos"_s}, R"({"playlist_id":"1","from_pos":4,"to_pos":2})"},
        {{u"db_playlist_id"_s, u"position"_s, u"pos_shift"_s},
         R"({"db_playlist_id":"1","position":4,"pos_shift":-2})"},
        {{u"db_playlist_id"_s, u"what"_s}, nullptr},
    };
    make();
    for (const Row &row : rows) {
        library->listCommand(u"music/playlists/move_playlist_track"_s, row.parameters);
        server.onCommand(u"music/playlists/move_playlist_track"_s,
                         [](const QJsonObject &, const FakeAnswer &answer) { answer.result({}); });
        connectBackend();
        const auto playlist = outcomeOf(backend->playlists({})).value->items.first();
        EXPECT_EQ(playlist.editing.testFlag(PlaylistEditingOption::reorder), row.args != nullptr);
        const QString failure = failureOf(backend->movePlaylistTrack(playlist.id, 4, 2));
        if (row.args) {
            EXPECT_EQ(failure, QString());
            EXPECT_EQ(argsOf("music/playlists/move_playlist_track"), object(row.args));
        } else {
            EXPECT_EQ(failure, u"Reordering needs a newer Music Assistant."_s);
        }
        outcomeOf(backend->disconnect());
    }
}
