#pragma once

#include "MusicAssistantKit/Backend/LibraryMapping.h"
#include "MusicAssistantKit/Backend/MusicAssistantBackend_p.h"

namespace vantor {

/// One of the server's lists of the library.
struct MALibraryList {
    QString items; ///< the command for a stretch of it
    QString count;
    QJsonObject itemsArgs;
    QJsonObject countArgs;
    MusicBackendCapabilities needed;

    /// `kind`: all of them, or the favourites only.
    [[nodiscard]] static MALibraryList of(MediaKind kind, bool favoritesOnly);
};

/// How many a list has; none when the server does not tell.
QCoro::Task<std::optional<int>> countOf(MusicAssistantBackend::Private &d, MALibraryList list);

/// A stretch of a list. The server gives no total with it: the first page asks for the number beside the
/// items, the others take what the first was told.
template <typename Record>
QCoro::Task<Page<Record>> pageOf(MusicAssistantBackend::Private &d, MALibraryList list, PageRequest request,
                                 Record (*read)(const MAReader &)) {
    const auto self = d.q.shared_from_this();
    constexpr int largestPage = 5'000;
    request = {std::max(request.offset, 0), std::clamp(request.limit, 1, largestPage)};
    QJsonObject args = list.itemsArgs;
    args.insert(QLatin1StringView("limit"), request.limit);
    args.insert(QLatin1StringView("offset"), request.offset);
    const QString key = list.count + QString::fromUtf8(MAJSON(list.countArgs).encoded());
    std::optional<QCoro::Task<std::optional<int>>> counting;
    if (request.offset == 0 || !d.counts.contains(key))
        counting = countOf(d, list);
    const MAJSON answer = co_await d.call(list.items, args, list.needed);
    const auto decoded = co_await d.decoded(answer, read);
    if (counting) {
        const std::optional<int> count = co_await *counting;
        if (count)
            d.counts.insert(key, *count);
        else
            d.counts.remove(key);
    }
    const auto known = d.counts.constFind(key);
    // Entries that could not be read count, or a page with one would be taken for the last.
    const int end = request.offset + static_cast<int>(decoded.count);
    Page<Record> page{.items = decoded.records, .offset = request.offset, .total = {}, .nextOffset = {}};
    if (known != d.counts.constEnd())
        page.total = std::max(*known, end);
    // A page that is not full is the last only when one does not know better.
    const bool hasMore = page.total ? *page.total > end : decoded.count >= request.limit;
    if (decoded.count > 0 && hasMore)
        page.nextOffset = end;
    co_return page;
}

} // namespace vantor
