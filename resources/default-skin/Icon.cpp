#include "Icon.h"

#include "Palette.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

#include <cmath>

namespace vantor::art {

namespace {

using namespace palette;

/// Bars that hang from one line and leave a V; whole pixels, so that small icons stay sharp.
struct Bars {
    int width = 0;
    int gap = 0;
    int left = 0;
    int top = 0;
    int unit = 0;

    explicit Bars(int side) {
        width = std::max(2, static_cast<int>(std::lround(side * 0.105)));
        gap = std::max(1, static_cast<int>(std::lround(side * 0.035)));
        left = (side - (5 * width + 4 * gap)) / 2;
        unit = std::max(1, static_cast<int>(std::lround(side * 0.125)));
        top = static_cast<int>(std::lround(side * 0.25));
    }
};

constexpr int lengths[] = {2, 3, 4, 3, 2};

/// Below this the plate alone is the ground, as a frame would leave no room for the bars.
constexpr int smallestFramed = 32;

void paintPlate(QPainter &painter, int side) {
    const double inset = side >= 48 ? side * 0.03 : 0;
    const QRectF plate(inset, inset, side - 2 * inset, side - 2 * inset);
    const double radius = side * 0.2;
    const bool framed = side >= smallestFramed;
    QPainterPath path;
    path.addRoundedRect(plate, radius, radius);
    QLinearGradient metal(plate.topLeft(), plate.bottomRight());
    metal.setColorAt(0, QColor(framed ? mix(bodyTop, light, 0.45) : bodyBottom));
    metal.setColorAt(1, QColor(framed ? mix(bodyBottom, ink, 0.3) : ink));
    painter.fillPath(path, metal);
    if (!framed)
        return;
    QLinearGradient rim(plate.topLeft(), plate.bottomRight());
    rim.setColorAt(0, QColor(200, 204, 232, 200));
    rim.setColorAt(0.5, QColor(120, 124, 160, 40));
    rim.setColorAt(1, QColor(0, 0, 0, 160));
    const double pen = std::max(1.0, side / 128.0);
    painter.setPen(QPen(QBrush(rim), pen));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(plate.adjusted(pen / 2, pen / 2, -pen / 2, -pen / 2), radius, radius);
}

void paintGlass(QPainter &painter, int side) {
    const double inset = std::round(side * (side < 48 ? 0.09 : 0.12));
    const QRectF area(inset, inset, side - 2 * inset, side - 2 * inset);
    const double radius = side * 0.13;
    QPainterPath path;
    path.addRoundedRect(area, radius, radius);
    painter.fillPath(path, QColor(glass));
    QRadialGradient glow(area.center(), side * 0.42);
    glow.setColorAt(0, QColor(255, 150, 40, 92));
    glow.setColorAt(1, QColor(255, 120, 30, 0));
    painter.fillPath(path, glow);
    if (side < 48)
        return;
    // A sheen from the top left, and the bezel that lets the glass in.
    QLinearGradient sheen(area.topLeft(), area.center());
    sheen.setColorAt(0, QColor(190, 196, 255, 40));
    sheen.setColorAt(1, QColor(190, 196, 255, 0));
    painter.fillPath(path, sheen);
    QLinearGradient bezel(area.topLeft(), area.bottomRight());
    bezel.setColorAt(0, QColor(0, 0, 0, 200));
    bezel.setColorAt(1, QColor(150, 154, 190, 140));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QBrush(bezel), std::max(1.0, side / 100.0)));
    painter.drawRoundedRect(area, radius, radius);
}

void paintBars(QPainter &painter, int side) {
    const Bars bars(side);
    QLinearGradient heat(0, bars.top, 0, bars.top + 4 * bars.unit);
    heat.setColorAt(0, QColor(spark));
    heat.setColorAt(0.35, QColor(flame));
    heat.setColorAt(0.75, QColor(amber));
    heat.setColorAt(1, QColor(224, 110, 30));
    int x = bars.left;
    painter.setPen(Qt::NoPen);
    for (const int length : lengths) {
        const QRectF bar(x, bars.top, bars.width, length * bars.unit);
        QPainterPath path;
        const double radius = side >= 48 ? bars.width * 0.28 : 0;
        path.addRoundedRect(bar, radius, radius);
        painter.fillPath(path, heat);
        x += bars.width + bars.gap;
    }
}

} // namespace

QImage icon(int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    paintPlate(painter, side);
    if (side >= smallestFramed)
        paintGlass(painter, side);
    paintBars(painter, side);
    painter.end();
    return image.convertToFormat(QImage::Format_ARGB32);
}

} // namespace vantor::art
