#pragma once

#include "AudioCore/Equalizer/EqualizerUnit.h"
#include "AudioCore/Graph/Limiter.h"
#include "AudioCore/Graph/LiveSource.h"
#include "AudioCore/Graph/PlayerNode.h"
#include "AudioCore/Graph/Ramp.h"

#include <atomic>
#include <memory>

namespace vantor {

class AnalyzerTap;

/// Everything between decoded sound and the output: the player node or a live source, the equalizer, then the
/// mixer's volume and balance, and a limiter. The analyser listens before the mixer, so that its picture does
/// not shrink with the volume.
class AudioGraph {
  public:
    /// Hz; the tap outlives the graph and may be null.
    AudioGraph(int sampleRate, AnalyzerTap *tap);

    [[nodiscard]] int sampleRate() const { return m_sampleRate; }
    /// Shared with the decode thread, which may still hold it when the graph is gone.
    [[nodiscard]] const std::shared_ptr<PlayerNode> &node() const { return m_node; }

    /// Main thread; changes glide.
    void setEqualizer(const EQState &state) { m_equalizer.apply(state); }
    /// Has a live source heard, beside the node, which the caller lets rest; none ends that. It sounds as
    /// loud as it is, whatever the volume. Main thread; it fades over. Every source stays as long as the
    /// graph.
    void playLive(const std::shared_ptr<LiveSource> &source);
    /// The mixer's linear output volume, 0…1. Any thread; changes ramp.
    void setVolume(float volume) { m_volume.store(volume, std::memory_order_relaxed); }
    /// −1…1: attenuates the other side. Any thread; changes ramp.
    void setBalance(float balance) { m_balance.store(balance, std::memory_order_relaxed); }
    /// Off at first. Any thread; changes cross over.
    void setLimiterEnabled(bool enabled) { m_limiter.setEnabled(enabled); }
    /// The largest sample, 0…1 and above, rendered since the last call. Any thread.
    [[nodiscard]] float takePeak() { return m_peak.exchange(0, std::memory_order_relaxed); }

    /// Fills interleaved stereo frames. `whenHeard`: the instant of the first one, microseconds of
    /// std::chrono::steady_clock; as long as it is not known, a live source waits. Audio thread: no
    /// allocation, lock or system call.
    void render(float *interleaved, int frames, std::optional<std::int64_t> whenHeard = {});

  private:
    void renderBlock(std::span<StereoFrame> frames, std::optional<std::int64_t> whenHeard);
    void addLive(std::span<StereoFrame> frames, std::optional<std::int64_t> whenHeard);

    const int m_sampleRate;
    const int m_rampFrames;
    std::shared_ptr<PlayerNode> m_node;
    EqualizerUnit m_equalizer;
    Limiter m_limiter;
    AnalyzerTap *m_tap;
    std::atomic<float> m_volume{1};
    std::atomic<float> m_balance{0};
    std::atomic<float> m_peak{0};
    std::vector<std::shared_ptr<LiveSource>> m_liveSources; ///< all that there were
    std::atomic<LiveSource *> m_wantedLive{nullptr};

    // Audio thread's.
    bool m_rendered = false;
    Ramp m_left;
    Ramp m_right;
    LiveSource *m_live = nullptr; ///< that was wanted last
    Ramp m_liveGain;
    Ramp m_nodeGain{1};
    std::vector<StereoFrame> m_liveFrames;
};

} // namespace vantor
