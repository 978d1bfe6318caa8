#include "MusicAssistantKit/Backend/Items/MAItemURI.h"
#include "MusicAssistantKit/Backend/LibraryMapping.h"
#include "MusicAssistantKit/Backend/MusicAssistantBackend_p.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr MusicBackendCapability needed = MusicBackendCapability::remoteOutputs;
/// In one message: a small server takes its time for each.
constexpr qsizetype mostURIs = 5'000;

QCoro::Task<> playMedia(MusicAssistantBackend::Private &d, OutputDevice::ID output, QString queue,
                        QStringList uris, QString option, QString startItem) {
    QJsonObject args{
        {u"queue_id"_s, queue}, {u"media"_s, QJsonArray::fromStringList(uris)}, {u"option"_s, option}};
    if (!startItem.isEmpty())
        args.insert("start_item"_L1, startItem);
    co_await d.callOutput(output, u"player_queues/play_media"_s, args, needed);
}

/// What a queue was made of, and which of it is to be played first.
struct Start {
    QStringList uris;
    qsizetype index = 0;

    [[nodiscard]] const QString &item() const { return uris[index]; }
    [[nodiscard]] qsizetype equalsBefore() const { return uris.first(index).count(item()); }
};

/// Where the item stands in the queue: at its own place, unless the server shuffles, takes albums apart or
/// leaves out what it cannot play. None when it is not there.
QCoro::Task<std::optional<int>> placeOf(MusicAssistantBackend::Private &d, OutputDevice::ID output,
                                        MAPlayerQueue queue, Start start) {
    const auto fits = [&start](const RemoteQueueItem &entry) {
        return entry.item && entry.item->rawValue == start.item();
    };
    const bool isShuffled = queue.shuffleEnabled.value_or(false);
    if (!isShuffled && queue.items == start.uris.size()) {
        const PageRequest place{static_cast<int>(start.index), 1};
        const auto entry = co_await d.queuePage(output, queue.queueID, place);
        if (!entry.isEmpty() && fits(entry.first()))
            co_return place.offset;
    }
    const qsizetype before = isShuffled ? 0 : start.equalsBefore();
    qsizetype seen = 0;
    std::optional<int> last;
    PageRequest request{0, MusicAssistantBackend::Private::mostQueueItems};
    while (request.offset < queue.items) {
        const auto page = co_await d.queuePage(output, queue.queueID, request);
        if (page.isEmpty())
            break;
        for (const RemoteQueueItem &entry : page) {
            if (!fits(entry))
                continue;
            last = entry.index;
            if (++seen > before)
                co_return last;
        }
        request.offset += static_cast<int>(page.size());
    }
    co_return last;
}

/// Servers heed the start item within an album or a playlist, but not within a list of tracks: looks what
/// became the current item, and goes to the right one.
QCoro::Task<> ensureStart(MusicAssistantBackend::Private &d, OutputDevice::ID output, QString queueID,
                          Start start) {
    const auto uri = MAItemURI::parse(start.item());
    const auto kind = uri ? mediaKindFromRawValue(uri->mediaType) : std::nullopt;
    if (kind != MediaKind::track && kind != MediaKind::radio)
        co_return; // it became several
    const MAJSON answer =
        co_await d.callOutput(output, u"player_queues/get"_s, {{u"queue_id"_s, queueID}}, needed);
    const auto queue = readable(answer, &MAPlayerQueue::decode);
    if (!queue)
        co_return;
    const auto &current = queue->currentItem ? queue->currentItem->mediaItem : std::nullopt;
    const bool isAlone = queue->shuffleEnabled.value_or(false) || start.uris.count(start.item()) == 1;
    if (isAlone && current && current->uri == start.item())
        co_return;
    const auto place = co_await placeOf(d, output, *queue, start);
    if (!place || place == queue->currentIndex)
        co_return;
    const QJsonObject args{{u"queue_id"_s, queueID}, {u"index"_s, *place}, {u"item_id_or_index"_s, *place}};
    co_await d.callOutput(output, u"player_queues/play_index"_s, args, needed);
}

} // namespace

QList<QStringList> MusicAssistantBackend::Private::inMessages(const QStringList &uris) {
    constexpr qsizetype room = mostBytesAtOnce - (1 << 10); // beside the other arguments
    QList<QStringList> messages;
    qsizetype length = 0;
    for (const QString &uri : uris) {
        const qsizetype own = MAJSON(QStringList{uri}).encoded().size();
        if (own > room)
            throw MusicAssistantBackendErrors::tooLarge();
        length += own;
        if (messages.isEmpty() || messages.last().size() >= mostURIs || length > room) {
            messages.append(QStringList());
            length = own;
        }
        messages.last().append(uri);
    }
    return messages;
}

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
    const QList<QStringList> messages = Private::inMessages(uris);
    qsizetype sent = 0;
    for (const QStringList &part : messages) {
        const QString option = replaces && sent == 0 ? u"replace"_s : u"add"_s;
        const qsizetype startInPart = startsLater ? mode.startIndex - sent : -1;
        const bool holdsStart = startInPart >= 0 && startInPart < part.size();
        const QString startItem = holdsStart && sent == 0 ? part[startInPart] : QString();
        co_await playMedia(*d, on.id, queue, part, option, startItem);
        sent += part.size();
        if (holdsStart)
            co_await ensureStart(*d, on.id, queue, {.uris = uris.first(sent), .index = mode.startIndex});
    }
}

} // namespace vantor
