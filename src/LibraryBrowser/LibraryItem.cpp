#include "LibraryBrowser/LibraryItem.h"

#include "MusicBackendKit/ArtistName.h"

namespace vantor {

namespace {

template <class... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};

QString trackCountText(std::optional<int> count) {
    if (!count)
        return {};
    return *count == 1 ? QStringLiteral("1 track") : QStringLiteral("%L1 tracks").arg(*count);
}

} // namespace

LibraryItem LibraryItem::artist(const LibraryArtist &artist) {
    return {ArtistGrouper::group(QList<LibraryArtist>{artist}).first()};
}

LibraryItem LibraryItem::recommended(const RecommendationItem &item) {
    return std::visit(Overloaded{[](const LibraryArtist &found) { return artist(found); },
                                 [](const auto &found) { return LibraryItem{found}; }},
                      item.value);
}

std::optional<MediaKind> LibraryItem::kind() const {
    return std::visit(Overloaded{[](const ArtistGroup &) { return std::optional(MediaKind::artist); },
                                 [](const RecommendationItem::Other &other) { return other.kind; },
                                 [](const auto &known) { return std::optional(known.id.kind); }},
                      record);
}

QList<MediaID> LibraryItem::ids() const {
    return std::visit(Overloaded{[](const ArtistGroup &group) { return group.memberIDs(); },
                                 [](const RecommendationItem::Other &) { return QList<MediaID>(); },
                                 [](const auto &known) { return QList<MediaID>{known.id}; }},
                      record);
}

QString LibraryItem::title() const {
    return std::visit(Overloaded{[](const LibraryAlbum &album) { return album.title; },
                                 [](const LibraryTrack &track) { return track.title; },
                                 [](const auto &named) { return named.name; }},
                      record);
}

QString LibraryItem::subtitle() const {
    return std::visit(
        Overloaded{[](const ArtistGroup &) { return QString(); },
                   [](const LibraryAlbum &album) {
                       return ArtistName::display(album.artistName.value_or(QString()));
                   },
                   [](const LibraryTrack &track) { return ArtistName::display(track.artistName); },
                   [](const LibraryPlaylist &playlist) { return trackCountText(playlist.trackCount); },
                   [](const LibraryRadio &) { return QString(); },
                   [](const RecommendationItem::Other &other) { return other.subtitle.value_or(QString()); }},
        record);
}

std::optional<ArtworkRef> LibraryItem::artwork() const {
    return std::visit([](const auto &any) { return any.artwork; }, record);
}

std::optional<bool> LibraryItem::isFavorite() const {
    return std::visit(Overloaded{[](const ArtistGroup &group) {
                                     std::optional<bool> any;
                                     for (const LibraryArtist &member : group.members) {
                                         if (member.isFavorite)
                                             any = any.value_or(false) || *member.isFavorite;
                                     }
                                     return any;
                                 },
                                 [](const RecommendationItem::Other &) { return std::optional<bool>(); },
                                 [](const auto &known) { return known.isFavorite; }},
                      record);
}

bool LibraryItem::setFavorite(const MediaID &id, std::optional<bool> isFavorite) {
    const auto set = [&](auto &known) {
        const bool changes = known.id == id && known.isFavorite != isFavorite;
        if (changes)
            known.isFavorite = isFavorite;
        return changes;
    };
    return std::visit(Overloaded{[&](ArtistGroup &group) {
                                     bool changes = false;
                                     for (LibraryArtist &member : group.members)
                                         changes = set(member) || changes;
                                     return changes;
                                 },
                                 [](RecommendationItem::Other &) { return false; }, set},
                      record);
}

} // namespace vantor
