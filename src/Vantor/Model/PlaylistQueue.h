#pragma once

#include "AudioCore/Queue/PlayQueue.h"

#include <QObject>

namespace vantor {

/// The queue behind the playlist window: the player's own, or that of a speaker. Rows that there are not are
/// ignored. Main thread.
class PlaylistQueue : public QObject {
    Q_OBJECT

  public:
    using QObject::QObject;

    [[nodiscard]] virtual const std::vector<Track> &tracks() const = 0;
    [[nodiscard]] virtual std::optional<int> currentIndex() const = 0;

    virtual void play(int row) = 0;
    virtual void remove(const IndexSet &rows) = 0;
    virtual void clear() = 0;
    /// Moves the rows together by so many places, which there have to be.
    virtual void move(const IndexSet &rows, int step) = 0;
    /// These rows are seen: what is not known of them yet is wanted.
    virtual void want(int first, int end) = 0;

  Q_SIGNALS:
    void changed();        ///< the tracks
    void currentChanged(); ///< which of them is current
};

} // namespace vantor
