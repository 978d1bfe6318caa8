#pragma once

#include "MusicAssistantKit/Backend/Items/MAPlayers.h"
#include "MusicBackendKit/NowPlaying.h"
#include "MusicBackendKit/RemoteQueue.h"

/// What the server's players and queues are in the words of outputs. Pure functions; any thread.
namespace vantor::maplayer {

[[nodiscard]] QString name(const MAPlayer &player);

/// Of a player that plays from a queue, whose item was `elapsed` seconds in at `updatedAt`.
[[nodiscard]] NowPlaying nowPlaying(const OutputDevice::ID &output, const MAPlayer &player,
                                    const MAPlayerQueue &queue, double elapsed, double updatedAt);
/// Of a player that plays something else, as it says itself.
[[nodiscard]] NowPlaying nowPlaying(const OutputDevice::ID &output, const MAPlayer &player, double updatedAt);

/// None when the queue does not tell.
[[nodiscard]] std::optional<bool> repeats(const MAPlayerQueue &queue);
[[nodiscard]] RemoteQueueItem queueItem(const MAQueueItem &item, int index);
/// A page of a queue, whose first item has the index `offset`. Entries that cannot be read keep their place.
/// Throws MADecodingError for what is no page.
[[nodiscard]] QList<RemoteQueueItem> queueItems(const MAJSON &page, int offset);

} // namespace vantor::maplayer
