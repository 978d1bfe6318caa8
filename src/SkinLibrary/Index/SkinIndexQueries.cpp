#include "Platform/NativePath.h"
#include "SkinLibrary/Index/SkinIndexStore.h"
#include "SkinLibrary/Index/SkinRow_p.h"
#include "SkinLibrary/SkinLibraryError.h"

// What the browser asks of the index.
namespace vantor {

namespace {

using Statement = SQLiteDatabase::Statement;

constexpr qsizetype listChunk = 500;
constexpr const char *nameOrder = " ORDER BY s.name COLLATE NOCASE, s.id LIMIT ? OFFSET ?";

std::string statusFilter(const std::set<SkinStatus> &statuses) {
    return "s.status IN (" + placeholders(statuses.size()) + ")";
}

int bindAll(Statement &statement, const std::set<SkinStatus> &statuses, int index) {
    for (const SkinStatus status : statuses)
        statement.bind(rawValue(status), index++);
    return index;
}

std::optional<QString> optionalRawValue(std::optional<SkinStatus> status) {
    return status ? std::optional(rawValue(*status)) : std::nullopt;
}

std::optional<QString> expressionOf(const SkinQuery &query) {
    return query.hasText() ? matchExpression(query.text) : std::nullopt;
}

bool allowsAll(const std::set<SkinStatus> &statuses) {
    return statuses.size() == allSkinStatuses.size();
}

std::string namePageSql(const SkinQuery &query) {
    std::string sql = VANTOR_SKIN_COLUMNS "FROM skins s INDEXED BY skins_name";
    if (!allowsAll(query.statuses))
        sql += " WHERE " + statusFilter(query.statuses);
    return sql + nameOrder;
}

std::string broadSearchSql(const SkinQuery &query) {
    return VANTOR_SKIN_COLUMNS "FROM skins s INDEXED BY skins_name"
                               " WHERE s.id IN (SELECT rowid FROM skins_fts WHERE skins_fts MATCH ?) AND " +
           statusFilter(query.statuses) + nameOrder;
}

std::string rankedSearchSql(const SkinQuery &query) {
    return VANTOR_SKIN_COLUMNS "FROM skins s"
                               " JOIN skins_fts ON skins_fts.rowid = s.id WHERE skins_fts MATCH ? AND " +
           statusFilter(query.statuses) +
           " ORDER BY bm25(skins_fts), s.name COLLATE NOCASE, s.id LIMIT ? OFFSET ?";
}

std::string countSql(const SkinQuery &query, bool hasExpression) {
    if (hasExpression && allowsAll(query.statuses))
        return "SELECT COUNT(*) FROM skins_fts WHERE skins_fts MATCH ?";
    if (hasExpression) {
        return "SELECT COUNT(*) FROM skins s JOIN skins_fts ON skins_fts.rowid = s.id WHERE skins_fts MATCH "
               "? AND " +
               statusFilter(query.statuses);
    }
    if (allowsAll(query.statuses))
        return "SELECT COUNT(*) FROM skins";
    return "SELECT COUNT(*) FROM skins s WHERE " + statusFilter(query.statuses);
}

std::string rankedIdsSql(const SkinQuery &query) {
    return "SELECT s.id FROM skins s JOIN skins_fts ON skins_fts.rowid = s.id WHERE skins_fts MATCH ? AND " +
           (allowsAll(query.statuses) ? "TRUE" : statusFilter(query.statuses)) +
           " ORDER BY bm25(skins_fts), s.name COLLATE NOCASE, s.id";
}

std::string hitsInNameOrderSql(const SkinQuery &query, bool hasExpression) {
    return "SELECT COUNT(*) FROM skins s WHERE " +
           std::string(hasExpression ? "s.id IN (SELECT rowid FROM skins_fts WHERE skins_fts MATCH ?) AND "
                                     : "") +
           (allowsAll(query.statuses) ? "TRUE" : statusFilter(query.statuses));
}

std::string neighborSql(SkinNeighborDirection direction, const std::set<SkinStatus> &statuses) {
    const bool next = direction == SkinNeighborDirection::next;
    const std::string op = next ? ">" : "<";
    const std::string order = next ? "ASC" : "DESC";
    return VANTOR_SKIN_COLUMNS "FROM skins s WHERE (" + statusFilter(statuses) + ") AND (s.name " + op +
           " ? COLLATE NOCASE OR (s.name = ? COLLATE NOCASE AND s.id " + op +
           " ?)) ORDER BY s.name COLLATE NOCASE " + order + ", s.id " + order + " LIMIT 1";
}

} // namespace

/// Holds the store for a query that interrupt() may end, from the moment it was asked for.
class VANTOR_THREAD_ATTRIBUTE(scoped_lockable) SkinIndexStore::Reading {
  public:
    explicit Reading(SkinIndexStore &store) VANTOR_THREAD_ATTRIBUTE(acquire_capability(store.m_mutex))
        : m_store(store), m_interruptionsBefore(store.m_questionBegan.value_or(store.m_interruptions)),
          m_lock(store.m_mutex) {
        if (m_interruptionsBefore != store.m_interruptions)
            throw SkinLibraryError::interruption();
        store.m_interruptionsBefore = m_interruptionsBefore;
    }
    ~Reading() VANTOR_THREAD_ATTRIBUTE(release_capability()) { m_store.m_interruptionsBefore.reset(); }
    Reading(const Reading &) = delete;
    Reading &operator=(const Reading &) = delete;

