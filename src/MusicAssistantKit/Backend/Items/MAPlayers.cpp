#include "MusicAssistantKit/Backend/Items/MAPlayers.h"

#include "MusicAssistantKit/Backend/Items/MADecoding_p.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

/// A member that older servers call otherwise.
MAJSON eitherMember(const MAJSON &json, QLatin1StringView name, QLatin1StringView formerName) {
    const MAJSON member = json.member(name);
    return member.isNull() ? json.member(formerName) : member;
}

/// No queue is longer; beyond it a number is nonsense, or would not fit.
constexpr qint64 longestQueue = 100'000'000;

std::optional<qint64> queueIndex(const MAReader &reader, const char *name) {
    const auto index = reader.optionalInteger(name);
    return index && *index >= 0 && *index < longestQueue ? index : std::nullopt;
}

} // namespace

MAPlayerMedia MAPlayerMedia::decode(const MAReader &reader) {
    return {.uri = reader.optionalString("uri").value_or(QString()),
            .mediaType = reader.optionalString("media_type"),
            .title = reader.optionalString("title"),
            .artist = reader.optionalString("artist"),
            .album = reader.optionalString("album"),
            .imageURL = reader.optionalString("image_url"),
            .duration = reader.optionalNumber("duration"),
            .elapsedTime = reader.optionalNumber("elapsed_time"),
            .elapsedTimeLastUpdated = reader.optionalNumber("elapsed_time_last_updated"),
            .queueItemID = reader.optionalString("queue_item_id")};
}

MAOutputProtocol MAOutputProtocol::decode(const MAReader &reader) {
    return {.outputProtocolID = identifier(reader, "output_protocol_id"),
            .protocolDomain = reader.optionalString("protocol_domain"),
            .isNative = reader.optionalBoolean("is_native"),
            .priority = reader.optionalInteger("priority"),
            .available = reader.optionalBoolean("available")};
}

MAPlayer MAPlayer::decode(const MAReader &reader) {
    const MAJSON &json = reader.value();
    return {.playerID = identifier(reader, "player_id"),
            .provider = reader.optionalString("provider"),
            .type = reader.optionalString("type"),
            .name = reader.optionalString("name"),
            .displayName = reader.optionalString("display_name"),
            .available = reader.optionalBoolean("available"),
            .enabled = reader.optionalBoolean("enabled"),
            .hideInUI = reader.optionalBoolean("hide_in_ui"),
            .playbackState = eitherMember(json, "playback_state"_L1, "state"_L1).string(),
            .elapsedTime = reader.optionalNumber("elapsed_time"),
            .elapsedTimeLastUpdated = reader.optionalNumber("elapsed_time_last_updated"),
            .powered = reader.optionalBoolean("powered"),
            .volumeLevel = reader.optionalNumber("volume_level"),
            .volumeMuted = reader.optionalBoolean("volume_muted"),
            .groupMembers = texts(eitherMember(json, "group_members"_L1, "group_childs"_L1)),
            .syncedTo = reader.optionalString("synced_to"),
            .canGroupWith = texts(json.member("can_group_with"_L1)),
            .activeGroup = reader.optionalString("active_group"),
            .supportedFeatures = texts(json.member("supported_features"_L1)),
            .currentMedia = readable(json.member("current_media"_L1), &MAPlayerMedia::decode),
            .needsSetup = reader.optionalBoolean("needs_setup"),
            .outputProtocols =
                readableEntries(json.member("output_protocols"_L1), &MAOutputProtocol::decode)};
}

MAQueueItem MAQueueItem::decode(const MAReader &reader) {
    const MAJSON &json = reader.value();
    return {.queueItemID = identifier(reader, "queue_item_id"),
            .queueID = reader.optionalString("queue_id"),
            .name = reader.optionalString("name").value_or(QString()),
            .duration = reader.optionalNumber("duration"),
            .mediaItem = readable(json.member("media_item"_L1), &MATrack::decode),
            .image = MAMediaItemImage::decode(json.member("image"_L1)),
            .index = reader.optionalInteger("index"),
            .available = reader.optionalBoolean("available")};
}

MAPlayerQueue MAPlayerQueue::decode(const MAReader &reader) {
    const MAJSON &json = reader.value();
    return {.queueID = identifier(reader, "queue_id"),
            .active = reader.optionalBoolean("active"),
            .displayName = reader.optionalString("display_name"),
            .available = reader.optionalBoolean("available"),
            .items = std::clamp<qint64>(reader.optionalInteger("items").value_or(0), 0, longestQueue),
            .shuffleEnabled = reader.optionalBoolean("shuffle_enabled"),
            .repeatMode = reader.optionalString("repeat_mode"),
            .currentIndex = queueIndex(reader, "current_index"),
            .elapsedTime = reader.optionalNumber("elapsed_time"),
            .elapsedTimeLastUpdated = reader.optionalNumber("elapsed_time_last_updated"),
            .state = reader.optionalString("state"),
            .currentItem = readable(json.member("current_item"_L1), &MAQueueItem::decode),
            .nextItem = readable(json.member("next_item"_L1), &MAQueueItem::decode)};
}

} // namespace vantor
