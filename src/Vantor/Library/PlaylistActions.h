#pragma once

#include "LibraryBrowser/LibraryEdits.h"
#include "LibraryBrowser/LibraryListModel.h"

class QMenu;
class QWidget;

namespace vantor {

/// What can be done with the playlists and radio stations of the library, with the questions that it takes.
/// Main thread; borrows the browser.
class PlaylistActions : public QObject {
    Q_OBJECT

  public:
    explicit PlaylistActions(LibraryBrowser &browser, QObject *parent = nullptr);

    [[nodiscard]] LibraryEdits &edits() { return m_edits; }
    /// Whether playlists can be made and changed.
    [[nodiscard]] bool areOffered() const;

    // `window`: over which is asked.
    void create(QWidget *window, const QList<MediaID> &items = {});
    void import(QWidget *window);
    void addRadio(QWidget *window);

    /// The playlists to which these can be added, as a menu in this one.
    void fillTargets(QMenu &menu, QWidget *window, const QList<MediaID> &items);
    /// What can be done to a playlist itself.
    void fillMenu(QMenu &menu, QWidget *window, const LibraryPlaylist &playlist);

  Q_SIGNALS:
    void made(const vantor::LibraryPlaylist &playlist); ///< without items, to be filled
    void renamed(const vantor::MediaID &playlist, const QString &name);
    void deleted(const vantor::MediaID &playlist);
    void told(const QString &sentence);

  private:
    void rename(QWidget *window, const LibraryPlaylist &playlist);
    void askToDelete(QWidget *window, const LibraryPlaylist &playlist);
    void exportTo(QWidget *window, const LibraryPlaylist &playlist);
    void listTargets(QMenu &menu, QWidget *window, const QList<MediaID> &items);

    LibraryBrowser &m_browser;
    LibraryEdits m_edits;
    LibraryListModel m_targets;
};

} // namespace vantor
