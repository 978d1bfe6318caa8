#include "MusicBackendKit/ArtistGroup.h"

#include "MusicBackendKit/ArtistName.h"

namespace vantor {

QString ArtistGroup::unknownID() {
    return QStringLiteral("<unknown>");
}

QList<MediaID> ArtistGroup::memberIDs() const {
    QList<MediaID> ids;
    ids.reserve(members.size());
    for (const LibraryArtist &member : members)
        ids.append(member.id);
    return ids;
}

QSet<QString> ArtistGrouper::add(const QList<LibraryArtist> &artists) {
    QSet<QString> changed;
    for (const LibraryArtist &artist : artists) {
        if (m_seen.contains(artist.id))
            continue;
        const QString key = ArtistName::key(artist.name);
        const QString id = key.isEmpty() ? ArtistGroup::unknownID() : key;
        const auto position = m_positions.constFind(id);
        if (position == m_positions.cend()) {
            m_seen.insert(artist.id, m_groups.size());
            m_positions.insert(id, m_groups.size());
            m_groups.append(
                {id, ArtistName::display(artist.name), artist.sortName, {artist}, artist.artwork});
        } else {
            m_seen.insert(artist.id, *position);
            ArtistGroup &group = m_groups[*position];
            group.members.append(artist);
            if (!group.artwork)
                group.artwork = artist.artwork;
        }
        changed.insert(id);
    }
    return changed;
}

std::optional<ArtistGroup> ArtistGrouper::group(const MediaID &artist) const {
    const auto position = m_seen.constFind(artist);
    return position == m_seen.cend() ? std::nullopt : std::optional(m_groups[*position]);
}

void ArtistGrouper::removeAll() {
    m_groups.clear();
    m_positions.clear();
    m_seen.clear();
}

QList<ArtistGroup> ArtistGrouper::group(const QList<LibraryArtist> &artists) {
    ArtistGrouper grouper;
    grouper.add(artists);
    return grouper.groups();
}

} // namespace vantor
