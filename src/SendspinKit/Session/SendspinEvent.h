#pragma once

#include "SendspinKit/Session/SendspinError.h"
#include "SendspinKit/Wire/SendspinIncoming.h"

namespace vantor {

/// What a session tells the player. A value, cheap to copy.
///
/// On each connection: `Connected` once the server has accepted the player, `Synchronized` when its clock is
/// known, and `Disconnected` at the end. Streams come in between, also before `Synchronized`: their chunks
/// are kept until then.
struct SendspinEvent {
    struct Connected {
        SendspinServerHello server;
        bool operator==(const Connected &) const = default;
    };
    /// The chunks that follow are coded like this. While another stream is under way, its chunks that have
    /// yet to be heard stay.
    struct StreamStarted {
        SendspinStreamFormat format;
        bool operator==(const StreamStarted &) const = default;
    };
    struct Audio {
        SendspinAudioChunk chunk;
        bool operator==(const Audio &) const = default;
    };
    // From the server; the session has already taken them over into its report.
    struct SetVolume {
        int volume = 0; ///< 0…100, as loud as it is perceived; does not unmute
        bool operator==(const SetVolume &) const = default;
    };
    struct SetMute {
        bool muted = false;
        bool operator==(const SetMute &) const = default;
    };
    struct SetStaticDelay {
        int milliseconds = 0; ///< 0…SendspinIncoming::maxStaticDelayMs; to be kept across runs
        bool operator==(const SetStaticDelay &) const = default;
    };
    struct GroupUpdated {
        SendspinGroupUpdate update;
        bool operator==(const GroupUpdated &) const = default;
    };
    /// Nothing of this connection follows. Unless the session was stopped, it tries again by itself. Comes
    /// for an attempt that failed as well.
    struct Disconnected {
        std::optional<SendspinError> reason; ///< none: the session was stopped
        bool operator==(const Disconnected &) const = default;
    };
    /// The session's clock() can schedule sound now. Comes again when the server's clock has jumped and is
    /// known anew.
    struct Synchronized {
        bool operator==(const Synchronized &) const = default;
    };
    /// What is buffered of the stream is to be dropped; its next chunks follow.
    struct StreamCleared {
        bool operator==(const StreamCleared &) const = default;
    };
    /// The stream is over and what is buffered is to be dropped. A seek looks like this too: the next stream
    /// may start at once.
    struct StreamEnded {
        bool operator==(const StreamEnded &) const = default;
    };

    std::variant<Connected, StreamStarted, Audio, SetVolume, SetMute, SetStaticDelay, GroupUpdated,
                 Disconnected, Synchronized, StreamCleared, StreamEnded>
        content;

    bool operator==(const SendspinEvent &) const = default;
};

} // namespace vantor
