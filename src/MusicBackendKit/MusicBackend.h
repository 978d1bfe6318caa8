#pragma once

#include "MusicBackendKit/ArtistGroup.h"
#include "MusicBackendKit/LibraryChange.h"
#include "MusicBackendKit/MusicBackendCapabilities.h"
#include "MusicBackendKit/NowPlaying.h"
#include "MusicBackendKit/Page.h"
#include "MusicBackendKit/PlayRequest.h"
#include "MusicBackendKit/Recommendations.h"
#include "MusicBackendKit/RemoteQueue.h"
#include "MusicBackendKit/SearchResults.h"
#include "MusicBackendKit/TransportCommand.h"
#include "Platform/AsyncStream.h"

#include <QCoroTask>

#include <memory>

namespace vantor {

/// A music library and what plays from it: a folder, or a server.
///
/// Main thread: every operation is called there, suspends instead of blocking, and resumes there. Operations
/// report MusicBackendError, QueueEditError or an error of the source's own, all with a sentence for the
/// user. Tasks start at once and run to their end, awaited or not.
///
/// A backend lives in a shared_ptr. An operation that is under way keeps it alive (`shared_from_this()`), so
/// that whoever drops the pointer need not wait; disconnect() makes what is under way end soon.
///
/// What belongs to a capability that a source lacks has a default: it throws MusicBackendError::unsupported.
class MusicBackend : public std::enable_shared_from_this<MusicBackend> {
  public:
    MusicBackend() = default;
    MusicBackend(const MusicBackend &) = delete;
    MusicBackend &operator=(const MusicBackend &) = delete;
    virtual ~MusicBackend() = default;

    /// Names the source and its configuration; caches keep what they hold under it.
    [[nodiscard]] virtual QString sourceID() const = 0;
    [[nodiscard]] virtual QString displayName() const = 0;
    [[nodiscard]] virtual MusicBackendCapabilities capabilities() const = 0;

    virtual QCoro::Task<> connect() = 0;
    virtual QCoro::Task<> disconnect() = 0;

    // Browsing.
    virtual QCoro::Task<Page<LibraryArtist>> artists(PageRequest page) = 0;
    /// All albums when no artist is given.
    virtual QCoro::Task<Page<LibraryAlbum>> albums(std::optional<MediaID> artist, PageRequest page) = 0;
    virtual QCoro::Task<QList<LibraryTrack>> tracks(MediaID album) = 0;
    virtual QCoro::Task<Page<LibraryPlaylist>> playlists(PageRequest page) = 0;
    virtual QCoro::Task<QList<LibraryTrack>> tracksOfPlaylist(MediaID playlist) = 0;
    virtual QCoro::Task<Page<LibraryRadio>> radios(PageRequest page);
    virtual QCoro::Task<SearchResults> search(QString text, int limit) = 0;
    /// Encoded; no larger than `maxPixels` on its long side when the source can scale.
    virtual QCoro::Task<QByteArray> artwork(ArtworkRef ref, int maxPixels) = 0;
    virtual QCoro::Task<QList<RecommendationRow>> recommendationRows();
    virtual QCoro::Task<QList<RecommendationItem>> recommendationItems(RecommendationRow row);
    /// The record behind an item that is only a reference; by default the item itself.
    virtual QCoro::Task<RecommendationItem> resolve(RecommendationItem item);

    // Favourites.
    virtual QCoro::Task<> setFavorite(MediaID id, bool on);
    virtual QCoro::Task<std::optional<int>> favoriteCount(MediaKind kind);
    virtual QCoro::Task<Page<LibraryArtist>> favoriteArtists(PageRequest page);
    virtual QCoro::Task<Page<LibraryAlbum>> favoriteAlbums(PageRequest page);
    virtual QCoro::Task<Page<LibraryTrack>> favoriteTracks(PageRequest page);
    virtual QCoro::Task<Page<LibraryPlaylist>> favoritePlaylists(PageRequest page);
    virtual QCoro::Task<Page<LibraryRadio>> favoriteRadios(PageRequest page);

    // Playlists and radio stations. Positions are those of LibraryTrack::playlistPosition.
    virtual QCoro::Task<LibraryPlaylist> createPlaylist(QString name);
    virtual QCoro::Task<> renamePlaylist(MediaID id, QString name);
    virtual QCoro::Task<> deletePlaylist(MediaID id);
    virtual QCoro::Task<> add(QList<MediaID> ids, MediaID playlist);
    virtual QCoro::Task<> remove(QList<int> positions, MediaID playlist);
    virtual QCoro::Task<> movePlaylistTrack(MediaID playlist, int from, int to);
    virtual QCoro::Task<LibraryPlaylist> importPlaylist(QString m3u);
    /// As M3U text.
    virtual QCoro::Task<QString> exportPlaylist(MediaID id);
    virtual QCoro::Task<LibraryRadio> addRadio(QString url, QString name);

    /// Ends when the source goes away; by default at once. A consumer that missed() some must reload.
    virtual AsyncStream<LibraryChange> libraryChanges();

    // Playback and outputs.
    virtual QCoro::Task<QList<OutputDevice>> outputs() = 0;
    /// What plays where: a row for each output, all of them at first and again whenever one changes, comes or
    /// goes, so that outputs() is worth asking again. Only the latest waits. By default it ends at once.
    virtual AsyncStream<QList<OutputActivity>> activities();
    /// As they are now; activities() tells when they are worth another look. None, and by default so, when
    /// the output is not there or the source does not tell.
    [[nodiscard]] virtual std::optional<OutputControls> controls(const OutputDevice::ID &on) const;
    virtual QCoro::Task<> setMuted(OutputDevice::ID on, bool isMuted);
    virtual QCoro::Task<> play(QList<MediaID> items, OutputDevice on, PlayMode mode) = 0;
    virtual QCoro::Task<> transport(TransportCommand command, OutputDevice::ID on) = 0;
    /// The present state first, then every change; only the latest waits for a slow consumer.
    virtual AsyncStream<NowPlaying> nowPlaying(OutputDevice::ID on) = 0;
    /// As nowPlaying(); by default an empty queue, once.
    virtual AsyncStream<RemoteQueueSnapshot> queue(OutputDevice::ID on);
    /// Further items of a queue of which a snapshot holds only a window; the offset is that of the first
    /// item's index.
    virtual QCoro::Task<QList<RemoteQueueItem>> queueItems(OutputDevice::ID on, PageRequest page);
    virtual QCoro::Task<> edit(QueueEdit edit, OutputDevice::ID on);
    virtual QCoro::Task<> saveQueueAsPlaylist(OutputDevice::ID on, QString name);
    virtual QCoro::Task<> favoriteCurrentTrack(OutputDevice::ID on);
    /// Moves the queue to another output.
    virtual QCoro::Task<> transfer(OutputDevice::ID from, OutputDevice::ID to, bool autoPlay);
    virtual QCoro::Task<> setGroupMembers(OutputDevice::ID leader, QList<OutputDevice::ID> adding,
                                          QList<OutputDevice::ID> removing);

    // Built on the above. Overrides hide albums() of a group: it is called through this class.
    /// At most `limit`, asked for in pages.
    QCoro::Task<QList<LibraryAlbum>> allAlbums(MediaID artist, int pageSize, int limit);
    /// Of every member, asked for at the same time: in the order of the members, each one's in the source's.
    QCoro::Task<QList<LibraryAlbum>> albums(ArtistGroup group, int pageSize);
};

} // namespace vantor
