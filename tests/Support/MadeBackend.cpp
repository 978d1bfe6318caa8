#include "MadeBackend.h"

#include "MusicBackendKit/MusicBackendError.h"

#include <QBuffer>
#include <QCoroTimer>
#include <QImage>
#include <QPainter>
#include <QTimer>

namespace vantor {

namespace {

QImage picture(const QString &name, int side) {
    QImage image(side, side, QImage::Format_RGB32);
    const int hue = static_cast<int>(qHash(name) % 360);
    QPainter painter(&image);
    QLinearGradient colors(0, 0, side, side);
    colors.setColorAt(0, QColor::fromHsv(hue, 120, 220));
    colors.setColorAt(1, QColor::fromHsv((hue + 60) % 360, 190, 90));
    painter.fillRect(image.rect(), colors);
    painter.setPen(QPen(QColor::fromHsv((hue + 180) % 360, 90, 240), side / 24.0));
    painter.setRenderHint(QPainter::Antialiasing);
    const double radius = side * (0.15 + static_cast<double>(qHash(name, 1) % 100) / 400);
    painter.drawEllipse(QPointF(side * 0.6, side * 0.45), radius, radius);
    return image;
}

} // namespace

void MadeBackend::setSize(Size size) {
    allArtists.clear();
    allOfAlbums.clear();
    tracksOf.clear();
    for (int a = 0; a < size.artists; ++a) {
        LibraryArtist artist;
        artist.id = {MediaKind::artist, QString::number(a)};
        artist.name = QStringLiteral("Artist %1").arg(a);
        allArtists.append(artist);
        for (int b = 0; b < size.albumsPerArtist; ++b) {
            const int number = a * size.albumsPerArtist + b;
            LibraryAlbum album;
            album.id = {MediaKind::album, QString::number(number)};
            album.title = QStringLiteral("Album %1").arg(number);
            album.artistID = artist.id;
            album.artistName = artist.name;
            album.year = 1970 + number % 50;
            album.artwork = ArtworkRef{album.title};
            allOfAlbums.append(album);
            for (int t = 0; t < size.tracksPerAlbum; ++t) {
                LibraryTrack track;
                track.id = {MediaKind::track, QStringLiteral("%1/%2").arg(number).arg(t)};
                track.title = QStringLiteral("Track %1 of %2").arg(t + 1).arg(number);
                track.artistName = artist.name;
                track.albumID = album.id;
                track.albumName = album.title;
                track.trackNumber = t + 1;
                track.duration = 120 + (number * 7 + t * 31) % 240;
                tracksOf[album.id].append(track);
            }
        }
    }
}

void MadeBackend::setOneOfEverything() {
    using Capability = MusicBackendCapability;
    offers = Capability::search | Capability::artwork | Capability::favorites | Capability::playlists |
             Capability::playlistEditing | Capability::radio | Capability::recommendations |
             Capability::localOutput;
    setSize({.artists = 24, .albumsPerArtist = 3, .tracksPerAlbum = 12});
    const QStringList names{
        QStringLiteral("فيروز"),
        QStringLiteral("🎷 Sax & the 🎺s"),
        QStringLiteral("坂本龍一"),
        QStringLiteral("Ærøskøbing Ængeltorv"),
        QStringLiteral("The Very Long Winded Orchestra of the Northern Provinces and Its Many Friends"),
        QStringLiteral("Q")};
    for (qsizetype i = 0; i < names.size(); ++i) {
        allArtists[i].name = names[i];
        for (LibraryAlbum &album : allOfAlbums) {
            if (album.artistID != allArtists[i].id)
                continue;
            album.artistName = names[i];
            album.title = QStringLiteral("%1: %2").arg(names[names.size() - 1 - i], album.title);
            for (LibraryTrack &track : tracksOf[album.id]) {
                track.artistName = names[i];
                track.albumName = album.title;
            }
        }
    }
    allOfAlbums[1].artwork.reset();
    allOfAlbums[2].isFavorite = true;
    allArtists[3].isFavorite = true;
    for (qsizetype t = 0; t < 12; ++t) {
        LibraryTrack &track = tracksOf[allOfAlbums[4].id][t];
        track.discNumber = t < 5 ? 1 : 2;
        track.trackNumber = static_cast<int>(t < 5 ? t + 1 : t - 4);
    }
    tracksOf[allOfAlbums[4].id][2].isFavorite = true;
    favorites = {tracksOf[allOfAlbums[4].id][2]};
    QList<LibraryTrack> mixed;
    for (const LibraryAlbum &album : allOfAlbums.mid(0, 9))
        mixed.append(tracksOf[album.id].first());
    addPlaylist(QStringLiteral("Long drives & short nights"), mixed);
    addPlaylist(QStringLiteral("Empty one"), {});
    addPlaylist(QStringLiteral("Made for you"), mixed.mid(0, 4));
    allPlaylists.last().editing = {};
    for (const char *const name : {"Radio North", "Jazz at Night", "Slow Waves"}) {
        LibraryRadio radio;
        radio.id = {MediaKind::radio, QString::fromLatin1(name)};
        radio.name = QString::fromLatin1(name);
        allRadios.append(radio);
    }
    RecommendationRow row;
    row.provider = QStringLiteral("made");
    row.itemID = QStringLiteral("recent");
    row.name = QStringLiteral("Recently played");
    QList<RecommendationItem> albums;
    for (const LibraryAlbum &album : allOfAlbums.mid(20, 12))
        albums.append(RecommendationItem::album(album));
    recommended.append({row, albums});
    row.itemID = QStringLiteral("mixed");
    row.name = QStringLiteral("A bit of everything");
    recommended.append(
        {row,
         {RecommendationItem::artist(allArtists[7]), RecommendationItem::playlist(allPlaylists.first()),
          RecommendationItem::track(mixed.first()),
          RecommendationItem::other({QStringLiteral("A folder"), {}, {}, {}, {}})}});
}

NowPlaying MadeBackend::somethingPlaying() const {
    const LibraryTrack &track = tracksOf[allOfAlbums[4].id][3];
    NowPlaying now = NowPlaying::idle(OutputDevice::thisMacID(), 0);
    now.state = NowPlaying::State::playing;
    now.item = track.id;
    now.title = track.title;
    now.artist = track.artistName;
    now.album = track.albumName;
    return now;
}

QCoro::Task<> MadeBackend::answer(QString request, std::chrono::milliseconds after) {
    const auto self = shared_from_this();
    requests.append(request);
    if (after.count() >= 0) {
        QTimer timer;
        timer.start(after);
        co_await timer;
    }
    if (failure)
        throw MusicBackendError::unreachable(*failure);
}

template <typename Record>
QCoro::Task<Page<Record>> MadeBackend::pageOf(const char *what, QList<Record> all, PageRequest page) {
    co_await answer(QStringLiteral("%1 %2+%3").arg(QLatin1String(what)).arg(page.offset).arg(page.limit),
                    delay);
    const int count = claimedTotal.value_or(static_cast<int>(all.size()));
    const std::optional<int> total = tellsTotal ? std::optional(count) : std::nullopt;
    co_return Page<Record>::make(all.mid(page.offset, page.limit), page, total);
}

QCoro::Task<> MadeBackend::connect() {
    co_await answer(QStringLiteral("connect"), delay);
    isConnected = true;
}

QCoro::Task<> MadeBackend::disconnect() {
    isConnected = false;
    m_changes.finish();
    m_listeners.clear();
    co_return;
}

QCoro::Task<Page<LibraryArtist>> MadeBackend::artists(PageRequest page) {
    return pageOf("artists", allArtists, page);
}

QCoro::Task<Page<LibraryAlbum>> MadeBackend::albums(std::optional<MediaID> artist, PageRequest page) {
    for (LibraryAlbum &album : allOfAlbums)
        album.trackCount = tellsTrackCounts ? std::optional(static_cast<int>(tracksOf.value(album.id).size()))
                                            : std::nullopt;
    if (!artist)
        return pageOf("albums", allOfAlbums, page);
    QList<LibraryAlbum> own;
    for (const LibraryAlbum &album : allOfAlbums) {
        if (album.artistID == artist)
            own.append(album);
    }
    return pageOf("albums of", own, page);
}

QCoro::Task<QList<LibraryTrack>> MadeBackend::tracks(MediaID album) {
    co_await answer(QStringLiteral("tracks ") + album.rawValue, delay);
    if (!tracksOf.contains(album))
        throw MusicBackendError::notFound(album);
    co_return tracksOf.value(album);
}

QCoro::Task<Page<LibraryPlaylist>> MadeBackend::playlists(PageRequest page) {
    return pageOf("playlists", allPlaylists, page);
}

QCoro::Task<QList<LibraryTrack>> MadeBackend::tracksOfPlaylist(MediaID playlist) {
    return tracks(playlist);
}

QCoro::Task<Page<LibraryRadio>> MadeBackend::radios(PageRequest page) {
    return pageOf("radios", allRadios, page);
}

QCoro::Task<Page<LibraryTrack>> MadeBackend::favoriteTracks(PageRequest page) {
    return pageOf("favourite tracks", favorites, page);
}

QCoro::Task<QList<RecommendationRow>> MadeBackend::recommendationRows() {
    co_await answer(QStringLiteral("recommendations"), delay);
    QList<RecommendationRow> rows;
    for (const auto &[row, items] : recommended)
        rows.append(row);
    co_return rows;
}

QCoro::Task<QList<RecommendationItem>> MadeBackend::recommendationItems(RecommendationRow row) {
    co_await answer(QStringLiteral("recommended ") + row.itemID, delay);
    const auto found =
        std::ranges::find(recommended, row, &std::pair<RecommendationRow, QList<RecommendationItem>>::first);
    co_return found != recommended.end() ? found->second : QList<RecommendationItem>();
}

QCoro::Task<SearchResults> MadeBackend::search(QString text, int limit) {
    co_await answer(QStringLiteral("search ") + text, searchDelay ? searchDelay(text) : delay);
    const auto matches = [&](const QString &name) { return name.contains(text, Qt::CaseInsensitive); };
    SearchResults results;
    for (const LibraryArtist &artist : allArtists) {
        if (matches(artist.name) && results.artists.size() < limit)
            results.artists.append(artist);
    }
    for (const LibraryAlbum &album : allOfAlbums) {
        if (matches(album.title) && results.albums.size() < limit)
            results.albums.append(album);
        for (const LibraryTrack &track : tracksOf.value(album.id)) {
            if (matches(track.title) && results.tracks.size() < limit)
                results.tracks.append(track);
        }
    }
    co_return results;
}

QCoro::Task<QByteArray> MadeBackend::artwork(ArtworkRef ref, int maxPixels) {
    co_await answer(QStringLiteral("artwork ") + ref.rawValue, delay);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    picture(ref.rawValue, maxPixels).save(&buffer, "JPG");
    co_return bytes;
}

QCoro::Task<> MadeBackend::setFavorite(MediaID item, bool on) {
    co_await answer(QStringLiteral("favourite ") + item.rawValue, delay);
    favoritesSet.append({item, on});
    const auto mark = [&](auto &records) {
        for (auto &record : records) {
            if (record.id == item)
                record.isFavorite = on;
        }
    };
    mark(allArtists);
    mark(allOfAlbums);
    mark(allPlaylists);
    mark(allRadios);
    for (QList<LibraryTrack> &tracks : tracksOf)
        mark(tracks);
    announce(LibraryChange::favoriteChanged(item, on));
}

namespace {

template <typename Record>
QList<Record> favoritesOf(const QList<Record> &all) {
    QList<Record> found;
    std::ranges::copy_if(all, std::back_inserter(found),
                         [](const Record &record) { return record.isFavorite == true; });
    return found;
}

} // namespace

QCoro::Task<Page<LibraryArtist>> MadeBackend::favoriteArtists(PageRequest page) {
    return pageOf("favourite artists", favoritesOf(allArtists), page);
}

QCoro::Task<Page<LibraryAlbum>> MadeBackend::favoriteAlbums(PageRequest page) {
    return pageOf("favourite albums", favoritesOf(allOfAlbums), page);
}

QCoro::Task<Page<LibraryPlaylist>> MadeBackend::favoritePlaylists(PageRequest page) {
    return pageOf("favourite playlists", favoritesOf(allPlaylists), page);
}

QCoro::Task<Page<LibraryRadio>> MadeBackend::favoriteRadios(PageRequest page) {
    return pageOf("favourite radios", favoritesOf(allRadios), page);
}

// Playlists and radio stations

LibraryPlaylist &MadeBackend::playlist(const MediaID &which) {
    const auto found = std::ranges::find(allPlaylists, which, &LibraryPlaylist::id);
    if (found == allPlaylists.end())
        throw MusicBackendError::notFound(which);
    return *found;
}

void MadeBackend::setTracks(const MediaID &which, QList<LibraryTrack> tracks) {
    for (qsizetype i = 0; i < tracks.size(); ++i)
        tracks[i].playlistPosition = static_cast<int>(i);
    playlist(which).trackCount = static_cast<int>(tracks.size());
    tracksOf[which] = tracks;
}

LibraryPlaylist MadeBackend::addPlaylist(const QString &name, const QList<LibraryTrack> &tracks) {
    LibraryPlaylist made;
    made.id = {MediaKind::playlist, QStringLiteral("p%1").arg(allPlaylists.size())};
    made.name = name;
    made.isEditable = true;
    made.editing = PlaylistEditing(PlaylistEditingOption::addRemove) | PlaylistEditingOption::reorder |
                   PlaylistEditingOption::rename | PlaylistEditingOption::delete_;
    allPlaylists.append(made);
    setTracks(made.id, tracks);
    return allPlaylists.last();
}

QCoro::Task<LibraryPlaylist> MadeBackend::createPlaylist(QString name) {
    co_await answer(QStringLiteral("create ") + name, delay);
    co_return addPlaylist(name, {});
}

QCoro::Task<> MadeBackend::renamePlaylist(MediaID which, QString name) {
    co_await answer(QStringLiteral("rename %1 %2").arg(which.rawValue, name), delay);
    playlist(which).name = name;
}

QCoro::Task<> MadeBackend::deletePlaylist(MediaID which) {
    co_await answer(QStringLiteral("delete ") + which.rawValue, delay);
    allPlaylists.removeOne(playlist(which));
}

QCoro::Task<> MadeBackend::add(QList<MediaID> ids, MediaID to) {
    co_await answer(QStringLiteral("add %1 to %2").arg(ids.size()).arg(to.rawValue), delay);
    QList<LibraryTrack> tracks = tracksOf.value(to);
    for (const QList<LibraryTrack> &some : std::as_const(tracksOf)) {
        for (const LibraryTrack &track : some) {
            if (ids.removeOne(track.id))
                tracks.append(track);
        }
    }
    setTracks(to, tracks);
}

QCoro::Task<> MadeBackend::remove(QList<int> positions, MediaID from) {
    co_await answer(QStringLiteral("remove %1 from %2").arg(positions.size()).arg(from.rawValue), delay);
    QList<LibraryTrack> tracks = tracksOf.value(from);
    tracks.removeIf(
        [&](const LibraryTrack &track) { return positions.contains(track.playlistPosition.value_or(-1)); });
    setTracks(from, tracks);
}

QCoro::Task<> MadeBackend::movePlaylistTrack(MediaID which, int from, int to) {
    co_await answer(QStringLiteral("move %1 to %2").arg(from).arg(to), delay);
    QList<LibraryTrack> tracks = tracksOf.value(which);
    tracks.move(from, to);
    setTracks(which, tracks);
}

QCoro::Task<LibraryPlaylist> MadeBackend::importPlaylist(QString m3u) {
    co_await answer(QStringLiteral("import ") + m3u, delay);
    co_return addPlaylist(QStringLiteral("Imported"), {});
}

QCoro::Task<QString> MadeBackend::exportPlaylist(MediaID which) {
    co_await answer(QStringLiteral("export ") + which.rawValue, delay);
    co_return QStringLiteral("#EXTM3U\n#PLAYLIST:%1\n").arg(playlist(which).name);
}

QCoro::Task<LibraryRadio> MadeBackend::addRadio(QString url, QString name) {
    co_await answer(QStringLiteral("radio %1 %2").arg(url, name), delay);
    LibraryRadio radio;
    radio.id = {MediaKind::radio, url};
    radio.name = name;
    allRadios.append(radio);
    co_return radio;
}

AsyncStream<NowPlaying> MadeBackend::nowPlaying(OutputDevice::ID) {
    auto [producer, stream] = AsyncStream<NowPlaying>::make(latestValueOnly);
    m_listeners.push_back(std::move(producer));
    return std::move(stream);
}

void MadeBackend::tellPlaying(const NowPlaying &now) {
    for (auto &listener : m_listeners)
        listener.yield(now);
}

QCoro::Task<QList<OutputDevice>> MadeBackend::outputs() {
    co_await answer(QStringLiteral("outputs"), delay);
    co_return QList<OutputDevice>(speakers); // a copy: the task would take a member's value away
}

QCoro::Task<> MadeBackend::play(QList<MediaID> items, OutputDevice on, PlayMode mode) {
    co_await answer(QStringLiteral("play"), delay);
    played.append({{items, mode}, on.id});
}

AsyncStream<LibraryChange> MadeBackend::libraryChanges() {
    auto [producer, stream] = AsyncStream<LibraryChange>::make(eventBuffer);
    m_changes = std::move(producer);
    return std::move(stream);
}

} // namespace vantor
