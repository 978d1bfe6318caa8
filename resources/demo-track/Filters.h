#pragma once

#include "demo-track/Oscillators.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vantor::demo {

/// A state-variable filter of two poles (trapezoidal integration), stable while its cutoff moves.
class Filter {
  public:
    explicit Filter(double hertz, double q = 0.707) { tune(hertz, q); }

    void tune(double hertz, double q = 0.707) {
        const double g = std::tan(std::numbers::pi * std::clamp(hertz, 10.0, 0.45 * sampleRate) / sampleRate);
        m_damping = 1.0 / q;
        m_a1 = 1.0 / (1.0 + g * (g + m_damping));
        m_a2 = g * m_a1;
        m_a3 = g * m_a2;
    }

    [[nodiscard]] double lowPass(double input) { return step(input).low; }
    [[nodiscard]] double bandPass(double input) { return m_damping * step(input).band; }
    [[nodiscard]] double highPass(double input) {
        const Outputs out = step(input);
        return input - m_damping * out.band - out.low;
    }

  private:
    struct Outputs {
        double low;
        double band;
    };

    Outputs step(double input) {
        const double v3 = input - m_second;
        const double band = m_a1 * m_first + m_a2 * v3;
        const double low = m_second + m_a2 * m_first + m_a3 * v3;
        m_first = 2.0 * band - m_first;
        m_second = 2.0 * low - m_second;
        return {low, band};
    }

    double m_damping = 1.0;
    double m_a1 = 0.0;
    double m_a2 = 0.0;
    double m_a3 = 0.0;
    double m_first = 0.0;
    double m_second = 0.0;
};

/// One pole, for damping inside feedback loops.
class Smoother {
  public:
    explicit Smoother(double hertz) : m_keep(std::exp(-2.0 * std::numbers::pi * hertz / sampleRate)) {}

    [[nodiscard]] double next(double input) { return m_state = input + (m_state - input) * m_keep; }

  private:
    double m_keep;
    double m_state = 0.0;
};

} // namespace vantor::demo
