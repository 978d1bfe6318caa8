#pragma once

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>
#include <span>
#include <vector>

namespace vantor {

/// A bounded queue between one writing and one reading thread, without locks. Elements are named by their
/// running number, so that the reader can look at them before it lets them go. Allocates when made only.
template <class T>
class SpscRing {
  public:
    /// Room for at least `capacity` elements.
    explicit SpscRing(std::size_t capacity)
        : m_storage(std::bit_ceil(std::max<std::size_t>(capacity, 2))), m_mask(m_storage.size() - 1) {}

    /// Appends what fits and says how much that was. Writer.
    std::size_t write(std::span<const T> elements) {
        const std::uint64_t end = m_written.load(std::memory_order_relaxed);
        const std::uint64_t used = end - m_released.load(std::memory_order_acquire);
        const std::size_t count = std::min<std::size_t>(elements.size(), m_storage.size() - used);
        for (std::size_t i = 0; i < count; ++i)
            m_storage[(end + i) & m_mask] = elements[i];
        m_written.store(end + count, std::memory_order_release);
        return count;
    }

    /// Forgets what was written from `number` on, none of which has been released. Writer, while it is
    /// certain that the reader does not look.
    void takeBack(std::uint64_t number) { m_written.store(number, std::memory_order_release); }

    /// The number after the last element's. Either thread.
    [[nodiscard]] std::uint64_t written() const { return m_written.load(std::memory_order_acquire); }
    /// The number of the first element that is still held. Either thread.
    [[nodiscard]] std::uint64_t released() const { return m_released.load(std::memory_order_acquire); }

    /// An element between released() and written(). Reader.
    [[nodiscard]] const T &at(std::uint64_t number) const { return m_storage[number & m_mask]; }
    /// Frees the room of all elements before `number`. Reader.
    void release(std::uint64_t number) { m_released.store(number, std::memory_order_release); }

  private:
    std::vector<T> m_storage;
    std::size_t m_mask;
    alignas(64) std::atomic<std::uint64_t> m_written{0};
    alignas(64) std::atomic<std::uint64_t> m_released{0};
};

} // namespace vantor
