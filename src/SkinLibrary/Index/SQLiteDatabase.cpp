#include "SkinLibrary/Index/SQLiteDatabase.h"

#include "SkinLibrary/SkinLibraryError.h"

#include <QFile>

#include <sqlite3.h>

#include <chrono>
#include <thread>

namespace vantor {

namespace {

constexpr int busyMilliseconds = 5000;
constexpr int instructionsBetweenQuestions = 500;

SkinLibraryError failure(sqlite3 *database, int code) {
    const QString message =
        database ? QString::fromUtf8(sqlite3_errmsg(database)) : QStringLiteral("SQLite error %1").arg(code);
    return SkinLibraryError::sqlite(code, message);
}

void check(sqlite3 *database, int code) {
    if (code != SQLITE_OK)
        throw failure(database, code);
}

std::shared_ptr<sqlite3_stmt> prepare(sqlite3 *database, std::string_view sql) {
    sqlite3_stmt *handle = nullptr;
    check(database, sqlite3_prepare_v2(database, sql.data(), static_cast<int>(sql.size()), &handle, nullptr));
    return {handle, sqlite3_finalize};
}

/// The one statement for which SQLite itself does not wait: when two connections open a fresh file at once,
/// the second would fail.
void switchToLog(sqlite3 *database) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::milliseconds(busyMilliseconds);
    int code = SQLITE_OK;
    while ((code = sqlite3_exec(database, "PRAGMA journal_mode=WAL", nullptr, nullptr, nullptr)) ==
               SQLITE_BUSY &&
           Clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    check(database, code);
}

} // namespace

SQLiteDatabase::Statement::~Statement() {
    if (m_handle)
        sqlite3_reset(m_handle.get());
}

void SQLiteDatabase::Statement::bind(QByteArrayView utf8, int index) {
    const char *data = utf8.isEmpty() ? "" : utf8.data(); // a null pointer would bind NULL
    check(m_database,
          sqlite3_bind_text64(m_handle.get(), index, data, static_cast<sqlite3_uint64>(utf8.size()),
                              SQLITE_TRANSIENT, SQLITE_UTF8));
}

void SQLiteDatabase::Statement::bind(const std::optional<QString> &text, int index) {
    if (text)
        bind(QByteArrayView(text->toUtf8()), index);
    else
        check(m_database, sqlite3_bind_null(m_handle.get(), index));
}

void SQLiteDatabase::Statement::bind(std::int64_t value, int index) {
    check(m_database, sqlite3_bind_int64(m_handle.get(), index, value));
}

void SQLiteDatabase::Statement::bind(double value, int index) {
    check(m_database, sqlite3_bind_double(m_handle.get(), index, value));
}

bool SQLiteDatabase::Statement::step() {
    const int code = sqlite3_step(m_handle.get());
    if (code != SQLITE_ROW && code != SQLITE_DONE)
        throw failure(m_database, code);
    return code == SQLITE_ROW;
}

bool SQLiteDatabase::Statement::isNull(int column) const {
    return sqlite3_column_type(m_handle.get(), column) == SQLITE_NULL;
}

QByteArrayView SQLiteDatabase::Statement::bytes(int column) const {
    const auto *data = sqlite3_column_text(m_handle.get(), column);
    return {data, sqlite3_column_bytes(m_handle.get(), column)};
}

QString SQLiteDatabase::Statement::text(int column) const {
    return QString::fromUtf8(bytes(column));
}

std::int64_t SQLiteDatabase::Statement::integer(int column) const {
    return sqlite3_column_int64(m_handle.get(), column);
}

double SQLiteDatabase::Statement::real(int column) const {
    return sqlite3_column_double(m_handle.get(), column);
}

void SQLiteDatabase::Close::operator()(sqlite3 *database) const {
    sqlite3_close_v2(database);
}

SQLiteDatabase::SQLiteDatabase(const QUrl &url) {
    sqlite3 *handle = nullptr;
    const QByteArray path = QFile::encodeName(url.toLocalFile());
    const int code = sqlite3_open_v2(
        path.constData(), &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    m_handle.reset(handle);
    check(handle, code);
    sqlite3_busy_timeout(handle, busyMilliseconds);
    switchToLog(handle);
    for (const char *pragma : {"PRAGMA synchronous=NORMAL", "PRAGMA foreign_keys=ON",
                               "PRAGMA temp_store=MEMORY", "PRAGMA busy_timeout=5000"})
        execute(pragma);
}

SQLiteDatabase::Statement SQLiteDatabase::statement(std::string_view sql) {
    auto found = m_cache.find(sql);
    if (found == m_cache.end())
        found = m_cache.emplace(sql, prepare(m_handle.get(), sql)).first;
    sqlite3_reset(found->second.get());
    sqlite3_clear_bindings(found->second.get());
    return {found->second, m_handle.get()};
}

SQLiteDatabase::Statement SQLiteDatabase::temporaryStatement(std::string_view sql) {
    return {prepare(m_handle.get(), sql), m_handle.get()};
}

void SQLiteDatabase::execute(std::string_view sql) {
    Statement once = temporaryStatement(sql);
    while (once.step()) {
    }
}

std::int32_t SQLiteDatabase::userVersion() {
    Statement query = statement("PRAGMA user_version");
    return query.step() ? static_cast<std::int32_t>(query.integer(0)) : 0;
}

std::int64_t SQLiteDatabase::lastInsertedRow() const {
    return sqlite3_last_insert_rowid(m_handle.get());
}

std::int64_t SQLiteDatabase::changes() const {
    return sqlite3_changes64(m_handle.get());
}

void SQLiteDatabase::transaction(const std::function<void()> &work) {
    statement("BEGIN IMMEDIATE").step();
    try {
        work();
        statement("COMMIT").step();
    } catch (...) {
        // Some failures, a full disk among them, have rolled back by themselves; a second one is no news.
        if (sqlite3_get_autocommit(m_handle.get()) == 0)
            sqlite3_exec(m_handle.get(), "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
}

void SQLiteDatabase::setStopCondition(std::function<bool()> shouldStop) {
    m_shouldStop = std::move(shouldStop);
    const auto ask = [](void *condition) {
        return (*static_cast<std::function<bool()> *>(condition))() ? 1 : 0;
    };
    sqlite3_progress_handler(m_handle.get(), instructionsBetweenQuestions, ask, &m_shouldStop);
}

} // namespace vantor
