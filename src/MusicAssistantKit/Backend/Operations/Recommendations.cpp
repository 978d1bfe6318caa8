#include "MusicAssistantKit/Backend/Operations/Pages_p.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr MusicBackendCapability needed = MusicBackendCapability::recommendations;
const QString itemsCommand = u"music/recommendations/items"_s;
/// Of all rows together, kept for when they are opened.
constexpr qsizetype mostInlineItems = 5'000;

struct Rows {
    QList<RecommendationRow> rows;
    QHash<QString, MAJSON> items; ///< that came with them, by the row's ID
};

Rows rowsIn(const MAJSON &answer) {
    Rows made;
    qsizetype kept = 0;
    for (const QJsonValue entry : answer.value().toArray()) {
        const MAJSON folder(entry);
        const auto decoded = readable(folder, &MARecommendationFolder::decode);
        if (!decoded)
            continue;
        const RecommendationRow row = malibrary::row(*decoded);
        made.rows.append(row);
        // Older servers send the items with their rows.
        const MAJSON items = folder.member("items"_L1);
        if (items.kind() == MAJSON::Kind::array && kept + items.size() <= mostInlineItems) {
            kept += items.size();
            made.items.insert(row.id(), items);
        }
    }
    return made;
}

} // namespace

QCoro::Task<QList<RecommendationRow>> MusicAssistantBackend::recommendationRows() {
    const auto self = shared_from_this();
    const MAJSON answer = co_await d->call(u"music/recommendations"_s, {}, needed);
    if (answer.kind() != MAJSON::Kind::array)
        throw MusicAssistantBackendErrors::unreadableAnswer();
    const auto future = QtConcurrent::run(&rowsIn, answer);
    const Rows found = co_await future;
    d->recommended = found.items;
    co_return found.rows;
}

QCoro::Task<QList<RecommendationItem>> MusicAssistantBackend::recommendationItems(RecommendationRow row) {
    const auto self = shared_from_this();
    co_await d->probed();
    MAJSON items = d->recommended.value(row.id());
    // Newer servers send rows without items, or with an empty list.
    const bool asks = d->commands.lists(itemsCommand) ? items.size() == 0
                                                      : items.isNull() && d->commands.mayHave(itemsCommand);
    if (asks)
        items = co_await d->call(itemsCommand, {{u"provider"_s, row.provider}, {u"item_id"_s, row.itemID}},
                                 needed);
    else if (items.isNull())
        co_return QList<RecommendationItem>();
    const auto decoded = co_await d->decoded(items, &malibrary::recommendation);
    co_return decoded.records;
}

QCoro::Task<RecommendationItem> MusicAssistantBackend::resolve(RecommendationItem item) {
    const auto self = shared_from_this();
    if (!item.isMapping())
        co_return item;
    const auto &reference = std::get<RecommendationItem::Other>(item.value);
    const MAJSON answer = co_await d->call(u"music/item_by_uri"_s, {{u"uri"_s, reference.uri}}, needed);
    const RecommendationItem found = d->decodedOne(answer, &malibrary::recommendation);
    co_return found;
}

} // namespace vantor
