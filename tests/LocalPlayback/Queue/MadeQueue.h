#pragma once

#include "LocalPlayback/Queue/QueueSnapshot.h"

namespace vantor::test {

/// A queue of that many tracks, the same one every time.
inline QueueSnapshot madeQueue(int count) {
    QueueSnapshot snapshot;
    for (int i = 0; i < count; ++i) {
        Track track;
        track.id = QUuid(0x10000U + static_cast<uint>(i), 1, 2, 3, 4, 5, 6, 7, 8, 9, 10);
        track.title = QStringLiteral("Track \"%1\" \\ ü 𝄞").arg(i);
        track.artist = QStringLiteral("Somebody");
        track.duration = i * 0.1;
        track.source = QUrl::fromLocalFile(QStringLiteral("/music/50% #%1?.flac").arg(i));
        snapshot.items.push_back(track);
    }
    return snapshot;
}

} // namespace vantor::test
