#pragma once

#include <QCoroTask>
#include <QTimer>

#include <functional>
#include <memory>

namespace vantor {

/// Sends a value that changes all the time, as of a slider that is dragged, at a rate that a server bears: at
/// most ten times a second, never before the last one was answered, and the last one always. Main thread.
class LatestSender : public QObject {
    Q_OBJECT

  public:
    static constexpr std::chrono::milliseconds interval{100};
    /// Ends without an exception.
    using Send = std::function<QCoro::Task<>(double value)>;

    explicit LatestSender(const Send &send, QObject *parent = nullptr);

    void set(double value);
    /// What waits is not sent any more.
    void cancel() { m_waiting.reset(); }

  private:
    void sendWaiting();
    QCoro::Task<> send(double value);

    Send m_send;
    std::optional<double> m_waiting;
    bool m_isUnderWay = false;
    QTimer m_pause; ///< runs while nothing may be sent
};

} // namespace vantor
