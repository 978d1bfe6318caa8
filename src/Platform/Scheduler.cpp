#include "Platform/Scheduler.h"

#include <QTimer>

namespace vantor {

namespace {

class PendingTimer : public Scheduler::Pending {
  public:
    PendingTimer(std::chrono::milliseconds delay, std::function<void()> action)
        : m_action(std::move(action)) {
        m_timer.setSingleShot(true);
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.callOnTimeout([this] {
            const auto run = std::move(m_action); // it may destroy this
            run();
        });
        m_timer.start(delay);
    }

  private:
    std::function<void()> m_action;
    QTimer m_timer;
};

} // namespace

std::unique_ptr<Scheduler::Pending> SystemScheduler::after(std::chrono::milliseconds delay,
                                                           std::function<void()> action) {
    return std::make_unique<PendingTimer>(std::max(delay, std::chrono::milliseconds(0)), std::move(action));
}

} // namespace vantor
