#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace vantor {

/// Sound from elsewhere that is to be heard at given times, such as a stream that several computers play in
/// step.
class LiveSource {
  public:
    virtual ~LiveSource() = default;

    /// Fills `frames` interleaved stereo frames, of which the first is heard at `whenHeard`, microseconds of
    /// std::chrono::steady_clock. Audio thread: no allocation, lock or system call.
    virtual void render(float *interleaved, int frames, std::int64_t whenHeard) = 0;
};

/// Tells what renders the sound at an output's rate in Hz. Main thread.
using LiveSourceForRate = std::function<std::shared_ptr<LiveSource>(int sampleRate)>;

} // namespace vantor
