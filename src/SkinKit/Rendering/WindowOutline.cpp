#include "SkinKit/Rendering/WindowOutline_p.h"

#include <QImage>
#include <QPainter>

#include <algorithm>

namespace vantor {

namespace {

// Far outside every window, and well inside what the rasteriser handles without clipping paths first.
constexpr int maxCoordinate = 8192;
// Outlines traced pixel by pixel need a few thousand.
constexpr qsizetype maxPoints = 65536;

QImage filled(const QList<SkinRegion::Polygon> &polygons, QSize window) {
    QImage image(window, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    qsizetype points = 0;
    for (SkinRegion::Polygon polygon : polygons) {
        points += polygon.size();
        if (points > maxPoints)
            break;
        for (QPoint &point : polygon)
            point = {std::clamp(point.x(), -maxCoordinate, maxCoordinate),
                     std::clamp(point.y(), -maxCoordinate, maxCoordinate)};
        painter.drawPolygon(polygon.constData(), static_cast<int>(polygon.size()), Qt::WindingFill);
    }
    return image;
}

} // namespace

QRegion windowOutline(const QList<SkinRegion::Polygon> &polygons, QSize window) {
    const QImage image = filled(polygons, window);
    QRegion region;
    for (int y = 0; y < window.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        const auto *end = line + window.width();
        const auto inside = [](QRgb pixel) { return qRed(pixel) != 0; };
        for (const auto *start = std::find_if(line, end, inside); start != end;) {
            const auto *stop = std::find_if_not(start, end, inside);
            region += QRect(static_cast<int>(start - line), y, static_cast<int>(stop - start), 1);
            start = std::find_if(stop, end, inside);
        }
    }
    return region;
}

} // namespace vantor
