#include "SkinLibrary/Index/SkinIndexStore.h"

#include "Platform/AppPaths.h"
#include "Platform/NativePath.h"
#include "Platform/TextDecoding.h"
#include "SkinLibrary/Index/SkinIndexSchema_p.h"
#include "SkinLibrary/Index/SkinRow_p.h"
#include "SkinLibrary/SkinLibraryError.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <sqlite3.h>

namespace vantor {

static_assert(SkinIndexStore::schemaVersion == SkinIndexSchema::version);

namespace {

constexpr qsizetype listChunk = 500;

/// The last component without its extension. A name in an old encoding is shown as that encoding means it.
QString skinName(const QString &path) {
    const QByteArray file = NativePath::bytes(path.mid(path.lastIndexOf(QLatin1Char('/')) + 1));
    const qsizetype dot = file.lastIndexOf('.');
    return TextDecoding::lenient(dot > 0 ? file.first(dot) : file);
}

double now() {
    return static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000;
}

} // namespace

QUrl SkinIndexStore::defaultURL() {
    const bool isHomeless = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation).isEmpty();
    const QString data = isHomeless
                             ? QDir::tempPath() + QLatin1Char('/') + QLatin1String(AppPaths::bundleIdentifier)
                             : AppPaths::dataFolder();
    return QUrl::fromLocalFile(data + QStringLiteral("/SkinLibrary/index.sqlite"));
}

SkinIndexStore::SkinIndexStore(const QUrl &url) : m_url(url), m_db(url) {
    SkinIndexSchema::migrate(m_db);
    // Asked on the thread that runs the statement, which holds the mutex.
    m_db.setStopCondition([this]() __attribute__((no_thread_safety_analysis)) {
        return m_interruptionsBefore && *m_interruptionsBefore != m_interruptions;
    });
}

std::unique_ptr<SkinIndexStore> SkinIndexStore::open(const QUrl &url) {
    QDir().mkpath(QFileInfo(url.toLocalFile()).path()); // if this fails, opening does too, and says why
    return std::unique_ptr<SkinIndexStore>(new SkinIndexStore(url));
}

std::unique_ptr<SkinIndexStore> SkinIndexStore::openAfresh(const QUrl &url) {
    for (const char *suffix : {"-wal", "-shm", "-journal", ""}) // a log without its file is harmless
        QFile::remove(url.toLocalFile() + QLatin1String(suffix));
    return open(url);
}

QHash<QString, SkinIndexStore::IndexedFile> SkinIndexStore::fileStamps() {
    MutexLock lock(m_mutex);
    QHash<QString, IndexedFile> files;
    auto query = m_db.statement(
        "SELECT f.path, f.size, f.mtime, s.parser_version FROM files f JOIN skins s ON s.id = f.skin_id");
    while (query.step()) {
        const QString path = NativePath::text(query.bytes(0));
        files.insert(path, {{path, query.integer(1), query.real(2)}, static_cast<int>(query.integer(3))});
    }
    return files;
}

QHash<QString, std::int64_t> SkinIndexStore::knownSkinIDs(const QStringList &hashes, int parserVersion) {
    MutexLock lock(m_mutex);
    return idsOf(hashes, parserVersion);
}

QHash<QString, std::int64_t> SkinIndexStore::skinIDs(const QStringList &hashes) {
    MutexLock lock(m_mutex);
    return idsOf(hashes, 0);
}

QHash<QString, std::int64_t> SkinIndexStore::idsOf(const QStringList &hashes, int parserVersion) {
    QHash<QString, std::int64_t> ids;
    for (qsizetype start = 0; start < hashes.size(); start += listChunk) {
        const QStringList chunk = hashes.mid(start, listChunk);
        auto query =
            m_db.temporaryStatement("SELECT hash, id FROM skins WHERE parser_version >= ? AND hash IN (" +
                                    placeholders(static_cast<std::size_t>(chunk.size())) + ")");
        int index = 1;
        query.bind(std::int64_t{parserVersion}, index++);
        for (const QString &hash : chunk)
            query.bind(hash, index++);
        while (query.step())
            ids.insert(query.text(0), query.integer(1));
    }
    return ids;
}

