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
    explicit FrameClock(QObject *parent = nullptr);

    /// From one frame to the next; none while everything stands still.
    void setInterval(std::optional<std::chrono::milliseconds> interval);
    /// How a window watches what moves: not at all, picture by picture, or by having several pictures shown
    /// one after another by themselves.
    enum class Watch { no, everyFrame, ahead };
    /// A window says whether it can be seen. It must take itself off before it dies.
    void setWatched(const QObject *by, Watch watch);
    /// Whether all who watch can be given pictures ahead.
    [[nodiscard]] bool isAhead() const;

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

    std::optional<std::chrono::milliseconds> m_interval;
    QHash<const QObject *, Watch> m_watchers; ///< none with Watch::no
    QTimer m_timer;
    bool m_ticking = false;
    QElapsedTimer m_sinceFrame; ///< invalid while standing still
};

} // namespace vantor
