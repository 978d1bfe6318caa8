#include "LocalPlayback/Loading/TrackLoader.h"

#include "AudioCore/AudioCoreError.h"
#include "AudioCore/Queue/AudioFileNames.h"
#include "LocalPlayback/Loading/AddressLoader.h"
#include "LocalPlayback/Playlists/PlaylistFile.h"

#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>

namespace vantor::TrackLoader {

namespace {

constexpr qint64 batchInterval = 100; // ms between deliveries once the first track is out
constexpr qsizetype maxFiles = 1'000'000;

bool hasOwnTitle(const Track &track, const QUrl &url) {
    return !track.artist.isEmpty() || track.title != QFileInfo(url.fileName()).completeBaseName();
}

class Loader {
  public:
    Loader(std::stop_token stop, const std::function<void(Batch)> &deliver)
        : m_stop(std::move(stop)), m_deliver(deliver) {}

    void takeAny(const QUrl &url) {
        if (AddressLoader::isAddress(url))
            takeAddress({url, {}}, true);
        else if (QFileInfo(url.toLocalFile()).isDir())
            takeFolder(url.toLocalFile());
        else if (PlaylistFile::isPlaylist(url))
            takePlaylist(url);
        else
            takeFile({url, {}});
    }

    void deliver() {
        if (!isCancelled())
            m_deliver(std::exchange(m_batch, {}));
        m_sinceDelivery.start();
    }

  private:
    [[nodiscard]] bool isCancelled() const { return m_stop.stop_requested(); }

    void takeFile(const PlaylistEntry &entry) {
        if (isCancelled())
            return;
        try {
            Track track = entry.range ? partOf(entry) : Track::file(entry.url);
            if (!entry.range && !entry.title.isEmpty() && !hasOwnTitle(track, entry.url)) {
                track.title = entry.title;
                track.artist = entry.artist;
            }
            m_batch.tracks.push_back(std::move(track));
        } catch (const AudioCoreError &error) {
            m_batch.skipped.push_back({entry.url, error.description()});
        }
        deliverInTime();
    }

    /// What a list says of a part counts, as the file's tags are those of the whole.
    Track partOf(const PlaylistEntry &entry) {
        if (!m_divided || m_divided->source != Track::Source(entry.url))
            m_divided = Track::file(entry.url); // once for all of its parts
        Track track = *m_divided;
        track.id = QUuid::createUuid();
        track.title = entry.title;
        if (!entry.artist.isEmpty())
            track.artist = entry.artist;
        if (!entry.album.isEmpty())
            track.album = entry.album;
        const double end = entry.range->end.value_or(track.duration);
        track.duration = std::max(end - entry.range->start, 0.0);
        track.range = entry.range;
        return track;
    }

    void takeAddress(const PlaylistEntry &address, bool asks) {
        if (isCancelled())
            return;
        const PlaylistFile::Contents contents = AddressLoader::load(address, asks, m_stop);
        for (const PlaylistEntry &entry : contents.entries) {
            Track track;
            track.id = QUuid::createUuid();
            track.title = entry.title.isEmpty() ? AddressLoader::titleOf(entry.url) : entry.title;
            track.artist = entry.artist;
            track.source = entry.url;
            m_batch.tracks.push_back(std::move(track));
        }
        take(contents.skipped);
        deliverInTime();
    }

    void take(const std::vector<SkippedFile> &skipped) {
        m_batch.skipped.insert(m_batch.skipped.end(), skipped.begin(), skipped.end());
    }

    void deliverInTime() {
        if (!m_sinceDelivery.isValid() || m_sinceDelivery.elapsed() >= batchInterval)
            deliver();
    }

    void takeFolder(const QString &folder) {
        QStringList files;
        QDirIterator walk(folder, audioPatterns(), QDir::Files | QDir::Readable,
                          QDirIterator::Subdirectories);
        while (walk.hasNext() && files.size() < maxFiles && !isCancelled())
            files.append(walk.next());
        files.sort(Qt::CaseInsensitive);
        for (const QString &file : files)
            takeFile({QUrl::fromLocalFile(file), {}});
    }

    void takePlaylist(const QUrl &list) {
        PlaylistFile::Contents contents = PlaylistFile::read(list);
        for (const PlaylistEntry &entry : contents.entries) {
            if (AddressLoader::isAddress(entry.url))
                takeAddress(entry, false);
            else
                takeFile(entry);
        }
        take(contents.skipped);
    }

    const std::stop_token m_stop;
    const std::function<void(Batch)> &m_deliver;
    Batch m_batch;
    std::optional<Track> m_divided; ///< the last file of which a part was taken
    QElapsedTimer m_sinceDelivery;
};

} // namespace

const QStringList &audioPatterns() {
    static const QStringList value = [] {
        QStringList patterns;
        for (const QString &extension : AudioFileNames::extensions())
            patterns.append(QLatin1String("*.") + extension);
        return patterns;
    }();
    return value;
}

void load(const QList<QUrl> &urls, const std::stop_token &stop, const std::function<void(Batch)> &deliver) {
    Loader loader(stop, deliver);
    for (const QUrl &url : urls)
        loader.takeAny(url);
    loader.deliver();
}

} // namespace vantor::TrackLoader
