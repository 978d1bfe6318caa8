#include "demo-track/Desk.h"

#include "demo-track/Oscillators.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vantor::demo {

namespace {

void accumulate(StereoBuffer &buffer, std::size_t frame, double left, double right) {
    buffer.left[frame] += static_cast<float>(left);
    buffer.right[frame] += static_cast<float>(right);
}

} // namespace

Pan::Pan(double place)
    : left(std::cos((place + 1.0) * 0.25 * std::numbers::pi)),
      right(std::sin((place + 1.0) * 0.25 * std::numbers::pi)) {}

void Channel::add(std::size_t frame, double left, double right) {
    if (frame >= m_desk.dry.frames())
        return;
    const double gain =
        m_settings.gain * (1.0 - m_settings.ducking * static_cast<double>(m_desk.duck[frame]));
    left *= gain;
    right *= gain;
    accumulate(m_desk.dry, frame, left, right);
    if (m_settings.delay > 0.0)
        accumulate(m_desk.delaySend, frame, left * m_settings.delay, right * m_settings.delay);
    if (m_settings.reverb > 0.0)
        accumulate(m_desk.reverbSend, frame, left * m_settings.reverb, right * m_settings.reverb);
}

void duckAt(Desk &desk, std::span<const std::size_t> kickFrames) {
    constexpr double attack = 0.004;
    constexpr double recovery = 0.11;
    const auto length = static_cast<std::size_t>(6.0 * recovery * sampleRate);
    for (const std::size_t start : kickFrames) {
        for (std::size_t i = 0; i < length && start + i < desk.duck.size(); ++i) {
            const double time = static_cast<double>(i) / sampleRate;
            const double depth = std::min(1.0, time / attack) * std::exp(-time / recovery);
            desk.duck[start + i] = std::max(desk.duck[start + i], static_cast<float>(depth));
        }
    }
}

} // namespace vantor::demo
