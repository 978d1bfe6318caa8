#include "MusicAssistantKit/Backend/Items/MAMediaItems.h"

#include "MusicAssistantKit/Backend/Items/MADecoding_p.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

MAAudioFormat formatOf(const MAJSON &json) {
    const MAReader reader(json);
    return {.contentType = reader.optionalString("content_type"),
            .codecType = reader.optionalString("codec_type"),
            .sampleRate = reader.optionalInteger("sample_rate"),
            .bitDepth = reader.optionalInteger("bit_depth"),
            .channels = reader.optionalInteger("channels"),
            .bitRate = reader.optionalInteger("bit_rate")};
}

template <typename Item>
Item itemOf(const MAReader &reader) {
    Item item;
    static_cast<MAMediaItem &>(item) = MAMediaItem::decode(reader);
    return item;
}

} // namespace

std::optional<MAMediaItemImage> MAMediaItemImage::decode(const MAJSON &json) {
    const MAReader reader(json);
    MAMediaItemImage image{.type = reader.optionalString("type").value_or(QString()),
                           .path = reader.optionalString("path").value_or(QString()),
                           .provider = reader.optionalString("provider").value_or(QString()),
                           .remotelyAccessible = reader.optionalBoolean("remotely_accessible"),
                           .proxyID = reader.optionalString("proxy_id")};
    return image.path.isEmpty() && !image.proxyID ? std::nullopt : std::optional(std::move(image));
}

MAMetadata MAMetadata::decode(const MAJSON &json) {
    MAMetadata metadata;
    const MAJSON images = json.member("images"_L1);
    for (qsizetype i = 0, count = images.kind() == MAJSON::Kind::array ? images.size() : 0; i < count; ++i) {
        if (auto image = MAMediaItemImage::decode(images.at(i)))
            metadata.images.append(std::move(*image));
    }
    metadata.genres = texts(json.member("genres"_L1));
    return metadata;
}

MAProviderMapping MAProviderMapping::decode(const MAReader &reader) {
    return {.itemID = identifier(reader, "item_id"),
            .providerDomain = reader.optionalString("provider_domain").value_or(QString()),
            .providerInstance = reader.optionalString("provider_instance").value_or(QString()),
            .available = reader.optionalBoolean("available"),
            .inLibrary = reader.optionalBoolean("in_library"),
            .audioFormat = formatOf(reader.value().member("audio_format"_L1)),
            .url = reader.optionalString("url"),
            .details = reader.optionalString("details")};
}

MAItemMapping MAItemMapping::decode(const MAReader &reader) {
    return {.itemID = identifier(reader, "item_id"),
            .provider = reader.member("provider").string(),
            .name = reader.member("name").string(),
            .uri = reader.optionalString("uri"),
            .mediaType = reader.optionalString("media_type"),
            .sortName = reader.optionalString("sort_name"),
            .version = reader.optionalString("version"),
            .available = reader.optionalBoolean("available"),
            .image = MAMediaItemImage::decode(reader.value().member("image"_L1)),
            .year = reader.optionalInteger("year")};
}

MAMediaItem MAMediaItem::decode(const MAReader &reader) {
    MAMediaItem item{.itemID = identifier(reader, "item_id"),
                     .provider = reader.member("provider").string(),
                     .name = reader.member("name").string(),
                     .uri = reader.optionalString("uri"),
                     .mediaType = reader.optionalString("media_type"),
                     .sortName = reader.optionalString("sort_name"),
                     .isMapping = false,
                     .providerMappings = {},
                     .metadata = MAMetadata::decode(reader.value().member("metadata"_L1)),
                     .favorite = reader.optionalBoolean("favorite"),
                     .available = reader.optionalBoolean("available")};
    const MAJSON mappings = reader.value().member("provider_mappings"_L1);
    item.isMapping = mappings.kind() != MAJSON::Kind::array;
    item.providerMappings = readableEntries(mappings, &MAProviderMapping::decode);
    if (auto image = MAMediaItemImage::decode(reader.value().member("image"_L1));
        image && item.metadata.images.isEmpty())
        item.metadata.images.append(std::move(*image));
    return item;
}

bool MAMediaItem::isAvailable() const {
    if (available)
        return *available;
    return providerMappings.isEmpty() ||
           std::any_of(providerMappings.begin(), providerMappings.end(),
                       [](const MAProviderMapping &mapping) { return mapping.available.value_or(true); });
}

MAArtist MAArtist::decode(const MAReader &reader) {
    return itemOf<MAArtist>(reader);
}

MAAlbum MAAlbum::decode(const MAReader &reader) {
    auto album = itemOf<MAAlbum>(reader);
    album.year = reader.optionalInteger("year");
    album.artists = readableEntries(reader.value().member("artists"_L1), &MAItemMapping::decode);
    album.albumType = reader.optionalString("album_type");
    return album;
}

MATrack MATrack::decode(const MAReader &reader) {
    auto track = itemOf<MATrack>(reader);
    track.duration = reader.optionalNumber("duration");
    track.artists = readableEntries(reader.value().member("artists"_L1), &MAItemMapping::decode);
    track.album = readable(reader.value().member("album"_L1), &MAItemMapping::decode);
    track.discNumber = reader.optionalInteger("disc_number");
    track.trackNumber = reader.optionalInteger("track_number");
    track.position = reader.optionalInteger("position");
    return track;
}

MAPlaylist MAPlaylist::decode(const MAReader &reader) {
    auto playlist = itemOf<MAPlaylist>(reader);
    playlist.owner = reader.optionalString("owner");
    playlist.isEditable = reader.optionalBoolean("is_editable");
    playlist.isDynamic = reader.optionalBoolean("is_dynamic");
    playlist.supportedMediaTypes = texts(reader.value().member("supported_mediatypes"_L1));
    return playlist;
}

MARadio MARadio::decode(const MAReader &reader) {
    return itemOf<MARadio>(reader);
}

MARecommendationFolder MARecommendationFolder::decode(const MAReader &reader) {
    return {.itemID = identifier(reader, "item_id"),
            .provider = reader.member("provider").string(),
            .name = reader.member("name").string(),
            .subtitle = reader.optionalString("subtitle"),
            .icon = reader.optionalString("icon"),
            .type = reader.optionalString("type"),
            .enabledByDefault = reader.optionalBoolean("enabled_by_default"),
            .supportsProviderFilter = reader.optionalBoolean("supports_provider_filter"),
            .uri = reader.optionalString("uri")};
}

} // namespace vantor
