#pragma once

#include "tests/Support/FakeSendspin/Timeline.h"

#include <deque>
#include <random>

namespace vantor {

/// How long messages take. Chance decides, the same way in every run.
struct FakeNetwork {
    std::chrono::microseconds base{0};     ///< each way
    std::chrono::microseconds jitter{0};   ///< up to this much longer, each way
    std::chrono::microseconds toServer{0}; ///< longer on the way to the server only
    // As in a busy Wi-Fi: now and then everything takes longer for a while.
    std::chrono::microseconds burst{0}; ///< up to this much longer meanwhile
    std::chrono::microseconds burstLength{0};
    std::chrono::microseconds burstPeriod{0};

    [[nodiscard]] bool isIdeal() const { return *this == FakeNetwork(); }
    [[nodiscard]] std::chrono::microseconds delay(std::int64_t now, bool isToServer,
                                                  std::mt19937 &chance) const;

    bool operator==(const FakeNetwork &) const = default;
};

/// One direction of a connection: delivers in order, each message after its delay.
class DelayedPipe {
  public:
    explicit DelayedPipe(Timeline &time) : m_time(time) {}
    void deliver(std::chrono::microseconds delay, std::function<void()> action);

  private:
    struct Entry {
        std::int64_t due;
        std::function<void()> action;
    };
    void await();

    Timeline &m_time;
    std::deque<Entry> m_entries;
    std::unique_ptr<Scheduler::Pending> m_pending; ///< of the first entry
};

} // namespace vantor
