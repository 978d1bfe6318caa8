#pragma once

#include "MusicAssistantKit/Wire/MAServerInfo.h"

#include <variant>

namespace vantor {

/// Something that happened on the server.
struct MAServerEvent {
    QString event; ///< its name; unknown ones are passed on as they are
    std::optional<QString> objectID;
    MAJSON data;

    bool operator==(const MAServerEvent &) const = default;
};

/// One incoming text frame, told apart by its members. A value.
struct MAEnvelope {
    struct Result {
        QString messageID;
        MAJSON result;
        bool partial = false; ///< more pieces of this result follow
        bool operator==(const Result &) const = default;
    };
    struct Error {
        QString messageID;
        qint64 code = 0;
        QString details;
        bool operator==(const Error &) const = default;
    };
    struct Unknown {
        bool operator==(const Unknown &) const = default;
    };

    std::variant<Unknown, MAServerInfo, Result, Error, MAServerEvent> content;

    /// Never fails: what is no message of these kinds is `Unknown`. Any thread.
    [[nodiscard]] static MAEnvelope decode(const QString &text);
    bool operator==(const MAEnvelope &) const = default;
};

} // namespace vantor
