#pragma once

#include <chrono>
#include <vector>

namespace vantor {

/// How long to wait before each attempt to get a lost connection back. A value.
struct ReconnectPolicy {
    std::vector<std::chrono::milliseconds> steps;
    std::chrono::milliseconds cap{0}; ///< beyond the steps, and the most that a step counts
    double jitter = 0;                ///< 0…1: the part of a wait that chance adds or takes

    /// 1 s, 2 s, 4 s, 8 s, 16 s, then 30 s, each a fifth longer or shorter.
    [[nodiscard]] static ReconnectPolicy standard();

    /// Before attempt `attempt`, counted from 1. `chance`: uniform in −1…1.
    [[nodiscard]] std::chrono::milliseconds delay(int attempt, double chance) const;
    [[nodiscard]] std::chrono::milliseconds delay(int attempt) const;

    bool operator==(const ReconnectPolicy &) const = default;
};

} // namespace vantor
