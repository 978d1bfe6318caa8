#pragma once

#include "SendspinKit/Wire/SendspinStream.h"

#include <QStringList>

#include <optional>
#include <variant>

namespace vantor {

/// "server/hello": who answers.
struct SendspinServerHello {
    QString serverID;
    QString name;
    qint64 version = 0;
    QStringList activeRoles;
    std::optional<QString> connectionReason;

    /// Whether the server takes this program as a player.
    [[nodiscard]] bool isPlayerActive() const;

    bool operator==(const SendspinServerHello &) const = default;
};

/// "group/update": what has changed of the group that the player is in. A member that is none stays as it is;
/// an empty one was cleared.
struct SendspinGroupUpdate {
    std::optional<QString> playbackState; ///< such as "playing", "stopped"
    std::optional<QString> groupID;
    std::optional<QString> groupName;

    bool operator==(const SendspinGroupUpdate &) const = default;
};

/// What a server says in text. A value.
struct SendspinIncoming {
    using ServerHello = SendspinServerHello;
    /// The answer to "client/time". The instants are within ±`maxInstant`, so that sums and differences of
    /// four of them fit.
    struct ServerTime {
        std::int64_t clientTransmitted = 0; ///< the client's clock, microseconds
        std::int64_t serverReceived = 0;    ///< the server's clock, microseconds
        std::int64_t serverTransmitted = 0;
        bool operator==(const ServerTime &) const = default;
    };
    struct StreamStart {
        SendspinStreamFormat format;
        std::optional<std::int64_t> serverTransmitted; ///< older servers do not say
        bool operator==(const StreamStart &) const = default;
    };
    /// Only for a player's stream; one that names other roles alone becomes `Ignored`.
    struct StreamClear {
        bool operator==(const StreamClear &) const = default;
    };
    struct StreamEnd {
        bool operator==(const StreamEnd &) const = default;
    };
    using GroupUpdate = SendspinGroupUpdate;
    struct ServerCommand {
        QString command;           ///< "volume", "mute", "set_static_delay", "set_output_delay" or another
        std::optional<int> volume; ///< 0…100
        std::optional<bool> mute;
        std::optional<int> staticDelayMs; ///< 0…`maxStaticDelayMs`
        bool operator==(const ServerCommand &) const = default;
    };
    struct Ignored {
        QString type;
        bool operator==(const Ignored &) const = default;
    };

    static constexpr std::int64_t maxInstant = std::int64_t{1} << 60;
    static constexpr int maxStaticDelayMs = 5000;

    std::variant<ServerHello, ServerTime, StreamStart, StreamClear, StreamEnd, GroupUpdate, ServerCommand,
                 Ignored>
        content;

    /// Throws SendspinError::malformed for what is no JSON object with a "type", and for members that are
    /// missing or of a wrong type. Volumes and delays out of range become the nearest that is in range.
    [[nodiscard]] static SendspinIncoming decode(const QString &text);
    /// A binary frame; none when it is something else than a player's sound. Throws SendspinError::malformed
    /// when it is shorter than its header.
    [[nodiscard]] static std::optional<SendspinAudioChunk> decodeAudio(const QByteArray &frame);

    bool operator==(const SendspinIncoming &) const = default;
};

} // namespace vantor
