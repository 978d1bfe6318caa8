#pragma once

#include <chrono>
#include <cstdint>

namespace vantor {

/// The local clock that everything of a Sendspin player is timed by: steady, in microseconds, from any start.
/// A test puts one of its own in its place. Any thread.
class SendspinClock {
  public:
    virtual ~SendspinClock() = default;
    [[nodiscard]] virtual std::int64_t now() const = 0;
};

/// std::chrono::steady_clock, which the sound output's times are told by as well.
class SendspinSteadyClock : public SendspinClock {
  public:
    [[nodiscard]] std::int64_t now() const override {
        const auto time = std::chrono::steady_clock::now().time_since_epoch();
        return std::chrono::duration_cast<std::chrono::microseconds>(time).count();
    }
};

} // namespace vantor
