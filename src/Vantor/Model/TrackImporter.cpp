#include "Vantor/Model/TrackImporter.h"

#include "AudioCore/AudioCoreError.h"

#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QPromise>
#include <QtConcurrentRun>

namespace vantor {

namespace {

constexpr qint64 batchInterval = 100; // ms between deliveries once the first track is out
constexpr qsizetype maxFiles = 1'000'000;

struct Batch {
    std::vector<Track> tracks;
    std::vector<SkippedFile> skipped;
};

/// Collects what was found and hands it over often enough that nobody waits.
class Deliverer {
  public:
    Deliverer(QPromise<Batch> &promise, const std::atomic_bool &cancelled)
        : m_promise(promise), m_cancelled(cancelled) {}

    [[nodiscard]] bool isCancelled() const { return m_cancelled.load(std::memory_order_relaxed); }

    void tryFile(const QUrl &url) {
        try {
            m_batch.tracks.push_back(Track::file(url));
        } catch (const AudioCoreError &error) {
            m_batch.skipped.push_back({url, error.description()});
        }
        if (!m_sinceDelivery.isValid() || m_sinceDelivery.elapsed() >= batchInterval)
            deliver();
    }

    void deliver() {
        m_promise.addResult(std::exchange(m_batch, {}));
        m_sinceDelivery.start();
    }

  private:
    QPromise<Batch> &m_promise;
    const std::atomic_bool &m_cancelled;
    Batch m_batch;
    QElapsedTimer m_sinceDelivery;
};

QStringList audioFilesBelow(const QString &folder, const Deliverer &deliverer) {
    QStringList files;
    QDirIterator walk(folder, TrackImporter::patterns(), QDir::Files | QDir::Readable,
                      QDirIterator::Subdirectories);
    while (walk.hasNext() && files.size() < maxFiles && !deliverer.isCancelled())
        files.append(walk.next());
    files.sort(Qt::CaseInsensitive);
    return files;
}

void run(QPromise<Batch> &promise, const QList<QUrl> &urls,
         const std::shared_ptr<std::atomic_bool> &cancelled) {
    Deliverer deliverer(promise, *cancelled);
    for (const QUrl &url : urls) {
        if (!QFileInfo(url.toLocalFile()).isDir()) {
            deliverer.tryFile(url);
            continue;
        }
        const QStringList files = audioFilesBelow(url.toLocalFile(), deliverer);
        for (const QString &file : files) {
            if (deliverer.isCancelled())
                return;
            deliverer.tryFile(QUrl::fromLocalFile(file));
        }
    }
    deliverer.deliver();
}

} // namespace

TrackImporter::TrackImporter(QObject *parent) : QObject(parent) {
    m_pool.setMaxThreadCount(1);
}

TrackImporter::~TrackImporter() {
    m_cancelled->store(true);
}

const QStringList &TrackImporter::patterns() {
    static const QStringList value = [] {
        QStringList patterns;
        for (const char *extension : {"flac", "mp3", "m4a", "aac", "ogg", "oga", "opus", "wav", "aif", "aiff",
                                      "aifc", "wma", "ape", "wv",  "mpc", "tta", "mka",  "mp2", "mp4", "m4b",
                                      "ac3",  "dts", "spx", "au",  "caf", "w64", "alac", "dsf", "dff"})
            patterns.append(QLatin1String("*.") + QLatin1String(extension));
        return patterns;
    }();
    return value;
}

quint64 TrackImporter::import(const QList<QUrl> &urls) {
    struct Totals {
        int added = 0;
        std::vector<SkippedFile> skipped;
    };
    const quint64 number = ++m_last;
    auto totals = std::make_shared<Totals>();
    auto *watcher = new QFutureWatcher<Batch>(this);
    connect(watcher, &QFutureWatcher<Batch>::resultReadyAt, this, [this, watcher, number, totals](int index) {
        const Batch batch = watcher->resultAt(index);
        totals->added += static_cast<int>(batch.tracks.size());
        totals->skipped.insert(totals->skipped.end(), batch.skipped.begin(), batch.skipped.end());
        if (!batch.tracks.empty())
            Q_EMIT imported(number, batch.tracks);
    });
    connect(watcher, &QFutureWatcher<Batch>::finished, this, [this, watcher, number, totals] {
        watcher->deleteLater();
        Q_EMIT finished(number, totals->added, totals->skipped);
    });
    watcher->setFuture(QtConcurrent::run(&m_pool, run, urls, m_cancelled));
    return number;
}

} // namespace vantor
