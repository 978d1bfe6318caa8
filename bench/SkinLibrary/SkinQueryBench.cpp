#include "SkinLibrary/Index/SkinIndexStore.h"
#include "tests/Support/SkinCollection.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <stdexcept>
#include <string>

using namespace vantor;

// Queries of an index of 50,000 skins: the store against the same statements in bare SQLite, which only looks
// at the rows.
namespace {

constexpr int skinCount = 50'000;
constexpr int pageSize = 100;

class Index {
  public:
    Index()
        : store(SkinIndexStore::open(QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("i.sqlite"))))) {
        for (int first = 0; first < skinCount; first += 1000) {
            std::vector<IngestOutcome> outcomes;
            for (int i = first; i < first + 1000; ++i) {
                const QString name = test::SkinCollection::name(i);
                const auto status = i % 50 == 4   ? SkinStatus::failed
                                    : i % 50 == 3 ? SkinStatus::partial
                                                  : SkinStatus::ok;
                outcomes.push_back(ParsedSkin{{QStringLiteral("/skins/%1.wsz").arg(name), 90'000, 1.5},
                                              SkinContentHash::digests(name.toUtf8()),
                                              {test::SkinCollection::readme(i), status, {}}});
            }
            store->apply(outcomes, 1);
        }
        store->checkpoint();
        if (sqlite3_open(qPrintable(store->url().toLocalFile()), &bare) != SQLITE_OK)
            throw std::runtime_error("cannot open the index");
    }

  private:
    QTemporaryDir m_folder;

  public:
    std::unique_ptr<SkinIndexStore> store;
    sqlite3 *bare = nullptr;
};

Index &index() {
    static Index made;
    return made;
}

const std::string columns =
    "SELECT s.id, s.hash, s.name, s.readme, s.status, s.warnings, s.size, (SELECT COUNT(*) FROM files WHERE "
    "skin_id "
    "= s.id), COALESCE((SELECT MIN(path) FROM files WHERE skin_id = s.id), ''), s.md5 ";
const std::string nameOrder = " ORDER BY s.name COLLATE NOCASE, s.id LIMIT ? OFFSET ?";

struct Case {
    const char *name;
    SkinQuery query;
    bool broad = false;
};

/// Returns how many rows there were.
int bareQuery(const std::string &sql, const Case &row, bool hasPage) {
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(index().bare, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(index().bare));
    int at = 1;
    if (const auto expression = matchExpression(row.query.text))
        sqlite3_bind_text(statement, at++, expression->toUtf8().constData(), -1, SQLITE_TRANSIENT);
    if (hasPage && sql.find("s.status IN") != std::string::npos) {
        for (const SkinStatus status : row.query.statuses)
            sqlite3_bind_text(statement, at++, rawValue(status).toUtf8().constData(), -1, SQLITE_TRANSIENT);
    }
    if (hasPage) {
        sqlite3_bind_int(statement, at++, row.query.limit);
        sqlite3_bind_int(statement, at++, row.query.offset);
    }
    int rows = 0;
    for (; sqlite3_step(statement) == SQLITE_ROW; ++rows) {
        for (int column = 0; column < sqlite3_column_count(statement); ++column)
            benchmark::DoNotOptimize(sqlite3_column_text(statement, column));
    }
    sqlite3_finalize(statement);
    return rows;
}

std::string pageSql(const Case &row) {
    std::string filter = "s.status IN (?";
    for (std::size_t i = 1; i < row.query.statuses.size(); ++i)
        filter += ",?";
    filter += ")";
    if (row.query.text.isEmpty()) {
        const bool all = row.query.statuses.size() == allSkinStatuses.size();
        return columns + "FROM skins s INDEXED BY skins_name" + (all ? "" : " WHERE " + filter) + nameOrder;
    }
    if (row.broad) {
        return columns +
               "FROM skins s INDEXED BY skins_name WHERE s.id IN (SELECT rowid FROM skins_fts WHERE "
               "skins_fts MATCH ?) AND " +
               filter + nameOrder;
    }
    return columns + "FROM skins s JOIN skins_fts ON skins_fts.rowid = s.id WHERE skins_fts MATCH ? AND " +
           filter + " ORDER BY bm25(skins_fts), s.name COLLATE NOCASE, s.id LIMIT ? OFFSET ?";
}

void viaBareSQLite(benchmark::State &state, const Case &row) {
    const std::string sql = pageSql(row);
    bareQuery(sql, row, true); // makes the index, and warms it up
    for (auto unused : state) {
        if (!row.query.text.isEmpty())
            bareQuery("SELECT COUNT(*) FROM (SELECT 1 FROM skins_fts WHERE skins_fts MATCH ? LIMIT 2001)",
                      row, false);
        state.counters["rows"] = bareQuery(sql, row, true);
    }
}

void viaStore(benchmark::State &state, const Case &row) {
    for (auto unused : state)
        state.counters["rows"] = static_cast<double>(index().store->skins(row.query).size());
}

void neighbor(benchmark::State &state) {
    const std::set<SkinStatus> all{allSkinStatuses.begin(), allSkinStatuses.end()};
    for (auto unused : state)
        benchmark::DoNotOptimize(index().store->neighbor(skinCount / 2, SkinNeighborDirection::next, all));
}

const bool registered = [] {
    const std::set<SkinStatus> some{SkinStatus::ok, SkinStatus::partial};
    const Case cases[] = {
        {"selective", {.text = QStringLiteral("amber harbour 0001"), .limit = pageSize}},
        {"broad", {.text = QStringLiteral("amber"), .limit = pageSize}, true},
        {"first page", {.limit = pageSize}},
        {"last page", {.limit = pageSize, .offset = skinCount - pageSize}},
        {"last page, filtered", {.statuses = some, .limit = pageSize, .offset = skinCount / 50 * 48}},
    };
    for (const Case &row : cases) {
        const std::string name = row.name;
        benchmark::RegisterBenchmark(("bare/" + name).c_str(), viaBareSQLite, row)
            ->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark(("store/" + name).c_str(), viaStore, row)->Unit(benchmark::kMicrosecond);
    }
    benchmark::RegisterBenchmark("store/neighbor", neighbor)->Unit(benchmark::kMicrosecond);
    return true;
}();

} // namespace
