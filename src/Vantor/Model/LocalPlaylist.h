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

    [[nodiscard]] const std::vector<Track> &tracks() const override;
    [[nodiscard]] std::optional<int> currentIndex() const override;
    void play(int row) override;
    void remove(const IndexSet &rows) override;
    void clear() override;
    void move(const IndexSet &rows, int step) override;
    void want(int, int) override {}

    void crop(const IndexSet &rows);
    /// Files that are not there any more; found out on a worker thread.
    void removeMissing();
    void removeDuplicates(); ///< of one file or library item the playing entry stays, else the first
    void sortByTitle();
    void sort(PlaylistSortKey key);
    void reverse();
    void randomize();
    /// Writes the list on a worker thread; a failure is shown as a notice.
    void save(const QUrl &list);

  private:
    PlayerModel &m_model;
    PlayerEventToken m_observer;
};

} // namespace vantor
