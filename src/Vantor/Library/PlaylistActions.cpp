#include "Vantor/Library/PlaylistActions.h"

#include "Vantor/Library/LibraryDialogs.h"
#include "Vantor/Windows/AskBefore.h"

#include <QMenu>
#include <QPointer>

namespace vantor {

namespace {

QString menuText(QString name) {
    return name.replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

PlaylistActions::PlaylistActions(LibraryBrowser &browser, QObject *parent)
    : QObject(parent), m_browser(browser), m_edits(browser), m_targets(browser) {}

bool PlaylistActions::areOffered() const {
    return m_browser.capabilities().testFlag(MusicBackendCapability::playlistEditing);
}

void PlaylistActions::create(QWidget *window, const QList<MediaID> &items) {
    LibraryDialogs::askName(window, tr("New Playlist"), tr("Create"), {}, [this, items](const QString &name) {
        m_edits.createPlaylist(name, items, [this, items](const LibraryPlaylist &playlist) {
            if (items.isEmpty())
                Q_EMIT made(playlist);
            else
                Q_EMIT told(tr("Added to “%1”.").arg(playlist.name));
        });
    });
}

void PlaylistActions::import(QWidget *window) {
    LibraryDialogs::readPlaylist(
        window,
        [this](const QString &m3u) {
            m_edits.importPlaylist(m3u, [this](const LibraryPlaylist &playlist) { Q_EMIT made(playlist); });
        },
        [this](const QString &sentence) { Q_EMIT told(sentence); });
}

void PlaylistActions::addRadio(QWidget *window) {
    LibraryDialogs::askRadio(window, [this](const RadioURLInput &radio) {
        m_edits.addRadio(radio, [this, name = radio.name] { Q_EMIT told(tr("Added “%1”.").arg(name)); });
    });
}

// The playlists may be on their way: the menu is filled again when they have come.
void PlaylistActions::fillTargets(QMenu &menu, QWidget *window, const QList<MediaID> &items) {
    if (!areOffered())
        return;
    auto *const targets = menu.addMenu(tr("Add to Playlist"));
    m_targets.show(LibraryListModel::Content::playlists());
    m_targets.loadAll();
    const auto fill = [this, targets, window, items] { listTargets(*targets, window, items); };
    fill();
    connect(&m_targets, &LibraryModel::stateChanged, targets, fill);
}

void PlaylistActions::listTargets(QMenu &menu, QWidget *window, const QList<MediaID> &items) {
    menu.clear();
    menu.addAction(tr("New Playlist…"), this, [this, window, items] { create(window, items); });
    menu.addSeparator();
    for (int row = 0; row < m_targets.rowCount(); ++row) {
        const LibraryItem *const item = m_targets.item(row);
        const auto *const playlist = item ? std::get_if<LibraryPlaylist>(&item->record) : nullptr;
        if (!playlist || !playlist->editing.testFlag(PlaylistEditingOption::addRemove))
            continue;
        menu.addAction(
            menuText(playlist->name), this, [this, items, id = playlist->id, name = playlist->name] {
                m_edits.add(items, id, [this, name] { Q_EMIT told(tr("Added to “%1”.").arg(name)); });
            });
    }
    if (!m_targets.isComplete() && !m_targets.failure())
        menu.addAction(tr("Loading…"))->setEnabled(false);
}

void PlaylistActions::fillMenu(QMenu &menu, QWidget *window, const LibraryPlaylist &playlist) {
    if (!areOffered())
        return;
    menu.addSeparator();
    if (playlist.editing.testFlag(PlaylistEditingOption::rename))
        menu.addAction(tr("Rename…"), this, [this, window, playlist] { rename(window, playlist); });
    menu.addAction(tr("Export…"), this, [this, window, playlist] { exportTo(window, playlist); });
    if (playlist.editing.testFlag(PlaylistEditingOption::delete_))
        menu.addAction(tr("Delete Playlist…"), this,
                       [this, window, playlist] { askToDelete(window, playlist); });
}

void PlaylistActions::rename(QWidget *window, const LibraryPlaylist &playlist) {
    LibraryDialogs::askName(window, tr("Rename Playlist"), tr("Rename"), playlist.name,
                            [this, id = playlist.id](const QString &name) {
                                m_edits.renamePlaylist(id, name,
                                                       [this, id, name] { Q_EMIT renamed(id, name); });
                            });
}

void PlaylistActions::askToDelete(QWidget *window, const LibraryPlaylist &playlist) {
    askBefore(window, tr("Delete the playlist “%1”?").arg(playlist.name),
              tr("It is gone for good. The music in it stays in the library."), tr("Delete"),
              [this, id = playlist.id] { m_edits.deletePlaylist(id, [this, id] { Q_EMIT deleted(id); }); });
}

void PlaylistActions::exportTo(QWidget *window, const LibraryPlaylist &playlist) {
    m_edits.exportPlaylist(
        playlist.id, [this, over = QPointer(window), name = playlist.name](const QString &m3u) {
            if (over)
                LibraryDialogs::writePlaylist(over, name, m3u,
                                              [this](const QString &sentence) { Q_EMIT told(sentence); });
        });
}

} // namespace vantor
