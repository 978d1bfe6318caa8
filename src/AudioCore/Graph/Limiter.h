#pragma once

#include "AudioCore/Graph/PlayerNode.h"
#include "AudioCore/Graph/Ramp.h"

#include <atomic>
#include <span>
#include <vector>

namespace vantor {

/// A look-ahead limiter for the end of the graph: turns the sound down smoothly, a moment before it would go
/// beyond full scale, and up again after it. What stays below the ceiling passes bit for bit, a moment later;
/// samples that are no finite numbers become silence. Switched off, everything passes at once and untouched.
/// Switching it crosses over without a click.
class Limiter {
  public:
    static constexpr float ceiling = 0.989F; ///< the largest sample that comes out: −0.1 dBFS
    static constexpr double lookAheadSeconds = 0.0015;

    /// Allocates what process() needs.
    explicit Limiter(int sampleRate);

    /// Any thread.
    void setEnabled(bool enabled) { m_isEnabled.store(enabled, std::memory_order_relaxed); }
    /// By how many frames the sound is late while it is switched on.
    [[nodiscard]] int lookAhead() const {
        return m_isEnabled.load(std::memory_order_relaxed) ? static_cast<int>(m_lookAhead) : 0;
    }
    /// Audio thread: no allocation, lock or system call.
    void process(std::span<StereoFrame> frames);

  private:
    /// The least gain that the last m_window + 1 frames allow.
    float leastGain(float allowed);
    /// The gain of the frame that has waited for m_lookAhead frames.
    float gain(float allowed);
    StereoFrame limited(const StereoFrame &frame);
    void restart();

    const std::size_t m_lookAhead; ///< frames
    const std::size_t m_window;    ///< frames: how long a peak counts, the look-ahead and the hold
    const int m_crossFrames;
    const double m_release; ///< of the way back to full gain, per frame
    std::atomic<bool> m_isEnabled{false};

    // Audio thread's. The rings have m_lookAhead places, that of the least gains m_window + 1.
    struct Candidate {
        std::uint64_t frame = 0;
        float gain = 1;
    };
    bool m_isRunning = false;
    std::size_t m_warmUp = 0; ///< frames until the delayed sound is whole
    Ramp m_mix;               ///< 0: direct, 1: limited
    std::uint64_t m_frame = 0;
    std::vector<StereoFrame> m_delay;
    std::vector<float> m_gains;
    std::vector<Candidate> m_candidates; ///< a ring; gains grow from the first to the last
    std::size_t m_firstCandidate = 0;
    std::size_t m_candidateCount = 0;
    double m_gainSum = 0;
    std::size_t m_fullGains = 0; ///< how many in a row are 1
    double m_lastGain = 1;
};

} // namespace vantor
