#include "MusicAssistantKit/Connection/ReconnectPolicy.h"

#include <QRandomGenerator>

#include <cmath>

namespace vantor {

ReconnectPolicy ReconnectPolicy::standard() {
    using namespace std::chrono_literals;
    return {.steps = {1s, 2s, 4s, 8s, 16s}, .cap = 30s, .jitter = 0.2};
}

std::chrono::milliseconds ReconnectPolicy::delay(int attempt, double chance) const {
    const auto index = static_cast<std::size_t>(std::max(attempt, 1)) - 1;
    const auto wait = std::min(index < steps.size() ? steps[index] : cap, cap);
    const double factor = jitter > 0 ? 1 + jitter * chance : 1;
    return std::chrono::milliseconds(std::llround(static_cast<double>(wait.count()) * factor));
}

std::chrono::milliseconds ReconnectPolicy::delay(int attempt) const {
    return delay(attempt, QRandomGenerator::global()->generateDouble() * 2 - 1);
}

} // namespace vantor
