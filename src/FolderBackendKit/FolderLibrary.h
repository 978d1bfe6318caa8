#pragma once

#include "FolderBackendKit/FolderIndex.h"
#include "FolderBackendKit/WordIndex_p.h"
#include "MusicBackendKit/Page.h"
#include "MusicBackendKit/SearchResults.h"

namespace vantor {

/// An index made ready for being browsed and searched. Never changes; any thread.
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

    /// At most `limit` of each kind.
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

    void indexWords();

    FolderIndex m_index;
    Ranges m_artists;             ///< the albums of each
    Ranges m_albums;              ///< the tracks of each
    QHash<QString, int> m_tracks; ///< by id
    std::vector<int> m_albumsByTitle;
    std::vector<int> m_artistOf; ///< by album
    WordIndex m_artistWords;
    WordIndex m_albumWords;
    WordIndex m_trackWords;
};

} // namespace vantor
