#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace vantor {

/// One connection to an SQLite file. One thread at a time; every failure throws SkinLibraryError::sqlite.
class SQLiteDatabase {
  public:
    /// A prepared statement. When it goes it is reset, so that it holds no lock and no snapshot of the file;
    /// one that is not cached is finalized. Must not outlive its database.
    class Statement {
      public:
        Statement(Statement &&) noexcept = default;
        ~Statement();

        /// Parameters count from 1. Texts are copied.
        void bind(QByteArrayView utf8, int index);
        void bind(const std::optional<QString> &text, int index);
        void bind(std::int64_t value, int index);
        void bind(double value, int index);

        /// Moves on to the next row; false when there is none left.
        bool step();

        /// Of the current row; columns count from 0. Bytes are valid until the next step.
        [[nodiscard]] bool isNull(int column) const;
        [[nodiscard]] QByteArrayView bytes(int column) const;
        [[nodiscard]] QString text(int column) const;
        [[nodiscard]] std::int64_t integer(int column) const;
        [[nodiscard]] double real(int column) const;

      private:
        friend class SQLiteDatabase;
        Statement(std::shared_ptr<sqlite3_stmt> handle, sqlite3 *database)
            : m_handle(std::move(handle)), m_database(database) {}

        std::shared_ptr<sqlite3_stmt> m_handle;
        sqlite3 *m_database;
    };

    /// Opens the file for reading and writing and creates it if it is not there; its folder has to be.
    explicit SQLiteDatabase(const QUrl &url);

    /// Prepared once for the connection's life. Not to be asked for again while the last one is in use.
    [[nodiscard]] Statement statement(std::string_view sql);
    /// For statements put together at run time.
    [[nodiscard]] Statement temporaryStatement(std::string_view sql);

    /// Runs one statement that yields nothing of interest.
    void execute(std::string_view sql);
    [[nodiscard]] std::int32_t userVersion();
    [[nodiscard]] std::int64_t lastInsertedRow() const;
    /// Rows that the last statement has inserted, changed or deleted itself.
    [[nodiscard]] std::int64_t changes() const;

    /// Runs `work` between BEGIN IMMEDIATE and COMMIT. When anything throws, everything is rolled back and
    /// the first error goes on.
    void transaction(const std::function<void()> &work);

    /// Asked every few microseconds while a statement runs; true ends it with an interruption.
    void setStopCondition(std::function<bool()> shouldStop);

  private:
    struct Close {
        void operator()(sqlite3 *database) const;
    };

    std::function<bool()> m_shouldStop;
    std::unique_ptr<sqlite3, Close> m_handle;
    std::map<std::string, std::shared_ptr<sqlite3_stmt>, std::less<>> m_cache;
};

} // namespace vantor
