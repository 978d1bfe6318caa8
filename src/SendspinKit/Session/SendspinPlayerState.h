#pragma once

namespace vantor {

/// What the server is told of the player whenever it changes. A value.
struct SendspinPlayerState {
    bool available = true; ///< false: the output is used for something else; the server takes its stream away
    int volume = 100;      ///< 0…100
    bool muted = false;
    int staticDelayMs = 0; ///< 0…SendspinIncoming::maxStaticDelayMs

    bool operator==(const SendspinPlayerState &) const = default;
};

/// What a server is told when the player leaves.
enum class SendspinGoodbyeReason { anotherServer, shutdown, restart, userRequest };

} // namespace vantor
