#include "MusicAssistantKit/Backend/PlayerMapping.h"

#include "MusicAssistantKit/Backend/LibraryMapping.h"

namespace vantor::maplayer {

using namespace Qt::Literals::StringLiterals;

namespace {

NowPlaying::State stateOf(const std::optional<QString> &word) {
    if (word == "playing"_L1)
        return NowPlaying::State::playing;
    if (word == "paused"_L1)
        return NowPlaying::State::paused;
    return NowPlaying::State::stopped;
}

std::optional<QString> unlessEmpty(const std::optional<QString> &text) {
    return text && !text->isEmpty() ? text : std::nullopt;
}

std::optional<double> unlessZero(const std::optional<double> &seconds) {
    return seconds && *seconds > 0 ? seconds : std::nullopt;
}

NowPlaying base(const OutputDevice::ID &output, const MAPlayer &player, double updatedAt) {
    NowPlaying playing = NowPlaying::idle(output, updatedAt);
    if (player.volumeLevel)
        playing.volume = std::clamp(*player.volumeLevel / 100, 0.0, 1.0);
    return playing;
}

/// A radio station tells what it plays through the player.
void describeRadio(NowPlaying &playing, const MAPlayerMedia &media) {
    if (const auto title = unlessEmpty(media.title)) {
        playing.title = title;
        playing.artist = unlessEmpty(media.artist);
        playing.album = unlessEmpty(media.album);
    }
}

void describe(NowPlaying &playing, const MAQueueItem &item) {
    playing.title = unlessEmpty(item.name);
    playing.duration = unlessZero(item.duration);
    if (const auto &media = item.mediaItem) {
        playing.item = malibrary::mediaID(media->uri.value_or(QString()));
        playing.title = media->name;
        playing.artist = unlessEmpty(malibrary::names(media->artists));
        playing.album = media->album ? unlessEmpty(media->album->name) : std::nullopt;
        playing.artwork = malibrary::artwork(*media);
    }
    if (!playing.artwork && item.image)
        playing.artwork = malibrary::artwork(*item.image);
}

} // namespace

QString name(const MAPlayer &player) {
    if (const auto shown = unlessEmpty(player.displayName))
        return *shown;
    return unlessEmpty(player.name).value_or(player.playerID);
}

NowPlaying nowPlaying(const OutputDevice::ID &output, const MAPlayer &player, const MAPlayerQueue &queue,
                      double elapsed, double updatedAt) {
    NowPlaying playing = base(output, player, updatedAt);
    playing.state = stateOf(queue.state ? queue.state : player.playbackState);
    playing.elapsed = elapsed;
    if (!queue.currentItem)
        return playing;
    describe(playing, *queue.currentItem);
    const auto &media = player.currentMedia;
    const bool isRadio = playing.item && playing.item->kind == MediaKind::radio;
    if (isRadio && media && (!media->queueItemID || media->queueItemID == queue.currentItem->queueItemID))
        describeRadio(playing, *media);
    return playing;
}

NowPlaying nowPlaying(const OutputDevice::ID &output, const MAPlayer &player, double updatedAt) {
    NowPlaying playing = base(output, player, updatedAt);
    playing.state = stateOf(player.playbackState);
    const auto &media = player.currentMedia;
    playing.elapsed = (media && media->elapsedTime ? media->elapsedTime : player.elapsedTime).value_or(0);
    if (!media)
        return playing;
    playing.item = malibrary::mediaID(media->uri);
    playing.title = unlessEmpty(media->title);
    playing.artist = unlessEmpty(media->artist);
    playing.album = unlessEmpty(media->album);
    playing.duration = unlessZero(media->duration);
    playing.artwork = malibrary::artwork(media->imageURL.value_or(QString()));
    return playing;
}

std::optional<bool> repeats(const MAPlayerQueue &queue) {
    if (!queue.repeatMode)
        return std::nullopt;
    return queue.repeatMode == "all"_L1 || queue.repeatMode == "one"_L1;
}

RemoteQueueItem queueItem(const MAQueueItem &item, int index) {
    RemoteQueueItem made;
    made.id = item.queueItemID;
    made.index = index;
    made.title = item.name;
    made.duration = unlessZero(item.duration);
    made.isAvailable = item.available.value_or(true);
    if (const auto &media = item.mediaItem) { // whose texts are apart, where the entry's are one
        made.title = media->name;
        made.artist = unlessEmpty(malibrary::names(media->artists));
        made.album = media->album ? unlessEmpty(media->album->name) : std::nullopt;
        made.item = malibrary::mediaID(media->uri.value_or(QString()));
        made.isAvailable = item.available.value_or(media->isAvailable());
    }
    return made;
}

QList<RemoteQueueItem> queueItems(const MAJSON &page, int offset) {
    const MAReader reader(page);
    QList<RemoteQueueItem> items;
    const qsizetype count = reader.size();
    items.reserve(count);
    for (qsizetype i = 0; i < count; ++i) {
        const int index = offset + static_cast<int>(i);
        try {
            items.append(queueItem(MAQueueItem::decode(reader.entry(i)), index));
        } catch (const MADecodingError &) {
            RemoteQueueItem unreadable;
            unreadable.index = index;
            unreadable.isAvailable = false;
            items.append(unreadable);
        }
    }
    return items;
}

} // namespace vantor::maplayer
