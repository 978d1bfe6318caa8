#include "Vantor/Windows/FramePane.h"

#include "Vantor/Windows/FrameQueue.h"

#include <QGuiApplication>

#include <cmath>
#include <utility>

namespace vantor {

namespace {

/// Device pixels per pixel of a picture; none unless it is whole.
int deviceScale(const QWindow &window, QRect area, QSize picture) {
    const double scale = area.width() * window.devicePixelRatio() / picture.width();
    return scale == std::floor(scale) ? static_cast<int>(scale) : 0;
}

/// Ones that the display's refreshes and the player's reports divide evenly.
std::chrono::milliseconds periodFor(int pictures) {
    using namespace std::chrono_literals;
    return pictures >= 6 ? 100ms : pictures >= 3 ? 50ms : 16ms;
}

} // namespace

FramePane::FramePane() = default;

FramePane::~FramePane() {
    hide();
}

void FramePane::hide() {
    delete m_window.data();
}

bool FramePane::show(QWindow &in, QRect area, const std::vector<QImage> &pictures) {
    const QSize size = pictures.front().size();
    const int scale = deviceScale(in, area, size);
    const int pixels = size.width() * size.height() * scale * scale;
    if (scale == 0 || pixels * static_cast<int>(pictures.size()) > FrameQueue::mostPixels || !isUsable(in)) {
        hide();
        return false;
    }
    m_period = periodFor(FrameQueue::mostPixels / pixels);
    if (m_window && (m_window->parent() != &in || m_window->geometry() != area))
        hide();
    if (!m_window) {
        m_window = new QWindow(&in);
        m_window->setFlags(Qt::FramelessWindowHint | Qt::WindowTransparentForInput);
        m_window->setFormat(in.requestedFormat());
        m_window->setGeometry(area);
        m_window->setVisible(true);
    }
    m_queue->send(static_cast<xcb_window_t>(m_window->winId()), scale, pictures);
    return true;
}

bool FramePane::isUsable(const QWindow &in) {
    if (std::exchange(m_isUntried, false) && QGuiApplication::platformName() == QLatin1String("xcb"))
        m_queue = FrameQueue::make(static_cast<xcb_window_t>(in.winId()));
    return m_queue && m_queue->isUsable();
}

} // namespace vantor
