#pragma once

#include "AudioCore/Queue/RepeatMode.h"
#include "AudioCore/Queue/SharedTracks.h"

#include <QRandomGenerator>
#include <QString>

#include <optional>
#include <set>
#include <vector>

namespace vantor {

/// Ascending, distinct row numbers.
using IndexSet = std::set<int>;

/// The text by which rows are sorted.
enum class PlaylistSortKey {
    fileName, ///< the last path component
    path,     ///< the whole address of what is not local
};

/// The ordered list of tracks with the current one, shuffle and repeat. Shuffle keeps a permutation for this
/// pass and one already drawn for the next, so that stepping back retraces the way. A value, cheap to copy;
/// any thread.
///
/// Invariants: when shuffled, shuffleOrder and nextPass are permutations of all indices, and the entry at a
/// shufflePosition of 0 or more is currentIndex. Indices outside the queue are ignored by every operation.
class PlayQueue {
  public:
    PlayQueue() = default;
    explicit PlayQueue(std::vector<Track> tracks) : m_tracks(std::move(tracks)) {}
    /// From every field. A current index outside counts as none; passes that break the invariants are drawn
    /// anew.
    PlayQueue(std::vector<Track> tracks, std::optional<int> currentIndex, RepeatMode repeatMode,
              bool isShuffled, std::vector<int> shuffleOrder, int shufflePosition, std::vector<int> nextPass);

    [[nodiscard]] const std::vector<Track> &tracks() const { return *m_tracks; }
    [[nodiscard]] int count() const { return static_cast<int>(m_tracks->size()); }
    [[nodiscard]] std::optional<int> currentIndex() const { return m_currentIndex; }
    [[nodiscard]] RepeatMode repeatMode() const { return m_repeatMode; }
    [[nodiscard]] bool isShuffled() const { return m_isShuffled; }
    [[nodiscard]] const std::vector<int> &shuffleOrder() const { return m_shuffleOrder; }
    [[nodiscard]] int shufflePosition() const { return m_shufflePosition; }
    [[nodiscard]] const std::vector<int> &nextPass() const { return m_nextPass; }

    [[nodiscard]] std::optional<Track> current() const;
    void setRepeatMode(RepeatMode mode) { m_repeatMode = mode; }

    void append(std::vector<Track> tracks);
    void remove(int index);
    void remove(const IndexSet &indices);
    void crop(const IndexSet &keeping);
    /// Moves rows by an offset; a block that would leave the list stops at its end.
    void move(const IndexSet &indices, int offset);
    /// `order`: old indices in their new order. Whether anything changed; not a permutation changes nothing.
    bool reorder(const std::vector<int> &order);
    bool sort(PlaylistSortKey key); ///< stable; whether the order changed
    bool reverse();
    /// Shuffles the list itself, not the shuffle order.
    bool randomize(QRandomGenerator &generator = *QRandomGenerator::global());
    void removeAll();
    void select(int index);

    /// The new current track, or none when there is nowhere to go and nothing changed.
    std::optional<Track> next();
    std::optional<Track> previous();
    /// The step taken when the current track ended by itself; none at the end of the queue.
    std::optional<Track> advanceAfterTrackEnd();
    /// What that step would make current, without taking it.
    [[nodiscard]] std::optional<int> indexAfterCurrentEnds() const;
    /// Whether next() has somewhere to go under the present repeat mode.
    [[nodiscard]] bool hasForwardTarget() const;

    void setShuffle(bool on, QRandomGenerator &generator = *QRandomGenerator::global());

    bool operator==(const PlayQueue &) const = default;

  private:
    struct Target {
        int index = 0;
        int shufflePosition = -1;
        bool startsNewPass = false;
    };

    [[nodiscard]] std::optional<Target> forwardTarget(bool wrap) const;
    [[nodiscard]] std::optional<Target> backwardTarget(bool wrap) const;
    void commit(const Target &target);
    /// Reorders the rows from `first` on, as many as `order` has entries, which count from there.
    void applyPermutation(const std::vector<int> &order, int first = 0);
    [[nodiscard]] bool wraps() const { return m_repeatMode == RepeatMode::all; }

    SharedTracks m_tracks;
    std::optional<int> m_currentIndex;
    RepeatMode m_repeatMode = RepeatMode::off;
    bool m_isShuffled = false;
    std::vector<int> m_shuffleOrder;
    int m_shufflePosition = -1;
    std::vector<int> m_nextPass;
};

} // namespace vantor
