#pragma once

#include <QImage>

#include <xcb/sync.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace vantor {

/// Sends pictures to windows of this program through an X11 connection of its own, which the server holds up
/// until the next picture's time. Errors of that connection reach nobody. Never waits for the server once it
/// is made. Main thread.
class FrameQueue {
  public:
    /// Null where it does not work: another platform, a display on another computer, unusual pixels. `window`
    /// is one of the kind that is sent to.
    [[nodiscard]] static std::unique_ptr<FrameQueue> make(xcb_window_t window);

    /// The most device pixels at a time: what surely fits into the connection while nobody reads.
    static constexpr int mostPixels = 20'000;

    /// False when the connection is lost, the windows are not known there, or the server has not answered for
    /// long.
    [[nodiscard]] bool isUsable();
    /// The first picture now, the others at their times; each pixel of them becomes `scale` × `scale`. They
    /// are dropped while earlier ones are waiting.
    void send(xcb_window_t window, int scale, const std::vector<QImage> &pictures);

  private:
    using Clock = std::chrono::steady_clock;
    struct Disconnect {
        void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
    };

    FrameQueue() = default;
    [[nodiscard]] bool understandsPixels(xcb_window_t window);
    [[nodiscard]] bool findClock();
    [[nodiscard]] bool isDone();
    void waitUntil(Clock::time_point time);
    void put(xcb_window_t window, int scale, const QImage &picture);

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    xcb_gcontext_t m_context = 0;
    std::uint8_t m_depth = 0;
    xcb_sync_counter_t m_serverTime = 0;
    std::chrono::milliseconds m_serverAhead{0}; ///< its time is the steady clock's and this
    std::vector<std::uint32_t> m_pixels;        ///< enlarged; kept for the next

    /// Asked behind the last picture: when the answer is there, all have been shown.
    std::optional<unsigned> m_question;
    Clock::time_point m_asked;
    int m_errors = 0; ///< in a row
};

} // namespace vantor
