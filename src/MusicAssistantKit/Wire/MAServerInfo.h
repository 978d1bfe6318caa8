#pragma once

#include "MusicAssistantKit/Wire/MAReader.h"

#include <QString>

#include <optional>

namespace vantor {

/// What a server says of itself, before anything else on a connection and to everybody at "/info".
struct MAServerInfo {
    QString serverID;
    std::optional<QString> serverVersion;
    qint64 schemaVersion = 0;
    qint64 minSupportedSchemaVersion = 0;
    std::optional<QString> baseURL;
    std::optional<bool> homeassistantAddon;
    std::optional<bool> onboardDone;
    std::optional<QString> name;
    std::optional<QString> status;
    std::optional<QString> internalURL;
    std::optional<QString> externalURL;
    std::optional<bool> hasRemoteAccess;

    /// Throws MADecodingError.
    [[nodiscard]] static MAServerInfo decode(const MAReader &reader);
    bool operator==(const MAServerInfo &) const = default;
};

/// Whom a token signed in.
struct MAUser {
    QString userID;
    QString username;
    std::optional<QString> role;
    std::optional<QString> displayName;

    bool operator==(const MAUser &) const = default;
};

/// The answer to the authentication.
struct MAAuthResult {
    bool authenticated = false;
    std::optional<MAUser> user;

    /// Throws MADecodingError.
    [[nodiscard]] static MAAuthResult decode(const MAReader &reader);
    bool operator==(const MAAuthResult &) const = default;
};

} // namespace vantor
