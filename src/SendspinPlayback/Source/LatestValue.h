#pragma once

#include <array>
#include <atomic>
#include <type_traits>

namespace vantor {

/// Hands the newest of a writer's values to one reading thread; neither ever waits. What the reader did not
/// fetch before the next value came is gone.
template <class T>
class LatestValue {
    static_assert(std::is_trivially_copyable_v<T>);

  public:
    /// Writer.
    void write(const T &value) {
        m_slots[m_writing] = value;
        m_writing = m_shared.exchange(m_writing | isNew, std::memory_order_acq_rel) & ~isNew;
    }
    /// The newest value, or a made one before the first. Reader; valid until its next call.
    [[nodiscard]] const T &read() {
        if (m_shared.load(std::memory_order_relaxed) & isNew)
            m_reading = m_shared.exchange(m_reading, std::memory_order_acq_rel) & ~isNew;
        return m_slots[m_reading];
    }

  private:
    static constexpr unsigned isNew = 4;

    // One slot is the writer's, one the reader's, and the third changes hands.
    std::array<T, 3> m_slots{};
    unsigned m_writing = 0;
    unsigned m_reading = 1;
    std::atomic<unsigned> m_shared{2};
};

} // namespace vantor
