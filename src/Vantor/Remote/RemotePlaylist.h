#pragma once

#include "Vantor/Model/PlaylistQueue.h"
#include "Vantor/Remote/RemoteOutput.h"

#include <deque>

namespace vantor {

/// The queue of the selected speaker as the playlist shows it. Edits show at once and go to the server one
/// after another; what it makes of them is shown when it has answered the last. Of a long queue the rows that
/// are seen are loaded. Main thread; borrows the output.
class RemotePlaylist : public PlaylistQueue {
    Q_OBJECT

  public:
    /// What a queue has beyond is not shown.
    static constexpr int mostRows = 100'000;
    static constexpr int pageSize = 100;

    explicit RemotePlaylist(RemoteOutput &output, QObject *parent = nullptr);

    [[nodiscard]] const std::vector<Track> &tracks() const override { return m_tracks; }
    [[nodiscard]] std::optional<int> currentIndex() const override { return m_current; }
    void play(int row) override;
    void remove(const IndexSet &rows) override;
    void clear() override;
    /// Sent once the moving has paused, because a drag moves by one row at a time.
    void move(const IndexSet &rows, int step) override;
    void want(int first, int end) override;

  private:
    void forget();
    void takeQueue();
    void takeItems(const QList<RemoteQueueItem> &items, int offset);
    [[nodiscard]] bool knowsPage(int page) const;
    void tryAgainLater(int page);
    void tryAgainSoon();
    [[nodiscard]] bool knows(int row) const;
    [[nodiscard]] bool isBusy() const { return m_isEditing || m_committing.isActive(); }
    void commitMoves();
    void edit(const QList<QueueEdit> &edits);
    QCoro::Task<> editInTurn();
    QCoro::Task<> loadPage(int page);

    RemoteOutput &m_output;
    std::vector<Track> m_tracks;
    QStringList m_ids; ///< the server's, of the tracks; made up for those that are not loaded
    std::optional<int> m_current;
    QSet<int> m_pages;       ///< asked for, or to be asked for again later
    QSet<int> m_failedPages; ///< the latter
    QTimer m_tryingAgain;
    std::chrono::milliseconds m_retryPause; ///< before the next attempt but one
    int m_edition = 0; ///< grows as rows shift: what was asked for before has other places
    std::shared_ptr<char> m_turn = std::make_shared<char>(); ///< whose answers count

    QStringList m_idsBefore; ///< the moves that are not sent yet
    QSet<QString> m_moved;
    QTimer m_committing;
    std::deque<QueueEdit> m_edits; ///< the first one is under way
    bool m_isEditing = false;
    QTimer m_settling; ///< until the server must have told what it made of the edits
};

} // namespace vantor
