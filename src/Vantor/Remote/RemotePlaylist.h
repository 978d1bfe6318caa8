#pragma once

#include "Vantor/Model/PlaylistQueue.h"
#include "Vantor/Remote/RemoteOutput.h"

namespace vantor {

/// The queue of the selected speaker as the playlist shows it. Edits show at once; they go to the server
/// one after another, and what it makes of them is shown in the end. Of a long queue the rows that are seen
/// are loaded. Main thread; borrows the output.
class RemotePlaylist : public PlaylistQueue {
    Q_OBJECT

  public:
    /// Further rows of a queue are not shown.
    static constexpr int mostRows = 100'000;

    explicit RemotePlaylist(RemoteOutput &output, QObject *parent = nullptr);

    [[nodiscard]] const std::vector<Track> &tracks() const override { return m_tracks; }
    [[nodiscard]] std::optional<int> currentIndex() const override { return m_current; }
    void play(int row) override;
    void remove(const IndexSet &rows) override;
    void clear() override;
    void move(const IndexSet &rows, int step) override;
    void want(int first, int end) override;

  private:
    void takeQueue();
    void commitMoves();
    QCoro::Task<> carryOut(QList<QueueEdit> edits);
    QCoro::Task<> loadPage(int offset);

    RemoteOutput &m_output;
    std::vector<Track> m_tracks;
    QStringList m_ids; ///< the server's, of the tracks; empty for rows that are not loaded
    std::optional<int> m_current;
};

} // namespace vantor
