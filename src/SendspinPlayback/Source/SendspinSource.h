#pragma once

#include "AudioCore/Graph/LiveSource.h"
#include "AudioCore/Graph/Ramp.h"
#include "SendspinPlayback/Source/LatestValue.h"
#include "SendspinPlayback/Source/SendspinClick.h"
#include "SendspinPlayback/Source/SendspinFrameQueue.h"
#include "SendspinPlayback/Source/SendspinInterpolator.h"
#include "SendspinPlayback/Source/SendspinRateControl.h"
#include "SendspinPlayback/Source/SendspinTiming.h"

namespace vantor {

/// Plays a stream so that every frame is heard at its time. Small errors are corrected by playing up to half
/// a percent faster or slower; it jumps, with short fades, at the start of a sound, when sound was missing
/// and when the error lasts above 20 ms.
///
/// Whoever renders has to know when a frame will be heard. Errors of single callbacks are evened out.
class SendspinSource final : public LiveSource {
  public:
    /// What it says about itself.
    struct Figures {
        bool isPlaying = false;
        double error = 0;         ///< smoothed, seconds; positive: heard too early
        double ratio = 1;         ///< frames of the sound for each frame of the output
        std::int64_t late = 0;    ///< chunks that came when their time was over
        std::int64_t resyncs = 0; ///< jumps for missing sound or a large error
    };

    /// `sampleRate`: of the output, in Hz. Allocates here only.
    explicit SendspinSource(int sampleRate);

    /// Fills `frames` interleaved stereo frames, of which the first is heard at `whenHeard`, microseconds of
    /// the local clock; silence where there is nothing to play. Audio thread: no locks, no allocation, no
    /// system call.
    void render(float *interleaved, int frames, std::int64_t whenHeard) override;

    /// One thread, that of the decoding.
    void setTiming(const SendspinTiming &timing) { m_timing.write(timing); }
    // Any thread; they take effect in some milliseconds.
    void setVolume(int volume); ///< 0…100, as loud as it is perceived
    void setMuted(bool muted) { m_wantedMute.store(muted ? 0.0F : 1.0F, std::memory_order_relaxed); }
    void setClicking(bool on) { m_click.setOn(on); } ///< over whatever it plays; see SendspinClick
    [[nodiscard]] Figures figures() const;

    /// Where its sound comes from.
    [[nodiscard]] SendspinFrameQueue &queue() { return m_queue; }
    [[nodiscard]] const SendspinFrameQueue &queue() const { return m_queue; }
    /// How many frames the queue holds: more than is decoded ahead and the longest chunk.
    [[nodiscard]] static std::size_t queueFrames(int sampleRate) {
        return 2 * static_cast<std::size_t>(sampleRate);
    }

  private:
    struct Run {
        std::int64_t first = 0;
        std::int64_t end = 0;
        bool isCut = false; ///< what follows does not continue it
    };
    void renderBlock(float *out, int frames, std::int64_t whenHeard);
    [[nodiscard]] int startIn(int frames, std::int64_t whenHeard);
    int play(float *out, int frames, std::int64_t whenHeard);
    void stop(const Run &run);
    void skipSegment(std::uint64_t end);
    void enterSegments();
    void releasePlayed();
    void noteError(double error, double elapsed);
    void applyVolume(float *interleaved, int frames);
    [[nodiscard]] Run currentRun() const;
    [[nodiscard]] std::uint64_t segmentEnd(std::uint64_t number, std::uint64_t written) const;
    [[nodiscard]] double offsetIn(const SendspinFrameQueue::Segment &segment, std::int64_t whenHeard) const;

    const int m_rate;
    const int m_fadeFrames;
    SendspinFrameQueue m_queue;
    const SendspinInterpolator m_interpolator;
    SendspinClick m_click;
    LatestValue<SendspinTiming> m_timing;
    std::atomic<float> m_wantedVolume{1};
    std::atomic<float> m_wantedMute{1};

    // The audio thread's.
    SendspinTiming m_now;
    SendspinRateControl m_control;
    bool m_isPlaying = false;
    bool m_isLeaving = false; ///< fades out to jump
    bool m_isOff = false;     ///< because of the error
    double m_position = 0;    ///< the number of the frame that is heard next
    double m_ratio = 1;
    double m_offFor = 0; ///< seconds that the error has been too large
    std::uint64_t m_playedTo = 0;
    std::int64_t m_lateCount = 0;
    std::int64_t m_resyncCount = 0;
    Ramp m_fade{0};
    Ramp m_volume{1};
    Ramp m_mute{1};

    // What it tells.
    std::atomic<bool> m_toldPlaying{false};
    std::atomic<double> m_toldError{0};
    std::atomic<double> m_toldRatio{1};
    std::atomic<std::int64_t> m_toldLate{0};
    std::atomic<std::int64_t> m_toldResyncs{0};
};

} // namespace vantor
