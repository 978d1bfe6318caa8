#pragma once

#include <span>

namespace vantor::demo {

/// One step of a melody: a MIDI pitch, or `rest`, and its length in beats.
struct MelodyStep {
    int pitch = 0;
    double beats = 0.0;
};

inline constexpr int rest = 0;

namespace Melodies {
[[nodiscard]] std::span<const MelodyStep> introduction();
[[nodiscard]] std::span<const MelodyStep> theme();
[[nodiscard]] std::span<const MelodyStep> variation();
[[nodiscard]] std::span<const MelodyStep> variationAnswer();
[[nodiscard]] std::span<const MelodyStep> breakdown();
[[nodiscard]] std::span<const MelodyStep> reprise();
/// The second voice under the reprise.
[[nodiscard]] std::span<const MelodyStep> repriseSecond();
[[nodiscard]] std::span<const MelodyStep> ending();
} // namespace Melodies

} // namespace vantor::demo
