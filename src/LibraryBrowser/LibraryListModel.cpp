#include "LibraryBrowser/LibraryListModel.h"

#include "LibraryBrowser/LibraryBrowser.h"
#include "LibraryBrowser/LibrarySources_p.h"

namespace vantor {

LibraryListModel::LibraryListModel(LibraryBrowser &browser, QObject *parent)
    : PagedModel(parent), m_browser(browser) {
    connect(&browser, &LibraryBrowser::stateChanged, this, [this] { load(); });
    connect(&browser, &LibraryBrowser::refreshed, this, [this] { refresh(); });
    connect(&browser, &LibraryBrowser::changed, this, &LibraryListModel::apply);
    // What belongs to another source means nothing to this one.
    connect(&browser, &LibraryBrowser::sourceChanged, this, [this] {
        if (m_content.kind == Content::Kind::items || m_content.kind == Content::Kind::albumsOfArtist)
            m_content = {};
    });
}

void LibraryListModel::show(const Content &content) {
    if (content == m_content)
        return;
    m_content = content;
    load();
}

void LibraryListModel::showItems(const QList<LibraryItem> &items) {
    m_content = {Content::Kind::items};
    setRows(items);
}

void LibraryListModel::load() {
    using namespace LibrarySources;
    const Backend backend = m_browser.connected();
    switch (backend ? m_content.kind : Content::Kind::nothing) {
    case Content::Kind::nothing:
        return setSource({});
    case Content::Kind::items:
        return;
    case Content::Kind::albums:
        return setSource(albums(backend));
    case Content::Kind::albumsOfArtist:
        return setSource(albums(backend, m_content.artist));
    case Content::Kind::playlists:
        return setSource(playlists(backend));
    case Content::Kind::radios:
        return setSource(radios(backend));
    case Content::Kind::favorites:
        return setSource(favorites(backend, m_content.favorites));
    }
}

void LibraryListModel::apply(const LibraryChange &change) {
    using Kind = LibraryChange::Kind;
    const bool isOfPlaylists = change.kind == Kind::playlistAdded || change.kind == Kind::playlistUpdated ||
                               change.kind == Kind::playlistDeleted;
    if (change.kind == Kind::favoriteChanged) {
        changeRows([&](LibraryItem &item) { return item.setFavorite(change.id, change.isFavorite); });
        if (m_content.kind == Content::Kind::favorites && change.id.kind == m_content.favorites)
            refresh();
    } else if (isOfPlaylists && (m_content.kind == Content::Kind::playlists ||
                                 m_content == Content::favoritesOf(MediaKind::playlist))) {
        refresh();
    }
}

} // namespace vantor
