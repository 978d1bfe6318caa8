#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

namespace vantor {

/// The newest samples, passed without a lock from one writing thread to one reading thread. The reader takes
/// a checked copy: one that the writer overtook fails and is never shown.
class VisSampleRing {
  public:
    /// `capacity` is raised to a power of two of at least 64.
    explicit VisSampleRing(int capacity);

    /// The writer. No allocation, lock or system call.
    void write(const float *samples, int count);

    /// Samples written so far. Any thread.
    [[nodiscard]] int64_t writeCount() const { return m_counter.load(std::memory_order_acquire); }
    [[nodiscard]] int capacity() const { return static_cast<int>(m_storage.size()); }
    /// The writer tells of its progress at least this often.
    [[nodiscard]] int maxChunk() const { return capacity() / 8; }
    /// How many of the newest samples can be copied: the rest may be being overwritten.
    [[nodiscard]] int readable() const { return capacity() - maxChunk(); }

    /// The reader: copies the samples that end at `endingAt` in writeCount() terms. False, with `into` left
    /// undefined, when they are no longer or not yet there.
    [[nodiscard]] bool copy(int count, int64_t endingAt, std::span<float> into) const;
    [[nodiscard]] bool copyLatest(int count, std::span<float> into) const;

  private:
    std::vector<std::atomic<float>> m_storage;
    size_t m_mask;
    std::atomic<int64_t> m_counter = 0;
    static_assert(std::atomic<float>::is_always_lock_free && std::atomic<int64_t>::is_always_lock_free);
};

} // namespace vantor
