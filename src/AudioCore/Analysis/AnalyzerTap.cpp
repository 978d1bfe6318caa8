#include "AudioCore/Analysis/AnalyzerTap.h"

namespace vantor {

AnalyzerTap::AnalyzerTap(int fftSize, int ringCapacity)
    : m_ring(ringCapacity), m_samples(static_cast<size_t>(std::clamp(fftSize, 0, m_ring.readable()))) {
    m_cursor.window = static_cast<int>(m_samples.size());
    m_cursor.readable = m_ring.readable();
}

void AnalyzerTap::write(const float *interleavedStereo, int frames) {
    std::array<float, 256> mono;
    while (frames > 0) {
        const int count = std::min(frames, static_cast<int>(mono.size()));
        for (int i = 0; i < count; ++i)
            mono[static_cast<size_t>(i)] = (interleavedStereo[2 * i] + interleavedStereo[2 * i + 1]) / 2;
        m_ring.write(mono.data(), count);
        interleavedStereo += 2 * count;
        frames -= count;
    }
}

void AnalyzerTap::prepare(double sampleRate) {
    m_sampleRate = sampleRate;
    m_analyzer = SpectrumAnalyzer::make({.fftSize = m_cursor.window, .sampleRate = sampleRate});
    resetCursor();
}

void AnalyzerTap::resetCursor() {
    m_cursor.position.reset();
    m_cursor.lastWriteCount.reset();
    m_cursor.stalledSeconds = 0;
    m_cursor.carry = 0;
}

std::optional<VisFrame> AnalyzerTap::frame(double elapsed) {
    if (!m_analyzer)
        return std::nullopt;
    const std::optional<int64_t> end = m_cursor.next(m_ring.writeCount(), elapsed, m_sampleRate);
    if (!end || !m_ring.copy(m_cursor.window, *end, m_samples))
        return std::nullopt;
    VisFrame frame;
    m_analyzer->analyze(m_samples, frame.spectrum, frame.scope);
    frame.sampleCount = m_cursor.window;
    return frame;
}

std::optional<VisFrame> AnalyzerTap::latestFrame() {
    const auto now = std::chrono::steady_clock::now();
    const std::chrono::duration<double> elapsed = now - m_lastCall.value_or(now);
    m_lastCall = now;
    return frame(elapsed.count());
}

std::optional<SpectrumColumnMap> AnalyzerTap::columnMap() const {
    return m_analyzer ? std::optional(m_analyzer->columnMap()) : std::nullopt;
}

} // namespace vantor
