#include "Platform/NativePath.h"
#include "SkinLibrary/Index/SkinRow_p.h"

namespace vantor {

static std::optional<QString> optionalText(const SQLiteDatabase::Statement &row, int column) {
    return row.isNull(column) ? std::nullopt : std::optional(row.text(column));
}

SkinRecord skinFrom(const SQLiteDatabase::Statement &row) {
    return {.id = row.integer(0),
            .hash = row.text(1),
            .name = row.text(2),
            .readme = optionalText(row, 3),
            .status = skinStatusFromRawValue(row.text(4)).value_or(SkinStatus::failed),
            .warnings = row.text(5),
            .size = row.integer(6),
            .fileCount = static_cast<int>(row.integer(7)),
            .primaryPath = NativePath::text(row.bytes(8)),
            .md5 = optionalText(row, 9)};
}

std::vector<SkinRecord> allSkins(SQLiteDatabase::Statement &query) {
    std::vector<SkinRecord> skins;
    while (query.step())
        skins.push_back(skinFrom(query));
    return skins;
}

std::string placeholders(std::size_t count) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i)
        result += i == 0 ? "?" : ",?";
    return result;
}

} // namespace vantor
