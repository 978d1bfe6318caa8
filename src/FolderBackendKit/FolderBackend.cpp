#include "FolderBackendKit/FolderBackend.h"

#include "FolderBackendKit/FolderWalk.h"
#include "FolderBackendKit/FolderWork_p.h"
#include "FolderBackendKit/LocalOutput.h"
#include "MusicBackendKit/MusicBackendError.h"
#include "Platform/NativePath.h"

#include <QCoroFuture>
#include <QDir>
#include <QFileInfo>
#include <QPromise>
#include <QThreadPool>
#include <QTimer>
#include <QtConcurrentRun>

namespace vantor {

namespace {

using namespace folderwork;

constexpr int progressInterval = 100; ///< ms between two looks at how far a pass is

/// Of all folders, one that was left and still waits for a dead disk included. Waits for its threads when the
/// program ends.
QThreadPool &diskThreads() {
    static QThreadPool pool;
    static const bool isSetUp = [] {
        pool.setMaxThreadCount(4);
        return true;
    }();
    Q_UNUSED(isSetUp)
    return pool;
}

QFuture<void> prepareSearch(const Library &library) {
    return QtConcurrent::run(&diskThreads(), [library] { library->prepareSearch(); });
}

} // namespace

class FolderBackend::Private {
  public:
    Private(const QString &path, const QString &file, LocalOutput &localOutput,
            const FolderWatcher::Settings &settings)
        : folder(path.isEmpty() ? QString() : QDir::cleanPath(path)), indexFile(file), output(localOutput),
          watching(settings) {
        progressTimer.setInterval(progressInterval);
        QObject::connect(&progressTimer, &QTimer::timeout, [this] { tellProgress(); });
        playing.setMaxThreadCount(1);
    }

    void tell() {
        std::erase_if(listeners, [](const auto &listener) { return !listener.isWanted(); });
        for (auto &listener : listeners)
            listener.yield(status);
    }

    void tellProgress() {
        const int done = progress->done;
        const int total = progress->total;
        if (std::exchange(status.filesDone, done) != done || std::exchange(status.filesTotal, total) != total)
            tell();
    }

    void beginPass() {
        progress = std::make_shared<FolderIndexProgress>();
        progressTimer.start();
        status.state = FolderIndexStatus::State::indexing;
        status.message.clear();
        status.filesDone = 0;
        status.filesTotal = 0;
        tell();
    }

    void endPass(const PassResult &result) {
        progressTimer.stop();
        const bool hasFailed = !result.library;
        status.state = hasFailed ? FolderIndexStatus::State::failed : FolderIndexStatus::State::ready;
        status.message = result.failure;
        if (!hasFailed) {
            status.summary = result.summary;
            show(result.library);
        }
        tell();
    }

    void show(const Library &next) {
        if (next != library)
            ++status.revision;
        library = next;
    }

    void leave() {
        stop.request_stop();
        stop = std::stop_source();
        passes = {};
        isPassWanted = false;
        watcher.reset();
        progressTimer.stop();
        if (library)
            ++status.revision;
        library.reset();
        isConnected = false;
        const int revision = status.revision;
        status = FolderIndexStatus();
        status.revision = revision;
        tell();
    }

    void requireFolder() const {
        if (folder.isEmpty())
            throw MusicBackendError::notConfigured(
                QStringLiteral("Choose a music folder under Settings › Library."));
    }

    void requireConnection() const {
        requireFolder();
        if (!isConnected)
            throw MusicBackendError::notConnected();
    }

    [[nodiscard]] Library requireLibrary() const {
        requireConnection();
        if (!library && !status.message.isEmpty())
            throw MusicBackendError::backend(status.message);
        if (!library)
            throw MusicBackendError::notConnected();
        return library;
    }

    QCoro::Task<Playable> find(QList<MediaID> items, int startItem) {
        const Library present = requireLibrary();
        const QFuture<Playable> finding = QtConcurrent::run(&playing, findOnDisk, present, items, startItem);
        const Playable found = co_await finding;
        if (found.tracks.empty())
            throw MusicBackendError::backend(QStringLiteral("None of these tracks is on disk any more."));
        co_return found;
    }

