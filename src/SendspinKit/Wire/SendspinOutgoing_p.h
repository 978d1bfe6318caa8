#pragma once

#include "SendspinKit/Session/SendspinConnectionConfiguration.h"
#include "SendspinKit/Session/SendspinPlayerState.h"

/// What a player says in text.
namespace vantor::sendspinoutgoing {

/// The only message that shows the token.
[[nodiscard]] QString auth(const SendspinConnectionConfiguration &configuration);
[[nodiscard]] QString hello(const SendspinConnectionConfiguration &configuration);
[[nodiscard]] QString time(std::int64_t clientTransmitted);
[[nodiscard]] QString state(const SendspinConnectionConfiguration &configuration,
                            const SendspinPlayerState &state);
[[nodiscard]] QString goodbye(SendspinGoodbyeReason reason);

} // namespace vantor::sendspinoutgoing
