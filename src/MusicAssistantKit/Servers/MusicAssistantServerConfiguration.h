#pragma once

#include "MusicAssistantKit/Wire/MusicAssistantToken.h"

#include <QJsonObject>
#include <QStringList>
#include <QUrl>
#include <QUuid>

#include <optional>
#include <vector>

namespace vantor {

/// Where a server is, and which one it was.
struct MusicAssistantServerAddress {
    QUrl baseURL;
    std::optional<QString> serverID; ///< as the latest successful test found it

    /// Whether a test has succeeded. Only then the server is chosen without being asked for.
    [[nodiscard]] bool isVerified() const { return serverID.has_value(); }
    bool operator==(const MusicAssistantServerAddress &) const = default;
};

/// A server that the user has set up. A value.
struct MusicAssistantServerConfiguration {
    QUuid id;
    QString name;
    MusicAssistantServerAddress address;
    QStringList networks; ///< names of the Wi-Fi networks on which it is preferred

    [[nodiscard]] QJsonObject encode() const;
    /// None for what is no configuration.
    [[nodiscard]] static std::optional<MusicAssistantServerConfiguration> decode(const QJsonObject &object);
    bool operator==(const MusicAssistantServerConfiguration &) const = default;
};

/// What one connection needs.
struct MusicAssistantServerSettings {
    MusicAssistantServerAddress address;
    MusicAssistantToken token;
};

} // namespace vantor
