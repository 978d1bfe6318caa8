#pragma once

#include "MusicBackendKit/MediaID.h"
#include "MusicBackendKit/OutputDevice.h"

#include <QByteArray>
#include <QList>
#include <QStringList>

#include <exception>

/// The queue that a server keeps for one of its outputs. Values; any thread.
namespace vantor {

struct RemoteQueueItem {
    QString id; ///< the server's, of this entry of the queue
    int index = 0;
    QString title;
    std::optional<QString> artist;
    std::optional<QString> album;
    std::optional<double> duration; ///< seconds
    std::optional<MediaID> item;
    bool isAvailable = true;

    bool operator==(const RemoteQueueItem &) const = default;
};

struct RemoteQueueSnapshot {
    OutputDevice::ID output;
    QList<RemoteQueueItem> items;
    std::optional<int> currentIndex;
    int total = 0;
    bool isComplete = true;         ///< false when only a window of a long queue was loaded
    std::optional<bool> isShuffled; ///< absent when the source does not tell
    std::optional<bool> repeats;

    [[nodiscard]] static RemoteQueueSnapshot empty(const OutputDevice::ID &output);

    bool operator==(const RemoteQueueSnapshot &) const = default;
};

struct QueueEdit {
    enum class Kind { play, remove, move, clear };
    Kind kind = Kind::clear;
    int index = 0;     ///< of `play`
    QStringList items; ///< of `remove`: queue item IDs
    QString itemID;    ///< of `move`
    int shift = 0;     ///< of `move`: places, towards the end when positive

    [[nodiscard]] static QueueEdit play(int index);
    [[nodiscard]] static QueueEdit remove(const QStringList &items);
    [[nodiscard]] static QueueEdit move(const QString &itemID, int shift);
    [[nodiscard]] static QueueEdit clear();

    bool operator==(const QueueEdit &) const = default;
};

/// A server refuses to change an item that is buffered for playback already.
class QueueEditError : public std::exception {
  public:
    enum class Case { buffered };

    [[nodiscard]] static QueueEditError buffered() { return {}; }
    [[nodiscard]] Case errorCase() const { return Case::buffered; }
    /// The sentence for the user.
    [[nodiscard]] QString description() const;
    [[nodiscard]] const char *what() const noexcept override { return "Track already buffered"; }

    bool operator==(const QueueEditError &) const { return true; }

  private:
    QueueEditError() = default;
};

[[nodiscard]] size_t qHash(const RemoteQueueItem &item, size_t seed = 0) noexcept;
[[nodiscard]] size_t qHash(const RemoteQueueSnapshot &snapshot, size_t seed = 0) noexcept;
[[nodiscard]] size_t qHash(const QueueEdit &edit, size_t seed = 0) noexcept;

} // namespace vantor
