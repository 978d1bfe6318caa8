#pragma once

#include "FolderBackendKit/FolderIndex.h"
#include "FolderBackendKit/WordIndex_p.h"
#include "MusicBackendKit/Page.h"
#include "MusicBackendKit/SearchResults.h"

#include <atomic>
#include <mutex>
#include <utility>

namespace vantor {

/// An index made ready for being browsed, and when it is first wanted for being searched. Never changes; any
/// thread.
class FolderLibrary {
  public:
    explicit FolderLibrary(FolderIndex index);
    FolderLibrary(const FolderLibrary &) = delete;
    FolderLibrary &operator=(const FolderLibrary &) = delete;

    [[nodiscard]] const FolderIndex &index() const { return m_index; }

    [[nodiscard]] Page<LibraryArtist> artists(PageRequest page) const;
    [[nodiscard]] Page<LibraryAlbum> albums(PageRequest page) const; ///< by title
    // Of what is not there, none.
    [[nodiscard]] std::optional<Page<LibraryAlbum>> albums(const MediaID &artist, PageRequest page) const;
    [[nodiscard]] std::optional<QList<LibraryTrack>> tracks(const MediaID &album) const;
    /// The places in the index of the tracks that an item stands for.
    [[nodiscard]] std::vector<int> places(const MediaID &item) const;
    [[nodiscard]] LibraryTrack track(int place) const;
    /// Under this relative path.
    [[nodiscard]] std::optional<MediaID> trackAt(const QString &relativePath) const;

    /// Takes as long as all else together, on whatever thread is the first to call it; others wait.
    void prepareSearch() const;
    [[nodiscard]] bool isSearchable() const { return m_isSearchable; }
    /// At most `limit` of each kind. Prepares itself.
    [[nodiscard]] SearchResults search(const QString &text, int limit) const;

  private:
    /// Of a list, the first and the one behind the last.
    struct Range {
        int first = 0;
        int last = 0;
    };
    using Ranges = QHash<QString, Range>;

    [[nodiscard]] const StoredAlbum &albumOf(const FolderTrack &track) const {
        return m_index.albums[static_cast<std::size_t>(track.album)];
    }

    void indexWords() const;
    [[nodiscard]] int placeOf(const QString &trackID) const; ///< −1 when it is not there

    FolderIndex m_index;
    Ranges m_artists; ///< the albums of each
    Ranges m_albums;  ///< the tracks of each
    /// The hash of each track's id and its place, sorted: made in a fraction of a hash table's time.
    std::vector<std::pair<size_t, int>> m_tracks;
    std::vector<int> m_albumsByTitle;
    std::vector<int> m_artistOf; ///< by album
    mutable std::once_flag m_searchOnce;
    mutable std::atomic_bool m_isSearchable = false;
    mutable WordIndex m_artistWords;
    mutable WordIndex m_albumWords;
    mutable WordIndex m_trackWords;
    mutable WordIndex m_trackArtistWords; ///< where they are not the albums'
};

} // namespace vantor
