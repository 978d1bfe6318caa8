#include "MusicBackendKit/NowPlaying.h"
#include "MusicBackendKit/SearchResults.h"

#include <gtest/gtest.h>

using namespace vantor;

namespace {

/// Every change of one field makes another value with another hash; of these few, none collide.
template <typename Record>
void expectAllToCount(std::initializer_list<void (*)(Record &)> changes) {
    QSet<Record> records{Record()};
    QSet<size_t> hashes{qHash(Record())};
    for (const auto change : changes) {
        Record record;
        change(record);
        records.insert(record);
        hashes.insert(qHash(record));
    }
    EXPECT_EQ(records.size(), static_cast<qsizetype>(changes.size()) + 1);
    EXPECT_EQ(hashes.size(), records.size());
}

} // namespace

TEST(RecordsTest, EveryFieldCounts) {
    using Track = LibraryTrack;
    const MediaID id{MediaKind::album, u"1"_qs};
    EXPECT_NE(qHash(id), qHash(MediaID{MediaKind::track, u"1"_qs}));
    expectAllToCount<Track>({
        [](Track &t) { t.id.rawValue = u"1"_qs; },
        [](Track &t) { t.title = u"1"_qs; },
        [](Track &t) { t.artistID = MediaID{}; },
        [](Track &t) { t.artistName = u"1"_qs; },
        [](Track &t) { t.albumID = MediaID{}; },
        [](Track &t) { t.albumName = u"1"_qs; },
        [](Track &t) { t.albumName = QString(); },
        [](Track &t) { t.trackNumber = 1; },
        [](Track &t) { t.discNumber = 1; },
        [](Track &t) { t.duration = 1; },
        [](Track &t) { t.bitrate = 1; },
        [](Track &t) { t.sampleRate = 1; },
        [](Track &t) { t.channels = 1; },
        [](Track &t) { t.artwork = ArtworkRef{u"1"_qs}; },
        [](Track &t) { t.isFavorite = true; },
        [](Track &t) { t.isFavorite = false; },
        [](Track &t) { t.playlistPosition = 0; },
    });
    using Playlist = LibraryPlaylist;
    expectAllToCount<Playlist>({
        [](Playlist &p) { p.isEditable = true; },
        [](Playlist &p) { p.isDynamic = true; },
        [](Playlist &p) { p.source = PlaylistSource::builtIn(); },
        [](Playlist &p) { p.source = PlaylistSource::provider(u"1"_qs); },
        [](Playlist &p) { p.editing = PlaylistEditingOption::rename; },
        [](Playlist &p) { p.editing = PlaylistEditingOption::rename | PlaylistEditingOption::delete_; },
        [](Playlist &p) { p.owner = u"1"_qs; },
        [](Playlist &p) { p.libraryID = u"1"_qs; },
    });
    using Device = OutputDevice;
    expectAllToCount<Device>({
        [](Device &d) { d.isGroup = true; },
        [](Device &d) { d.isAvailable = false; },
        [](Device &d) { d.groupableWith = QSet<Device::ID>(); },
        [](Device &d) { d.groupableWith = QSet{Device::thisMacID(), Device::ID{u"1"_qs}}; },
    });
    using Results = SearchResults;
    expectAllToCount<Results>({
        [](Results &r) { r.artists.append(LibraryArtist()); },
        [](Results &r) { r.albums.append(LibraryAlbum()); },
        [](Results &r) { r.tracks.append(LibraryTrack()); },
    });
}
