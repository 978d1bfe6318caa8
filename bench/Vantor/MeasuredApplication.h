#pragma once

#include <QApplication>
#include <QElapsedTimer>

#include <chrono>
#include <functional>

namespace vantor {

/// An application that measures how long the main thread takes for each event: the processor's time, and how
/// long it waited for anything but a processor, which is none of the window's fault.
class MeasuredApplication : public QApplication {
  public:
    using QApplication::QApplication;

    bool notify(QObject *receiver, QEvent *event) override;
    /// Writes what there was since the last report.
    void report(const char *phase);

  private:
    void take(double busy, double waited, int type, const QByteArray &name);

    int m_depth = 0;
    std::size_t m_count = 0;
    double m_longest = 0;
    double m_longestWait = 0;
    int m_longestWaitType = 0;
    int m_longestType = 0;
    QByteArray m_longestName;
    int m_late = 0;
};

/// What this thread has taken of a processor.
[[nodiscard]] double threadMilliseconds();

/// Calls `step` with 0, 1, … at intervals, for a time, and runs the event loop between.
void runSteps(std::chrono::milliseconds time, std::chrono::milliseconds interval,
              const std::function<void(int)> &step);

} // namespace vantor
