#include "LibraryBrowser/LibrarySearch.h"

#include "LibraryBrowser/LibraryBrowser.h"

namespace vantor {

LibrarySearch::LibrarySearch(LibraryBrowser &browser, QObject *parent)
    : QObject(parent), m_browser(browser), m_artists(browser), m_albums(browser), m_tracks(browser) {
    m_pause.setSingleShot(true);
    m_pause.setInterval(typingPause);
    connect(&m_pause, &QTimer::timeout, this, [this] { search(); });
    connect(&browser, &LibraryBrowser::sourceChanged, this, [this] { setText({}); });
    connect(&browser, &LibraryBrowser::refreshed, this, [this] {
        if (isActive())
            search();
    });
}

void LibrarySearch::setText(const QString &text) {
    const QString wanted = text.simplified();
    if (wanted == m_text)
        return;
    m_text = wanted;
    m_turn = std::make_shared<char>();
    m_failure.reset();
    if (isActive()) {
        m_pause.start();
    } else {
        m_pause.stop();
        m_found.clear();
        show({});
    }
    Q_EMIT changed();
}

bool LibrarySearch::hasResults() const {
    return m_artists.rowCount() + m_albums.rowCount() + m_tracks.rowCount() > 0;
}

void LibrarySearch::retry() {
    if (m_failure)
        search();
}

QCoro::Task<> LibrarySearch::search() {
    m_turn = std::make_shared<char>();
    const std::weak_ptr<char> turn = m_turn;
    const std::shared_ptr<MusicBackend> backend = m_browser.connected();
    if (!backend)
        co_return;
    m_failure.reset();
    const QString text = m_text;
    SearchResults results;
    std::optional<LibraryFailure> failure;
    try {
        results = co_await backend->search(text, limit);
    } catch (...) {
        failure = LibraryFailure::of(std::current_exception());
    }
    if (turn.expired())
        co_return;
    m_failure = failure;
    m_found = text;
    show(results);
    Q_EMIT changed();
}

void LibrarySearch::show(const SearchResults &results) {
    QList<LibraryItem> artists;
    for (const ArtistGroup &group : ArtistGrouper::group(results.artists))
        artists.append({group});
    QList<LibraryItem> albums;
    for (const LibraryAlbum &album : results.albums)
        albums.append({album});
    m_artists.showItems(artists);
    m_albums.showItems(albums);
    m_tracks.showTracks(results.tracks);
}

} // namespace vantor
