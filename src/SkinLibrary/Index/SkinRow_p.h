#pragma once

#include "SkinLibrary/Index/SQLiteDatabase.h"
#include "SkinLibrary/Index/SkinRecord.h"

#include <string>
#include <vector>

namespace vantor {

/// The columns of every query for skins, in the order in which skinFrom() reads them.
#define VANTOR_SKIN_COLUMNS                                                                                  \
    "SELECT s.id, s.hash, s.name, s.readme, s.status, s.warnings, s.size, "                                  \
    "(SELECT COUNT(*) FROM files WHERE skin_id = s.id), "                                                    \
    "COALESCE((SELECT MIN(path) FROM files WHERE skin_id = s.id), ''), s.md5 "

[[nodiscard]] SkinRecord skinFrom(const SQLiteDatabase::Statement &row);
[[nodiscard]] std::vector<SkinRecord> allSkins(SQLiteDatabase::Statement &query);

/// "?,?,?"
[[nodiscard]] std::string placeholders(std::size_t count);

} // namespace vantor
