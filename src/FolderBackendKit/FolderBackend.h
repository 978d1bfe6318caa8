#pragma once

#include "AudioCore/Queue/Track.h"
#include "FolderBackendKit/FolderIndex.h"
#include "FolderWatching/FolderWatcher.h"
#include "MusicBackendKit/MusicBackend.h"

#include <QUrl>

namespace vantor {

class LocalOutput;

/// A folder of music files as a music source: a folder for each artist, one in it for each album, and the
/// tracks in that. What the tags are read for is kept in a file, so that the library is there at once the
/// next time; the folder is then looked through for changes, and watched from there on.
///
/// Main thread; disk work is done on threads of its own. Identifiers are made of the path below the folder:
/// they hold as long as the item itself is not moved or renamed. Requests fail with
/// MusicBackendError::notConfigured without a folder, and with notConnected before connect().
///
/// Playlists are none; favourites, radio and recommendations are not offered.
class FolderBackend : public MusicBackend {
  public:
    /// Where the user's settings keep the folder's path.
    static constexpr const char *folderDefaultsKey = "LibraryFolderPath";

    /// `folder`: a local path, empty when none is chosen. `indexFile`: what is known of the folder is kept
    /// there; its folder is made when it is missing. `output` has to outlive the backend.
    FolderBackend(const QString &folder, const QString &indexFile, LocalOutput &output,
                  const FolderWatcher::Settings &watching = {});
    ~FolderBackend() override;

    [[nodiscard]] QString sourceID() const override;
    [[nodiscard]] QString displayName() const override; ///< the folder's name
    [[nodiscard]] MusicBackendCapabilities capabilities() const override;

    /// Ends when there is something to browse: what was known of the folder from earlier, which a scan brings
    /// up to date then, or else the first scan's result. Fails when the folder cannot be read and nothing is
    /// known of it; it is watched all the same, until disconnect(), and is there when it comes back.
    QCoro::Task<> connect() override;
    /// Stops everything. To be called before the program ends.
    QCoro::Task<> disconnect() override;

    /// Looks through the folder now, and ends when that is done. Files that have not changed are not read
    /// again.
    QCoro::Task<> reindex();
    /// The present status first, then every change; only the latest waits for a slow consumer.
    [[nodiscard]] AsyncStream<FolderIndexStatus> statusUpdates();

    QCoro::Task<Page<LibraryArtist>> artists(PageRequest page) override;
    /// All of them by title; an artist's by year.
    QCoro::Task<Page<LibraryAlbum>> albums(std::optional<MediaID> artist, PageRequest page) override;
    QCoro::Task<QList<LibraryTrack>> tracks(MediaID album) override;
    QCoro::Task<Page<LibraryPlaylist>> playlists(PageRequest page) override;
    QCoro::Task<QList<LibraryTrack>> tracksOfPlaylist(MediaID playlist) override;
    /// Items in which every word of the text begins some word: of the artist's name; of the album's title or
    /// its artist's name; of the track's title, its artist's name, its album's or that album's artist's.
    /// Case, accents and punctuation do not count. At most `limit` of each kind, the best first.
    QCoro::Task<SearchResults> search(QString text, int limit) override;
    /// A JPEG or PNG image.
    QCoro::Task<QByteArray> artwork(ArtworkRef ref, int maxPixels) override;

    QCoro::Task<QList<OutputDevice>> outputs() override;
    /// Artists and albums stand for their tracks. What is no longer on disk is left out.
    QCoro::Task<> play(QList<MediaID> items, OutputDevice on, PlayMode mode) override;
    QCoro::Task<> transport(TransportCommand command, OutputDevice::ID on) override;
    AsyncStream<NowPlaying> nowPlaying(OutputDevice::ID on) override;

    /// The files of the tracks that items stand for, in their order; what is no longer on disk is left out,
    /// and it fails when nothing is left. Requests are answered in their order, those to play() included.
    QCoro::Task<std::vector<Track>> localTracks(QList<MediaID> items);
    /// Which track of the library a local file is; none for others.
    [[nodiscard]] std::optional<MediaID> trackOf(const QUrl &file) const;

  private:
    class Private;

    QCoro::Task<> scan();

    std::unique_ptr<Private> d;
};

} // namespace vantor
