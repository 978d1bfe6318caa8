#pragma once

#include "SkinLibrary/Index/SkinRecord.h"

#include <QString>

#include <optional>
#include <set>

namespace vantor {

/// What the browser shows: a search, a filter and a page of the result.
struct SkinQuery {
    static constexpr int minimumTextLength = 2; ///< characters as a reader counts them

    QString text = {}; ///< empty: no search
    std::set<SkinStatus> statuses{allSkinStatuses.begin(), allSkinStatuses.end()};
    int limit = 0;
    int offset = 0;

    /// Shorter texts than the minimum count as none.
    [[nodiscard]] bool hasText() const;

    bool operator==(const SkinQuery &) const = default;
};

enum class SkinNeighborDirection { next, previous };

/// The user's words as a full-text expression: each word is the beginning of one that must occur; operators
/// and punctuation mean nothing. Nothing when no word holds a letter or a digit. White space of every kind,
/// line ends among them, parts words.
[[nodiscard]] std::optional<QString> matchExpression(const QString &text);

} // namespace vantor
