#pragma once

#include "SkinKit/Loading/SkinArchive.h"

#include <functional>

namespace vantor {

/// Fills an archive's map from files offered one after the other, under the limits. What a ZIP file and a
/// folder have in common.
class SkinFileGatherer {
  public:
    /// Puts up to `size` bytes at `buffer` and returns how many, 0 at the end, below 0 for a failure.
    using Read = std::function<std::int64_t(char *buffer, std::int64_t size)>;

    SkinFileGatherer(const SkinArchive::Limits &limits, QMap<QString, QByteArray> &files)
        : m_limits(limits), m_files(files) {}

    /// The budget is used up: nothing more will be taken.
    [[nodiscard]] bool isFull() const;

    /// The key under which a file would be kept; empty if it is not wanted, whatever it holds.
    [[nodiscard]] QString wantedKey(const QString &path, std::int64_t declaredSize) const;

    /// Keeps what `read` delivers unless it fails or passes a limit.
    void take(const QString &key, std::int64_t declaredSize, const Read &read);

  private:
    [[nodiscard]] bool readAll(QByteArray &bytes, const Read &read) const;

    const SkinArchive::Limits &m_limits;
    QMap<QString, QByteArray> &m_files;
    std::int64_t m_total = 0;
    std::int64_t m_discarded = 0; ///< bytes read for files that were then dropped
};

/// The last path component in lower case; both slashes separate, because old packers wrote either.
[[nodiscard]] QString skinFileKey(const QString &path);

} // namespace vantor
