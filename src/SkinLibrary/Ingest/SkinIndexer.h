#pragma once

#include "SkinLibrary/Index/SkinIndexStore.h"
#include "SkinLibrary/Ingest/SkinIngester.h"

#include <QUrl>

#include <atomic>
#include <chrono>
#include <functional>

namespace vantor {

struct SkinIndexProgress {
    enum class Phase { scanning, indexing, pruning, hashing, done };

    Phase phase = Phase::scanning;
    std::int64_t changed = 0;    ///< new or changed files
    std::int64_t processed = 0;  ///< files done so far in this phase
    std::int64_t totalFiles = 0; ///< files found

    bool operator==(const SkinIndexProgress &) const = default;
};

[[nodiscard]] QString rawValue(SkinIndexProgress::Phase phase); ///< "scanning", "indexing" …

struct SkinIndexSummary {
    std::int64_t totalSkins = 0;
    std::int64_t added = 0;
    std::int64_t updated = 0;
    std::int64_t linked = 0;
    std::int64_t removed = 0; ///< vanished files and skins left without one
    std::int64_t unchanged = 0;
    std::chrono::milliseconds duration{};
    bool cancelled = false;
};

/// Brings the index in line with the skins folder.
///
/// run() and add() block for as long as they work; call them on a worker thread, from which they start up to
/// `concurrency` − 1 more. cancel() and isRunning() from any thread. Borrows the store, which has to live
/// longer; give the browser one of its own on the same file, and neither waits for the other.
class SkinIndexer {
  public:
    /// Called on the thread of the pass.
    using Progress = std::function<void(const SkinIndexProgress &)>;

    static constexpr int defaultBatchSize = 64;
    static constexpr std::chrono::milliseconds defaultProgressInterval{250};
    /// All processors but one.
    [[nodiscard]] static int defaultConcurrency();

    SkinIndexer(const QUrl &folder, SkinIndexStore &store, const SkinIngester &ingester = {},
                int parserVersion = SkinIngester::parserVersion, int concurrency = defaultConcurrency(),
                int batchSize = defaultBatchSize,
                std::chrono::milliseconds progressInterval = defaultProgressInterval);

    /// One pass. With `full` set, every file counts as changed. Each phase is reported when it begins,
    /// progress within one at most once in an interval and after its last batch. What has been applied stays,
    /// whether the pass is cancelled, fails or is killed, and the next one goes on from there.
    ///
    /// Throws SkinLibraryError: folderUnreadable, passAlreadyRunning, or what the store throws.
    SkinIndexSummary run(bool full = false, const Progress &progress = {});

    /// Indexes these files as one batch, whatever the index knows of them; paths in NativePath's form. Throws
    /// as run() does.
    SkinIndexSummary add(const QStringList &paths);

    /// Ends the pass after the files that are being read.
    void cancel() { m_cancelled = true; }
    [[nodiscard]] bool isRunning() const { return m_running; }

  private:
    class Running;
    class Pass;

    const QUrl m_folder;
    SkinIndexStore &m_store;
    const SkinIngester m_ingester;
    const int m_parserVersion;
    const int m_concurrency;
    const int m_batchSize;
    const std::chrono::milliseconds m_progressInterval;
    std::atomic_bool m_cancelled = false;
    std::atomic_bool m_running = false;
};

} // namespace vantor
