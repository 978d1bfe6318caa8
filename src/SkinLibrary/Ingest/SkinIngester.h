#pragma once

#include "SkinKit/Loading/SkinArchive.h"
#include "SkinLibrary/Ingest/IngestOutcome.h"

namespace vantor {

/// Reads skin archives for the index. Paths are in NativePath's form. Any thread.
class SkinIngester {
  public:
    /// The version of the rules by which skins are parsed. A higher one has every skin inspected again.
    static constexpr int parserVersion = 1;

    /// Throws std::system_error when the file cannot be read.
    [[nodiscard]] SkinDigests digests(const QString &path) const;

    /// Never fails: what goes wrong is what the inspection says.
    [[nodiscard]] SkinInspection inspect(const QString &path) const;

    /// The archive's files, also of one whose name Qt's own file classes cannot spell. Throws SkinError.
    [[nodiscard]] static SkinArchive archive(const QString &path);
};

} // namespace vantor
