#pragma once

#include "MusicAssistantKit/Wire/MAJSON.h"
#include "MusicAssistantKit/Wire/MusicAssistantToken.h"

#include <QDebug>

#include <chrono>
#include <optional>

namespace vantor {

/// One command for the server. A value.
struct MARequest {
    QString command;
    QJsonObject args;
    std::optional<std::chrono::milliseconds> timeout; ///< none: the client's own

    [[nodiscard]] static MARequest auth(const MusicAssistantToken &token);

    /// The command; never an argument. What signs in reads "auth(redacted)".
    [[nodiscard]] QString description() const;
    /// The text frame.
    [[nodiscard]] QString encoded(const QString &messageID) const;

    bool operator==(const MARequest &) const = default;
};

QDebug operator<<(QDebug debug, const MARequest &request);

} // namespace vantor
