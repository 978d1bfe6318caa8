#pragma once

#include "SendspinPlayback/Source/SendspinTiming.h"

#include <atomic>
#include <vector>

namespace vantor {

/// A tick on every whole second of the server's clock: two computers that are in step tick as one. It is as
/// loud at any volume, so that whoever asks for it hears it. Allocates when made only.
class SendspinClick {
  public:
    /// `sampleRate`: of the output, in Hz.
    explicit SendspinClick(int sampleRate);

    /// Any thread. A tick that has begun is not cut off.
    void setOn(bool on) { m_isOn.store(on, std::memory_order_relaxed); }

    /// Adds its sound to interleaved stereo frames, of which the first is heard at `whenHeard`, microseconds
    /// of the local clock; fewer than a second's. Errors of single calls are evened out. Audio thread.
    void mix(float *interleaved, int frames, std::int64_t whenHeard, const SendspinTiming &timing);

  private:
    void evenOut(int frames, std::int64_t whenHeard);
    [[nodiscard]] int beginOfTick(int frames, const SendspinTiming &timing);

    const int m_rate;
    const std::vector<float> m_tick;
    std::atomic<bool> m_isOn{false};

    // The audio thread's.
    double m_now = 0;           ///< when the first frame of the call is heard, as far as one can tell
    double m_next = 0;          ///< likewise, of the next call
    std::size_t m_at;           ///< the tick's frame that comes next; its end: none is under way
    std::int64_t m_ticked = -1; ///< the second of the last tick
};

} // namespace vantor
