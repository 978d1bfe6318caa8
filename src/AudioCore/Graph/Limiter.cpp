#include "AudioCore/Graph/Limiter.h"

#include <algorithm>
#include <cmath>

namespace vantor {

static constexpr double crossSeconds = 0.01;
// Half a period of the lowest tone, 40 Hz: between its peaks the gain stands still. One that went up and down
// within each period would distort the tone.
static constexpr double holdSeconds = 0.0125;
static constexpr double releaseSeconds = 0.08; // to within 1/e of full gain
// As good as 1: the way back would take for ever.
static constexpr double almostFull = 0.9999;

Limiter::Limiter(int sampleRate)
    : m_lookAhead(static_cast<std::size_t>(std::max(1.0, sampleRate * lookAheadSeconds))),
      m_window(m_lookAhead + static_cast<std::size_t>(std::ceil(sampleRate * holdSeconds))),
      m_crossFrames(static_cast<int>(sampleRate * crossSeconds)),
      m_release(1 - std::exp(-1 / (sampleRate * releaseSeconds))), m_delay(m_lookAhead), m_gains(m_lookAhead),
      m_candidates(m_window + 1) {}

// What is no number would stay in the gain's sum for ever.
static float finite(float sample) {
    return std::isfinite(sample) ? sample : 0.0F;
}

void Limiter::process(std::span<StereoFrame> frames) {
    const bool isEnabled = m_isEnabled.load(std::memory_order_relaxed);
    if (!isEnabled && !m_isRunning)
        return;
    if (!m_isRunning)
        restart();
    for (StereoFrame &frame : frames) {
        frame = {finite(frame.left), finite(frame.right)};
        const StereoFrame late = limited(frame);
        if (m_warmUp > 0) {
            --m_warmUp;
            continue;
        }
        m_mix.moveTo(isEnabled ? 1.0F : 0.0F, m_crossFrames);
        const float mix = m_mix.next();
        if (mix == 1.0F)
            frame = late;
        else if (mix > 0)
            frame = {frame.left + (late.left - frame.left) * mix,
                     frame.right + (late.right - frame.right) * mix};
    }
    m_isRunning = isEnabled || m_mix.value() > 0;
}

void Limiter::restart() {
    m_isRunning = true;
    m_warmUp = m_lookAhead;
    m_mix.set(0);
    m_frame = 0;
    std::ranges::fill(m_delay, StereoFrame{});
    std::ranges::fill(m_gains, 1.0F);
    m_candidateCount = 0;
    m_gainSum = static_cast<double>(m_lookAhead);
    m_fullGains = m_lookAhead;
    m_lastGain = 1;
}

StereoFrame Limiter::limited(const StereoFrame &frame) {
    const float peak = std::max(std::abs(frame.left), std::abs(frame.right));
    const float factor = gain(peak > ceiling ? ceiling / peak : 1.0F);
    const StereoFrame late = std::exchange(m_delay[m_frame % m_lookAhead], frame);
    ++m_frame;
    if (factor == 1.0F)
        return late;
    // The mean of many gains may be off by a rounding.
    return {std::clamp(late.left * factor, -ceiling, ceiling),
            std::clamp(late.right * factor, -ceiling, ceiling)};
}

// Each of the gains averaged here allows for the frame that comes out now, and so does their mean.
float Limiter::gain(float allowed) {
    const float least = leastGain(allowed);
    m_lastGain += (1 - m_lastGain) * m_release;
    if (m_lastGain > almostFull)
        m_lastGain = 1;
    m_lastGain = std::min(m_lastGain, static_cast<double>(least));
    const auto next = static_cast<float>(m_lastGain);
    const float oldest = std::exchange(m_gains[m_frame % m_lookAhead], next);
    m_fullGains = next == 1.0F ? m_fullGains + 1 : 0;
    if (m_fullGains >= m_lookAhead) { // exactly, whatever was rounded before
        m_gainSum = static_cast<double>(m_lookAhead);
        return 1;
    }
    m_gainSum += static_cast<double>(next) - static_cast<double>(oldest);
    return static_cast<float>(m_gainSum / static_cast<double>(m_lookAhead));
}

// A frame that allows as little as an earlier one outlives it, so that the earlier one can be forgotten.
float Limiter::leastGain(float allowed) {
    const auto place = [this](std::size_t candidate) {
        return (m_firstCandidate + candidate) % m_candidates.size();
    };
    while (m_candidateCount > 0 && m_candidates[place(m_candidateCount - 1)].gain >= allowed)
        --m_candidateCount;
    if (m_candidateCount > 0 && m_candidates[m_firstCandidate].frame + m_window < m_frame) {
        m_firstCandidate = place(1);
        --m_candidateCount;
    }
    m_candidates[place(m_candidateCount)] = {m_frame, allowed};
    ++m_candidateCount;
    return m_candidates[m_firstCandidate].gain;
}

} // namespace vantor
