#pragma once

#include "AudioCore/Queue/SkippedFile.h"
#include "AudioCore/Queue/Track.h"

#include <QStringList>

#include <vector>

namespace vantor {

/// One thing to play that a playlist names.
struct PlaylistEntry {
    QUrl url;                          ///< a local file, which need not exist, or an http(s) address
    QString title;                     ///< the list's own words; may be empty, or "Artist - Title"
    QString artist{};                  ///< where the list keeps it apart
    QString album{};                   ///< likewise
    std::optional<TrackRange> range{}; ///< the part of a local file that is meant; none: all of it

    bool operator==(const PlaylistEntry &) const = default;
};

/// Playlist files: M3U, M3U8, PLS, XSPF and cue sheets are read, M3U8 and PLS are written. Worker threads,
/// because they read from disk.
namespace PlaylistFile {

inline constexpr qint64 maxBytes = 64LL << 20; ///< of one file, read or written
inline constexpr size_t maxEntries = 250'000;  ///< of a list with all that it contains, and of one written
inline constexpr int maxDepth = 4;             ///< lists inside lists below the one that is read
inline constexpr int maxLists = 1'000;         ///< files read for one list

struct Contents {
    std::vector<PlaylistEntry> entries;
    std::vector<SkippedFile> skipped;

    bool operator==(const Contents &) const = default;
};

/// Glob patterns of the files that read() takes ("*.m3u" …).
[[nodiscard]] const QStringList &patterns();
/// Whether the address is a local file with such an extension.
[[nodiscard]] bool isPlaylist(const QUrl &url);

/// The entries in order, those of local lists inside in their places. A cue sheet gives its tracks, as parts
/// of a file that has several, and a compressed file for one that is gone. What was left out, and the list
/// itself when it cannot be read, is in `skipped` with a sentence that says why.
[[nodiscard]] Contents read(const QUrl &list);

/// Writes PLS for the extension "pls" and M3U8 for every other. Files in the list's folder or below it are
/// written relative to it. Library items have no address and are left out. The formats know no parts of
/// files: those of one file that follow each other are written as the file, once. The file is replaced in one
/// step. Throws LocalPlaybackError::playlistWrite, and playlistTooLarge above the limits.
void write(const QUrl &list, const std::vector<Track> &tracks);

} // namespace PlaylistFile

} // namespace vantor
