#pragma once

#include "SkinMuseum/Wire/MuseumQuery.h"

#include <QList>
#include <QUrl>

#include <optional>

namespace vantor {

/// A skin of the museum. What the museum says of it, and no more than that: the name may be anything.
struct MuseumSkin {
    QString md5; ///< of the archive, 32 lower-case hexadecimal digits: its identity
    QString filename;
    QUrl screenshotURL;
    QUrl downloadURL;
    QUrl museumURL;
    bool nsfw = false;

    /// Whether the identity is one and every address is in https.
    [[nodiscard]] bool isAcceptable() const;
    /// The filename without its extension, on one line.
    [[nodiscard]] QString title() const;

    bool operator==(const MuseumSkin &) const = default;
};

struct MuseumPage {
    static constexpr int maxTotal = 1'000'000; ///< a count above is none

    QList<MuseumSkin> skins;  ///< the acceptable ones
    std::optional<int> total; ///< of all pages
    bool hasMore = false;

    bool operator==(const MuseumPage &) const = default;
};

/// What the museum has answered to this query. Any thread. Throws MuseumError: `graphQL`, `decoding`.
[[nodiscard]] MuseumPage decodePage(const QByteArray &body, const MuseumQuery &query);

} // namespace vantor
