#pragma once

#include "MusicAssistantKit/Backend/Items/MAMediaItems.h"

/// Players and their queues as the server sends them. Values; decoding may be done on any thread. What has no
/// ID is refused with MADecodingError; everything else may be missing. Instants are of the server's clock.
namespace vantor {

struct MAPlayerMedia {
    QString uri;
    std::optional<QString> mediaType;
    std::optional<QString> title;
    std::optional<QString> artist;
    std::optional<QString> album;
    std::optional<QString> imageURL;
    std::optional<double> duration;
    std::optional<double> elapsedTime;
    std::optional<double> elapsedTimeLastUpdated;
    std::optional<QString> queueItemID;

    [[nodiscard]] static MAPlayerMedia decode(const MAReader &reader);
    bool operator==(const MAPlayerMedia &) const = default;
};

struct MAOutputProtocol {
    QString outputProtocolID; ///< "native", or the ID of a player that speaks it
    std::optional<QString> protocolDomain;
    std::optional<bool> isNative;
    std::optional<qint64> priority; ///< the lower the better
    std::optional<bool> available;

    [[nodiscard]] static MAOutputProtocol decode(const MAReader &reader);
    bool operator==(const MAOutputProtocol &) const = default;
};

struct MAPlayer {
    QString playerID;
    std::optional<QString> provider;
    std::optional<QString> type;
    std::optional<QString> name;
    std::optional<QString> displayName;
    std::optional<bool> available;
    std::optional<bool> enabled;
    std::optional<bool> hideInUI;
    std::optional<QString> playbackState;
    std::optional<double> elapsedTime;
    std::optional<double> elapsedTimeLastUpdated;
    std::optional<bool> powered;
    std::optional<double> volumeLevel; ///< 0…100
    std::optional<bool> volumeMuted;
    QStringList groupMembers; ///< the leader first
    std::optional<QString> syncedTo;
    QStringList canGroupWith; ///< players, or providers whose players all will do
    std::optional<QString> activeGroup;
    QStringList supportedFeatures;
    std::optional<MAPlayerMedia> currentMedia;
    std::optional<bool> needsSetup;
    QList<MAOutputProtocol> outputProtocols;

    [[nodiscard]] static MAPlayer decode(const MAReader &reader);
    bool operator==(const MAPlayer &) const = default;
};

struct MAQueueItem {
    QString queueItemID;
    std::optional<QString> queueID;
    QString name;
    std::optional<double> duration;
    std::optional<MATrack> mediaItem;
    std::optional<MAMediaItemImage> image;
    std::optional<qint64> index;
    std::optional<bool> available;

    [[nodiscard]] static MAQueueItem decode(const MAReader &reader);
    bool operator==(const MAQueueItem &) const = default;
};

struct MAPlayerQueue {
    QString queueID;
    std::optional<bool> active;
    std::optional<QString> displayName;
    std::optional<bool> available;
    qint64 items = 0; ///< how many
    std::optional<bool> shuffleEnabled;
    std::optional<QString> repeatMode;
    std::optional<qint64> currentIndex;
    std::optional<double> elapsedTime;
    std::optional<double> elapsedTimeLastUpdated;
    std::optional<QString> state;
    std::optional<MAQueueItem> currentItem;
    std::optional<MAQueueItem> nextItem;

    [[nodiscard]] static MAPlayerQueue decode(const MAReader &reader);
    bool operator==(const MAPlayerQueue &) const = default;
};

} // namespace vantor
