#pragma once

#include "LocalPlayback/Queue/QueueSnapshot.h"

class QIODevice;

/// The queue file's form: one JSON object with sorted keys ("currentIndex", "items", "repeat", "shuffle",
/// "version"), an item to a line. Any thread.
namespace vantor::QueueFile {

/// Limits of a file that is read and of one that is written.
inline constexpr qint64 maxBytes = 128LL << 20;
inline constexpr size_t maxItems = 250'000;

struct Decoded {
    QueueSnapshot snapshot;
    int dropped = 0; ///< items that could not be decoded
};

/// Writes item by item, so that a long queue takes little memory. Items that are neither a file, a web
/// address nor a library item have no form and are left out. False when the device fails;
/// LocalPlaybackError::queueTooLarge above the limits.
[[nodiscard]] bool write(const QueueSnapshot &snapshot, QIODevice &device);

/// None for what is no queue file, is of another version or exceeds the limits. Never throws.
[[nodiscard]] std::optional<Decoded> decode(const QByteArray &bytes);

} // namespace vantor::QueueFile
