#pragma once

#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Model/PlaylistQueue.h"

namespace vantor {

/// The queue of the program's own player, with what is done only to files. Main thread; borrows the model.
class LocalPlaylist : public PlaylistQueue {
    Q_OBJECT

  public:
    explicit LocalPlaylist(PlayerModel &model, QObject *parent = nullptr);
    ~LocalPlaylist() override;

    [[nodiscard]] const std::vector<Track> &tracks() const override { return queue().tracks(); }
    [[nodiscard]] std::optional<int> currentIndex() const override { return queue().currentIndex(); }
    void play(int row) override { m_model.player().play(row); }
    void remove(const IndexSet &rows) override;
    void clear() override { m_model.clearQueue(); }
    void move(const IndexSet &rows, int step) override { m_model.player().moveTracks(rows, step); }
    void want(int, int) override {}

    /// Files that are not there any more; found out on a worker thread.
    void removeMissing();
    void removeDuplicates(); ///< of one file or library item the playing entry stays, else the first
    void sortByTitle();
    void sort(PlaylistSortKey key) { m_model.player().sortQueue(key); }
    void reverse() { m_model.player().reverseQueue(); }
    void randomize() { m_model.player().randomizeQueue(); }
    /// Writes the list on a worker thread; a failure is shown as a notice.
    void save(const QUrl &list);

  private:
    [[nodiscard]] const PlayQueue &queue() const { return m_model.player().queue(); }

    PlayerModel &m_model;
    PlayerEventToken m_observer;
};

} // namespace vantor
