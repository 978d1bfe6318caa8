#pragma once

#include "SkinLibrary/Index/SkinRecord.h"
#include "SkinLibrary/Ingest/SkinContentHash.h"

#include <QStringList>

#include <variant>

namespace vantor {

/// What the skin engine says about an archive.
struct SkinInspection {
    std::optional<QString> readme;
    SkinStatus status = SkinStatus::ok;
    QStringList warnings;

    bool operator==(const SkinInspection &) const = default;
};

/// A file that was hashed and inspected.
struct ParsedSkin {
    FileStamp stamp;
    SkinDigests digests;
    SkinInspection inspection;
    /// False for a file that could not be read, whose digest then stands for its path, or that changed under
    /// the inspection. The next pass tries again, because the stamp says nothing about when it becomes
    /// readable.
    bool wasRead = true;

    bool operator==(const ParsedSkin &) const = default;
};

/// A file whose bytes are a skin that the index holds in its current form.
struct LinkedSkin {
    FileStamp stamp;
    QString hash;

    bool operator==(const LinkedSkin &) const = default;
};

using IngestOutcome = std::variant<ParsedSkin, LinkedSkin>;

/// What one batch changed.
struct AppliedCounts {
    int added = 0;    ///< skins
    int updated = 0;  ///< skins
    int linked = 0;   ///< files
    int newFiles = 0; ///< paths that the index did not hold before

    bool operator==(const AppliedCounts &) const = default;
};

} // namespace vantor
