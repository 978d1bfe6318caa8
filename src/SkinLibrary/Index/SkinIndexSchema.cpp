#include "SkinLibrary/Index/SQLiteDatabase.h"
#include "SkinLibrary/Index/SkinIndexSchema_p.h"
#include "SkinLibrary/SkinLibraryError.h"

#include <span>

namespace vantor::SkinIndexSchema {

namespace {

constexpr const char *firstVersion[] = {
    "CREATE TABLE skins (\n"
    "  id INTEGER PRIMARY KEY,\n"
    "  hash TEXT NOT NULL UNIQUE,\n"
    "  name TEXT NOT NULL,\n"
    "  readme TEXT,\n"
    "  status TEXT NOT NULL,\n"
    "  warnings TEXT NOT NULL DEFAULT '',\n"
    "  size INTEGER NOT NULL,\n"
    "  parser_version INTEGER NOT NULL,\n"
    "  first_indexed REAL NOT NULL\n"
    ")",
    "CREATE TABLE files (\n"
    "  path TEXT PRIMARY KEY,\n"
    "  size INTEGER NOT NULL,\n"
    "  mtime REAL NOT NULL,\n"
    "  skin_id INTEGER NOT NULL REFERENCES skins(id) ON DELETE CASCADE\n"
    ")",
    "CREATE INDEX files_skin ON files(skin_id)",
    "CREATE INDEX skins_status ON skins(status)",
    "CREATE INDEX skins_name ON skins(name COLLATE NOCASE)",
    "CREATE TABLE meta (key TEXT PRIMARY KEY, value TEXT NOT NULL)",
    "CREATE VIRTUAL TABLE skins_fts USING fts5(name, readme, content='skins', content_rowid='id', "
    "tokenize='unicode61 remove_diacritics 2')",
    "CREATE TRIGGER skins_ai AFTER INSERT ON skins BEGIN INSERT INTO skins_fts(rowid, name, readme) VALUES "
    "(new.id, new.name, new.readme); END",
    "CREATE TRIGGER skins_ad AFTER DELETE ON skins BEGIN INSERT INTO skins_fts(skins_fts, rowid, name, "
    "readme) "
    "VALUES ('delete', old.id, old.name, old.readme); END",
    "CREATE TRIGGER skins_au AFTER UPDATE OF name, readme ON skins BEGIN INSERT INTO skins_fts(skins_fts, "
    "rowid, "
    "name, readme) VALUES ('delete', old.id, old.name, old.readme); INSERT INTO skins_fts(rowid, name, "
    "readme) "
    "VALUES (new.id, new.name, new.readme); END",
};

constexpr const char *secondVersion[] = {
    "ALTER TABLE skins ADD COLUMN md5 TEXT",
    "CREATE INDEX skins_md5 ON skins(md5)",
};

constexpr std::span<const char *const> versions[] = {firstVersion, secondVersion};
static_assert(std::size(versions) == version);

/// The full-text table first, since it reads from skins; files before the skins that they refer to.
constexpr const char *tables[] = {"skins_fts", "files", "skins", "meta"};

std::int32_t knownVersion(SQLiteDatabase &database) {
    const std::int32_t found = database.userVersion();
    if (found > version)
        throw SkinLibraryError::incompatibleDatabase(found, version);
    return found;
}

} // namespace

void migrate(SQLiteDatabase &database) {
    if (knownVersion(database) == version)
        return; // without taking the write lock, for which a running pass would let us wait
    database.transaction([&] {
        // Read again: another connection may have been quicker.
        for (std::int32_t next = std::max(knownVersion(database), 0); next < version; ++next) {
            for (const char *sql : versions[next])
                database.execute(sql);
        }
        database.execute("PRAGMA user_version = " + std::to_string(version));
    });
}

void drop(SQLiteDatabase &database) {
    database.transaction([&] {
        for (const char *table : tables)
            database.execute(std::string("DROP TABLE IF EXISTS ") + table);
        database.execute("PRAGMA user_version = 0");
    });
}

} // namespace vantor::SkinIndexSchema
