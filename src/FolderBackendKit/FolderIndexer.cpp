#include "FolderBackendKit/FolderIndexer.h"

#include "AudioCore/AudioCoreError.h"
#include "FolderBackendKit/FolderTrackNumbers.h"
#include "FolderBackendKit/FolderWalk.h"
#include "MusicBackendKit/ArtistName.h"
#include "Platform/ParallelMap.h"
#include "Platform/TextFolding.h"

#include <QDateTime>

#include <limits>

namespace vantor {

namespace {

using Job = FolderWalk::Job;

struct Loaded {
    StoredTrack track;
    std::optional<FolderSkippedFile> failure;
};

template <class T>
std::optional<T> known(T value) {
    return value > 0 ? std::optional(value) : std::nullopt;
}

QString stemOf(const QString &path) {
    const QString name = FolderWalk::displayName(path.sliced(path.lastIndexOf(u'/') + 1));
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.first(dot) : name;
}

/// `artist`: the folder's.
StoredTrack trackOf(const Job &job, const QString &artist, const FileMetadata &metadata) {
    const QString stem = stemOf(job.relativePath);
    const QString own = metadata.artist.simplified();
    const bool isOfOthers = !own.isEmpty() && ArtistName::key(own) != ArtistName::key(artist);
    const FolderTrackNumbers tagged = FolderTrackNumbers::read(metadata);
    StoredTrack track{.title = metadata.title.trimmed(),
                      .artistName = isOfOthers ? std::optional(own) : std::nullopt,
                      .trackNumber = tagged.track,
                      .discNumber = job.disc ? job.disc : tagged.disc, // where it lies is the catalogue
                      .duration = known(metadata.duration),
                      .bitrate = known(metadata.bitrate),
                      .sampleRate = known(metadata.sampleRate),
                      .channels = known(metadata.channels)};
    if (track.title.isEmpty() || track.title == stem) {
        const FolderTrackNumbers::Stem named = FolderTrackNumbers::parseStem(stem);
        track.title = named.title;
        if (!track.trackNumber)
            track.trackNumber = named.track;
    }
    return track;
}

} // namespace

/// One index in the making.
class FolderIndexer::Pass {
  public:
    Pass(const FolderIndexer &indexer, const QString &root, const FolderIndex &previous,
         const std::stop_token &stop, FolderIndexProgress *progress)
        : m_indexer(indexer), m_previous(previous), m_stop(stop), m_progress(progress) {
        m_index.root = root;
    }

    std::optional<FolderIndex> run() {
        m_index.builtAt = static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000;
        m_walk.run(m_index.root, m_stop);
        for (const FolderWalk::Artist &artist : m_walk.artists)
            m_artistNames.insert(artist.key, artist.name);
        takeKnown();
        loadOthers();
        if (m_stop.stop_requested())
            return std::nullopt;
        const int failures = static_cast<int>(m_failures.size());
        m_index.summary.skipped = m_walk.skippedCount + failures;
        m_index.summary.unreadable = m_walk.unreadableFolders + failures;
        m_index.skipped = std::move(m_walk.skipped);
        m_index.skipped.insert(m_index.skipped.end(), m_failures.begin(), m_failures.end());
        arrange();
        return std::move(m_index);
    }

  private:
    struct AlbumTracks {
        int count = 0;
        int place = 0;              ///< of the album in the index
        const Job *first = nullptr; ///< in the order of the walk
    };

    void takeKnown();
    void loadOthers();
    [[nodiscard]] Loaded load(const Job &job) const;
    void arrange();
    [[nodiscard]] std::vector<int> sortedArtists() const;
    [[nodiscard]] std::vector<int> sortedAlbums() const;
    void store(const FolderWalk::Artist &artist, const std::vector<int> &albums);
    [[nodiscard]] StoredAlbum stored(int album, const FolderWalk::Artist &artist) const;
    void storeTracks();

    [[nodiscard]] const FolderWalk::Album &album(int number) const {
        return m_walk.albums[static_cast<std::size_t>(number)];
    }

