#pragma once

#include "Platform/Scheduler.h"

#include <cstdint>

namespace vantor {

/// What a server goes by: a steady clock, and things that happen later by it. In microseconds.
class Timeline {
  public:
    virtual ~Timeline() = default;
    [[nodiscard]] virtual std::int64_t now() const = 0;
    [[nodiscard]] virtual std::unique_ptr<Scheduler::Pending> after(std::chrono::microseconds delay,
                                                                    std::function<void()> action) = 0;
};

/// This machine's clock; what happens later is exact to the millisecond.
class RealTimeline : public Timeline {
  public:
    [[nodiscard]] std::int64_t now() const override {
        const auto time = std::chrono::steady_clock::now().time_since_epoch();
        return std::chrono::duration_cast<std::chrono::microseconds>(time).count();
    }
    [[nodiscard]] std::unique_ptr<Scheduler::Pending> after(std::chrono::microseconds delay,
                                                            std::function<void()> action) override {
        return m_scheduler.after(std::chrono::ceil<std::chrono::milliseconds>(delay), std::move(action));
    }

  private:
    SystemScheduler m_scheduler;
};

} // namespace vantor
