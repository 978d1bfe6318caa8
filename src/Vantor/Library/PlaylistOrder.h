#pragma once

#include "MusicBackendKit/LibraryItems.h"

#include <QObject>

class QDropEvent;
class QKeyEvent;
class QMimeData;

namespace vantor {

class TrackTable;

/// Lets the tracks of a playlist be taken out and put elsewhere in it: by Delete, by Alt and the up and down
/// keys, and by dragging a row. Main thread; the table's.
class PlaylistOrder : public QObject {
    Q_OBJECT

  public:
    explicit PlaylistOrder(TrackTable &table);

    /// What may be done now; nothing in an album.
    void allow(PlaylistEditing editing) { m_editing = editing; }

  Q_SIGNALS:
    void removeAsked();
    /// The track in a row is to stand where the one of the other row stands now.
    void moveAsked(int row, int to);

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    bool takeKey(QKeyEvent &event);
    bool takeDrag(QDropEvent &event);
    void drop(const QDropEvent &event);
    [[nodiscard]] bool canMove() const;
    /// In front of which row something dropped there goes.
    [[nodiscard]] int rowBefore(const QPoint &at) const;

    TrackTable &m_table;
    QWidget *m_gap; ///< shows where it would go
    PlaylistEditing m_editing;
};

} // namespace vantor
