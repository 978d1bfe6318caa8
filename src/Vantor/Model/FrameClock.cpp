#include "Vantor/Model/FrameClock.h"

#include <algorithm>

namespace vantor {

namespace {

constexpr FrameClock::Period longestPrecise{33};
constexpr double longestFrame = 0.25; // seconds; after a longer gap things do not jump

} // namespace

FrameClock::FrameClock(QObject *parent) : QObject(parent) {
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &FrameClock::tick);
}

void FrameClock::setInterval(std::optional<Period> interval) {
    m_interval = interval;
    // Where an instant does not matter, one wake serves several timers.
    m_timer.setTimerType(interval && *interval > longestPrecise ? Qt::CoarseTimer : Qt::PreciseTimer);
    schedule();
}

void FrameClock::setWatched(const QObject *by, std::optional<Period> period) {
    if (period)
        m_watchers.insert(by, *period);
    else
        m_watchers.remove(by);
    schedule();
}

FrameClock::Period FrameClock::period() const {
    const auto shortest = std::ranges::min_element(m_watchers);
    return shortest == m_watchers.end() ? everyFrame : *shortest;
}

void FrameClock::schedule() {
    if (!m_interval || m_watchers.isEmpty()) {
        m_timer.stop();
        m_sinceFrame.invalidate();
        return;
    }
    if (!m_sinceFrame.isValid())
        m_sinceFrame.start();
    if (!m_timer.isActive()) {
        const std::chrono::milliseconds spent(m_sinceFrame.elapsed());
        m_timer.start(std::max(std::chrono::milliseconds(0), *m_interval - spent));
    }
}

void FrameClock::tick() {
    const double elapsed =
        m_sinceFrame.isValid() ? static_cast<double>(m_sinceFrame.nsecsElapsed()) / 1e9 : 0;
    m_sinceFrame.start();
    m_ticking = true;
    Q_EMIT frame(std::min(elapsed, longestFrame));
    m_ticking = false;
    schedule();
}

} // namespace vantor
