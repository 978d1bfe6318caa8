#include "FolderBackendKit/FolderArtwork.h"
#include "FolderBackendKit/FolderIndexFile.h"
#include "FolderBackendKit/FolderWork_p.h"
#include "MusicBackendKit/ArtistName.h"
#include "Platform/NativePath.h"

#include <QLoggingCategory>
#include <QThread>

#include <sys/stat.h>

Q_LOGGING_CATEGORY(folderBackendLog, "co.kelvane.vantor.FolderBackend")

namespace vantor::folderwork {

namespace {

bool isSame(const FolderIndex &a, const FolderIndex &b) {
    return a.artists == b.artists && a.albums == b.albums && a.tracks == b.tracks && a.skipped == b.skipped;
}

Track playable(const LibraryTrack &known, const QString &path) {
    Track track;
    track.id = QUuid::createUuid();
    track.title = known.title;
    if (known.artistName != ArtistName::unknown())
        track.artist = known.artistName;
    track.album = known.albumName;
    track.duration = known.duration.value_or(0);
    track.bitrate = known.bitrate;
    track.sampleRate = known.sampleRate;
    track.channels = known.channels;
    track.source = NativePath::url(path);
    return track;
}

} // namespace

PassResult runPass(const QString &folder, const QString &indexFile, const Library &known,
                   const std::stop_token &stop, const std::shared_ptr<FolderIndexProgress> &progress) {
    PassResult result;
    try {
        const FolderIndexer indexer(FileMetadata::read, std::clamp(QThread::idealThreadCount(), 1, 4));
        auto index = indexer.build(folder, known ? known->index() : FolderIndex(), stop, progress.get());
        if (!index)
            return result;
        result.summary = index->summary;
        if (known && isSame(*index, known->index())) {
            result.library = known;
            return result;
        }
        if (!FolderIndexFile::write(indexFile, *index))
            qCWarning(folderBackendLog) << "the index of the music folder cannot be kept";
        result.library = std::make_shared<const FolderLibrary>(*std::move(index));
        result.library->prepareSearch();
    } catch (const MusicBackendError &error) {
        result.failure = error.description();
    } catch (const std::exception &error) { // out of memory or threads
        result.failure = QString::fromLocal8Bit(error.what());
    }
    return result;
}

Library readKnown(const QString &folder, const QString &indexFile) {
    auto index = FolderIndexFile::read(indexFile);
    return index && index->root == folder ? std::make_shared<const FolderLibrary>(*std::move(index))
                                          : nullptr;
}

Picture loadPicture(const ArtworkRef &ref, const QString &folder, int maxPixels) {
    try {
        return FolderArtwork::data(ref, folder, maxPixels);
    } catch (const MusicBackendError &error) {
        return error;
    }
}

Playable findOnDisk(const Library &library, const QList<MediaID> &items, int startItem) {
    Playable found;
    for (qsizetype i = 0; i < items.size(); ++i) {
        if (i == startItem)
            found.start = static_cast<int>(found.tracks.size());
        for (const int place : library->places(items[i])) {
            const QString &relative = library->index().tracks[static_cast<std::size_t>(place)].relativePath;
            const QString path = library->index().root + u'/' + relative;
            struct stat status;
            if (stat(NativePath::bytes(path).constData(), &status) == 0 && S_ISREG(status.st_mode))
                found.tracks.push_back(playable(library->track(place), path));
        }
    }
    // Nothing of that item was there, nor of those behind it.
    found.start = std::min(found.start, std::max(static_cast<int>(found.tracks.size()) - 1, 0));
    return found;
}

} // namespace vantor::folderwork
