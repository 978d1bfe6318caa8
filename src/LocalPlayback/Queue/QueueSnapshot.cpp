#include "LocalPlayback/Queue/QueueSnapshot.h"

namespace vantor {

QueueSnapshot QueueSnapshot::fromQueue(const PlayQueue &queue) {
    return {queue.tracks(), queue.currentIndex(), queue.repeatMode(), queue.isShuffled()};
}

} // namespace vantor
