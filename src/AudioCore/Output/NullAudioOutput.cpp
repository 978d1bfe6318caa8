#include "AudioCore/Output/NullAudioOutput.h"

#include <vector>

namespace vantor {

static constexpr int blocksPerSecond = 100;
// After a longer pause, also of the whole machine, the pace starts afresh instead of rushing through the
// missed time.
static constexpr std::chrono::milliseconds longestCatchUp{250};

void NullAudioOutput::start(Render render, Reports) {
    stop();
    {
        const MutexLock lock(m_mutex);
        m_stopping = false;
        m_suspended = true;
    }
    m_thread = std::thread([this, render = std::move(render)] { run(render); });
}

void NullAudioOutput::stop() {
    if (!m_thread.joinable())
        return;
    {
        const MutexLock lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_one();
    m_thread.join();
}

void NullAudioOutput::setSuspended(bool suspended) {
    {
        const MutexLock lock(m_mutex);
        m_suspended = suspended;
    }
    m_changed.notify_one();
}

// False when the output stops.
bool NullAudioOutput::waitUntil(Clock::time_point due) {
    MutexLock lock(m_mutex);
    while (!m_stopping) {
        const Clock::duration left = due - Clock::now();
        if (m_suspended)
            lock.wait(m_changed);
        else if (left > Clock::duration::zero())
            lock.waitFor(m_changed, left);
        else
            return true;
    }
    return false;
}

void NullAudioOutput::run(const Render &render) {
    const int blockFrames = m_sampleRate / blocksPerSecond;
    std::vector<float> block(static_cast<std::size_t>(blockFrames) * 2);
    // Every block is due a number of frames after the start, whatever the sleeps really took: no drift.
    Clock::time_point start = Clock::now();
    std::int64_t frames = 0;
    Clock::time_point due = start;
    while (waitUntil(due)) {
        if (Clock::now() - due > longestCatchUp) {
            start = Clock::now();
            frames = 0;
        }
        m_due = due;
        render(block.data(), blockFrames);
        frames += blockFrames;
        due = start + std::chrono::nanoseconds(frames * 1'000'000'000 / m_sampleRate);
    }
}

} // namespace vantor
