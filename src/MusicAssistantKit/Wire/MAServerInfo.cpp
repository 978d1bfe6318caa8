#include "MusicAssistantKit/Wire/MAServerInfo.h"

namespace vantor {

MAServerInfo MAServerInfo::decode(const MAReader &reader) {
    return {
        .serverID = reader.member("server_id").string(),
        .serverVersion = reader.optionalString("server_version"),
        .schemaVersion = reader.member("schema_version").integer(),
        .minSupportedSchemaVersion = reader.member("min_supported_schema_version").integer(),
        .baseURL = reader.optionalString("base_url"),
        .homeassistantAddon = reader.optionalBoolean("homeassistant_addon"),
        .onboardDone = reader.optionalBoolean("onboard_done"),
        .name = reader.optionalString("name"),
        .status = reader.optionalString("status"),
        .internalURL = reader.optionalString("internal_url"),
        .externalURL = reader.optionalString("external_url"),
        .hasRemoteAccess = reader.optionalBoolean("has_remote_access"),
    };
}

MAAuthResult MAAuthResult::decode(const MAReader &reader) {
    MAAuthResult result{.authenticated = reader.member("authenticated").boolean(), .user = {}};
    const MAReader user = reader.member("user");
    const auto userID = user.optionalString("user_id");
    if (userID)
        result.user = MAUser{.userID = *userID,
                             .username = user.optionalString("username").value_or(QString()),
                             .role = user.optionalString("role"),
                             .displayName = user.optionalString("display_name")};
    return result;
}

} // namespace vantor