    const FolderIndexer &m_indexer;
    const FolderIndex &m_previous;
    const std::stop_token m_stop;
    FolderIndexProgress *const m_progress;
    FolderWalk m_walk;
    FolderIndex m_index;
    std::vector<std::optional<StoredTrack>> m_tracks; ///< by job
    std::vector<std::size_t> m_toLoad;                ///< jobs
    std::vector<FolderSkippedFile> m_failures;
    QHash<QString, QString> m_artistNames; ///< by key
    std::vector<AlbumTracks> m_albums;     ///< by the walk's album
};

void FolderIndexer::Pass::takeKnown() {
    QHash<QStringView, const FolderTrack *> tracks;
    tracks.reserve(static_cast<qsizetype>(m_previous.tracks.size()));
    for (const FolderTrack &track : m_previous.tracks)
        tracks.insert(track.relativePath, &track);
    QHash<QStringView, const FolderSkippedFile *> failures;
    for (const FolderSkippedFile &file : m_previous.skipped) {
        if (file.modified != 0)
            failures.insert(file.relativePath, &file);
    }
    const auto isSame = [](const auto *file, const Job &job) {
        return file && file->fileSize == job.fileSize && file->modified == job.modified;
    };
    m_tracks.resize(m_walk.jobs.size());
    for (std::size_t i = 0; i < m_tracks.size(); ++i) {
        const Job &job = m_walk.jobs[i];
        if (const FolderTrack *track = tracks.value(job.relativePath); isSame(track, job)) {
            m_tracks[i] = track->library;
            ++m_index.summary.reused;
        } else if (const FolderSkippedFile *file = failures.value(job.relativePath); isSame(file, job)) {
            m_failures.push_back(*file);
        } else {
            m_toLoad.push_back(i);
        }
    }
}

void FolderIndexer::Pass::loadOthers() {
    if (m_progress)
        m_progress->total = static_cast<int>(m_toLoad.size());
    const auto loadOne = [this](std::size_t job) {
        return m_stop.stop_requested() ? Loaded() : load(m_walk.jobs[job]);
    };
    const std::vector<Loaded> loaded = parallelMap(m_toLoad, m_indexer.m_maxConcurrent, loadOne, [] {});
    for (std::size_t i = 0; i < loaded.size(); ++i) {
        if (loaded[i].failure) {
            m_failures.push_back(*loaded[i].failure);
        } else {
            m_tracks[m_toLoad[i]] = loaded[i].track;
            ++m_index.summary.loaded;
        }
    }
}

Loaded FolderIndexer::Pass::load(const Job &job) const {
    Loaded result;
    try {
        const FileMetadata metadata = m_indexer.m_loader(m_index.root + u'/' + job.relativePath);
        result.track = trackOf(job, m_artistNames.value(album(job.album).artistKey), metadata);
    } catch (const AudioCoreError &error) {
        result.failure = FolderSkippedFile{job.relativePath, error.description()};
        // One that could not be read is tried again the next time.
        if (error.errorCase() != AudioCoreError::Case::readFailure) {
            result.failure->fileSize = job.fileSize;
            result.failure->modified = job.modified;
        }
    }
    if (m_progress)
        ++m_progress->done;
    return result;
}

void FolderIndexer::Pass::arrange() {
    m_albums.resize(m_walk.albums.size());
    for (std::size_t i = 0; i < m_tracks.size(); ++i) {
        AlbumTracks &tracks = m_albums[static_cast<std::size_t>(m_walk.jobs[i].album)];
        if (m_tracks[i] && tracks.count++ == 0)
            tracks.first = &m_walk.jobs[i];
    }
    QHash<QString, std::vector<int>> albums;
    for (const int number : sortedAlbums())
        albums[album(number).artistKey].push_back(number);
    for (const int number : sortedArtists()) {
        const FolderWalk::Artist &artist = m_walk.artists[static_cast<std::size_t>(number)];
        store(artist, albums.value(artist.key));
    }
    storeTracks();
}

/// By album, disc, number and place in the walk, which has them in the order of their names. What lies beside
/// the discs comes before them, what has no number comes last.
void FolderIndexer::Pass::storeTracks() {
    std::vector<std::tuple<int, int, int, std::size_t>> order;
    order.reserve(m_tracks.size());
    for (std::size_t i = 0; i < m_tracks.size(); ++i) {
        const int place = m_albums[static_cast<std::size_t>(m_walk.jobs[i].album)].place;
        if (const auto &track = m_tracks[i])
            order.emplace_back(place, track->discNumber.value_or(0),
                               track->trackNumber.value_or(std::numeric_limits<int>::max()), i);
    }
    std::ranges::sort(order);
    m_index.tracks.reserve(order.size());
    for (const auto &[place, disc, number, i] : order) {
        const Job &job = m_walk.jobs[i];
        m_index.tracks.push_back(
            {*std::move(m_tracks[i]), job.relativePath, job.fileSize, job.modified, place});
    }
}

std::vector<int> FolderIndexer::Pass::sortedArtists() const {
    std::vector<std::pair<QString, int>> order;
    for (const FolderWalk::Artist &artist : m_walk.artists)
        order.emplace_back(TextFolding::folded(artist.sortName), static_cast<int>(order.size()));
    std::ranges::sort(order);
    std::vector<int> result;
    for (const auto &[name, artist] : order)
        result.push_back(artist);
    return result;
}

/// Those that have tracks, by year and title; the singles last.
std::vector<int> FolderIndexer::Pass::sortedAlbums() const {
    std::vector<std::tuple<bool, int, QString, int>> order;
    for (int number = 0; number < static_cast<int>(m_albums.size()); ++number) {
        const int year = album(number).year.value_or(std::numeric_limits<int>::max());
        if (m_albums[static_cast<std::size_t>(number)].count > 0)
            order.emplace_back(album(number).synthetic, year, TextFolding::folded(album(number).title),
                               number);
    }
    std::ranges::sort(order);
    std::vector<int> result;
    for (const auto &[isSynthetic, year, title, number] : order)
        result.push_back(number);
    return result;
}

/// An artist and the albums, unless there are none.
void FolderIndexer::Pass::store(const FolderWalk::Artist &artist, const std::vector<int> &albums) {
    if (albums.empty())
        return;
    const auto first = static_cast<std::ptrdiff_t>(m_index.albums.size());
    for (const int number : albums) {
        m_albums[static_cast<std::size_t>(number)].place = static_cast<int>(m_index.albums.size());
        m_index.albums.push_back(stored(number, artist));
    }
    std::optional<ArtworkRef> artwork = (m_index.albums.begin() + first)->artwork;
    if (const auto image = FolderArtwork::best(artist.images))
        artwork = FolderArtwork::ref(image->relativePath, image->modified);
    m_index.artists.push_back({.id = {MediaKind::artist, artist.key},
                               .name = artist.name,
                               .sortName = artist.sortName,
                               .artwork = artwork,
                               .isFavorite = {}});
}

StoredAlbum FolderIndexer::Pass::stored(int number, const FolderWalk::Artist &artist) const {
    const AlbumTracks &tracks = m_albums[static_cast<std::size_t>(number)];
    const auto image = FolderArtwork::best(album(number).images);
    const auto cover = image ? image : album(number).nestedImage;
    return {.id = {MediaKind::album, album(number).id},
            .title = album(number).title,
            .artistID = MediaID{MediaKind::artist, artist.key},
            .artistName = artist.name,
            .year = album(number).year,
            .trackCount = tracks.count,
            .artwork = cover ? FolderArtwork::ref(cover->relativePath, cover->modified)
                             : FolderArtwork::ref(tracks.first->relativePath, tracks.first->modified),
            .isFavorite = {}};
}

FolderIndexer::FolderIndexer(Loader loader, int maxConcurrent)
    : m_loader(std::move(loader)), m_maxConcurrent(maxConcurrent) {}

std::optional<FolderIndex> FolderIndexer::build(const QString &root, const FolderIndex &previous,
                                                const std::stop_token &stop,
                                                FolderIndexProgress *progress) const {
    return Pass(*this, root, previous, stop, progress).run();
}

} // namespace vantor
