#include "Vantor/Windows/SkinPointers.h"

#include <QCursor>
#include <QPixmap>
#include <QWidget>

#include <cmath>

namespace vantor {

namespace {

// The names under which skins keep the pointers of the main window's parts.
QString pointerName(MainWindowControl control, bool inTitleBar, bool shaded) {
    switch (control) {
    case MainWindowControl::close:
        return QStringLiteral("CLOSE");
    case MainWindowControl::minimize:
        return QStringLiteral("MIN");
    case MainWindowControl::shade:
        return QStringLiteral("WINBUT");
    case MainWindowControl::options:
        return QStringLiteral("MAINMENU");
    case MainWindowControl::volume:
    case MainWindowControl::balance:
        return QStringLiteral("VOLBAL");
    case MainWindowControl::position:
        return shaded ? QStringLiteral("WSPOSBAR") : QStringLiteral("POSBAR");
    case MainWindowControl::marquee:
        return QStringLiteral("SONGNAME");
    default:
        break;
    }
    if (shaded)
        return QStringLiteral("WSNORMAL");
    return inTitleBar ? QStringLiteral("TITLEBAR") : QStringLiteral("NORMAL");
}

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
    const QString shown = std::exchange(m_shown, QString());
    show(shown);
}

void SkinPointers::showFor(MainWindowControl control, bool inTitleBar, bool shaded) {
    show(pointerName(control, inTitleBar, shaded));
}

void SkinPointers::rest() {
    m_timer.stop();
    m_shown.clear();
}

// A part without a pointer of its own takes the window's ordinary one.
void SkinPointers::show(const QString &name) {
    const QString found = m_cursors.cursors.contains(name) ? name : QStringLiteral("NORMAL");
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
