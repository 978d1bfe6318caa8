#pragma once

#include <QString>

namespace vantor {

/// Names an image in its source's own terms; only the source that made it can load it.
struct ArtworkRef {
    QString rawValue;

    bool operator==(const ArtworkRef &) const = default;
};

[[nodiscard]] size_t qHash(const ArtworkRef &ref, size_t seed = 0) noexcept;

} // namespace vantor
