#include "Vantor/Windows/SkinPointers.h"

#include <QCursor>
#include <QPixmap>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace vantor {

namespace {

QCursor cursor(const SkinCursor::Frame &frame, int pixels) {
    // Files may put the hot spot outside the picture, which the display refuses.
    const QPoint inside(std::clamp(frame.hotSpot.x(), 0, frame.image.width() - 1),
                        std::clamp(frame.hotSpot.y(), 0, frame.image.height() - 1));
    const QPoint hot = inside * pixels;
    return QCursor(QPixmap::fromImage(frame.upscaled(pixels)), hot.x(), hot.y());
}

} // namespace

SkinPointers::SkinPointers(QWidget &window) : QObject(&window), m_window(window) {
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        ++m_step;
        showStep();
    });
}

void SkinPointers::setCursors(const SkinCursors &cursors, int scale) {
    m_cursors = cursors;
    // In the screen's own pixels: the display takes pictures of pointers as they are.
    m_pixels = scale * std::max(1, static_cast<int>(std::lround(m_window.devicePixelRatioF())));
    show({std::exchange(m_shown, QString())});
}

void SkinPointers::rest() {
    m_timer.stop();
    m_shown.clear();
}

void SkinPointers::show(const QStringList &names) {
    const auto known =
        std::ranges::find_if(names, [this](const QString &name) { return m_cursors.cursors.contains(name); });
    const QString found = known != names.end() ? *known : QStringLiteral("NORMAL");
    if (found == m_shown)
        return;
    m_shown = found;
    m_step = 0;
    showStep();
}

void SkinPointers::showStep() {
    m_timer.stop();
    const auto pointer = m_cursors.cursors.constFind(m_shown);
    if (pointer == m_cursors.cursors.constEnd()) {
        m_window.unsetCursor();
        return;
    }
    const SkinCursor::Step &step = pointer->steps[m_step % pointer->steps.size()];
    m_window.setCursor(cursor(pointer->frames[static_cast<std::size_t>(step.frame)], m_pixels));
    constexpr Jiffies longest = std::chrono::hours(1); // a file may ask for years, which no timer holds
    if (pointer->steps.size() > 1)
        m_timer.start(
            std::chrono::duration_cast<std::chrono::milliseconds>(std::min(step.duration, longest)));
}

} // namespace vantor