std::optional<std::int64_t> SkinIndexStore::idOf(const QString &hash) {
    auto query = m_db.statement("SELECT id FROM skins WHERE hash = ?");
    query.bind(hash, 1);
    return query.step() ? std::optional(query.integer(0)) : std::nullopt;
}

AppliedCounts SkinIndexStore::apply(const std::vector<IngestOutcome> &outcomes, int parserVersion) {
    MutexLock lock(m_mutex);
    AppliedCounts counts;
    m_db.transaction([&]() VANTOR_REQUIRES(m_mutex) {
        for (const IngestOutcome &outcome : outcomes) {
            if (const auto *parsed = std::get_if<ParsedSkin>(&outcome)) {
                const int version = parsed->wasRead ? parserVersion : 0; // 0: any pass asks for it again
                writeFile(parsed->stamp, write(*parsed, version, counts), counts);
                continue;
            }
            const auto &linked = std::get<LinkedSkin>(outcome);
            const std::optional<std::int64_t> id = idOf(linked.hash);
            if (!id) {
                throw SkinLibraryError::sqlite(SQLITE_ERROR,
                                               QStringLiteral("linked a file to an unknown skin"));
            }
            writeFile(linked.stamp, *id, counts);
            ++counts.linked;
        }
    });
    return counts;
}

std::int64_t SkinIndexStore::write(const ParsedSkin &skin, int parserVersion, AppliedCounts &counts) {
    const QString status = rawValue(skin.inspection.status);
    const QString warnings = skin.inspection.warnings.join(QLatin1Char('\n'));
    std::optional<std::int64_t> id = idOf(skin.digests.sha256);
    if (id) {
        auto update = m_db.statement(
            "UPDATE skins SET status = ?, warnings = ?, readme = ?, parser_version = ? WHERE id = ?");
        update.bind(status, 1);
        update.bind(warnings, 2);
        update.bind(skin.inspection.readme, 3);
        update.bind(std::int64_t{parserVersion}, 4);
        update.bind(*id, 5);
        update.step();
        ++counts.updated;
    } else {
        auto insert =
            m_db.statement("INSERT INTO skins(hash, name, readme, status, warnings, size, parser_version, "
                           "first_indexed) VALUES (?, ?, ?, ?, ?, ?, ?, ?)");
        insert.bind(skin.digests.sha256, 1);
        insert.bind(skinName(skin.stamp.path), 2);
        insert.bind(skin.inspection.readme, 3);
        insert.bind(status, 4);
        insert.bind(warnings, 5);
        insert.bind(skin.stamp.size, 6);
        insert.bind(std::int64_t{parserVersion}, 7);
        insert.bind(now(), 8);
        insert.step();
        id = m_db.lastInsertedRow();
        ++counts.added;
    }
    auto md5 =
        m_db.statement("UPDATE skins SET md5 = ? WHERE id = ? AND (md5 IS NULL OR (md5 = '' AND ? != ''))");
    md5.bind(skin.digests.md5, 1);
    md5.bind(*id, 2);
    md5.bind(skin.digests.md5, 3);
    md5.step();
    return *id;
}

void SkinIndexStore::writeFile(const FileStamp &stamp, std::int64_t skin, AppliedCounts &counts) {
    const QByteArray path = NativePath::bytes(stamp.path);
    auto known = m_db.statement("SELECT 1 FROM files WHERE path = ?");
    known.bind(path, 1);
    counts.newFiles += known.step() ? 0 : 1;
    auto insert =
        m_db.statement("INSERT OR REPLACE INTO files(path, size, mtime, skin_id) VALUES (?, ?, ?, ?)");
    insert.bind(path, 1);
    insert.bind(stamp.size, 2);
    insert.bind(stamp.mtime, 3);
    insert.bind(skin, 4);
    insert.step();
}

