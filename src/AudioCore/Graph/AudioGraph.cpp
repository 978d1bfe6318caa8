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
      m_node(std::make_shared<PlayerNode>(sampleRate)), m_limiter(sampleRate), m_tap(tap),
      m_liveFrames(blockFrames) {
    m_equalizer.prepare(sampleRate);
}

// The audio thread may still be with one that is not wanted any more.
void AudioGraph::playLive(const std::shared_ptr<LiveSource> &source) {
    if (source && std::ranges::find(m_liveSources, source) == m_liveSources.end())
        m_liveSources.push_back(source);
    m_wantedLive.store(source.get(), std::memory_order_release);
}

void AudioGraph::render(float *interleaved, int frames, std::optional<std::int64_t> whenHeard) {
    if (whenHeard)
        *whenHeard += std::int64_t{m_limiter.lookAhead()} * 1'000'000 / m_sampleRate;
    // A StereoFrame is two floats, left and right, which is how an interleaved buffer is laid out.
    static_assert(sizeof(StereoFrame) == 2 * sizeof(float) && alignof(StereoFrame) == alignof(float));
    std::span<StereoFrame> rest(reinterpret_cast<StereoFrame *>(interleaved),
                                static_cast<std::size_t>(frames));
    while (!rest.empty()) {
        const std::size_t count = std::min<std::size_t>(rest.size(), blockFrames);
        const std::int64_t passed =
            (frames - static_cast<std::int64_t>(rest.size())) * 1'000'000 / m_sampleRate;
        renderBlock(rest.first(count), whenHeard ? std::optional(*whenHeard + passed) : std::nullopt);
        rest = rest.subspan(count);
    }
}

void AudioGraph::addLive(std::span<StereoFrame> frames, std::optional<std::int64_t> whenHeard) {
    LiveSource *const wanted = m_wantedLive.load(std::memory_order_acquire);
    if (wanted)
        m_live = wanted;
    m_liveGain.moveTo(wanted ? 1.0F : 0.0F, m_rampFrames);
    // The volume changes from one's to the other's meanwhile: the node is not to be heard at the stream's.
    m_nodeGain.moveTo(wanted ? 0.0F : 1.0F, wanted ? m_rampFrames / 2 : 2 * m_rampFrames);
    for (std::size_t i = 0; m_nodeGain.isMoving() && i < frames.size(); ++i) {
        const float gain = m_nodeGain.next();
        frames[i].left *= gain;
        frames[i].right *= gain;
    }
    if (!m_live || !whenHeard || (!wanted && !m_liveGain.isMoving()))
        return;
    m_live->render(&m_liveFrames.front().left, static_cast<int>(frames.size()), *whenHeard);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const float gain = m_liveGain.next();
        frames[i].left += m_liveFrames[i].left * gain;
        frames[i].right += m_liveFrames[i].right * gain;
    }
}

void AudioGraph::renderBlock(std::span<StereoFrame> frames, std::optional<std::int64_t> whenHeard) {
    m_node->render(frames);
    addLive(frames, whenHeard);
    m_equalizer.process(&frames.front().left, static_cast<int>(frames.size()));
    if (m_tap)
        m_tap->write(&frames.front().left, static_cast<int>(frames.size()));

    const bool isLive = m_wantedLive.load(std::memory_order_relaxed) != nullptr;
    const float volume = isLive ? 1.0F : m_volume.load(std::memory_order_relaxed);
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
