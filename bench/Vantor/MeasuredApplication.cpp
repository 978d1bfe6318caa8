#include "MeasuredApplication.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <ctime>

namespace vantor {

double threadMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

namespace {

/// How long this thread was ready but other ones had the processors.
double queuedMilliseconds() {
    static const int file = ::open("/proc/thread-self/schedstat", O_RDONLY);
    std::array<char, 80> text{};
    if (::pread(file, text.data(), text.size() - 1, 0) <= 0)
        return 0;
    unsigned long long busy = 0;
    unsigned long long queued = 0;
    return std::sscanf(text.data(), "%llu %llu", &busy, &queued) == 2 ? static_cast<double>(queued) / 1e6 : 0;
}

} // namespace

bool MeasuredApplication::notify(QObject *receiver, QEvent *event) {
    if (m_depth > 0)
        return QApplication::notify(receiver, event);
    const QEvent::Type type = event->type();
    const QByteArray name = receiver->metaObject()->className();
    QElapsedTimer wall;
    const double queued = queuedMilliseconds();
    wall.start();
    const double before = threadMilliseconds();
    ++m_depth;
    const bool result = QApplication::notify(receiver, event);
    --m_depth;
    const double busy = threadMilliseconds() - before;
    const double all = static_cast<double>(wall.nsecsElapsed()) / 1e6;
    take(busy, all - busy - (queuedMilliseconds() - queued), type, name);
    return result;
}

void MeasuredApplication::report(const char *phase) {
    std::printf(
        "%-28s %7zu events, busy at most %6.2f ms (type %d of %s), waited at most %6.2f ms (type %d), "
        "over 16 ms: %d\n",
        phase, m_count, m_longest, m_longestType, m_longestName.constData(), m_longestWait, m_longestWaitType,
        m_late);
    std::fflush(stdout);
    m_count = 0;
    m_longest = m_longestWait = 0;
    m_late = 0;
}

void MeasuredApplication::take(double busy, double waited, int type, const QByteArray &name) {
    ++m_count;
    if (waited > m_longestWait) {
        m_longestWait = waited;
        m_longestWaitType = type;
    }
    m_late += busy + waited > 16 ? 1 : 0;
    if (busy <= m_longest)
        return;
    m_longest = busy;
    m_longestType = type;
    m_longestName = name;
}

void runSteps(std::chrono::milliseconds time, std::chrono::milliseconds interval,
              const std::function<void(int)> &step) {
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; !clock.hasExpired(time.count()); ++i) {
        step(i);
        QElapsedTimer pause;
        pause.start();
        while (!pause.hasExpired(interval.count()))
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 2);
    }
}

} // namespace vantor
