#pragma once

#include "MusicAssistantKit/Wire/MAReader.h"

#include <QList>
#include <QStringList>

/// The items of a library as the server sends them. Values; decoding may be done on any thread.
///
/// An item without its identity (ID, provider, name) is refused with MADecodingError. Everything else may be
/// missing, null or of an unknown form, and is then absent.
namespace vantor {

struct MAMediaItemImage {
    QString type;
    QString path;
    QString provider;
    std::optional<bool> remotelyAccessible;
    std::optional<QString> proxyID;

    /// None without a path and a proxy ID.
    [[nodiscard]] static std::optional<MAMediaItemImage> decode(const MAJSON &json);
    bool operator==(const MAMediaItemImage &) const = default;
};

struct MAMetadata {
    QList<MAMediaItemImage> images; ///< the best first
    QStringList genres;

    [[nodiscard]] static MAMetadata decode(const MAJSON &json);
    bool operator==(const MAMetadata &) const = default;
};

struct MAAudioFormat {
    std::optional<QString> contentType;
    std::optional<QString> codecType;
    std::optional<qint64> sampleRate; ///< Hz
    std::optional<qint64> bitDepth;
    std::optional<qint64> channels;
    std::optional<qint64> bitRate; ///< kbit/s; 0 when unknown

    bool operator==(const MAAudioFormat &) const = default;
};

struct MAProviderMapping {
    QString itemID;
    QString providerDomain;
    QString providerInstance;
    std::optional<bool> available;
    std::optional<bool> inLibrary;
    MAAudioFormat audioFormat;
    std::optional<QString> url;
    std::optional<QString> details;

    [[nodiscard]] static MAProviderMapping decode(const MAReader &reader);
    bool operator==(const MAProviderMapping &) const = default;
};

/// A reference to an item, with as much of it as a list shows.
struct MAItemMapping {
    QString itemID;
    QString provider;
    QString name;
    std::optional<QString> uri;
    std::optional<QString> mediaType;
    std::optional<QString> sortName;
    std::optional<QString> version;
    std::optional<bool> available;
    std::optional<MAMediaItemImage> image;
    std::optional<qint64> year;

    [[nodiscard]] static MAItemMapping decode(const MAReader &reader);
    bool operator==(const MAItemMapping &) const = default;
};

/// What all items have.
struct MAMediaItem {
    QString itemID;
    QString provider;
    QString name;
    std::optional<QString> uri;
    std::optional<QString> mediaType;
    std::optional<QString> sortName;
    bool isMapping = false; ///< a reference, which says nothing of what the full item has
    QList<MAProviderMapping> providerMappings;
    MAMetadata metadata; ///< of a reference: its picture
    std::optional<bool> favorite;
    std::optional<bool> available;

    [[nodiscard]] static MAMediaItem decode(const MAReader &reader);
    /// What the server says, or else whether any provider has it.
    [[nodiscard]] bool isAvailable() const;
    bool operator==(const MAMediaItem &) const = default;
};

struct MAArtist : MAMediaItem {
    [[nodiscard]] static MAArtist decode(const MAReader &reader);
    bool operator==(const MAArtist &) const = default;
};

struct MAAlbum : MAMediaItem {
    std::optional<qint64> year;
    QList<MAItemMapping> artists;
    std::optional<QString> albumType;

    [[nodiscard]] static MAAlbum decode(const MAReader &reader);
    bool operator==(const MAAlbum &) const = default;
};

/// Also what else a queue or a playlist may hold, such as a radio station or an episode of a podcast.
struct MATrack : MAMediaItem {
    std::optional<double> duration; ///< seconds
    QList<MAItemMapping> artists;
    std::optional<MAItemMapping> album;
    std::optional<qint64> discNumber; ///< 0 when unknown
    std::optional<qint64> trackNumber;
    std::optional<qint64> position; ///< in the playlist it was listed from

    [[nodiscard]] static MATrack decode(const MAReader &reader);
    bool operator==(const MATrack &) const = default;
};

struct MAPlaylist : MAMediaItem {
    std::optional<QString> owner;
    std::optional<bool> isEditable;
    std::optional<bool> isDynamic;
    QStringList supportedMediaTypes;

    [[nodiscard]] static MAPlaylist decode(const MAReader &reader);
    bool operator==(const MAPlaylist &) const = default;
};

struct MARadio : MAMediaItem {
    [[nodiscard]] static MARadio decode(const MAReader &reader);
    bool operator==(const MARadio &) const = default;
};

/// A row of recommendations.
struct MARecommendationFolder {
    QString itemID;
    QString provider;
    QString name;
    std::optional<QString> subtitle;
    std::optional<QString> icon;
    std::optional<QString> type;
    std::optional<bool> enabledByDefault;
    std::optional<bool> supportsProviderFilter;
    std::optional<QString> uri;

    [[nodiscard]] static MARecommendationFolder decode(const MAReader &reader);
    bool operator==(const MARecommendationFolder &) const = default;
};

} // namespace vantor
