#include "SendspinKit/Clock/SendspinClockSync_p.h"

#include <cmath>

namespace vantor {

using namespace std::chrono_literals;

namespace {

/// A server that says nothing for so long is gone: over TCP no answer gets lost.
constexpr auto timeReplyTimeout = 10s;
/// Before sound is scheduled: the offset is known to a few milliseconds then, which is put right within the
/// next bursts.
constexpr int samplesToSynchronize = 4;
/// A burst until then makes do with fewer questions when their answers take long, so that sound starts
/// within a second, in microseconds.
constexpr std::int64_t longestFirstBurst = 150'000;
/// From there on the drift is known well enough for the filter to look far ahead.
constexpr int samplesToSettle = 100;
/// No network explains a measurement that is off by more than its maximal error. What is off by that
/// many times, and by this many microseconds, so often in a row, tells of a clock that was set.
constexpr int contradictingErrors = 3;
constexpr double leastContradiction = 20'000;
constexpr int contradictionsOfAJump = 3;

} // namespace

bool SendspinClockSync::isSynchronized() const {
    return m_state.acceptedSamples >= samplesToSynchronize;
}

void SendspinClockSync::beginBurst() {
    m_burst = {};
    ask();
}

void SendspinClockSync::ask() {
    m_timeReply = m_scheduler.after(timeReplyTimeout, [this] { Q_EMIT unanswered(); });
    m_askedAt = m_clock.now();
    Q_EMIT asked(*m_askedAt);
}

void SendspinClockSync::take(const SendspinIncoming::ServerTime &answer, std::int64_t receivedAt) {
    if (answer.clientTransmitted != m_askedAt)
        return; // nobody has asked for it
    m_askedAt.reset();
    m_timeReply.reset();
    m_burst.add({.t1 = answer.clientTransmitted,
                 .t2 = answer.serverReceived,
                 .t3 = answer.serverTransmitted,
                 .t4 = receivedAt});
    const bool isLong = receivedAt - m_burst.samples.front().t1 > longestFirstBurst;
    if (m_burst.isFull() || (isLong && !isSynchronized()))
        finishBurst();
    else
        ask();
}

void SendspinClockSync::finishBurst() {
    const auto best = m_burst.best();
    m_contradictions = best && contradicts(*best) ? m_contradictions + 1 : 0;
    const bool hasJumped = m_contradictions == contradictionsOfAJump;
    if (hasJumped) {
        m_state.reset();
        m_contradictions = 0;
    }
    m_state.finish(m_burst);
    m_nextBurst = m_scheduler.after(pause(), [this] { beginBurst(); });
    if (hasJumped)
        Q_EMIT jumped();
    Q_EMIT finishedBurst();
}

bool SendspinClockSync::contradicts(const SendspinClockSample &sample) const {
    if (!isSynchronized())
        return false;
    const auto known = static_cast<double>(m_state.filter.computeServerTime(sample.t4) - sample.t4);
    const double off = std::abs(sample.measurement() - known);
    return off > leastContradiction &&
           off > contradictingErrors * static_cast<double>(std::max<std::int64_t>(sample.maxError(), 0));
}

std::chrono::milliseconds SendspinClockSync::pause() const {
    if (!isSynchronized() || m_contradictions > 0)
        return 10ms;
    return m_state.acceptedSamples < samplesToSettle ? 250ms : 1s;
}

} // namespace vantor
