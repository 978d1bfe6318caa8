#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <optional>

namespace vantor {

/// The beat of everything that moves on the windows. Stands still while nothing moves or nobody looks. Main
/// thread.
class FrameClock : public QObject {
    Q_OBJECT

  public:
    using Period = std::chrono::milliseconds;
    static constexpr Period everyFrame{16}; ///< of the display

    explicit FrameClock(QObject *parent = nullptr);

    /// From one frame to the next; none while everything stands still.
    void setInterval(std::optional<Period> interval);
    /// A window that can be seen says how often it wants a frame of what moves fast: every one, or fewer if
    /// it takes several pictures ahead. It must take itself off, with none, before it dies.
    void setWatched(const QObject *by, std::optional<Period> period);
    /// What those who watch want.
    [[nodiscard]] Period period() const;

    /// Whether frame() is being emitted: this is the moment to paint.
    [[nodiscard]] bool isTicking() const { return m_ticking; }
    /// Whether there will be a next frame.
    [[nodiscard]] bool isRunning() const { return m_timer.isActive(); }

  Q_SIGNALS:
    /// Seconds since the frame before; never more than a jump that nobody minds.
    void frame(double elapsed);

  private:
    void schedule();
    void tick();

    std::optional<Period> m_interval;
    QHash<const QObject *, Period> m_watchers;
    QTimer m_timer;
    bool m_ticking = false;
    QElapsedTimer m_sinceFrame; ///< invalid while standing still
};

} // namespace vantor