    const QString folder;
    const QString indexFile;
    LocalOutput &output;
    const FolderWatcher::Settings watching;
    std::stop_source stop; ///< of this connection
    bool isConnected = false;
    Library library;
    FolderIndexStatus status;
    std::vector<AsyncStreamProducer<FolderIndexStatus>> listeners;
    std::unique_ptr<FolderWatcher> watcher;
    bool isPassWanted = false;
    QFuture<void> passes; ///< ends when none is wanted any more
    std::shared_ptr<FolderIndexProgress> progress = std::make_shared<FolderIndexProgress>();
    QTimer progressTimer;
    QThreadPool playing; ///< one thread, so that requests stay in their order
};

FolderBackend::FolderBackend(const QString &folder, const QString &indexFile, LocalOutput &output,
                             const FolderWatcher::Settings &watching)
    : d(std::make_unique<Private>(folder, indexFile, output, watching)) {}

FolderBackend::~FolderBackend() {
    d->stop.request_stop();
}

QString FolderBackend::sourceID() const {
    return QStringLiteral("folder:") + d->folder;
}

QString FolderBackend::displayName() const {
    return FolderWalk::displayName(QFileInfo(d->folder).fileName());
}

MusicBackendCapabilities FolderBackend::capabilities() const {
    using enum MusicBackendCapability;
    return MusicBackendCapabilities(search) | artwork | localOutput;
}

QCoro::Task<> FolderBackend::connect() {
    const auto self = shared_from_this();
    d->requireFolder();
    d->leave();
    const std::stop_token stop = d->stop.get_token();
    d->isConnected = true;
    d->status.state = FolderIndexStatus::State::indexing;
    d->tell();
    const QFuture<Library> reading = QtConcurrent::run(&diskThreads(), readKnown, d->folder, d->indexFile);
    const Library known = co_await reading;
    if (stop.stop_requested())
        throw MusicBackendError::notConnected();
    // Before the folder is looked through, so that no change goes unnoticed.
    d->watcher = std::make_unique<FolderWatcher>(d->folder, d->watching);
    QObject::connect(d->watcher.get(), &FolderWatcher::changed, [this] {
        d->isPassWanted = true;
        scan();
    });
    QObject::connect(d->watcher.get(), &FolderWatcher::pollingChanged, [this] {
        d->status.note = d->watcher->pollingReason();
        d->tell();
    });
    if (known) {
        d->show(known);
        static_cast<void>(prepareSearch(known)); // while the user still looks around
        d->isPassWanted = true;
        scan();
    } else {
        co_await reindex();
    }
}

QCoro::Task<> FolderBackend::disconnect() {
    d->leave();
    co_return;
}

/// Runs passes until none is wanted any more.
QCoro::Task<> FolderBackend::scan() {
    if (d->passes.isRunning())
        co_return; // and that one goes on
    const auto self = shared_from_this();
    const std::stop_token stop = d->stop.get_token();
    QPromise<void> passes;
    passes.start();
    d->passes = passes.future();
    while (d->isPassWanted && !stop.stop_requested()) {
        d->isPassWanted = false;
        d->beginPass();
        const QFuture<PassResult> pass = QtConcurrent::run(&diskThreads(), runPass, d->folder, d->indexFile,
                                                           d->library, stop, d->progress);
        const PassResult result = co_await pass;
        if (!stop.stop_requested())
            d->endPass(result);
    }
    passes.finish();
}

QCoro::Task<> FolderBackend::reindex() {
    const auto self = shared_from_this();
    d->requireConnection();
    const std::stop_token stop = d->stop.get_token();
    d->isPassWanted = true;
    scan();
    const QFuture<void> passes = d->passes;
    co_await passes;
    if (stop.stop_requested())
        throw MusicBackendError::notConnected();
    if (d->status.state == FolderIndexStatus::State::failed)
        throw MusicBackendError::backend(d->status.message);
}

AsyncStream<FolderIndexStatus> FolderBackend::statusUpdates() {
    auto [producer, stream] = AsyncStream<FolderIndexStatus>::make(latestValueOnly);
    producer.yield(d->status);
    d->listeners.push_back(std::move(producer));
    return std::move(stream);
}

QCoro::Task<Page<LibraryArtist>> FolderBackend::artists(PageRequest page) {
    const Library library = d->requireLibrary();
    co_return library->artists(page);
}

QCoro::Task<Page<LibraryAlbum>> FolderBackend::albums(std::optional<MediaID> artist, PageRequest page) {
    const Library library = d->requireLibrary();
    if (!artist)
        co_return library->albums(page);
    auto found = library->albums(*artist, page);
    if (!found)
        throw MusicBackendError::notFound(*artist);
    co_return *std::move(found);
}

QCoro::Task<QList<LibraryTrack>> FolderBackend::tracks(MediaID album) {
    const Library library = d->requireLibrary();
    auto found = library->tracks(album);
    if (!found)
        throw MusicBackendError::notFound(album);
    co_return *std::move(found);
}

QCoro::Task<Page<LibraryPlaylist>> FolderBackend::playlists(PageRequest) {
    co_return Page<LibraryPlaylist>::last({});
}

QCoro::Task<QList<LibraryTrack>> FolderBackend::tracksOfPlaylist(MediaID playlist) {
    co_await std::suspend_never();
    throw MusicBackendError::notFound(playlist);
}

QCoro::Task<SearchResults> FolderBackend::search(QString text, int limit) {
    const auto self = shared_from_this();
    const Library library = d->requireLibrary();
    if (!library->isSearchable()) {
        const QFuture<void> preparing = prepareSearch(library);
        co_await preparing;
    }
    co_return library->search(text, limit); // a few milliseconds at most
}

QCoro::Task<QByteArray> FolderBackend::artwork(ArtworkRef ref, int maxPixels) {
    const auto self = shared_from_this();
    d->requireConnection();
    const QFuture<Picture> loading =
        QtConcurrent::run(&diskThreads(), loadPicture, ref, d->folder, maxPixels);
    const Picture picture = co_await loading;
    if (const auto *error = std::get_if<MusicBackendError>(&picture))
        throw *error;
    co_return std::get<QByteArray>(picture);
}

QCoro::Task<QList<OutputDevice>> FolderBackend::outputs() {
    co_return {OutputDevice::thisMac()};
}

QCoro::Task<> FolderBackend::play(QList<MediaID> items, OutputDevice on, PlayMode mode) {
    const auto self = shared_from_this();
    d->requireConnection();
    if (on.id != OutputDevice::thisMacID())
        throw MusicBackendError::unknownOutput(on.id);
    const Playable found = co_await d->find(items, mode.startIndex);
    mode.startIndex = mode.kind == PlayMode::Kind::replace ? found.start : 0;
    d->output.play(found.tracks, mode);
}

QCoro::Task<std::vector<Track>> FolderBackend::localTracks(QList<MediaID> items) {
    const auto self = shared_from_this();
    Playable found = co_await d->find(items, 0);
    co_return std::move(found.tracks);
}

QCoro::Task<> FolderBackend::transport(TransportCommand command, OutputDevice::ID on) {
    if (on != OutputDevice::thisMacID())
        throw MusicBackendError::unknownOutput(on);
    d->output.transport(command);
    co_return;
}

AsyncStream<NowPlaying> FolderBackend::nowPlaying(OutputDevice::ID on) {
    return on == OutputDevice::thisMacID() ? d->output.nowPlaying() : AsyncStream<NowPlaying>();
}

std::optional<MediaID> FolderBackend::trackOf(const QUrl &file) const {
    const QString path = NativePath::fromUrl(file);
    const QString prefix = d->folder + u'/';
    if (!d->library || !file.isLocalFile() || !path.startsWith(prefix))
        return std::nullopt;
    return d->library->trackAt(path.sliced(prefix.size()));
}

} // namespace vantor
