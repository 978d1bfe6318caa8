#include "Canvas.h"

#include <algorithm>

namespace vantor::art {

namespace {

template <typename Visit>
void forEachInk(Stencil stencil, Visit visit) {
    int x = 0;
    int y = 0;
    for (const char c : stencil) {
        if (c == '/') {
            x = 0;
            ++y;
            continue;
        }
        if (c == '#' || c == '+')
            visit(x, y, c == '#' ? 1.0 : 0.5);
        ++x;
    }
}

} // namespace

QSize stencilSize(Stencil stencil) {
    int width = 0;
    int x = 0;
    for (const char c : stencil) {
        x = c == '/' ? 0 : x + 1;
        width = std::max(width, x);
    }
    return {width, static_cast<int>(std::count(stencil.begin(), stencil.end(), '/')) + 1};
}

Color Canvas::at(int x, int y) const {
    return bounds().contains(x, y) ? m_image->pixel(m_area.x() + x, m_area.y() + y) : palette::ink;
}

void Canvas::set(int x, int y, Color color) {
    const QPoint point = m_area.topLeft() + QPoint(x, y);
    if (bounds().contains(x, y) && m_image->valid(point))
        m_image->setPixel(point, color | 0xff000000U);
}

void Canvas::blend(int x, int y, Color color, double amount) {
    set(x, y, mix(at(x, y), color, amount));
}

void Canvas::fill(const QRect &area, Color color) {
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            set(x, y, color);
}

void Canvas::gradient(const QRect &area, Color top, Color bottom) {
    const double last = std::max(1, area.height() - 1);
    for (int y = 0; y < area.height(); ++y)
        row(area.x(), area.y() + y, area.width(), mix(top, bottom, y / last));
}

void Canvas::edges(const QRect &area, Color topLeft, Color bottomRight) {
    column(area.right(), area.top(), area.height(), bottomRight);
    row(area.left(), area.bottom(), area.width(), bottomRight);
    row(area.left(), area.top(), area.width(), topLeft);
    column(area.left(), area.top(), area.height(), topLeft);
    const Color mean = mix(topLeft, bottomRight, 0.5);
    set(area.right(), area.top(), mean);
    set(area.left(), area.bottom(), mean);
}

void Canvas::stencil(int x, int y, Stencil stencil, Color color) {
    forEachInk(stencil, [&](int dx, int dy, double amount) { blend(x + dx, y + dy, color, amount); });
}

void Canvas::glowing(int x, int y, Stencil stencil, Color color, double halo) {
    forEachInk(stencil, [&](int dx, int dy, double amount) {
        for (const QPoint near : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)})
            blend(x + dx + near.x(), y + dy + near.y(), color, halo * amount);
    });
    this->stencil(x, y, stencil, color);
}

void Canvas::copy(const QImage &source, QPoint from) {
    for (int y = 0; y < height(); ++y)
        for (int x = 0; x < width(); ++x)
            if (source.valid(from.x() + x, from.y() + y))
                set(x, y, source.pixel(from.x() + x, from.y() + y));
}

} // namespace vantor::art
