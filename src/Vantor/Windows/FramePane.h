#pragma once

#include <QImage>
#include <QPointer>
#include <QRect>
#include <QWindow>

#include <chrono>
#include <memory>
#include <vector>

namespace vantor {

class FrameQueue;

/// A part of a window in which several pictures are shown one after another, each at its time, by the display
/// server itself: a program that wakes for every refresh of the display spends most of its processor time on
/// waking. The part is a window inside the window, transparent to the pointer, so that neither paints over
/// the other, and pictures that are still waiting when it goes are never seen. Main thread.
class FramePane {
  public:
    FramePane();
    ~FramePane();

    [[nodiscard]] bool isShown() const { return !m_window.isNull(); }

    /// Shows the pictures from now on, Visualizer::pictureSeconds apart; one or more, of one size, in
    /// Format_RGB32. `area`: in the window's points, a whole multiple of the pictures' size. False: that
    /// cannot be done here, and there is no pane. For an exposed window.
    [[nodiscard]] bool show(QWindow &in, QRect area, const std::vector<QImage> &pictures);
    /// How often pictures should come, for as many at a time as can be sent.
    [[nodiscard]] std::chrono::milliseconds period() const { return m_period; }
    /// What is behind it can be seen again.
    void hide();

  private:
    [[nodiscard]] bool isUsable(const QWindow &in);

    QPointer<QWindow> m_window; ///< dies with the one that it is in
    std::unique_ptr<FrameQueue> m_queue;
    std::chrono::milliseconds m_period{0};
    bool m_isUntried = true;
};

} // namespace vantor
