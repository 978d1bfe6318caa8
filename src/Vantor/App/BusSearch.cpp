#include "Vantor/App/BusSearch.h"

#include "Platform/ThreadSafety.h"

#include <QObject>

#include <cstdio>
#include <cstdlib>
#include <thread>

namespace vantor {

/// Outlives whichever of the two ends first.
struct BusSearch::Shared {
    Mutex mutex;
    /// In whose thread the connection is handed over; none when nobody wants it any more.
    std::unique_ptr<QObject> receiver VANTOR_GUARDED_BY(mutex) = std::make_unique<QObject>();
    bool isOver VANTOR_GUARDED_BY(mutex) = false;

    void run(QDBusConnection::BusType type, const QString &name, const Taker &taker) VANTOR_EXCLUDES(mutex) {
        const QDBusConnection bus = QDBusConnection::connectToBus(type, name);
        const MutexLock lock(mutex);
        isOver = true;
        if (receiver)
            QMetaObject::invokeMethod(receiver.get(), [taker, bus] { taker(bus); }, Qt::QueuedConnection);
    }
};

BusSearch::BusSearch(QDBusConnection::BusType type, const QString &name, Taker taker)
    : m_name(name), m_shared(std::make_shared<Shared>()) {
    std::thread([shared = m_shared, type, name, taker = std::move(taker)] {
        shared->run(type, name, taker);
    }).detach();
}

BusSearch::~BusSearch() {
    const MutexLock lock(m_shared->mutex);
    m_shared->receiver.reset();
    if (m_shared->isOver)
        QDBusConnection::disconnectFromBus(m_name);
    else // the bus's library would wait for it when the program has ended and its globals go
        std::atexit([] {
            std::fflush(nullptr);
            std::_Exit(EXIT_SUCCESS);
        });
}

} // namespace vantor
