#pragma once

#include <cmath>
#include <span>

namespace vantor::demo {

/// Attack, decay, sustain, release; times are seconds, decay and release are time constants.
struct Envelope {
    double attack = 0.005;
    double decay = 0.3;
    double sustain = 0.0;
    double release = 0.1;

    /// The level `time` seconds after the note began, when its key is let go after `held` seconds.
    [[nodiscard]] double at(double time, double held) const {
        const double pressed = whilePressed(time < held ? time : held);
        return time < held ? pressed : pressed * std::exp((held - time) / release);
    }

    /// Seconds after which nothing audible remains (-69 dB).
    [[nodiscard]] double duration(double held) const { return held + 8.0 * release; }

  private:
    [[nodiscard]] double whilePressed(double time) const {
        if (time < attack) {
            const double x = time / attack;
            return x * x * (3.0 - 2.0 * x);
        }
        return sustain + (1.0 - sustain) * std::exp((attack - time) / decay);
    }
};

/// A point of an automation curve.
struct CurvePoint {
    double beat = 0.0;
    double value = 0.0;
};

/// The curve through `points` (ascending beats, at least one), straight between them, level outside.
[[nodiscard]] inline double curveAt(std::span<const CurvePoint> points, double beat) {
    if (beat <= points.front().beat)
        return points.front().value;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const CurvePoint &from = points[i - 1];
        const CurvePoint &to = points[i];
        if (beat < to.beat)
            return from.value + (to.value - from.value) * (beat - from.beat) / (to.beat - from.beat);
    }
    return points.back().value;
}

} // namespace vantor::demo
