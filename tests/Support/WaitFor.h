#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>

#include <chrono>

namespace vantor {

/// Runs the event loop until the condition holds; false when it does not within this time, which is long
/// because the machine may be busy.
template <class Condition>
[[nodiscard]] bool waitFor(Condition condition, std::chrono::milliseconds atMost = std::chrono::seconds(30)) {
    const QDeadlineTimer deadline(atMost);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}

} // namespace vantor
