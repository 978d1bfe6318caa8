#pragma once

#include "AudioCore/Queue/PlaylistSelection.h"
#include "SkinKit/Rendering/PlaylistWindowScene.h"
#include "Vantor/Model/LocalPlaylist.h"
#include "Vantor/Remote/RemotePlaylist.h"

#include <QObject>
#include <QTimer>

namespace vantor {

/// The queue as the playlist window shows it and works on it: the player's, or while a speaker is selected
/// the speaker's; which rows are seen and selected, and what is done to them. Main thread; borrows the
/// player's model and the settings. Rows that there are not are ignored.
class PlaylistModel : public QObject {
    Q_OBJECT

  public:
    PlaylistModel(PlayerModel &model, QSettings &settings, QObject *parent = nullptr);

    /// What the window shows now, but for what only the window knows (focus, what is pressed, pop-ups).
    [[nodiscard]] PlaylistWindowScene scene() const;

    /// The window's full size in skin pixels, kept in the settings; any size is taken to the nearest step.
    [[nodiscard]] QSize size() const { return m_size; }
    void setSize(QSize size);

    /// Whether it is a speaker's queue.
    [[nodiscard]] bool isRemote() const { return m_model.remote().isSelected(); }
    /// The player's queue, also while another one is shown.
    [[nodiscard]] LocalPlaylist &local() { return m_local; }
    [[nodiscard]] std::optional<int> currentIndex() const { return m_queue->currentIndex(); }

    // What is seen. Scrolling stops at the ends.
    [[nodiscard]] int count() const { return static_cast<int>(tracks().size()); }
    [[nodiscard]] std::optional<Track> track(int row) const;
    [[nodiscard]] int firstRow() const { return m_firstRow; }
    void scrollTo(int firstRow);
    void scrollToFraction(double fraction);
    void reveal(int row);

    // What is selected. The cursor is the row that the keyboard moves from; none in an empty list.
    enum class Selecting { only, toggling, extending };
    void select(int row, Selecting how);
    /// Moves the cursor by rows, to the ends at most.
    void moveCursor(int by, Selecting how);
    /// Moves the cursor to a row and leaves the selection as it is.
    void setCursor(int row);
    [[nodiscard]] std::optional<int> cursor() const;
    [[nodiscard]] bool isSelected(int row) const;
    [[nodiscard]] bool hasSelection() const { return !m_selection.ids.isEmpty(); }
    void selectAll();
    void selectNone();
    void invertSelection();

    // Type-ahead: letters that follow each other within a second make one word, by which the next track that
    // begins with it, or else contains it, is selected. In a long list it may be found only later; the end of
    // typing waits for it.
    void beginTyping();
    void type(const QString &letters);
    void endTyping();
    void cancelTyping(); ///< whatever is not found yet is not looked for any more
    [[nodiscard]] bool isTyping() const { return m_typed.has_value(); }

    // What is done.
    void play(int row);
    void removeSelected(); ///< and selects the row that takes the first one's place
    void crop();           ///< not of a speaker's queue
    void removeAll();
    /// Moves the selected rows together, as far as the list's ends allow; by how many they really moved.
    int moveSelected(int by);
  Q_SIGNALS:
    void changed(); ///< the scene
    void sizeChanged();

  private:
    /// For what is typed, as far as it has come.
    struct Search {
        QString wanted; ///< folded
        int from = 0;
        int step = 0;                ///< rows looked at
        std::optional<int> inside{}; ///< the first that contains it
    };

    void searchOn(std::chrono::milliseconds longest);
    [[nodiscard]] const std::vector<Track> &tracks() const { return m_queue->tracks(); }
    void chooseQueue();
    void showQueue();
    void wantRows();
    void takeCurrent();
    void followCurrent();
    void takeQueue();
    [[nodiscard]] QUuid idAt(int row) const;
    [[nodiscard]] std::optional<int> rowOf(const QUuid &id, int before) const;
    void selectionChanged();
    [[nodiscard]] const IndexSet &selectedRows() const;
    [[nodiscard]] std::vector<PlaylistRow> shownRows() const;
    [[nodiscard]] QString runningTime() const;

    PlayerModel &m_model;
    LocalPlaylist m_local;
    RemotePlaylist m_remote;
    PlaylistQueue *m_queue = &m_local;
    QSettings &m_settings;
    PlaylistSelection m_selection;
    QSize m_size;
    int m_firstRow = 0;
    int m_cursor = 0;
    QUuid m_cursorTrack; ///< the track at the cursor
    QUuid m_anchorTrack; ///< the one at the selection's anchor, if it has one
    int m_count = 0;     ///< of the queue when it was last looked at
    std::optional<QString> m_typed;
    QTimer m_typing;
    std::optional<Search> m_search;
    QTimer m_searching; ///< runs while the search waits for its next turn
    // Made when they are asked for: scenes are, sixty times a second.
    mutable std::optional<std::vector<PlaylistRow>> m_rows;
    mutable std::optional<QString> m_runningTime;
    mutable std::optional<IndexSet> m_selectedRows;
    std::optional<int> m_current; ///< the row of the track that was announced last
    bool m_isMoving = false;      ///< rows of its own, as it knows
};

} // namespace vantor
