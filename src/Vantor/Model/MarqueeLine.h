#pragma once

#include "AudioCore/Playback/PlaybackState.h"

#include <QString>

#include <optional>

namespace vantor {

/// Chooses the marquee's text (what is being dragged, else a fresh notice, else the title) and moves it. Main
/// thread.
class MarqueeLine {
  public:
    void setTitle(const QString &title);
    void setNotice(const StatusNotice &notice);
    /// Takes that notice away if it is the one shown.
    void withdrawNotice(const QString &text);
    /// What a slider says while it is dragged; none when it is let go. A notice from before that has had its
    /// time then and does not come back.
    void setDragText(const std::optional<QString> &text);

    [[nodiscard]] QString text(StatusNotice::Clock::time_point now) const;
    [[nodiscard]] bool hasNotice(StatusNotice::Clock::time_point now) const;
    /// Pixels that the text has moved to the left.
    [[nodiscard]] int offset(StatusNotice::Clock::time_point now) const;
    [[nodiscard]] bool scrolls(StatusNotice::Clock::time_point now) const;
    /// Whether advance() would move anything.
    [[nodiscard]] bool moves(StatusNotice::Clock::time_point now) const;
    /// While nothing plays, a title comes round once more and then rests.
    void setIdle(bool idle);

    /// Moves the title on by the time given in seconds, unless a hand holds it.
    void advance(double elapsed);
    void grab() { m_held = true; }
    void dragBy(int pixels);
    void release() { m_held = false; }

  private:
    void moveBy(double pixels);

    QString m_title;
    std::optional<StatusNotice> m_notice;
    std::optional<QString> m_dragText;
    double m_offset = 0;
    double m_pause = 0;     ///< seconds left before the title begins to move
    double m_noticeAge = 0; ///< seconds for which the notice has been moving or about to
    bool m_held = false;
    bool m_idle = false;
    bool m_rests = false; ///< it has come round while idle
};

} // namespace vantor
