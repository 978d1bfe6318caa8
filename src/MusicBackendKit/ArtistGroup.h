#pragma once

#include "MusicBackendKit/LibraryItems.h"

#include <QHash>
#include <QList>
#include <QSet>

namespace vantor {

/// The artists that a library lists apart but that are one to the user: their names have the same
/// ArtistName::key(). A value; any thread.
struct ArtistGroup {
    /// The group of the artists without a name. No name's key is the same.
    [[nodiscard]] static QString unknownID();

    QString id;
    QString name; ///< of the first member, as it is displayed
    std::optional<QString> sortName;
    QList<LibraryArtist> members;
    std::optional<ArtworkRef> artwork; ///< of the first member that has one

    [[nodiscard]] QList<MediaID> memberIDs() const;
    [[nodiscard]] bool isMerged() const { return members.size() > 1; }

    bool operator==(const ArtistGroup &) const = default;
};

[[nodiscard]] size_t qHash(const ArtistGroup &group, size_t seed = 0) noexcept;

/// Groups artists as they come, page by page.
class ArtistGrouper {
  public:
    /// In the order in which they first appeared.
    [[nodiscard]] const QList<ArtistGroup> &groups() const { return m_groups; }

    /// Returns the IDs of the groups that are new or changed. An artist that was added before counts once.
    QSet<QString> add(const QList<LibraryArtist> &artists);
    /// The group that holds an artist.
    [[nodiscard]] std::optional<ArtistGroup> group(const MediaID &artist) const;
    /// The place in groups() of one that is there.
    [[nodiscard]] qsizetype position(const QString &group) const { return m_positions[group]; }
    void removeAll();

    /// A whole list in one call.
    [[nodiscard]] static QList<ArtistGroup> group(const QList<LibraryArtist> &artists);

  private:
    QList<ArtistGroup> m_groups;
    QHash<QString, qsizetype> m_positions; ///< by group ID
    QHash<MediaID, qsizetype> m_seen;      ///< by artist: the position of its group
};

} // namespace vantor
