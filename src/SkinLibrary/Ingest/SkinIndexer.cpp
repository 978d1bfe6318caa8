#include "SkinLibrary/Ingest/SkinIndexer.h"

#include "Platform/NativePath.h"
#include "Platform/ParallelMap.h"
#include "SkinLibrary/Ingest/FolderScanner.h"
#include "SkinLibrary/SkinLibraryError.h"

#include <QDateTime>
#include <QLoggingCategory>

#include <system_error>

Q_LOGGING_CATEGORY(skinIndexerLog, "co.kelvane.vantor.SkinIndexer")

namespace vantor {

namespace {

using Clock = std::chrono::steady_clock;
using Phase = SkinIndexProgress::Phase;

/// A changed file whose bytes have been read, or not.
struct HashedItem {
    FileStamp stamp;
    QString hash;
    QString md5;
    std::optional<QString> failure; ///< why the file cannot be read
};

HashedItem hashed(const SkinIngester &ingester, const FileStamp &stamp) {
    try {
        const SkinDigests digests = ingester.digests(stamp.path);
        return {stamp, digests.sha256, digests.md5, {}};
    } catch (const std::system_error &error) {
        return {stamp, SkinContentHash::ofUnreadable(stamp.path), QStringLiteral(""),
                QString::fromLocal8Bit(error.code().message().c_str())};
    }
}

ParsedSkin inspected(const SkinIngester &ingester, const HashedItem &item) {
    const SkinDigests digests{item.hash, item.md5};
    if (item.failure)
        return {item.stamp, digests, {{}, SkinStatus::failed, QStringList{*item.failure}}, false};
    const SkinInspection inspection = ingester.inspect(item.stamp.path);
    // A file that was pulled away under the inspection is not a broken skin.
    const bool wasThere =
        inspection.status != SkinStatus::failed || FolderScanner::stamp(item.stamp.path) == item.stamp;
    return {item.stamp, digests, inspection, wasThere};
}

template <class T>
std::vector<T> present(std::vector<std::optional<T>> results) {
    std::vector<T> values;
    for (std::optional<T> &result : results) {
        if (result)
            values.push_back(std::move(*result));
    }
    return values;
}

} // namespace

QString rawValue(SkinIndexProgress::Phase phase) {
    switch (phase) {
    case Phase::scanning:
        return QStringLiteral("scanning");
    case Phase::indexing:
        return QStringLiteral("indexing");
    case Phase::pruning:
        return QStringLiteral("pruning");
    case Phase::hashing:
        return QStringLiteral("hashing");
    case Phase::done:
        break;
    }
    return QStringLiteral("done");
}

/// Claims the indexer for as long as it lives.
class SkinIndexer::Running {
  public:
    explicit Running(SkinIndexer &indexer) : m_indexer(indexer) {
        if (indexer.m_running.exchange(true))
            throw SkinLibraryError::passAlreadyRunning();
        indexer.m_cancelled = false;
    }
    ~Running() { m_indexer.m_running = false; }
    Running(const Running &) = delete;
    Running &operator=(const Running &) = delete;

  private:
    SkinIndexer &m_indexer;
};

/// The state of one pass; its methods run in the order of the phases.
class SkinIndexer::Pass {
  public:
    Pass(SkinIndexer &indexer, const Progress &progress)
        : m_indexer(indexer), m_store(indexer.m_store), m_progress(progress) {}

    SkinIndexSummary run(bool full) {
        enter(Phase::scanning);
        std::vector<FileStamp> changed = scan(full);
        enter(Phase::indexing);
        index(changed);
        enter(Phase::pruning);
        m_summary.removed += m_store.pruneOrphans();
        enter(Phase::hashing);
        fillMissingMD5s();
        record();
        m_store.checkpoint();
        finish();
        enter(Phase::done);
        return m_summary;
    }

    SkinIndexSummary add(const QStringList &paths) {
        std::vector<FileStamp> stamps;
        for (const QString &path : paths)
            stamps.push_back(FolderScanner::stamp(path));
        read(stamps);
        applyRead();
        finish();
        return m_summary;
    }

  private:
    std::vector<FileStamp> scan(bool full);
    void index(const std::vector<FileStamp> &changed);
    void read(const std::vector<FileStamp> &batch);
    void applyRead();
    void fillMissingMD5s();
    void record();
    void finish();

