#include "MusicBackendKit/PlayRequest.h"

namespace vantor {

namespace {

/// The places of the selected tracks, or of all.
QList<qsizetype> taken(const std::optional<QSet<MediaID>> &selection, const QList<LibraryTrack> &tracks) {
    QList<qsizetype> places;
    for (qsizetype i = 0; i < tracks.size(); ++i) {
        if (!selection || selection->contains(tracks[i].id))
            places.append(i);
    }
    return places;
}

QList<MediaID> idsAt(const QList<qsizetype> &places, const QList<LibraryTrack> &tracks) {
    QList<MediaID> ids;
    ids.reserve(places.size());
    for (const qsizetype place : places)
        ids.append(tracks[place].id);
    return ids;
}

} // namespace

PlayRequest PlayRequest::play(const MediaID &album) {
    return {{album}, PlayMode::replace(0)};
}

PlayRequest PlayRequest::append(const MediaID &album) {
    return {{album}, PlayMode::append()};
}

std::optional<PlayRequest> PlayRequest::play(const std::optional<QSet<MediaID>> &selection,
                                             const QList<LibraryTrack> &tracks,
                                             const std::optional<MediaID> &album) {
    const QList<qsizetype> places = taken(selection, tracks);
    if (places.isEmpty())
        return std::nullopt;
    if (album && places.size() == 1)
        return PlayRequest{idsAt(taken(std::nullopt, tracks), tracks),
                           PlayMode::replace(static_cast<int>(places.first()))};
    return PlayRequest{idsAt(places, tracks), PlayMode::replace(0)};
}

PlayRequest PlayRequest::playFrom(qsizetype place, const QList<LibraryTrack> &tracks) {
    const bool isLong = tracks.size() > longestList;
    PlayRequest request{{}, PlayMode::replace(isLong ? 0 : static_cast<int>(place))};
    for (const LibraryTrack &track : isLong ? tracks.mid(place, longestList) : tracks)
        request.items.append(track.id);
    return request;
}

std::optional<PlayRequest> PlayRequest::append(const std::optional<QSet<MediaID>> &selection,
                                               const QList<LibraryTrack> &tracks) {
    const QList<qsizetype> places = taken(selection, tracks);
    if (places.isEmpty())
        return std::nullopt;
    return PlayRequest{idsAt(places, tracks), PlayMode::append()};
}

} // namespace vantor
