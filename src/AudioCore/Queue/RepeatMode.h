#pragma once

#include <array>

namespace vantor {

enum class RepeatMode { off, all, one };

inline constexpr std::array allRepeatModes{RepeatMode::off, RepeatMode::all, RepeatMode::one};

/// The button's two-way switch: off turns to all, everything else to off.
[[nodiscard]] constexpr RepeatMode toggled(RepeatMode mode) {
    return mode == RepeatMode::off ? RepeatMode::all : RepeatMode::off;
}

} // namespace vantor
