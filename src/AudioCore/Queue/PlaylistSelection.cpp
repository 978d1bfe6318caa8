#include "AudioCore/Queue/PlaylistSelection.h"

namespace vantor {

static bool isRow(int row, const std::vector<Track> &tracks) {
    return row >= 0 && static_cast<size_t>(row) < tracks.size();
}

static QSet<QUuid> allIds(const std::vector<Track> &tracks) {
    QSet<QUuid> ids;
    for (const Track &track : tracks)
        ids.insert(track.id);
    return ids;
}

void PlaylistSelection::click(int row, const std::vector<Track> &tracks) {
    if (!isRow(row, tracks))
        return;
    ids = {tracks[static_cast<size_t>(row)].id};
    anchor = row;
}

void PlaylistSelection::commandClick(int row, const std::vector<Track> &tracks) {
    if (!isRow(row, tracks))
        return;
    const QUuid id = tracks[static_cast<size_t>(row)].id;
    if (!ids.remove(id))
        ids.insert(id);
    anchor = row;
}

void PlaylistSelection::shiftClick(int row, const std::vector<Track> &tracks) {
    if (!anchor || !isRow(*anchor, tracks)) {
        click(row, tracks);
        return;
    }
    if (!isRow(row, tracks))
        return;
    ids.clear();
    for (int selected = std::min(*anchor, row); selected <= std::max(*anchor, row); ++selected)
        ids.insert(tracks[static_cast<size_t>(selected)].id);
}

void PlaylistSelection::selectAll(const std::vector<Track> &tracks) {
    ids = allIds(tracks);
}

void PlaylistSelection::selectNone() {
    ids.clear();
}

void PlaylistSelection::invert(const std::vector<Track> &tracks) {
    ids = allIds(tracks).subtract(ids);
}

void PlaylistSelection::prune(const std::vector<Track> &tracks) {
    ids.intersect(allIds(tracks));
}

IndexSet PlaylistSelection::indices(const std::vector<Track> &tracks) const {
    IndexSet rows;
    for (size_t row = 0; row < tracks.size(); ++row) {
        if (contains(tracks[row]))
            rows.insert(rows.end(), static_cast<int>(row));
    }
    return rows;
}

} // namespace vantor
