#include "SkinKit/Rendering/MainWindowRenderer.h"

#include "SkinKit/Layout/MainWindowLayout.h"
#include "SkinKit/Rendering/SceneElement_p.h"
#include "SkinKit/Rendering/WindowOutline_p.h"

#include <algorithm>
#include <cstring>

namespace vantor::MainWindowRenderer {

namespace {

std::span<const SceneElement> elementsOf(bool shaded) {
    return shaded ? mainShadeElements() : mainWindowElements();
}

QRect windowRect(bool shaded) {
    return {{0, 0}, size(shaded, 1)};
}

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

/// The region at 1×, in an image that covers its bounding rectangle. Black where the skin has no pixels.
QImage compose(const Skin &skin, const MainWindowScene &scene, const QRegion &region) {
    const QRect bounds = region.boundingRect();
    QImage picture(bounds.size(), QImage::Format_RGB32);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    painter.translate(-bounds.topLeft());
    if (region.rectCount() > 1)
        painter.setClipRegion(region);
    const SkinCanvas canvas{skin, painter};
    for (const SceneElement &element : elementsOf(scene.shaded)) {
        if (region.intersects(element.area))
            element.draw(canvas, scene);
    }
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

QSize size(bool shaded, int scale) {
    return (shaded ? MainWindowLayout::shadeSize : MainWindowLayout::size) * scale;
}

void draw(QPainter &painter, const Skin &skin, const MainWindowScene &scene, int scale) {
    const QRegion region = visiblePart(painter, windowRect(scene.shaded), scale);
    if (region.isEmpty())
        return;
    // Composed at 1× and enlarged by copying, which costs a fraction of enlarging sprite by sprite.
    const QImage picture = enlarged(compose(skin, scene, region), scale);
    const bool smooth = painter.testRenderHint(QPainter::SmoothPixmapTransform);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    const QPoint corner = region.boundingRect().topLeft();
    for (const QRect &rect : region) {
        const QRect source((rect.topLeft() - corner) * scale, rect.size() * scale);
        painter.drawImage(rect.topLeft() * scale, picture, source);
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, smooth);
}

QRegion changed(const Skin &, const MainWindowScene &before, const MainWindowScene &after) {
    if (before.shaded != after.shaded)
        return windowRect(after.shaded);
    QRegion region;
    for (const SceneElement &element : elementsOf(after.shaded)) {
        if (element.differs(before, after))
            region |= element.area;
    }
    return region;
}

QRegion mask(const Skin &skin, bool shaded, int scale) {
    const QRect window = windowRect(shaded);
    const auto polygons = shaded ? skin.region.windowShade() : skin.region.normal();
    const QRegion outline = polygons ? windowOutline(*polygons, window.size()) : QRegion();
    if (outline.isEmpty())
        return QRect(window.topLeft(), window.size() * scale);
    QRegion region;
    for (const QRect &rect : outline)
        region += QRect(rect.topLeft() * scale, rect.size() * scale);
    return region;
}

} // namespace vantor::MainWindowRenderer
