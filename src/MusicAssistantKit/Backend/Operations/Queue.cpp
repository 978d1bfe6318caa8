#include "MusicAssistantKit/Backend/MusicAssistantBackend_p.h"
#include "MusicAssistantKit/Backend/PlayerMapping.h"

#include <algorithm>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr MusicBackendCapability needed = MusicBackendCapability::queueEditing;
enum ErrorCode { invalidData = 3, queueIsEmpty = 8, unexpected = 999 };
/// Deletions under way at the same time.
constexpr qsizetype mostAtOnce = 20;
/// Of a queue that is looked through.
constexpr int mostLookedAt = 100'000;

qint64 codeOf(const MusicAssistantError &error) {
    return error.errorCase() == MusicAssistantError::Case::server ? error.code() : -1;
}

QCoro::Task<> removeItems(MusicAssistantBackend::Private &d, OutputDevice::ID output, QString queue,
                          QStringList items) {
    for (qsizetype start = 0; start < items.size(); start += mostAtOnce) {
        std::vector<QCoro::Task<MAJSON>> deletions; // which run from now on
        for (const QString &item : items.mid(start, mostAtOnce)) {
            const QJsonObject args{{u"queue_id"_s, queue}, {u"item_id_or_index"_s, item}};
            deletions.push_back(d.callOutput(output, u"player_queues/delete_item"_s, args, needed));
        }
        for (const auto &deletion : deletions)
            co_await deletion;
    }
}

QCoro::Task<MAPlayerQueue> presentQueue(MusicAssistantBackend::Private &d, OutputDevice::ID output,
                                        QString queue) {
    const MAJSON answer =
        co_await d.callOutput(output, u"player_queues/get"_s, {{u"queue_id"_s, queue}}, needed);
    co_return d.decodedOne(answer, &MAPlayerQueue::decode);
}

QCoro::Task<bool> hasAnyOf(MusicAssistantBackend::Private &d, OutputDevice::ID output, QString queue,
                           QStringList items) {
    const QSet<QString> wanted(items.begin(), items.end());
    PageRequest request{0, MusicAssistantBackend::Private::mostQueueItems};
    while (request.offset < mostLookedAt) {
        const auto page = co_await d.queuePage(output, queue, request);
        const bool has = std::ranges::any_of(
            page, [&wanted](const RemoteQueueItem &item) { return wanted.contains(item.id); });
        if (has || page.isEmpty())
            co_return has;
        request.offset += static_cast<int>(page.size());
    }
    co_return false;
}

/// The server keeps without a word what was played and what the player has buffered.
QCoro::Task<> removeAll(MusicAssistantBackend::Private &d, OutputDevice::ID output, QString queue,
                        QStringList items) {
    const MAPlayerQueue before = co_await presentQueue(d, output, queue);
    co_await removeItems(d, output, queue, items);
    const MAPlayerQueue after = co_await presentQueue(d, output, queue);
    if (after.items + items.size() <= before.items)
        co_return;
    // Some have stayed, or others have come meanwhile.
    const bool hasStayed = co_await hasAnyOf(d, output, queue, items);
    if (hasStayed)
        throw QueueEditError::buffered();
}

QCoro::Task<> moveItem(MusicAssistantBackend::Private &d, OutputDevice::ID output, QString queue,
                       QString item, int shift) {
    if (shift == 0) // to the server: play it next
        co_return;
    const QJsonObject args{{u"queue_id"_s, queue}, {u"queue_item_id"_s, item}, {u"pos_shift"_s, shift}};
    try {
        co_await d.callOutput(output, u"player_queues/move_item"_s, args, needed);
    } catch (const MusicAssistantError &error) {
        if (codeOf(error) == unexpected)
            throw QueueEditError::buffered();
        throw;
    }
}

} // namespace

QCoro::Task<QList<RemoteQueueItem>>
MusicAssistantBackend::Private::queuePage(OutputDevice::ID output, QString queue, PageRequest page) {
    const int offset = std::max(page.offset, 0);
    const QJsonObject args{{u"queue_id"_s, queue},
                           {u"limit"_s, std::clamp(page.limit, 1, mostQueueItems)},
                           {u"offset"_s, offset}};
    const MAJSON answer = co_await callOutput(output, u"player_queues/items"_s, args, needed);
    if (answer.kind() != MAJSON::Kind::array)
        throw MusicAssistantBackendErrors::unreadableAnswer();
    const auto future = QtConcurrent::run(&maplayer::queueItems, answer, offset);
    const QList<RemoteQueueItem> items = co_await future;
    co_return items;
}

QCoro::Task<QList<RemoteQueueItem>> MusicAssistantBackend::queueItems(OutputDevice::ID on, PageRequest page) {
    const auto self = shared_from_this();
    const QString queue = co_await d->queueID(on);
    const auto items = co_await d->queuePage(on, queue, page);
    co_return items;
}

QCoro::Task<> MusicAssistantBackend::edit(QueueEdit edit, OutputDevice::ID on) {
    const auto self = shared_from_this();
    const QString queue = co_await d->queueID(on);
    switch (edit.kind) {
    case QueueEdit::Kind::play: {
        // Servers know the first name, the documents the second.
        const QJsonObject args{
            {u"queue_id"_s, queue}, {u"index"_s, edit.index}, {u"item_id_or_index"_s, edit.index}};
        co_await d->callOutput(on, u"player_queues/play_index"_s, args, needed);
        break;
    }
    case QueueEdit::Kind::remove: {
        if (edit.items.isEmpty())
            co_return;
        co_await removeAll(*d, on, queue, edit.items);
        break;
    }
    case QueueEdit::Kind::move:
        co_await moveItem(*d, on, queue, edit.itemID, edit.shift);
        break;
    case QueueEdit::Kind::clear:
        co_await d->callOutput(on, u"player_queues/clear"_s, {{u"queue_id"_s, queue}}, needed);
        break;
    }
}

QCoro::Task<> MusicAssistantBackend::saveQueueAsPlaylist(OutputDevice::ID on, QString name) {
    const auto self = shared_from_this();
    if (name.trimmed().isEmpty())
        throw MusicAssistantBackendErrors::newPlaylistWithoutName();
    const QString queue = co_await d->queueID(on);
    const QJsonObject args{{u"queue_id"_s, queue}, {u"name"_s, name.trimmed()}};
    try {
        co_await d->callTask(u"player_queues/save_as_playlist"_s, args, needed);
    } catch (const MusicAssistantError &error) {
        if (codeOf(error) == queueIsEmpty)
            throw MusicAssistantBackendErrors::emptyQueue();
        if (codeOf(error) == invalidData)
            throw MusicAssistantBackendErrors::unusableQueue();
        throw;
    }
}

} // namespace vantor
