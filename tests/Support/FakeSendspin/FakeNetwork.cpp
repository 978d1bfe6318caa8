#include "tests/Support/FakeSendspin/FakeNetwork.h"

namespace vantor {

namespace {

std::chrono::microseconds upTo(std::chrono::microseconds most, std::mt19937 &chance) {
    return std::chrono::microseconds(std::uniform_int_distribution<std::int64_t>(0, most.count())(chance));
}

} // namespace

std::chrono::microseconds FakeNetwork::delay(std::int64_t now, bool isToServer, std::mt19937 &chance) const {
    auto delay = base + upTo(jitter, chance) + (isToServer ? toServer : std::chrono::microseconds(0));
    if (burstPeriod.count() > 0 && now % burstPeriod.count() < burstLength.count())
        delay += upTo(burst, chance);
    return delay;
}

void DelayedPipe::deliver(std::chrono::microseconds delay, std::function<void()> action) {
    std::int64_t due = m_time.now() + delay.count();
    if (!m_entries.empty())
        due = std::max(due, m_entries.back().due);
    m_entries.push_back({.due = due, .action = std::move(action)});
    if (!m_pending)
        await();
}

void DelayedPipe::await() {
    const std::int64_t wait = std::max<std::int64_t>(m_entries.front().due - m_time.now(), 0);
    m_pending = m_time.after(std::chrono::microseconds(wait), [this] {
        const auto action = std::move(m_entries.front().action);
        m_entries.pop_front();
        m_pending.reset();
        if (!m_entries.empty())
            await();
        action(); // it may destroy this
    });
}

} // namespace vantor
