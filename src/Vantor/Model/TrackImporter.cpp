#include "Vantor/Model/TrackImporter.h"

#include "LocalPlayback/Loading/TrackLoader.h"

#include <QFutureWatcher>
#include <QPromise>
#include <QtConcurrentRun>

namespace vantor {

namespace {

void run(QPromise<TrackLoader::Batch> &promise, const QList<QUrl> &urls, const std::stop_token &stop) {
    TrackLoader::load(urls, stop, [&](TrackLoader::Batch batch) { promise.addResult(std::move(batch)); });
}

} // namespace

TrackImporter::TrackImporter(QObject *parent) : QObject(parent) {
    m_pool.setMaxThreadCount(1);
}

TrackImporter::~TrackImporter() {
    m_stop.request_stop();
}

void TrackImporter::cancel() {
    m_stop.request_stop();
    m_stop = std::stop_source();
}

quint64 TrackImporter::import(const QList<QUrl> &urls) {
    struct Totals {
        int added = 0;
        std::vector<SkippedFile> skipped;
    };
    const quint64 number = ++m_last;
    auto totals = std::make_shared<Totals>();
    auto *watcher = new QFutureWatcher<TrackLoader::Batch>(this);
    connect(watcher, &QFutureWatcher<TrackLoader::Batch>::resultReadyAt, this,
            [this, watcher, number, totals](int index) {
                const TrackLoader::Batch batch = watcher->resultAt(index);
                totals->added += static_cast<int>(batch.tracks.size());
                totals->skipped.insert(totals->skipped.end(), batch.skipped.begin(), batch.skipped.end());
                if (!batch.tracks.empty())
                    Q_EMIT imported(number, batch.tracks);
            });
    connect(watcher, &QFutureWatcher<TrackLoader::Batch>::finished, this, [this, watcher, number, totals] {
        watcher->deleteLater();
        Q_EMIT finished(number, totals->added, totals->skipped);
    });
    watcher->setFuture(QtConcurrent::run(&m_pool, run, urls, m_stop.get_token()));
    return number;
}

} // namespace vantor
