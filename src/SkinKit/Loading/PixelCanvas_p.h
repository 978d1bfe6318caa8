#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>

namespace vantor {

/// Draws the simple shapes of generated sheets. Works without a GUI application and on any thread.
class PixelCanvas {
  public:
    explicit PixelCanvas(QSize size);

    void fill(const QRect &rect, QRgb color);
    /// A one-pixel outline, lit from the top left: `light` above and to the left, `dark` on the other sides.
    void edge(const QRect &rect, QRgb light, QRgb dark);
    /// Rows of a picture; '#' sets a pixel, anything else leaves it.
    void pattern(QPoint at, std::initializer_list<const char *> rows, QRgb color);
    /// One 5 × 6 character, upper-case letters only; draws nothing for one that the font lacks.
    void character(QPoint at, char32_t character, QRgb color);
    void text(QPoint at, const QString &text, QRgb color);
    /// `text` in the middle of `rect`.
    void centredText(const QRect &rect, const QString &text, QRgb color);
    /// A digit of seven segments in a cell of 9 × 13.
    void digit(QPoint at, int value, QRgb color);

    [[nodiscard]] const QImage &image() const { return m_image; }

  private:
    QImage m_image;
};

} // namespace vantor
