#include "LibraryBrowser/LibraryEdits.h"

#include <QPointer>

namespace vantor {

namespace {

using Backend = std::shared_ptr<MusicBackend>;

// What an operation yields is kept where the call that follows it finds it.
QCoro::Task<> createAndFill(Backend backend, QString name, QList<MediaID> items,
                            std::shared_ptr<LibraryPlaylist> made) {
    *made = co_await backend->createPlaylist(name);
    if (!items.isEmpty())
        co_await backend->add(items, made->id);
}

template <typename Result>
QCoro::Task<> keep(QCoro::Task<Result> task, std::shared_ptr<Result> result) {
    *result = co_await task;
}

QCoro::Task<> forget(QCoro::Task<LibraryRadio> task) {
    co_await task;
}

} // namespace

LibraryEdits::LibraryEdits(LibraryBrowser &browser, QObject *parent) : QObject(parent), m_browser(browser) {}

void LibraryEdits::createPlaylist(const QString &name, const QList<MediaID> &items,
                                  const std::function<void(const LibraryPlaylist &)> &then) {
    const auto made = std::make_shared<LibraryPlaylist>();
    start([name, items, made](const Backend &backend) { return createAndFill(backend, name, items, made); },
          [this, made, then] {
              announce(LibraryChange::playlistAdded(made->id), [made, then] { then(*made); });
          });
}

void LibraryEdits::renamePlaylist(const MediaID &playlist, const QString &name, const Then &then) {
    start([playlist, name](const Backend &backend) { return backend->renamePlaylist(playlist, name); },
          [this, playlist, then] { announce(LibraryChange::playlistUpdated(playlist), then); });
}

void LibraryEdits::deletePlaylist(const MediaID &playlist, const Then &then) {
    start([playlist](const Backend &backend) { return backend->deletePlaylist(playlist); },
          [this, playlist, then] { announce(LibraryChange::playlistDeleted(playlist), then); });
}

void LibraryEdits::add(const QList<MediaID> &items, const MediaID &playlist, const Then &then) {
    start([items, playlist](const Backend &backend) { return backend->add(items, playlist); },
          [this, playlist, then] { announce(LibraryChange::playlistUpdated(playlist), then); });
}

void LibraryEdits::remove(const QList<int> &positions, const MediaID &playlist, const Then &then) {
    start([positions, playlist](const Backend &backend) { return backend->remove(positions, playlist); },
          [this, playlist, then] { announce(LibraryChange::playlistUpdated(playlist), then); });
}

void LibraryEdits::move(const MediaID &playlist, int from, int to, const Then &then) {
    start([playlist, from,
           to](const Backend &backend) { return backend->movePlaylistTrack(playlist, from, to); },
          [this, playlist, then] { announce(LibraryChange::playlistUpdated(playlist), then); });
}

void LibraryEdits::importPlaylist(const QString &m3u,
                                  const std::function<void(const LibraryPlaylist &)> &then) {
    const auto made = std::make_shared<LibraryPlaylist>();
    start([m3u, made](const Backend &backend) { return keep(backend->importPlaylist(m3u), made); },
          [this, made, then] {
              announce(LibraryChange::playlistAdded(made->id), [made, then] { then(*made); });
          });
}

void LibraryEdits::exportPlaylist(const MediaID &playlist, const std::function<void(const QString &)> &then) {
    const auto text = std::make_shared<QString>();
    start([playlist, text](const Backend &backend) { return keep(backend->exportPlaylist(playlist), text); },
          [text, then] { then(*text); });
}

void LibraryEdits::addRadio(const RadioURLInput &radio, const Then &then) {
    start([radio](const Backend &backend) { return forget(backend->addRadio(radio.url, radio.name)); },
          [this, then] {
              m_browser.refresh(); // no change tells of radio stations
              then();
          });
}

void LibraryEdits::announce(const LibraryChange &change, const Then &then) {
    Q_EMIT m_browser.changed(change);
    then();
}

void LibraryEdits::start(const Work &work, const Then &then) {
    if (!m_browser.connected())
        return;
    m_edits.push_back({m_browser.connected(), work, then});
    if (m_edits.size() == 1)
        run();
}

QCoro::Task<> LibraryEdits::run() {
    const QPointer<LibraryEdits> self(this);
    while (self && !m_edits.empty()) {
        const Edit edit = m_edits.front();
        std::optional<LibraryFailure> failure;
        try {
            co_await edit.work(edit.backend);
        } catch (...) {
            failure = LibraryFailure::of(std::current_exception());
        }
        if (!self)
            co_return;
        m_edits.pop_front();
        if (failure)
            Q_EMIT m_browser.failed(failure->sentence);
        else if (edit.backend == m_browser.backend())
            edit.then();
    }
}

} // namespace vantor
