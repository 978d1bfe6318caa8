#pragma once

#include <QDBusConnection>

#include <functional>
#include <memory>

namespace vantor {

/// Connects to a message bus on a thread that nobody waits for, because a bus that does not answer is waited
/// for without end. Main thread.
class BusSearch {
  public:
    using Taker = std::function<void(const QDBusConnection &)>;

    /// `name`: the connection's, in this program. `taker` gets it from the event loop, also one that has
    /// failed; unless this object has gone by then.
    BusSearch(QDBusConnection::BusType type, const QString &name, Taker taker);
    /// Closes the connection.
    ~BusSearch();
    BusSearch(const BusSearch &) = delete;
    BusSearch &operator=(const BusSearch &) = delete;

  private:
    struct Shared;

    QString m_name;
    std::shared_ptr<Shared> m_shared; ///< with the thread
};

} // namespace vantor
