#include "SkinKit/Rendering/ScenePainting_p.h"
#include "SkinKit/Rendering/WindowOutline_p.h"

#include <algorithm>
#include <cstring>

namespace vantor::ScenePainting {

namespace {

int floorDivided(int value, int divisor) {
    return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

/// The skin pixels that a rectangle of painter units touches.
QRect skinPixels(const QRect &rect, int scale) {
    return {QPoint(floorDivided(rect.left(), scale), floorDivided(rect.top(), scale)),
            QPoint(floorDivided(rect.right(), scale), floorDivided(rect.bottom(), scale))};
}

/// What the painter's own clip leaves of the window; a clip of many rectangles counts as their hull.
QRegion visiblePart(const QPainter &painter, const QRect &window, int scale) {
    if (!painter.hasClipping())
        return window;
    constexpr int maxRects = 8;
    const QRegion clip = painter.clipRegion();
    if (clip.rectCount() > maxRects)
        return skinPixels(clip.boundingRect(), scale) & window;
    QRegion visible;
    for (const QRect &rect : clip)
        visible |= skinPixels(rect, scale) & window;
    return visible;
}

using Elements = std::function<void(const SkinCanvas &, const QRegion &)>;

/// The region at 1×, in an image that covers its bounding rectangle. Black where the skin has no pixels.
QImage compose(const Skin &skin, const QRegion &region, const Elements &elements) {
    const QRect bounds = region.boundingRect();
    QImage picture(bounds.size(), QImage::Format_RGB32);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    painter.translate(-bounds.topLeft());
    if (region.rectCount() > 1)
        painter.setClipRegion(region);
    elements(SkinCanvas{skin, painter}, region);
    return picture;
}

/// Every pixel as a square of scale × scale.
QImage enlarged(const QImage &picture, int scale) {
    if (scale == 1)
        return picture;
    QImage large(picture.size() * scale, picture.format());
    const auto lineBytes = static_cast<std::size_t>(large.width()) * sizeof(QRgb);
    for (int y = 0; y < picture.height(); ++y) {
        const auto *from = reinterpret_cast<const QRgb *>(picture.constScanLine(y));
        auto *first = reinterpret_cast<QRgb *>(large.scanLine(y * scale));
        auto *to = first;
        for (int x = 0; x < picture.width(); ++x)
            to = std::fill_n(to, scale, from[x]);
        for (int copy = 1; copy < scale; ++copy)
            std::memcpy(large.scanLine(y * scale + copy), first, lineBytes);
    }
    return large;
}

} // namespace

void draw(QPainter &painter, const Skin &skin, QSize size, int scale, const Elements &elements) {
    const QRegion region = visiblePart(painter, QRect({0, 0}, size), scale);
    if (region.isEmpty())
        return;
    // At 1× the painter's own pixels are as good as a picture's.
    if (scale == 1 && painter.transform().type() <= QTransform::TxTranslate &&
        painter.device()->devicePixelRatioF() == 1) {
        painter.save();
        painter.setClipRegion(region, Qt::IntersectClip);
        painter.fillRect(region.boundingRect(), Qt::black);
        elements(SkinCanvas{skin, painter}, region);
        painter.restore();
        return;
    }
    // Composed at 1× and enlarged by copying, which costs a fraction of enlarging sprite by sprite.
    const QImage picture = enlarged(compose(skin, region, elements), scale);
    const bool smooth = painter.testRenderHint(QPainter::SmoothPixmapTransform);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    const QPoint corner = region.boundingRect().topLeft();
    for (const QRect &rect : region) {
        const QRect source((rect.topLeft() - corner) * scale, rect.size() * scale);
        painter.drawImage(rect.topLeft() * scale, picture, source);
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, smooth);
}

QRegion mask(const std::optional<QList<SkinRegion::Polygon>> &polygons, QSize size, int scale) {
    const QRegion outline = polygons ? windowOutline(*polygons, size) : QRegion();
    if (outline.isEmpty())
        return QRect({0, 0}, size * scale);
    QRegion region;
    for (const QRect &rect : outline)
        region += QRect(rect.topLeft() * scale, rect.size() * scale);
    return region;
}

} // namespace vantor::ScenePainting
