#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <map>
#include <optional>

namespace vantor {

/// What came of reading a skin: without a word of complaint, with some, or not at all.
enum class SkinStatus { ok, partial, failed };

inline constexpr std::array allSkinStatuses{SkinStatus::ok, SkinStatus::partial, SkinStatus::failed};

[[nodiscard]] QString rawValue(SkinStatus status); ///< "ok", "partial" or "failed"
[[nodiscard]] std::optional<SkinStatus> skinStatusFromRawValue(const QString &text);

/// One skin of the index; files with the same bytes are one skin.
struct SkinRecord {
    std::int64_t id = 0;
    QString hash; ///< SHA-256 of the archive, 64 lower-case hexadecimal digits
    QString name; ///< from the name of the file that brought it first
    std::optional<QString> readme;
    SkinStatus status = SkinStatus::ok;
    QString warnings;      ///< one a line
    std::int64_t size = 0; ///< of the archive, in bytes
    int fileCount = 0;
    QString primaryPath; ///< the smallest of its files' paths, in NativePath's form; empty without a file
    std::optional<QString> md5; ///< 32 hexadecimal digits; empty: could not be computed; none: not yet

    bool operator==(const SkinRecord &) const = default;
};

/// How a file looked when it was read last. A file with an equal stamp counts as unchanged.
struct FileStamp {
    QString path;          ///< absolute, in NativePath's form
    std::int64_t size = 0; ///< bytes
    double mtime = 0;      ///< seconds since 1970

    bool operator==(const FileStamp &) const = default;
};

struct SkinIndexCounts {
    std::int64_t files = 0;
    std::int64_t skins = 0;
    std::map<SkinStatus, std::int64_t> byStatus; ///< without those that no skin has

    bool operator==(const SkinIndexCounts &) const = default;
};

} // namespace vantor
