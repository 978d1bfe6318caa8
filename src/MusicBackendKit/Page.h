#pragma once

#include <QHash>
#include <QList>

#include <optional>

namespace vantor {

/// Which stretch of a long list is asked for.
struct PageRequest {
    int offset = 0;
    int limit = 100;

    [[nodiscard]] static constexpr PageRequest first() { return {}; }

    bool operator==(const PageRequest &) const = default;
};

/// A stretch of a long list. A value; any thread.
template <typename Item>
struct Page {
    QList<Item> items;
    int offset = 0;
    std::optional<int> total; ///< of the whole list, when the source knows it
    std::optional<int> nextOffset;

    [[nodiscard]] bool hasMore() const { return nextOffset.has_value(); }

    /// What follows, or none at the end.
    [[nodiscard]] std::optional<PageRequest> next(int limit) const {
        return nextOffset ? std::optional(PageRequest{*nextOffset, limit}) : std::nullopt;
    }

    /// The answer to a request. Without a total, a full page is taken to have another behind it.
    [[nodiscard]] static Page make(const QList<Item> &items, PageRequest request, std::optional<int> total) {
        const qsizetype end = request.offset + items.size();
        const bool hasMore = !items.isEmpty() && (total ? end < *total : items.size() >= request.limit);
        return {items, request.offset, total, hasMore ? std::optional(static_cast<int>(end)) : std::nullopt};
    }

    /// Of a source that returns everything at once.
    [[nodiscard]] static Page last(const QList<Item> &items) {
        return {items, 0, static_cast<int>(items.size()), std::nullopt};
    }

    bool operator==(const Page &) const = default;
};

[[nodiscard]] inline size_t qHash(const PageRequest &request, size_t seed = 0) noexcept {
    return qHashMulti(seed, request.offset, request.limit);
}

template <typename Item>
[[nodiscard]] size_t qHash(const Page<Item> &page, size_t seed = 0) {
    return qHashMulti(seed, page.items, page.offset, page.nextOffset.value_or(-1), page.total.value_or(-1));
}

} // namespace vantor
