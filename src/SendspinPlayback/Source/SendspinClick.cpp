#include "SendspinPlayback/Source/SendspinClick.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vantor {

// In microseconds.
static constexpr std::int64_t second = 1'000'000;
static constexpr double smoothing = 250'000;      // as for what is played
static constexpr double jump = 20'000;            // what is no error of measurement
static constexpr std::int64_t justMissed = 1'000; // more than evening out moves a call

static constexpr double tickSeconds = 0.012;
static constexpr double tickFrequency = 2'000; // Hz: where ears tell instants apart best
static constexpr double tickDecay = 0.002;     // seconds
static constexpr double tickLevel = 0.35;

/// Begins at once, dies away, and ends in silence.
static std::vector<float> makeTick(int rate) {
    std::vector<float> tick(static_cast<std::size_t>(std::max(1.0, tickSeconds * rate)));
    for (std::size_t i = 0; i < tick.size(); ++i) {
        const double time = static_cast<double>(i) / rate;
        tick[i] = static_cast<float>(tickLevel * (1 - time / tickSeconds) * std::exp(-time / tickDecay) *
                                     std::cos(2 * std::numbers::pi * tickFrequency * time));
    }
    return tick;
}

SendspinClick::SendspinClick(int sampleRate)
    : m_rate(sampleRate), m_tick(makeTick(sampleRate)), m_at(m_tick.size()) {}

void SendspinClick::evenOut(int frames, std::int64_t whenHeard) {
    const double length = static_cast<double>(frames * second) / m_rate;
    const double error = static_cast<double>(whenHeard) - m_next;
    m_now = m_next + (std::abs(error) > jump ? error : error * std::min(1.0, length / smoothing));
    m_next = m_now + length;
}

/// Which of the call's frames a tick begins with; `frames`: none.
int SendspinClick::beginOfTick(int frames, const SendspinTiming &timing) {
    const auto now = static_cast<std::int64_t>(m_now);
    const std::int64_t delay = std::int64_t{timing.staticDelayMs} * 1000;
    const std::int64_t server = timing.filter.computeServerTime(now - delay);
    std::int64_t number = server / second - (server % second < 0 ? 1 : 0);
    if (server - number * second > justMissed || number == m_ticked)
        ++number;
    const auto due = static_cast<double>(timing.playoutTime(number * second) - now);
    const double frame = std::ceil(due * m_rate / second);
    if (frame >= frames)
        return frames;
    m_ticked = number;
    m_at = 0;
    return static_cast<int>(std::max(0.0, frame));
}

void SendspinClick::mix(float *interleaved, int frames, std::int64_t whenHeard,
                        const SendspinTiming &timing) {
    evenOut(frames, whenHeard);
    int frame = 0;
    if (m_at == m_tick.size()) {
        if (!timing.isKnown || !m_isOn.load(std::memory_order_relaxed))
            return;
        frame = beginOfTick(frames, timing);
    }
    for (; frame < frames && m_at < m_tick.size(); ++frame, ++m_at) {
        interleaved[2 * frame] += m_tick[m_at];
        interleaved[2 * frame + 1] += m_tick[m_at];
    }
}

} // namespace vantor
