#include "Vantor/Model/LocalPlaylist.h"

#include "AudioCore/Queue/PlaylistSelection.h"
#include "LocalPlayback/LocalPlaybackError.h"
#include "LocalPlayback/Playlists/PlaylistFile.h"
#include "Platform/NativePath.h"
#include "Vantor/Model/InBackground.h"
#include "Vantor/Model/NameOrder.h"
#include "Vantor/Model/TrackFinder.h"

#include <unistd.h>

#include <numeric>

namespace vantor {

LocalPlaylist::LocalPlaylist(PlayerModel &model, QObject *parent) : PlaylistQueue(parent), m_model(model) {
    connect(&model.player(), &Player::queueChanged, this, &LocalPlaylist::changed);
    m_observer = model.player().addEventObserver([this](const PlayerEvent &event) {
        if (std::holds_alternative<PlayerEvents::TrackChanged>(event))
            Q_EMIT currentChanged();
    });
}

LocalPlaylist::~LocalPlaylist() {
    m_model.player().removeEventObserver(m_observer);
}

void LocalPlaylist::removeMissing() {
    std::vector<std::pair<QUuid, QString>> files;
    for (const Track &track : tracks()) {
        if (const QUrl *file = std::get_if<QUrl>(&track.source); file && file->isLocalFile())
            files.emplace_back(track.id, NativePath::fromUrl(*file));
    }
    const auto findMissing = [files] {
        QSet<QUuid> missing;
        for (const auto &[id, path] : files) {
            if (access(NativePath::bytes(path).constData(), F_OK) != 0)
                missing.insert(id);
        }
        return missing;
    };
    inBackground(*QThreadPool::globalInstance(), this, findMissing, [this](const QSet<QUuid> &missing) {
        PlaylistSelection gone;
        gone.ids = missing;
        remove(gone.indices(tracks()));
        m_model.showNotice(missing.isEmpty()     ? tr("No file is missing")
                           : missing.size() == 1 ? tr("Removed 1 missing file")
                                                 : tr("Removed %1 missing files").arg(missing.size()));
    });
}

void LocalPlaylist::remove(const IndexSet &rows) {
    if (!rows.empty())
        m_model.player().removeTracks(rows);
}

void LocalPlaylist::removeDuplicates() {
    const auto soundOf = [this](int row) { // several tracks may be parts of one file
        const Track &track = tracks()[static_cast<std::size_t>(row)];
        return std::pair(track.source, track.range ? track.range->start : -1.0);
    };
    QSet<std::pair<Track::Source, double>> seen;
    const std::optional<int> current = currentIndex();
    if (current)
        seen.insert(soundOf(*current));
    IndexSet duplicates;
    for (int row = 0; row < queue().count(); ++row) {
        const auto sound = soundOf(row);
        if (row != current && seen.contains(sound))
            duplicates.insert(duplicates.end(), row);
        seen.insert(sound);
    }
    remove(duplicates);
    m_model.showNotice(duplicates.empty()       ? tr("There are no duplicates")
                       : duplicates.size() == 1 ? tr("Removed 1 duplicate")
                                                : tr("Removed %1 duplicates").arg(duplicates.size()));
}

void LocalPlaylist::sortByTitle() {
    const QCollator collator = nameOrder();
    std::vector<QCollatorSortKey> keys;
    keys.reserve(tracks().size());
    for (const Track &track : tracks())
        keys.push_back(collator.sortKey(TrackFinder::nameOf(track)));
    std::vector<int> order(tracks().size());
    std::iota(order.begin(), order.end(), 0);
    std::ranges::sort(order, [&](int left, int right) {
        const int way = keys[static_cast<std::size_t>(left)].compare(keys[static_cast<std::size_t>(right)]);
        return way < 0 || (way == 0 && left < right);
    });
    m_model.player().reorderTracks(order);
}

void LocalPlaylist::save(const QUrl &list) {
    const auto write = [list, saved = tracks()] {
        try {
            PlaylistFile::write(list, saved);
            return QString();
        } catch (const LocalPlaybackError &error) {
            return error.description();
        }
    };
    inBackground(*QThreadPool::globalInstance(), this, write, [this](const QString &failure) {
        if (!failure.isEmpty())
            m_model.showNotice(failure);
    });
}

} // namespace vantor
