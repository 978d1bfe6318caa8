#pragma once

#include <QLatin1StringView>

/// Words of the protocol that are both said and heard.
namespace vantor::sendspinnames {

using namespace Qt::Literals::StringLiterals;

inline constexpr auto player = "player"_L1;
inline constexpr auto playerRole = "player@v1"_L1;
inline constexpr auto volume = "volume"_L1;
inline constexpr auto mute = "mute"_L1;
inline constexpr auto setStaticDelay = "set_static_delay"_L1;
inline constexpr auto setOutputDelay = "set_output_delay"_L1; ///< what newer servers call the same

} // namespace vantor::sendspinnames
