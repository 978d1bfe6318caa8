#pragma once

#include "Platform/ThreadSafety.h"
#include "SkinLibrary/Index/SQLiteDatabase.h"
#include "SkinLibrary/Index/SkinQuery.h"
#include "SkinLibrary/Index/SkinRecord.h"
#include "SkinLibrary/Ingest/IngestOutcome.h"

#include <QHash>
#include <QStringList>
#include <QUrl>

#include <atomic>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace vantor {

/// The index of the skins folder: an SQLite database with a full-text table over names and read-mes.
///
/// Any thread: the operations of one store run one after the other on its one connection and block meanwhile,
/// so none of them belongs on the main thread. Two stores on one file do not hinder each other's reading: a
/// reader sees the last batch that a pass has finished and never waits for it. A writer waits up to five
/// seconds for another one.
///
/// Every operation throws SkinLibraryError. Paths are in NativePath's form.
class SkinIndexStore {
  public:
    static constexpr std::int32_t schemaVersion = 2;
    static constexpr int broadSearchHits = 2000; ///< more hits than these are not ranked

    struct IndexedFile {
        FileStamp stamp;
        int parserVersion = 0;

        bool operator==(const IndexedFile &) const = default;
    };

    struct MissingMD5 {
        std::int64_t id = 0;
        QString hash;
        QString path; ///< of one of its files; empty without any

        bool operator==(const MissingMD5 &) const = default;
    };

    /// "index.sqlite" among the user's data, or below the temporary folder when there is no such place.
    [[nodiscard]] static QUrl defaultURL();

    /// Opens the file, makes it and its folders if need be, and brings an older one up to date.
    [[nodiscard]] static std::unique_ptr<SkinIndexStore> open(const QUrl &url);
    /// Deletes the file, for one that is damaged or from a newer version, and opens a fresh one in its place.
    /// No other store may have it open.
    [[nodiscard]] static std::unique_ptr<SkinIndexStore> openAfresh(const QUrl &url);

    [[nodiscard]] const QUrl &url() const { return m_url; }

    // What a pass asks and writes.
    [[nodiscard]] QHash<QString, IndexedFile> fileStamps();
    /// Of these hashes, those that a parser of at least this version has seen.
    [[nodiscard]] QHash<QString, std::int64_t> knownSkinIDs(const QStringList &hashes, int parserVersion);
    [[nodiscard]] QHash<QString, std::int64_t> skinIDs(const QStringList &hashes);
    /// All of the batch or nothing.
    AppliedCounts apply(const std::vector<IngestOutcome> &outcomes, int parserVersion);
    /// Returns how many of them there were. Skins stay, until pruneOrphans().
    int removeFiles(const QStringList &paths);
    /// Also the skin, when that was its last file. Nothing happens when the index does not know the file, or
    /// knows it with another hash than the expected one.
    void removeFile(const QString &path, const std::optional<QString> &expectedHash = {});
    /// Removes skins without a file; returns how many.
    int pruneOrphans();
    /// Skins without an MD5 whose id is above `after`, by ascending id.
    [[nodiscard]] std::vector<MissingMD5> skinsMissingMD5(std::int64_t after, int limit);
    void setMD5s(const std::vector<std::pair<std::int64_t, QString>> &md5s);
    /// Gives the write-ahead file's room back.
    void checkpoint();

    // What the browser asks.
    [[nodiscard]] SkinIndexCounts counts();
    /// In name order. No status: all of them.
    [[nodiscard]] std::vector<SkinRecord> skins(std::optional<SkinStatus> status, int limit, int offset);
    /// The best hits first; none for a text without words.
    [[nodiscard]] std::vector<SkinRecord> search(const QString &text, std::optional<SkinStatus> status,
                                                 int limit);
    /// A page of a query's result: the best hits first, or in name order without a search or when it is
    /// broad.
    [[nodiscard]] std::vector<SkinRecord> skins(const SkinQuery &query);
    /// How many skins the query's pages hold together.
    [[nodiscard]] std::int64_t count(const SkinQuery &query);
    /// Where the skin stands among them, from 0; none when the query does not find it.
    [[nodiscard]] std::optional<std::int64_t> position(std::int64_t id, const SkinQuery &query);
    /// The skin after or before this one in name order among those of these statuses.
    [[nodiscard]] std::optional<SkinRecord> neighbor(std::int64_t id, SkinNeighborDirection direction,
                                                     const std::set<SkinStatus> &statuses);
    [[nodiscard]] std::optional<SkinRecord> skin(std::int64_t id);
    [[nodiscard]] std::optional<SkinRecord> skinWithHash(const QString &hash);
    [[nodiscard]] std::optional<SkinRecord> skinAtPath(const QString &path);
    [[nodiscard]] QHash<QString, SkinRecord> skins(const QStringList &md5s);
    [[nodiscard]] std::vector<FileStamp> files(std::int64_t skin);
    [[nodiscard]] std::optional<SkinRecord> random(std::optional<SkinStatus> status);
    [[nodiscard]] std::optional<SkinRecord> random(const std::set<SkinStatus> &statuses);

    [[nodiscard]] std::optional<QString> meta(const QString &key);
    void setMeta(const QString &key, const QString &value);

    /// Empties the index.
    void reset();

    /// Ends the searches and pages that are being read or wait for their turn: they throw an error that
    /// isInterruption(). Those asked for later, and everything that writes, run as ever. Does not block.
    void interrupt() { ++m_interruptions; }

    /// Makes one of all the readings that its thread begins during its life, so that interrupt() ends those
    /// too that follow. Only for a store that no other thread reads through.
    class Question {
      public:
        explicit Question(SkinIndexStore &store) : m_store(store) {
            m_store.m_questionBegan = m_store.m_interruptions.load();
        }
        ~Question() { m_store.m_questionBegan.reset(); }
        Q_DISABLE_COPY_MOVE(Question)

      private:
        SkinIndexStore &m_store;
    };

  private:
    class Reading;

    explicit SkinIndexStore(const QUrl &url);

    [[nodiscard]] QHash<QString, std::int64_t> idsOf(const QStringList &hashes, int parserVersion)
        VANTOR_REQUIRES(m_mutex);
    [[nodiscard]] std::optional<std::int64_t> idOf(const QString &hash) VANTOR_REQUIRES(m_mutex);
    [[nodiscard]] std::optional<SkinRecord> record(std::int64_t id) VANTOR_REQUIRES(m_mutex);
    [[nodiscard]] std::optional<SkinRecord> recordOfFirst(SQLiteDatabase::Statement ids)
        VANTOR_REQUIRES(m_mutex);
    [[nodiscard]] bool isBroad(const QString &expression) VANTOR_REQUIRES(m_mutex);
    std::int64_t write(const ParsedSkin &skin, int parserVersion, AppliedCounts &counts)
        VANTOR_REQUIRES(m_mutex);
    void writeFile(const FileStamp &stamp, std::int64_t skin, AppliedCounts &counts) VANTOR_REQUIRES(m_mutex);

    const QUrl m_url;
    std::atomic_int m_interruptions = 0;
    std::optional<int> m_questionBegan; ///< after this many interruptions
    Mutex m_mutex;
    SQLiteDatabase m_db VANTOR_GUARDED_BY(m_mutex);
    /// The interruptions when the running search began; none while nothing that may be interrupted runs.
    std::optional<int> m_interruptionsBefore VANTOR_GUARDED_BY(m_mutex);
};

} // namespace vantor
