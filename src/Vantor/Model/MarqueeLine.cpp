#include "Vantor/Model/MarqueeLine.h"

#include "SkinKit/Rendering/SkinTextFont.h"

#include <cmath>

namespace vantor {

namespace {

constexpr double speed = 30;          // pixels a second: readable, and whole pixels at 60 and 30 Hz
constexpr double pauseAtTheStart = 2; // seconds in which a new title stands still

} // namespace

void MarqueeLine::setTitle(const QString &title) {
    if (title == m_title)
        return;
    m_title = title;
    m_offset = 0;
    m_pause = pauseAtTheStart;
}

void MarqueeLine::setNotice(const StatusNotice &notice) {
    m_notice = notice;
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
    return !m_dragText && !hasNotice(now) && Marquee::scrolls(m_title);
}

int MarqueeLine::offset(StatusNotice::Clock::time_point now) const {
    return scrolls(now) ? static_cast<int>(m_offset) : 0;
}

void MarqueeLine::advance(double elapsed) {
    if (m_held)
        return;
    m_pause -= elapsed;
    if (m_pause > 0)
        return;
    m_pause = 0;
    moveBy(elapsed * speed);
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