  private:
    SkinIndexStore &m_store;
    const int m_interruptionsBefore;
    MutexLock m_lock;
};

std::vector<SkinRecord> SkinIndexStore::skins(std::optional<SkinStatus> status, int limit, int offset) {
    const Reading reading(*this);
    auto query =
        m_db.statement(VANTOR_SKIN_COLUMNS "FROM skins s WHERE (?1 IS NULL OR s.status = ?1) "
                                           "ORDER BY s.name COLLATE NOCASE, s.id LIMIT ?2 OFFSET ?3");
    query.bind(optionalRawValue(status), 1);
    query.bind(std::int64_t{limit}, 2);
    query.bind(std::int64_t{offset}, 3);
    return allSkins(query);
}

std::vector<SkinRecord> SkinIndexStore::search(const QString &text, std::optional<SkinStatus> status,
                                               int limit) {
    const std::optional<QString> expression = matchExpression(text);
    if (!expression)
        return {};
    const Reading reading(*this);
    auto query =
        m_db.statement(VANTOR_SKIN_COLUMNS
                       "FROM skins s JOIN skins_fts ON skins_fts.rowid = s.id WHERE skins_fts MATCH ?1 AND "
                       "(?2 IS NULL OR s.status = ?2) "
                       "ORDER BY bm25(skins_fts), s.name COLLATE NOCASE, s.id LIMIT ?3");
    query.bind(expression, 1);
    query.bind(optionalRawValue(status), 2);
    query.bind(std::int64_t{limit}, 3);
    return allSkins(query);
}

bool SkinIndexStore::isBroad(const QString &expression) {
    static const std::string sql =
        "SELECT COUNT(*) FROM (SELECT 1 FROM skins_fts WHERE skins_fts MATCH ? LIMIT " +
        std::to_string(broadSearchHits + 1) + ")";
    auto query = m_db.statement(sql);
    query.bind(expression, 1);
    return query.step() && query.integer(0) > broadSearchHits;
}

std::vector<SkinRecord> SkinIndexStore::skins(const SkinQuery &query) {
    if (query.statuses.empty() || query.limit < 1)
        return {};
    const std::optional<QString> expression = expressionOf(query);
    const Reading reading(*this);
    const std::string sql = !expression            ? namePageSql(query)
                            : isBroad(*expression) ? broadSearchSql(query)
                                                   : rankedSearchSql(query);
    auto page = m_db.temporaryStatement(sql);
    int index = 1;
    if (expression)
        page.bind(expression, index++);
    if (expression || !allowsAll(query.statuses))
        index = bindAll(page, query.statuses, index);
    page.bind(std::int64_t{query.limit}, index++);
    page.bind(std::int64_t{query.offset}, index);
    return allSkins(page);
}

std::int64_t SkinIndexStore::count(const SkinQuery &query) {
    if (query.statuses.empty())
        return 0;
    const std::optional<QString> expression = expressionOf(query);
    const Reading reading(*this);
    auto count = m_db.temporaryStatement(countSql(query, expression.has_value()));
    int index = 1;
    if (expression)
        count.bind(expression, index++);
    if (!allowsAll(query.statuses))
        bindAll(count, query.statuses, index);
    return count.step() ? count.integer(0) : 0;
}

std::optional<std::int64_t> SkinIndexStore::position(std::int64_t id, const SkinQuery &query) {
    if (query.statuses.empty())
        return std::nullopt;
    const std::optional<QString> expression = expressionOf(query);
    const Reading reading(*this);
    const auto bindQuery = [&](Statement &statement) {
        int index = 1;
        if (expression)
            statement.bind(expression, index++);
        return allowsAll(query.statuses) ? index : bindAll(statement, query.statuses, index);
    };
    if (expression && !isBroad(*expression)) {
        auto ids = m_db.temporaryStatement(rankedIdsSql(query));
        bindQuery(ids);
        for (std::int64_t at = 0; ids.step(); ++at) {
            if (ids.integer(0) == id)
                return at;
        }
        return std::nullopt;
    }
    const std::string hits = hitsInNameOrderSql(query, expression.has_value());
    auto self = m_db.temporaryStatement(hits + " AND s.id = ?");
    self.bind(id, bindQuery(self));
    if (!self.step() || self.integer(0) == 0)
        return std::nullopt;
    auto before = m_db.temporaryStatement(
        hits +
        " AND (s.name COLLATE NOCASE, s.id) < (SELECT name COLLATE NOCASE, id FROM skins WHERE id = ?)");
    before.bind(id, bindQuery(before));
    return before.step() ? std::optional(before.integer(0)) : std::nullopt;
}

std::optional<SkinRecord> SkinIndexStore::neighbor(std::int64_t id, SkinNeighborDirection direction,
                                                   const std::set<SkinStatus> &statuses) {
    if (statuses.empty())
        return std::nullopt;
    const Reading reading(*this);
    auto self = m_db.statement("SELECT name FROM skins WHERE id = ?");
    self.bind(id, 1);
    if (!self.step())
        return std::nullopt;
    const QString name = self.text(0);
    auto query = m_db.temporaryStatement(neighborSql(direction, statuses));
    int index = bindAll(query, statuses, 1);
    query.bind(name, index++);
    query.bind(name, index++);
    query.bind(id, index);
    return query.step() ? std::optional(skinFrom(query)) : std::nullopt;
}

SkinIndexCounts SkinIndexStore::counts() {
    MutexLock lock(m_mutex);
    SkinIndexCounts counts;
    auto files = m_db.statement("SELECT COUNT(*) FROM files");
    counts.files = files.step() ? files.integer(0) : 0;
    auto statuses = m_db.statement("SELECT status, COUNT(*) FROM skins GROUP BY status");
    while (statuses.step()) {
        const std::optional<SkinStatus> status = skinStatusFromRawValue(statuses.text(0));
        counts.byStatus[status.value_or(SkinStatus::failed)] += statuses.integer(1);
        counts.skins += statuses.integer(1);
    }
    return counts;
}

std::optional<SkinRecord> SkinIndexStore::record(std::int64_t id) {
    auto query = m_db.statement(VANTOR_SKIN_COLUMNS "FROM skins s WHERE s.id = ?");
    query.bind(id, 1);
    return query.step() ? std::optional(skinFrom(query)) : std::nullopt;
}

std::optional<SkinRecord> SkinIndexStore::recordOfFirst(Statement ids) {
    return ids.step() ? record(ids.integer(0)) : std::nullopt;
}

std::optional<SkinRecord> SkinIndexStore::skin(std::int64_t id) {
    MutexLock lock(m_mutex);
    return record(id);
}

std::optional<SkinRecord> SkinIndexStore::skinWithHash(const QString &hash) {
    MutexLock lock(m_mutex);
    auto query = m_db.statement(VANTOR_SKIN_COLUMNS "FROM skins s WHERE s.hash = ?");
    query.bind(hash, 1);
    return query.step() ? std::optional(skinFrom(query)) : std::nullopt;
}

std::optional<SkinRecord> SkinIndexStore::skinAtPath(const QString &path) {
    MutexLock lock(m_mutex);
    auto ids = m_db.statement("SELECT skin_id FROM files WHERE path = ?");
    ids.bind(NativePath::bytes(path), 1);
    return recordOfFirst(std::move(ids));
}

QHash<QString, SkinRecord> SkinIndexStore::skins(const QStringList &md5s) {
    MutexLock lock(m_mutex);
    QHash<QString, SkinRecord> records;
    for (qsizetype start = 0; start < md5s.size(); start += listChunk) {
        const QStringList chunk = md5s.mid(start, listChunk);
        auto query = m_db.temporaryStatement(VANTOR_SKIN_COLUMNS "FROM skins s WHERE s.md5 IN (" +
                                             placeholders(static_cast<std::size_t>(chunk.size())) + ")");
        int index = 1;
        for (const QString &md5 : chunk)
            query.bind(md5, index++);
        for (const SkinRecord &record : allSkins(query))
            records.insert(*record.md5, record);
    }
    return records;
}

std::vector<FileStamp> SkinIndexStore::files(std::int64_t skin) {
    MutexLock lock(m_mutex);
    auto query = m_db.statement("SELECT path, size, mtime FROM files WHERE skin_id = ? ORDER BY path");
    query.bind(skin, 1);
    std::vector<FileStamp> files;
    while (query.step())
        files.push_back({NativePath::text(query.bytes(0)), query.integer(1), query.real(2)});
    return files;
}

std::optional<SkinRecord> SkinIndexStore::random(std::optional<SkinStatus> status) {
    MutexLock lock(m_mutex);
    auto ids =
        m_db.statement("SELECT id FROM skins WHERE (?1 IS NULL OR status = ?1) ORDER BY random() LIMIT 1");
    ids.bind(optionalRawValue(status), 1);
    return recordOfFirst(std::move(ids));
}

std::optional<SkinRecord> SkinIndexStore::random(const std::set<SkinStatus> &statuses) {
    if (statuses.empty())
        return std::nullopt;
    MutexLock lock(m_mutex);
    auto ids = m_db.temporaryStatement("SELECT id FROM skins WHERE status IN (" +
                                       placeholders(statuses.size()) + ") ORDER BY random() LIMIT 1");
    bindAll(ids, statuses, 1);
    return recordOfFirst(std::move(ids));
}

} // namespace vantor
