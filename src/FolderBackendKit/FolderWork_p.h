#pragma once

#include "AudioCore/Queue/Track.h"
#include "FolderBackendKit/FolderIndexer.h"
#include "FolderBackendKit/FolderLibrary.h"
#include "MusicBackendKit/ArtworkRef.h"
#include "MusicBackendKit/MusicBackendError.h"

#include <memory>
#include <variant>

/// What the backend has done by other threads, because a disk may make it wait.
namespace vantor::folderwork {

using Library = std::shared_ptr<const FolderLibrary>;

/// What was known of the folder at the end of the last run; none when that was another one.
[[nodiscard]] Library readKnown(const QString &folder, const QString &indexFile);

struct PassResult {
    Library library; ///< the one before when nothing has changed; none when stopped or failed
    FolderIndexSummary summary;
    QString failure;
};

/// Brings what is known up to date, and keeps it when something has changed.
[[nodiscard]] PassResult runPass(const QString &folder, const QString &indexFile, const Library &known,
                                 const std::stop_token &stop,
                                 const std::shared_ptr<FolderIndexProgress> &progress);

/// Not an exception out of the thread: a future that ends with one is never waited for to its end.
using Picture = std::variant<QByteArray, MusicBackendError>;

[[nodiscard]] Picture loadPicture(const ArtworkRef &ref, const QString &folder, int maxPixels);

struct Playable {
    std::vector<Track> tracks;
    int start = 0; ///< the first of the item to start with, or what follows it
};

/// Those tracks of the items that are there.
[[nodiscard]] Playable findOnDisk(const Library &library, const QList<MediaID> &items, int startItem);

} // namespace vantor::folderwork
