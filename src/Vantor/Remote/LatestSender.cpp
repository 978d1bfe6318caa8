#include "Vantor/Remote/LatestSender.h"

#include <QPointer>

namespace vantor {

LatestSender::LatestSender(const Send &send, QObject *parent) : QObject(parent), m_send(send) {
    m_pause.setSingleShot(true);
    m_pause.setInterval(interval);
    connect(&m_pause, &QTimer::timeout, this, &LatestSender::sendWaiting);
}

void LatestSender::set(double value) {
    m_waiting = value;
    sendWaiting();
}

void LatestSender::sendWaiting() {
    if (m_isUnderWay || m_pause.isActive() || !m_waiting)
        return;
    send(*std::exchange(m_waiting, std::nullopt));
}

QCoro::Task<> LatestSender::send(double value) {
    const QPointer<LatestSender> self(this);
    m_isUnderWay = true;
    m_pause.start();
    co_await m_send(value);
    if (!self)
        co_return;
    m_isUnderWay = false;
    sendWaiting();
}

} // namespace vantor