int SkinIndexStore::removeFiles(const QStringList &paths) {
    MutexLock lock(m_mutex);
    std::int64_t removed = 0;
    m_db.transaction([&]() VANTOR_REQUIRES(m_mutex) {
        for (const QString &path : paths) {
            auto remove = m_db.statement("DELETE FROM files WHERE path = ?");
            remove.bind(NativePath::bytes(path), 1);
            remove.step();
            removed += m_db.changes();
        }
    });
    return static_cast<int>(removed);
}

void SkinIndexStore::removeFile(const QString &path, const std::optional<QString> &expectedHash) {
    MutexLock lock(m_mutex);
    const QByteArray bytes = NativePath::bytes(path);
    m_db.transaction([&]() VANTOR_REQUIRES(m_mutex) {
        auto owner = m_db.statement(
            "SELECT s.id, s.hash FROM files f JOIN skins s ON s.id = f.skin_id WHERE f.path = ?");
        owner.bind(bytes, 1);
        if (!owner.step() || (expectedHash && owner.text(1) != *expectedHash))
            return;
        const std::int64_t skin = owner.integer(0);
        auto remove = m_db.statement("DELETE FROM files WHERE path = ?");
        remove.bind(bytes, 1);
        remove.step();
        auto left = m_db.statement("SELECT COUNT(*) FROM files WHERE skin_id = ?");
        left.bind(skin, 1);
        if (left.step() && left.integer(0) > 0)
            return;
        auto removeSkin = m_db.statement("DELETE FROM skins WHERE id = ?");
        removeSkin.bind(skin, 1);
        removeSkin.step();
    });
}

int SkinIndexStore::pruneOrphans() {
    MutexLock lock(m_mutex);
    int pruned = 0;
    m_db.transaction([&]() VANTOR_REQUIRES(m_mutex) {
        m_db.statement("DELETE FROM skins WHERE id NOT IN (SELECT skin_id FROM files)").step();
        auto changes = m_db.statement("SELECT changes()");
        pruned = changes.step() ? static_cast<int>(changes.integer(0)) : 0;
    });
    return pruned;
}

std::vector<SkinIndexStore::MissingMD5> SkinIndexStore::skinsMissingMD5(std::int64_t after, int limit) {
    MutexLock lock(m_mutex);
    auto query =
        m_db.statement("SELECT s.id, s.hash, (SELECT MIN(path) FROM files WHERE skin_id = s.id) FROM skins s "
                       "WHERE s.md5 IS NULL AND s.id > ? ORDER BY s.id LIMIT ?");
    query.bind(after, 1);
    query.bind(std::int64_t{limit}, 2);
    std::vector<MissingMD5> missing;
    while (query.step())
        missing.push_back({query.integer(0), query.text(1), NativePath::text(query.bytes(2))});
    return missing;
}

void SkinIndexStore::setMD5s(const std::vector<std::pair<std::int64_t, QString>> &md5s) {
    MutexLock lock(m_mutex);
    m_db.transaction([&]() VANTOR_REQUIRES(m_mutex) {
        for (const auto &[id, md5] : md5s) {
            auto update = m_db.statement("UPDATE skins SET md5 = ? WHERE id = ?");
            update.bind(md5, 1);
            update.bind(id, 2);
            update.step();
        }
    });
}

void SkinIndexStore::checkpoint() {
    MutexLock lock(m_mutex);
    m_db.execute("PRAGMA wal_checkpoint(TRUNCATE)");
}

std::optional<QString> SkinIndexStore::meta(const QString &key) {
    MutexLock lock(m_mutex);
    auto query = m_db.statement("SELECT value FROM meta WHERE key = ?");
    query.bind(key, 1);
    return query.step() ? std::optional(query.text(0)) : std::nullopt;
}

void SkinIndexStore::setMeta(const QString &key, const QString &value) {
    MutexLock lock(m_mutex);
    auto insert = m_db.statement("INSERT OR REPLACE INTO meta(key, value) VALUES (?, ?)");
    insert.bind(key, 1);
    insert.bind(value, 2);
    insert.step();
}

void SkinIndexStore::reset() {
    MutexLock lock(m_mutex);
    SkinIndexSchema::drop(m_db);
    SkinIndexSchema::migrate(m_db);
}

} // namespace vantor
