#pragma once

#include "MusicAssistantKit/Connection/MusicAssistantError.h"
#include "MusicAssistantKit/Servers/MusicAssistantAddressInput.h"

namespace vantor {

/// Why a server cannot be used as it is set up. A value.
struct MusicAssistantConnectionFailure {
    enum class Case {
        invalidAddress,
        unreachable,
        serverMismatch,
        needsToken,
        schema,
        keychain,
        blockedByATS,
        httpsOnMusicAssistantPort,
        tokenRejected,
    };
    Case failureCase = Case::unreachable;
    QString message;                  ///< of `unreachable`, `schema` and `keychain`: the sentence
    std::optional<QString> foundName; ///< of `serverMismatch` and `needsToken`
    std::optional<MusicAssistantAddressInput::Problem> problem; ///< of `invalidAddress`

    /// What a failed test of `address` means for the user.
    [[nodiscard]] static MusicAssistantConnectionFailure from(const MusicAssistantError &error,
                                                              const QUrl &address);
    /// The sentence for the user.
    [[nodiscard]] QString description() const;

    bool operator==(const MusicAssistantConnectionFailure &) const = default;
};

} // namespace vantor
