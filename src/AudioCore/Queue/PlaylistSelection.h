#pragma once

#include "AudioCore/Queue/PlayQueue.h"

#include <QSet>

namespace vantor {

/// The selected rows of the playlist, by track id, so that the selection survives reordering. Rows outside
/// the list are ignored. A value; any thread.
struct PlaylistSelection {
    QSet<QUuid> ids;
    std::optional<int> anchor; ///< the row where ranges begin

    /// Selects this row alone and anchors there.
    void click(int row, const std::vector<Track> &tracks);
    /// Adds the row or takes it out, and anchors there.
    void commandClick(int row, const std::vector<Track> &tracks);
    /// Selects exactly the rows from the anchor to this one; a plain click while there is no such row. The
    /// anchor stays, so that the range can be drawn anew.
    void shiftClick(int row, const std::vector<Track> &tracks);
    void selectAll(const std::vector<Track> &tracks);
    void selectNone();
    /// Selects exactly those of the tracks that were not selected.
    void invert(const std::vector<Track> &tracks);
    /// Drops ids that no longer occur.
    void prune(const std::vector<Track> &tracks);

    [[nodiscard]] IndexSet indices(const std::vector<Track> &tracks) const;
    [[nodiscard]] bool contains(const Track &track) const { return ids.contains(track.id); }

    bool operator==(const PlaylistSelection &) const = default;
};

} // namespace vantor