    [[nodiscard]] bool isCancelled() {
        m_summary.cancelled = m_summary.cancelled || m_indexer.m_cancelled;
        return m_summary.cancelled;
    }
    /// `function` of every item that is begun before the pass is cancelled.
    template <class Item, class Function, class Meanwhile>
    [[nodiscard]] auto mapUntilCancelled(const std::vector<Item> &items, const Function &function,
                                         const Meanwhile &meanwhile) {
        using Result = decltype(function(items.front()));
        const auto unlessCancelled = [&](const Item &item) {
            return m_indexer.m_cancelled ? std::nullopt : std::optional<Result>(function(item));
        };
        return present(parallelMap(items, m_indexer.m_concurrency, unlessCancelled, meanwhile));
    }
    template <class Item, class Function>
    [[nodiscard]] auto mapUntilCancelled(const std::vector<Item> &items, const Function &function) {
        return mapUntilCancelled(items, function, [] {});
    }
    void enter(Phase phase);
    void advance(std::int64_t processed, bool isLast);
    void report();

    SkinIndexer &m_indexer;
    SkinIndexStore &m_store;
    const Progress &m_progress;
    const Clock::time_point m_start = Clock::now();
    Clock::time_point m_lastReport;
    SkinIndexProgress m_state;
    SkinIndexSummary m_summary;
    QString m_folder;
    std::vector<IngestOutcome> m_read; ///< the last batch, while it is not in the index yet
};

std::vector<FileStamp> SkinIndexer::Pass::scan(bool full) {
    m_folder = FolderScanner::realPath(m_indexer.m_folder);
    std::vector<FileStamp> stamps = FolderScanner::list(m_indexer.m_folder, {QStringLiteral("wsz")});
    m_state.totalFiles = static_cast<std::int64_t>(stamps.size());
    QHash<QString, SkinIndexStore::IndexedFile> known = m_store.fileStamps();
    std::vector<FileStamp> changed;
    for (const FileStamp &stamp : stamps) {
        const auto found = known.constFind(stamp.path);
        if (full || found == known.cend() || found->stamp != stamp ||
            found->parserVersion < m_indexer.m_parserVersion)
            changed.push_back(stamp);
        if (found != known.cend())
            known.erase(found);
    }
    if (!known.isEmpty())
        m_summary.removed += m_store.removeFiles(known.keys());
    // So that of several copies always the same one gives its name, whatever the order of the disk.
    std::ranges::sort(changed, {}, &FileStamp::path);
    m_state.changed = static_cast<std::int64_t>(changed.size());
    m_summary.unchanged = m_state.totalFiles - m_state.changed;
    return changed;
}

void SkinIndexer::Pass::index(const std::vector<FileStamp> &changed) {
    const auto size = static_cast<std::size_t>(m_indexer.m_batchSize);
    for (std::size_t start = 0; start < changed.size() && !isCancelled(); start += size) {
        const auto first = changed.begin() + static_cast<std::ptrdiff_t>(start);
        const std::size_t count = std::min(size, changed.size() - start);
        read({first, first + static_cast<std::ptrdiff_t>(count)});
    }
    applyRead();
}

/// Writes the batch before this one while the other threads begin with hashing, because writing alone would
/// leave them idle. What is asked of the index comes after that.
void SkinIndexer::Pass::read(const std::vector<FileStamp> &batch) {
    const SkinIngester &ingester = m_indexer.m_ingester;
    const std::vector<HashedItem> items = mapUntilCancelled(
        batch, [&](const FileStamp &stamp) { return hashed(ingester, stamp); }, [&] { applyRead(); });
    if (isCancelled())
        return;
    // When the whole folder has gone, its files are not broken.
    const auto isUnreadable = [](const HashedItem &item) { return item.failure.has_value(); };
    if (!m_folder.isEmpty() && std::ranges::any_of(items, isUnreadable))
        (void)FolderScanner::realPath(m_indexer.m_folder);
    QStringList hashes;
    for (const HashedItem &item : items)
        hashes.append(item.hash);
    const QHash<QString, std::int64_t> known = m_store.knownSkinIDs(hashes, m_indexer.m_parserVersion);
    m_read = mapUntilCancelled(items, [&](const HashedItem &item) {
        if (known.contains(item.hash))
            return IngestOutcome(LinkedSkin{item.stamp, item.hash});
        return IngestOutcome(inspected(ingester, item));
    });
}

void SkinIndexer::Pass::applyRead() {
    const std::vector<IngestOutcome> outcomes = std::exchange(m_read, {});
    if (outcomes.empty())
        return;
    const AppliedCounts counts = m_store.apply(outcomes, m_indexer.m_parserVersion);
    m_summary.added += counts.added;
    m_summary.updated += counts.updated;
    m_summary.linked += counts.linked;
    const auto done = static_cast<std::int64_t>(outcomes.size());
    advance(done, m_state.processed + done == m_state.changed || isCancelled());
}

void SkinIndexer::Pass::fillMissingMD5s() {
    using Missing = SkinIndexStore::MissingMD5;
    for (std::int64_t after = 0; !isCancelled();) {
        const std::vector<Missing> page = m_store.skinsMissingMD5(after, m_indexer.m_batchSize);
        if (page.empty())
            return;
        const auto sums = mapUntilCancelled(page, [&](const Missing &skin) {
            return std::pair(skin.id, hashed(m_indexer.m_ingester, {.path = skin.path}).md5);
        });
        m_store.setMD5s(sums);
        after = page.back().id;
        advance(static_cast<std::int64_t>(sums.size()), false);
    }
}

void SkinIndexer::Pass::record() {
    const SkinIndexCounts counts = m_store.counts();
    const auto failed = counts.byStatus.find(SkinStatus::failed);
    const std::int64_t failures = failed == counts.byStatus.end() ? 0 : failed->second;
    const QString summary =
        QStringLiteral("%1 files, %2 skins, %3 added, %4 updated, %5 linked, %6 removed, %7 failed")
            .arg(counts.files)
            .arg(counts.skins)
            .arg(m_summary.added)
            .arg(m_summary.updated)
            .arg(m_summary.linked)
            .arg(m_summary.removed)
            .arg(failures);
    m_store.setMeta(QStringLiteral("folder"), m_folder);
    m_store.setMeta(QStringLiteral("last_scan"), QDateTime::currentDateTimeUtc().toString(Qt::ISODate));
    m_store.setMeta(QStringLiteral("last_summary"),
                    m_summary.cancelled ? summary + QStringLiteral(" (cancelled)") : summary);
    qCInfo(skinIndexerLog, "pass finished: %s, cancelled %d", qUtf8Printable(summary), m_summary.cancelled);
}

void SkinIndexer::Pass::finish() {
    m_summary.totalSkins = m_store.counts().skins;
    m_summary.duration = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_start);
}

