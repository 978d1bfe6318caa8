#include "AudioCore/Graph/AudioGraph.h"

#include "AudioCore/Analysis/AnalyzerTap.h"

#include <cmath>

namespace vantor {

// Long enough that a jump of the slider is no click, short enough to feel immediate.
static constexpr double rampSeconds = 0.01;
// Parameters are looked at this often within a long request.
static constexpr int blockFrames = 512;

AudioGraph::AudioGraph(int sampleRate, AnalyzerTap *tap)
    : m_sampleRate(sampleRate), m_rampFrames(static_cast<int>(sampleRate * rampSeconds)),
      m_node(std::make_shared<PlayerNode>(sampleRate)), m_limiter(sampleRate), m_tap(tap) {
    m_equalizer.prepare(sampleRate);
}

void AudioGraph::render(float *interleaved, int frames) {
    // A StereoFrame is two floats, left and right, which is how an interleaved buffer is laid out.
    static_assert(sizeof(StereoFrame) == 2 * sizeof(float) && alignof(StereoFrame) == alignof(float));
    std::span<StereoFrame> rest(reinterpret_cast<StereoFrame *>(interleaved),
                                static_cast<std::size_t>(frames));
    while (!rest.empty()) {
        const std::size_t count = std::min<std::size_t>(rest.size(), blockFrames);
        renderBlock(rest.first(count));
        rest = rest.subspan(count);
    }
}

void AudioGraph::renderBlock(std::span<StereoFrame> frames) {
    m_node->render(frames);
    m_equalizer.process(&frames.front().left, static_cast<int>(frames.size()));
    if (m_tap)
        m_tap->write(&frames.front().left, static_cast<int>(frames.size()));

    const float volume = m_volume.load(std::memory_order_relaxed);
    const float balance = m_balance.load(std::memory_order_relaxed);
    const float left = volume * std::min(1.0F, 1.0F - balance);
    const float right = volume * std::min(1.0F, 1.0F + balance);
    if (!m_rendered) { // nothing was heard yet that a jump could disturb
        m_left.set(left);
        m_right.set(right);
        m_rendered = true;
    }
    m_left.moveTo(left, m_rampFrames);
    m_right.moveTo(right, m_rampFrames);

    for (StereoFrame &frame : frames) {
        frame.left *= m_left.next();
        frame.right *= m_right.next();
    }
    m_limiter.process(frames);

    float peak = 0;
    for (const StereoFrame &frame : frames)
        peak = std::max({peak, std::abs(frame.left), std::abs(frame.right)});
    float known = m_peak.load(std::memory_order_relaxed);
    while (peak > known && !m_peak.compare_exchange_weak(known, peak, std::memory_order_relaxed)) {
    }
}

} // namespace vantor
