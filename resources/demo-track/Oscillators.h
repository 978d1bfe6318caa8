#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>

namespace vantor::demo {

/// Frames per second of everything that is rendered.
inline constexpr double sampleRate = 44100.0;

/// Frequency in hertz of a MIDI pitch (69 is A4, 440 Hz); `cents` detunes it.
[[nodiscard]] inline double frequency(double pitch, double cents = 0.0) {
    return 440.0 * std::exp2((pitch - 69.0 + cents / 100.0) / 12.0);
}

/// A running phase in 0…1 with the band-limited shapes that are read from it.
class Oscillator {
  public:
    explicit Oscillator(double hertz = 0.0, double startPhase = 0.0) : m_phase(startPhase) {
        setFrequency(hertz);
    }

    void setFrequency(double hertz) { m_step = hertz / sampleRate; }

    [[nodiscard]] double sine() {
        const double value = std::sin(2.0 * std::numbers::pi * m_phase);
        advance();
        return value;
    }

    [[nodiscard]] double triangle() {
        // Its harmonics fall so fast that the plain shape does not alias audibly.
        const double value = 1.0 - 4.0 * std::abs(m_phase - 0.5);
        advance();
        return value;
    }

    [[nodiscard]] double saw() {
        const double value = 2.0 * m_phase - 1.0 - jump(m_phase);
        advance();
        return value;
    }

    /// `width` is the share of the period that is high. The mean is taken out, so that no offset remains.
    [[nodiscard]] double pulse(double width) {
        const double fall = m_phase < width ? m_phase + 1.0 - width : m_phase - width;
        const double value =
            (m_phase < width ? 1.0 : -1.0) + jump(m_phase) - jump(fall) - (2.0 * width - 1.0);
        advance();
        return value;
    }

  private:
    void advance() {
        m_phase += m_step;
        if (m_phase >= 1.0)
            m_phase -= 1.0;
    }

    /// What rounds a step of height 2 at phase 0 over two samples (polyBLEP), which keeps aliases down.
    [[nodiscard]] double jump(double phase) const {
        if (phase < m_step) {
            const double x = phase / m_step;
            return x + x - x * x - 1.0;
        }
        if (phase > 1.0 - m_step) {
            const double x = (phase - 1.0) / m_step;
            return x * x + x + x + 1.0;
        }
        return 0.0;
    }

    double m_phase;
    double m_step = 0.0;
};

/// White noise in -1…1. Own generator: the library's distributions may differ from one library to the next,
/// and the track must come out the same everywhere.
class Noise {
  public:
    explicit Noise(std::uint64_t seed) : m_state(seed * 0x9E3779B97F4A7C15U + 1U) {}

    [[nodiscard]] double next() {
        m_state ^= m_state >> 12U;
        m_state ^= m_state << 25U;
        m_state ^= m_state >> 27U;
        const std::uint64_t bits = m_state * 0x2545F4914F6CDD1DU;
        return static_cast<double>(bits >> 11U) * 0x1.0p-52 - 1.0;
    }

  private:
    std::uint64_t m_state;
};

} // namespace vantor::demo
