#pragma once

#include <algorithm>
#include <cmath>

namespace vantor {

/// How much faster or slower than it was made a sound is played, so that it is heard when it should be. It
/// learns how the clocks drift and leaves errors within the dead zone alone, so that steady sound is steady.
class SendspinRateControl {
  public:
    static constexpr double deadZone = 100e-6;     ///< seconds
    static constexpr double mostCorrection = 5e-3; ///< half a percent, about nine cents

    /// `error`: how many seconds before its time the next frame would be heard; `elapsed`: seconds since the
    /// last call. Frames of the sound for each frame of the output.
    double update(double error, double elapsed) {
        m_error += (error - m_error) * std::min(1.0, elapsed / smoothing);
        const double excess = m_error - std::clamp(m_error, -deadZone, deadZone);
        if (std::abs(excess) < surelyDrift)
            m_drift = std::clamp(m_drift + integral * excess * elapsed, -mostDrift, mostDrift);
        return 1 - std::clamp(proportional * excess + m_drift, -mostCorrection, mostCorrection);
    }
    /// After a jump. What was learnt of the drift stays.
    void forgetError() { m_error = 0; }
    [[nodiscard]] double error() const { return m_error; } ///< smoothed, in seconds

  private:
    // Latencies are measured at a whim of the scheduler; a quarter of a second evens that out. With it the
    // loop is well damped: an error is halved in about a second, without overshooting audibly.
    static constexpr double smoothing = 0.25;
    static constexpr double proportional = 1.2; ///< per second
    static constexpr double integral = 0.4;     ///< per second, squared
    static constexpr double surelyDrift = 2e-3; ///< seconds: a greater error has another reason
    static constexpr double mostDrift = 1e-3;   ///< ten times what bad crystals do

    double m_error = 0;
    double m_drift = 0;
};

} // namespace vantor
