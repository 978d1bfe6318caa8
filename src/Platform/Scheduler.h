#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace vantor {

/// What makes things happen later; a test puts a clock of its own in its place. An action runs in the thread
/// that asked for it, which has an event loop.
class Scheduler {
  public:
    /// An action that has yet to run. Destroying it calls the action off.
    class Pending {
      public:
        virtual ~Pending() = default;
    };

    virtual ~Scheduler() = default;
    /// Runs `action` once, from the event loop, unless what this returns is destroyed before. The action may
    /// destroy it.
    [[nodiscard]] virtual std::unique_ptr<Pending> after(std::chrono::milliseconds delay,
                                                         std::function<void()> action) = 0;
};

/// The system's monotonic clock.
class SystemScheduler : public Scheduler {
  public:
    [[nodiscard]] std::unique_ptr<Pending> after(std::chrono::milliseconds delay,
                                                 std::function<void()> action) override;
};

} // namespace vantor
