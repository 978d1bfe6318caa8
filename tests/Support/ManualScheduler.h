#pragma once

#include "Platform/Scheduler.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace vantor {

/// A clock that goes on only when the test says so. It is exact to the microsecond.
class ManualScheduler : public Scheduler {
  public:
    [[nodiscard]] std::unique_ptr<Pending> after(std::chrono::milliseconds delay,
                                                 std::function<void()> action) override {
        return afterExactly(delay, std::move(action));
    }
    [[nodiscard]] std::unique_ptr<Pending> afterExactly(std::chrono::microseconds delay,
                                                        std::function<void()> action) {
        auto entry = std::make_shared<Entry>(Entry{.due = m_now + delay, .action = std::move(action)});
        m_entries.push_back(entry);
        return std::make_unique<Handle>(std::move(entry));
    }

    /// Runs what becomes due on the way, each at its time.
    void advance(std::chrono::microseconds time) {
        const auto end = m_now + time;
        while (const auto next = firstDue(end)) {
            m_now = std::max(m_now, next->due);
            const auto action = std::exchange(next->action, nullptr);
            action();
        }
        m_now = end;
    }

    /// How long until something happens; negative when nothing is planned.
    [[nodiscard]] std::chrono::microseconds untilNext() {
        const auto next = firstDue(std::chrono::microseconds::max());
        return next ? next->due - m_now : std::chrono::microseconds(-1);
    }
    /// Since it was made.
    [[nodiscard]] std::chrono::microseconds now() const { return m_now; }

  private:
    struct Entry {
        std::chrono::microseconds due;
        std::function<void()> action; ///< none once it ran or was called off
    };
    class Handle : public Pending {
      public:
        explicit Handle(std::shared_ptr<Entry> entry) : m_entry(std::move(entry)) {}
        ~Handle() override { m_entry->action = nullptr; }

      private:
        std::shared_ptr<Entry> m_entry;
    };

    [[nodiscard]] std::shared_ptr<Entry> firstDue(std::chrono::microseconds end) {
        std::erase_if(m_entries, [](const auto &entry) { return !entry->action; });
        const auto first = std::min_element(m_entries.begin(), m_entries.end(),
                                            [](const auto &a, const auto &b) { return a->due < b->due; });
        return first != m_entries.end() && (*first)->due <= end ? *first : nullptr;
    }

    std::chrono::microseconds m_now{0};
    std::vector<std::shared_ptr<Entry>> m_entries;
};

} // namespace vantor
