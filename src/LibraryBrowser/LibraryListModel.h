#pragma once

#include "LibraryBrowser/LibraryModel.h"
#include "LibraryBrowser/PagedModel.h"
#include "MusicBackendKit/LibraryChange.h"

namespace vantor {

class LibraryBrowser;

/// Albums, playlists, radio stations or favourites of the source that is browsed, in the source's order. It
/// follows the source and what this announces. Main thread; borrows the browser.
class LibraryListModel : public PagedModel<LibraryItem, LibraryItemModel> {
    Q_OBJECT

  public:
    struct Content {
        enum class Kind { nothing, items, albums, albumsOfArtist, playlists, radios, favorites };
        Kind kind = Kind::nothing;
        ArtistGroup artist{};                   ///< of `albumsOfArtist`
        MediaKind favorites = MediaKind::album; ///< of `favorites`

        [[nodiscard]] static Content albums() { return {Kind::albums}; }
        [[nodiscard]] static Content albumsOf(const ArtistGroup &artist) {
            return {Kind::albumsOfArtist, artist};
        }
        [[nodiscard]] static Content playlists() { return {Kind::playlists}; }
        [[nodiscard]] static Content radios() { return {Kind::radios}; }
        [[nodiscard]] static Content favoritesOf(MediaKind kind) { return {Kind::favorites, {}, kind}; }

        bool operator==(const Content &) const = default;
    };

    explicit LibraryListModel(LibraryBrowser &browser, QObject *parent = nullptr);

    /// Asks for it at once when a source is connected, else as soon as one is. The same again does nothing.
    void show(const Content &content);
    /// These, which came from elsewhere.
    void showItems(const QList<LibraryItem> &items);
    [[nodiscard]] const Content &content() const { return m_content; }

    [[nodiscard]] const LibraryItem *item(int row) const override { return stored(row); }

  private:
    void load();
    void apply(const LibraryChange &change);

    LibraryBrowser &m_browser;
    Content m_content;
};

} // namespace vantor
