#include "AudioCore/Analysis/VisSampleRing.h"

#include <algorithm>
#include <bit>

namespace vantor {

static constexpr int smallestCapacity = 64;
static constexpr int largestCapacity = 1 << 24;

VisSampleRing::VisSampleRing(int capacity)
    : m_storage(std::bit_ceil(static_cast<size_t>(std::clamp(capacity, smallestCapacity, largestCapacity)))),
      m_mask(m_storage.size() - 1) {}

// A sequence lock without waiting. The fence keeps the samples of a chunk behind the count that was told
// before it: a reader that met one of them finds at least that count when it looks again, and the count plus
// one chunk tells it how far its own samples may have been overwritten.
void VisSampleRing::write(const float *samples, int count) {
    int64_t written = m_counter.load(std::memory_order_relaxed);
    while (count > 0) {
        const int chunk = std::min(count, maxChunk());
        std::atomic_thread_fence(std::memory_order_release);
        for (int i = 0; i < chunk; ++i)
            m_storage[static_cast<size_t>(written + i) & m_mask].store(samples[i], std::memory_order_relaxed);
        written += chunk;
        m_counter.store(written, std::memory_order_release);
        samples += chunk;
        count -= chunk;
    }
}

bool VisSampleRing::copy(int count, int64_t endingAt, std::span<float> into) const {
    if (count < 0 || static_cast<size_t>(count) > into.size() || endingAt < count || endingAt > writeCount())
        return false;
    const int64_t start = endingAt - count;
    for (int i = 0; i < count; ++i)
        into[static_cast<size_t>(i)] =
            m_storage[static_cast<size_t>(start + i) & m_mask].load(std::memory_order_relaxed);
    std::atomic_thread_fence(std::memory_order_acquire);
    return m_counter.load(std::memory_order_relaxed) - start <= readable();
}

bool VisSampleRing::copyLatest(int count, std::span<float> into) const {
    return copy(count, writeCount(), into);
}

} // namespace vantor
