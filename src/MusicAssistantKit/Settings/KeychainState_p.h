#pragma once

#include <QCoroTask>

namespace vantor {

/// Whether there is somebody who keeps secrets, and whether they are at hand.
enum class KeychainState { absent, locked, open };

/// Asks the message bus; wakes nobody up. What a keychain's own library tells does not say it: a question
/// that the user declined looks like a secret that there is not, or like nobody being there. Main thread.
[[nodiscard]] QCoro::Task<KeychainState> keychainState();

} // namespace vantor
