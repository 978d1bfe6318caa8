#pragma once

#include <cstdint>

namespace vantor {

class SQLiteDatabase;

/// The tables of the skin index. Its version is the file's user_version.
namespace SkinIndexSchema {

inline constexpr std::int32_t version = 2;

/// Brings an older or a fresh file to this version. Throws SkinLibraryError::incompatibleDatabase for a newer
/// one, which it leaves alone.
void migrate(SQLiteDatabase &database);

/// Drops every table, whatever is in it, and makes the file a fresh one again.
void drop(SQLiteDatabase &database);

} // namespace SkinIndexSchema
} // namespace vantor
