#pragma once

#include "Palette.h"

#include <QImage>
#include <QRect>

#include <string_view>

namespace vantor::art {

/// A picture in text: rows separated by "/", "#" is ink, "+" half ink, anything else nothing.
using Stencil = std::string_view;

[[nodiscard]] QSize stencilSize(Stencil stencil);

/// A rectangle of an image to draw on, with its own origin; pixels outside it are silently skipped. Borrows
/// the image.
class Canvas {
  public:
    explicit Canvas(QImage &image) : Canvas(image, image.rect()) {}

    [[nodiscard]] Canvas part(const QRect &area) const {
        return {*m_image, area.translated(m_area.topLeft())};
    }
    [[nodiscard]] QRect bounds() const { return {0, 0, m_area.width(), m_area.height()}; }
    [[nodiscard]] int width() const { return m_area.width(); }
    [[nodiscard]] int height() const { return m_area.height(); }

    [[nodiscard]] Color at(int x, int y) const;
    void set(int x, int y, Color color);
    void blend(int x, int y, Color color, double amount);
    void fill(const QRect &area, Color color);
    void row(int x, int y, int length, Color color) { fill({x, y, length, 1}, color); }
    void column(int x, int y, int length, Color color) { fill({x, y, 1, length}, color); }
    void gradient(const QRect &area, Color top, Color bottom);
    /// The one-pixel border of `area`; the two corners between the colours get their mean.
    void edges(const QRect &area, Color topLeft, Color bottomRight);
    void stencil(int x, int y, Stencil stencil, Color color);
    /// The same with a soft light around it that reaches one pixel.
    void glowing(int x, int y, Stencil stencil, Color color, double halo = 0.22);
    /// Copies the part of `source` that starts at `from`.
    void copy(const QImage &source, QPoint from);

  private:
    Canvas(QImage &image, const QRect &area) : m_image(&image), m_area(area) {}

    QImage *m_image;
    QRect m_area;
};

} // namespace vantor::art
