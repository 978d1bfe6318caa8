#include "Platform/AsyncStream.h"

#include <QCoreApplication>

namespace vantor::detail {

void AsyncStreamLink::wakeLater() {
    QCoreApplication *const loop = QCoreApplication::instance();
    if (!waiter || m_wakes || !loop)
        return;
    m_wakes = true;
    const auto wake = [link = shared_from_this()] {
        link->m_wakes = false;
        // Meanwhile the coroutine may have gone, or another one may have taken the value and wait for more.
        if (!link->waiter || !link->isReady())
            return;
        std::exchange(link->waiter, nullptr).resume();
    };
    QMetaObject::invokeMethod(loop, wake, Qt::QueuedConnection);
}

void AsyncStreamLink::drop() {
    dropped = true;
    wakeLater();
    if (const auto action = std::exchange(whenDropped, nullptr))
        action();
}

} // namespace vantor::detail
