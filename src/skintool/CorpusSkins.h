#pragma once

#include "skintool/CorpusResult.h"

#include <vector>

namespace vantor {

struct CorpusOptions;

/// A skin that a run is to load.
struct CorpusSkin {
    QString path; ///< as in CorpusResult
    std::int64_t size = 0;
    QString hash = {}; ///< what the manifest says; empty when nobody does

    bool operator==(const CorpusSkin &) const = default;
};

/// Which skins a run loads. All throw CorpusError.
namespace CorpusSkins {

/// The folder with every link resolved, ending in a slash, in NativePath's form.
[[nodiscard]] QString root(const QString &folder);

/// The skins of the folder `root` by path: those of the manifest if there is one, else the archives that the
/// skin library would find, without what lies below `out`; of these the sample. Throws when the folder lacks
/// a skin of the manifest or has it in another size.
[[nodiscard]] std::vector<CorpusSkin> select(const CorpusOptions &options, const QString &root);

/// A manifest is a JSON object a line: path, size and hash (null for a file that could not be read).
[[nodiscard]] std::vector<CorpusSkin> readManifest(const QString &file);
void writeManifest(const QString &file, std::vector<CorpusSkin> skins);

} // namespace CorpusSkins
} // namespace vantor