void SkinIndexer::Pass::enter(Phase phase) {
    m_state.phase = phase;
    m_state.processed = 0;
    report();
}

void SkinIndexer::Pass::advance(std::int64_t processed, bool isLast) {
    m_state.processed += processed;
    if (isLast || Clock::now() - m_lastReport >= m_indexer.m_progressInterval)
        report();
}

void SkinIndexer::Pass::report() {
    m_lastReport = Clock::now();
    if (m_progress)
        m_progress(m_state);
}

int SkinIndexer::defaultConcurrency() {
    return std::max(static_cast<int>(std::thread::hardware_concurrency()) - 1, 1);
}

SkinIndexer::SkinIndexer(const QUrl &folder, SkinIndexStore &store, const SkinIngester &ingester,
                         int parserVersion, int concurrency, int batchSize,
                         std::chrono::milliseconds progressInterval)
    : m_folder(folder), m_store(store), m_ingester(ingester), m_parserVersion(parserVersion),
      m_concurrency(std::max(concurrency, 1)), m_batchSize(std::max(batchSize, 1)),
      m_progressInterval(progressInterval) {}

SkinIndexSummary SkinIndexer::run(bool full, const Progress &progress) {
    const Running running(*this);
    return Pass(*this, progress).run(full);
}

SkinIndexSummary SkinIndexer::add(const QStringList &paths) {
    const Running running(*this);
    return Pass(*this, {}).add(paths);
}

} // namespace vantor
