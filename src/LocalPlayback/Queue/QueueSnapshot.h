#pragma once

#include "AudioCore/Queue/PlayQueue.h"

namespace vantor {

/// What is kept of the play queue between two runs of the program. The order of a shuffled pass is not: it is
/// drawn anew. A value; any thread.
struct QueueSnapshot {
    using Item = Track;

    static constexpr int currentVersion = 1;

    std::vector<Item> items;
    std::optional<int> currentIndex;
    RepeatMode repeatMode = RepeatMode::off;
    bool isShuffled = false;

    [[nodiscard]] static QueueSnapshot fromQueue(const PlayQueue &queue);

    bool operator==(const QueueSnapshot &) const = default;
};

} // namespace vantor
