#pragma once

#include "AudioCore/Queue/Track.h"

#include <QStringList>

#include <vector>

namespace vantor {

/// Finds tracks by words while they are typed. Holds what it searches, so that the queue may change; a value,
/// used on one thread.
class TrackFinder {
  public:
    static constexpr qsizetype longestField = 256; ///< of what a file says of itself

    /// "Artist - Title", of fields of that length.
    [[nodiscard]] static QString nameOf(const Track &track);

    explicit TrackFinder(const std::vector<Track> &tracks);

    /// The rows whose artist, title, album or file name contain every word of the query, ascending; all rows
    /// for an empty query. Letters of either case and with or without accents are the same. A query that
    /// narrows the one before searches only what that one found.
    const std::vector<int> &find(const QString &query);

  private:
    std::vector<QString> m_texts; ///< by row
    QString m_query;
    std::vector<int> m_found;
};

} // namespace vantor
