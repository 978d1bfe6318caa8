#pragma once

#include "MusicBackendKit/MusicBackend.h"

#include <chrono>
#include <functional>
#include <utility>

namespace vantor {

/// A made-up library of any size that answers late, or not at all, and counts what it is asked for.
class MadeBackend : public MusicBackend {
  public:
    struct Size {
        int artists = 0;
        int albumsPerArtist = 1;
        int tracksPerAlbum = 10;
    };

    MadeBackend() = default;
    explicit MadeBackend(Size size) { setSize(size); }
    void setSize(Size size);
    /// A small library that offers everything, with long, odd and right-to-left names, discs, and items
    /// without covers.
    void setOneOfEverything();
    /// A track of it, as its output would tell.
    [[nodiscard]] NowPlaying somethingPlaying() const;

    // What it is; may be changed at any time.
    QString id = QStringLiteral("made");
    MusicBackendCapabilities offers = MusicBackendCapability::search | MusicBackendCapability::artwork;
    QList<LibraryArtist> allArtists;
    QList<LibraryAlbum> allOfAlbums;
    QHash<MediaID, QList<LibraryTrack>> tracksOf; ///< an album or a playlist
    QList<LibraryPlaylist> allPlaylists;
    QList<LibraryRadio> allRadios;
    QList<LibraryTrack> favorites;
    QList<std::pair<RecommendationRow, QList<RecommendationItem>>> recommended;
    QList<OutputDevice> speakers{OutputDevice::thisMac()};
    bool tellsTotal = true;
    bool tellsTrackCounts = false;   ///< of albums
    std::optional<int> claimedTotal; ///< instead of the true one

    /// How long answers take from now on, below zero when they are there at once, and what every request
    /// fails with.
    std::chrono::milliseconds delay{0};
    std::optional<QString> failure;
    /// How long the answer to a search takes; without it, as everything.
    std::function<std::chrono::milliseconds(const QString &)> searchDelay;

    QStringList requests; ///< "albums 100+100" for a page
    QList<std::pair<PlayRequest, OutputDevice::ID>> played;
    QList<std::pair<MediaID, bool>> favoritesSet;
    bool isConnected = false;
    void announce(const LibraryChange &change) { m_changes.yield(change); }
    /// What its output plays from now on.
    void tellPlaying(const NowPlaying &now);
    /// A playlist that may be changed in every way, with these tracks.
    LibraryPlaylist addPlaylist(const QString &name, const QList<LibraryTrack> &tracks);

    QString sourceID() const override { return id; }
    QString displayName() const override { return QStringLiteral("Made Music"); }
    MusicBackendCapabilities capabilities() const override { return offers; }
    QCoro::Task<> connect() override;
    QCoro::Task<> disconnect() override;
    QCoro::Task<Page<LibraryArtist>> artists(PageRequest page) override;
    QCoro::Task<Page<LibraryAlbum>> albums(std::optional<MediaID> artist, PageRequest page) override;
    QCoro::Task<QList<LibraryTrack>> tracks(MediaID album) override;
    QCoro::Task<Page<LibraryPlaylist>> playlists(PageRequest page) override;
    QCoro::Task<QList<LibraryTrack>> tracksOfPlaylist(MediaID playlist) override;
    QCoro::Task<Page<LibraryRadio>> radios(PageRequest page) override;
    QCoro::Task<Page<LibraryTrack>> favoriteTracks(PageRequest page) override;
    QCoro::Task<QList<RecommendationRow>> recommendationRows() override;
    QCoro::Task<QList<RecommendationItem>> recommendationItems(RecommendationRow row) override;
    QCoro::Task<SearchResults> search(QString text, int limit) override;
    QCoro::Task<QByteArray> artwork(ArtworkRef ref, int maxPixels) override;
    QCoro::Task<> setFavorite(MediaID id, bool on) override;
    QCoro::Task<Page<LibraryArtist>> favoriteArtists(PageRequest page) override;
    QCoro::Task<Page<LibraryAlbum>> favoriteAlbums(PageRequest page) override;
    QCoro::Task<Page<LibraryPlaylist>> favoritePlaylists(PageRequest page) override;
    QCoro::Task<Page<LibraryRadio>> favoriteRadios(PageRequest page) override;
    QCoro::Task<LibraryPlaylist> createPlaylist(QString name) override;
    QCoro::Task<> renamePlaylist(MediaID id, QString name) override;
    QCoro::Task<> deletePlaylist(MediaID id) override;
    QCoro::Task<> add(QList<MediaID> ids, MediaID playlist) override;
    QCoro::Task<> remove(QList<int> positions, MediaID playlist) override;
    QCoro::Task<> movePlaylistTrack(MediaID playlist, int from, int to) override;
    QCoro::Task<LibraryPlaylist> importPlaylist(QString m3u) override;
    QCoro::Task<QString> exportPlaylist(MediaID id) override;
    QCoro::Task<LibraryRadio> addRadio(QString url, QString name) override;
    QCoro::Task<QList<OutputDevice>> outputs() override;
    QCoro::Task<> play(QList<MediaID> items, OutputDevice on, PlayMode mode) override;
    QCoro::Task<> transport(TransportCommand, OutputDevice::ID) override { co_return; }
    AsyncStream<NowPlaying> nowPlaying(OutputDevice::ID on) override;
    AsyncStream<LibraryChange> libraryChanges() override;

  protected:
    QCoro::Task<> answer(QString request, std::chrono::milliseconds after);

  private:
    template <typename Record>
    QCoro::Task<Page<Record>> pageOf(const char *what, QList<Record> all, PageRequest page);

    [[nodiscard]] LibraryPlaylist &playlist(const MediaID &id);
    void setTracks(const MediaID &playlist, QList<LibraryTrack> tracks);

    AsyncStreamProducer<LibraryChange> m_changes;
    std::vector<AsyncStreamProducer<NowPlaying>> m_listeners;
};

} // namespace vantor
