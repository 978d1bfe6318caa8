#include "LibraryBrowser/LibraryNowPlaying.h"

#include "MusicBackendKit/ArtistName.h"

namespace vantor {

LibraryNowPlaying::LibraryNowPlaying(LibraryBrowser &browser, QObject *parent)
    : QObject(parent), m_browser(browser) {
    connect(&browser, &LibraryBrowser::sourceChanged, this, &LibraryNowPlaying::follow);
    connect(&browser, &LibraryBrowser::stateChanged, this, &LibraryNowPlaying::follow);
    connect(&browser, &LibraryBrowser::outputsChanged, this, &LibraryNowPlaying::follow);
    follow();
}

bool LibraryNowPlaying::isOn(const LibraryItem &item) const {
    const auto *const album = std::get_if<LibraryAlbum>(&item.record);
    if (!album)
        return m_now.item && item.ids().contains(*m_now.item);
    if (!m_now.item || m_now.album != album->title)
        return false;
    // The tracks of a compilation have artists of their own, but its cover.
    const bool hasCover = album->artwork && album->artwork == m_now.artwork;
    return hasCover || ArtistName::key(m_now.artist.value_or(QString())) ==
                           ArtistName::key(album->artistName.value_or(QString()));
}

void LibraryNowPlaying::follow() {
    const std::shared_ptr<MusicBackend> backend = m_browser.connected();
    const std::optional<OutputDevice> output = backend ? m_browser.output() : std::nullopt;
    if (m_turn && output && m_backend.lock() == backend && m_now.output == output->id)
        return;
    m_turn.reset();
    m_states = {};
    m_backend = backend;
    take(NowPlaying::idle(output ? output->id : OutputDevice::ID(), 0));
    if (!output)
        return;
    m_turn = std::make_shared<char>();
    m_states = backend->nowPlaying(output->id);
    listen();
}

QCoro::Task<> LibraryNowPlaying::listen() {
    const std::weak_ptr<char> turn = m_turn;
    while (true) {
        const std::optional<NowPlaying> now = co_await m_states.next();
        if (turn.expired() || !now)
            co_return;
        take(*now);
    }
}

void LibraryNowPlaying::take(const NowPlaying &now) {
    const NowPlaying before = std::exchange(m_now, now);
    m_now.output = m_turn ? before.output : now.output; // a group may tell its leader's
    if (now.state == NowPlaying::State::stopped)
        m_now.item.reset();
    if (before.item != m_now.item || before.state != m_now.state || before.album != m_now.album)
        Q_EMIT changed();
}

} // namespace vantor
