#include "Vantor/Model/MarqueeLine.h"

#include "SkinKit/Rendering/SkinTextFont.h"

#include <cmath>

namespace vantor {

namespace {

constexpr double speed = 30;          // pixels a second: readable, and whole pixels at 60 and 30 Hz
constexpr double pauseAtTheStart = 2; // seconds in which a new title stands still
// A notice is gone after three seconds, and should have been read.
constexpr double noticeSpeed = 75;
constexpr double noticePause = 0.6;

} // namespace

void MarqueeLine::setTitle(const QString &title) {
    if (title == m_title)
        return;
    m_title = title;
    m_offset = 0;
    m_rests = false;
    m_pause = pauseAtTheStart;
}

void MarqueeLine::setNotice(const StatusNotice &notice) {
    m_notice = notice;
    m_noticeAge = 0;
}

void MarqueeLine::withdrawNotice(const QString &text) {
    if (m_notice && m_notice->text == text)
        m_notice.reset();
}

void MarqueeLine::setDragText(const std::optional<QString> &text) {
    if (text && !m_dragText)
        m_notice.reset();
    m_dragText = text;
}

bool MarqueeLine::hasNotice(StatusNotice::Clock::time_point now) const {
    return m_notice && m_notice->isActive(now);
}

QString MarqueeLine::text(StatusNotice::Clock::time_point now) const {
    if (m_dragText)
        return *m_dragText;
    if (hasNotice(now))
        return m_notice->detail ? m_notice->text + QStringLiteral(" (%1)").arg(*m_notice->detail)
                                : m_notice->text;
    return m_title;
}

bool MarqueeLine::scrolls(StatusNotice::Clock::time_point now) const {
    return !m_dragText && Marquee::scrolls(text(now));
}

bool MarqueeLine::moves(StatusNotice::Clock::time_point now) const {
    return scrolls(now) && (hasNotice(now) || !m_rests);
}

void MarqueeLine::setIdle(bool idle) {
    m_idle = idle;
    if (!idle)
        m_rests = false;
}

int MarqueeLine::offset(StatusNotice::Clock::time_point now) const {
    if (!scrolls(now))
        return 0;
    return static_cast<int>(hasNotice(now) ? std::max(0.0, m_noticeAge - noticePause) * noticeSpeed
                                           : m_offset);
}

void MarqueeLine::advance(double elapsed) {
    m_noticeAge += elapsed;
    if (m_held || m_rests)
        return;
    m_pause -= elapsed;
    if (m_pause > 0)
        return;
    m_pause = 0;
    const double before = m_offset;
    moveBy(elapsed * speed);
    if (!m_idle || m_offset > before)
        return;
    m_offset = 0;
    m_rests = true;
}

void MarqueeLine::dragBy(int pixels) {
    moveBy(-pixels);
}

void MarqueeLine::moveBy(double pixels) {
    const int period = Marquee::period(m_title);
    if (period <= 0)
        return;
    m_offset = std::fmod(m_offset + pixels, period);
    if (m_offset < 0)
        m_offset += period;
}

} // namespace vantor
