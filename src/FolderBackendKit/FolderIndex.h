#pragma once

#include "MusicBackendKit/LibraryItems.h"

#include <optional>
#include <vector>

/// What is known of a music folder. Values; any thread. All paths are in NativePath's form; those that are
/// called relative start below the music folder and are separated by "/".
namespace vantor {

using StoredArtist = LibraryArtist; ///< id, name, sortName, artwork
using StoredAlbum = LibraryAlbum;   ///< id, title, artistID, artistName, year, trackCount, artwork

/// A track without what its place in the index says already: its id, its album and its artist.
struct StoredTrack {
    QString title;
    std::optional<QString> artistName; ///< of a track that is by others than its album
    std::optional<int> trackNumber;
    std::optional<int> discNumber;
    std::optional<double> duration;   ///< seconds
    std::optional<int> bitrate;       ///< kbit/s
    std::optional<double> sampleRate; ///< Hz
    std::optional<int> channels;

    bool operator==(const StoredTrack &) const = default;
};

struct FolderTrack {
    StoredTrack library;
    QString relativePath;
    qint64 fileSize = 0; ///< bytes
    double modified = 0; ///< seconds since 1970
    int album = 0;       ///< its place in FolderIndex::albums

    bool operator==(const FolderTrack &) const = default;
};

struct FolderSkippedFile {
    QString relativePath;
    QString reason;      ///< "not an audio file"
    qint64 fileSize = 0; ///< of audio files that turned out to be none: they are not read again unless
    double modified = 0; ///< they change

    bool operator==(const FolderSkippedFile &) const = default;
};

/// What building an index came to, in files.
struct FolderIndexSummary {
    int reused = 0; ///< were known already and have not changed
    int loaded = 0; ///< were read
    int skipped = 0;
    int unreadable = 0; ///< of those skipped: audio files and folders that could not be read

    bool operator==(const FolderIndexSummary &) const = default;
};

/// A music folder as it was at one time. Artists stand in the order of their sort names, the albums of each
/// by year and title with the singles last, the tracks of each by disc, number and file name.
struct FolderIndex {
    static constexpr int currentVersion = 2;

    int version = currentVersion;
    QString root;       ///< the music folder's path
    double builtAt = 0; ///< seconds since 1970
    std::vector<StoredArtist> artists;
    std::vector<StoredAlbum> albums;
    std::vector<FolderTrack> tracks;
    std::vector<FolderSkippedFile> skipped;
    FolderIndexSummary summary;

    bool operator==(const FolderIndex &) const = default;
};

/// What is to be told about the index, as it changes. A value.
struct FolderIndexStatus {
    enum class State {
        notConnected, ///< or no folder is chosen
        indexing,     ///< what was known of the folder before can be browsed meanwhile
        ready,
        failed, ///< the folder cannot be read; what was known of it before can still be browsed
    };
    State state = State::notConnected;
    QString message;            ///< of `failed`: the sentence for the user
    QString note;               ///< a sentence while changes in the folder may show up late, else empty
    int filesDone = 0;          ///< of `indexing`
    int filesTotal = 0;         ///< of `indexing`; 0 until it is known
    FolderIndexSummary summary; ///< of the last index
    int revision = 0; ///< grows when artists, albums or tracks have changed: lists are to be reloaded

    bool operator==(const FolderIndexStatus &) const = default;
};

} // namespace vantor
