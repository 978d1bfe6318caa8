#include "MusicAssistantKit/Backend/Items/MAItemURI.h"
#include "MusicAssistantKit/Backend/LibraryMapping.h"
#include "MusicAssistantKit/Backend/MusicAssistantBackend_p.h"
#include "MusicAssistantKit/Backend/PlayerMapping.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr MusicBackendCapability needed = MusicBackendCapability::remoteOutputs;
/// In one message, which servers take up to 4 MiB of.
constexpr qsizetype mostURIs = 5'000;
/// How far from its place an item is looked for: the server leaves out what it cannot play.
constexpr int searchAround = 100;

QCoro::Task<> playMedia(MusicAssistantBackend::Private &d, OutputDevice::ID output, QString queue,
                        QStringList uris, QString option, QString startItem) {
    QJsonObject args{
        {u"queue_id"_s, queue}, {u"media"_s, QJsonArray::fromStringList(uris)}, {u"option"_s, option}};
    if (!startItem.isEmpty())
        args.insert("start_item"_L1, startItem);
    co_await d.callOutput(output, u"player_queues/play_media"_s, args, needed);
}

/// Servers heed the start item within an album or a playlist, but not within a list of tracks: looks what
/// became the current item, and goes to the right one.
QCoro::Task<> ensureStart(MusicAssistantBackend::Private &d, OutputDevice::ID output, QString queue,
                          QString startItem, int startIndex) {
    const QJsonObject queueArgs{{u"queue_id"_s, queue}};
    const MAJSON answer = co_await d.callOutput(output, u"player_queues/get"_s, queueArgs, needed);
    const MAJSON current = answer.member("current_item"_L1).member("media_item"_L1);
    if (current.member("uri"_L1).string() == startItem)
        co_return;
    const int offset = std::max(startIndex - searchAround, 0);
    const QJsonObject itemsArgs{
        {u"queue_id"_s, queue}, {u"limit"_s, 2 * searchAround + 1}, {u"offset"_s, offset}};
    const MAJSON page = co_await d.callOutput(output, u"player_queues/items"_s, itemsArgs, needed);
    if (page.kind() != MAJSON::Kind::array)
        co_return;
    const QList<RemoteQueueItem> items = maplayer::queueItems(page, offset);
    const RemoteQueueItem *best = nullptr;
    for (const RemoteQueueItem &item : items) {
        const bool fits = item.item && item.item->rawValue == startItem;
        if (fits && (!best || std::abs(item.index - startIndex) < std::abs(best->index - startIndex)))
            best = &item;
    }
    if (!best)
        co_return;
    const QJsonObject args{
        {u"queue_id"_s, queue}, {u"index"_s, best->index}, {u"item_id_or_index"_s, best->index}};
    co_await d.callOutput(output, u"player_queues/play_index"_s, args, needed);
}

} // namespace

QCoro::Task<> MusicAssistantBackend::play(QList<MediaID> items, OutputDevice on, PlayMode mode) {
    const auto self = shared_from_this();
    if (items.isEmpty())
        co_return;
    QStringList uris;
    for (const MediaID &item : items) {
        if (!MAItemURI::parse(item.rawValue))
            throw MusicBackendError::notFound(item);
        uris.append(item.rawValue);
    }
    const QString queue = co_await d->queueID(on.id);
    const bool replaces = mode.kind == PlayMode::Kind::replace;
    const bool startsLater = replaces && mode.startIndex >= 1 && mode.startIndex < uris.size();
    const QString startItem = startsLater ? uris[mode.startIndex] : QString();
    for (qsizetype start = 0; start < uris.size(); start += mostURIs) {
        const QString option = replaces && start == 0 ? u"replace"_s : u"add"_s;
        const QString startOfPart = start == 0 ? startItem : QString();
        co_await playMedia(*d, on.id, queue, uris.mid(start, mostURIs), option, startOfPart);
    }
    if (startsLater)
        co_await ensureStart(*d, on.id, queue, startItem, mode.startIndex);
}

} // namespace vantor
