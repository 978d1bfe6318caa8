#include "SkinKit/Rendering/MainWindowRenderer.h"

#include "SkinKit/Layout/MainShadeLayout.h"
#include "SkinKit/Layout/MainSliders.h"
#include "SkinKit/Rendering/MainWindowPainter_p.h"
#include "SkinKit/Rendering/SkinTextFont.h"

#include <QPainter>
#include <QPolygon>

#include <cstring>
#include <tuple>

namespace vantor::MainWindowRenderer {

namespace {

/// A part of a Format_RGBX8888 picture, every pixel repeated `scale` times both ways, as Format_RGB32, which
/// is what window surfaces take without conversion.
QImage enlarged(const QImage &picture, const QRect &part, int scale) {
    QImage result(part.size() * scale, QImage::Format_RGB32);
    for (int y = 0; y < part.height(); ++y) {
        const uchar *source = picture.constScanLine(part.y() + y) + part.x() * 4;
        auto *target = reinterpret_cast<QRgb *>(result.scanLine(y * scale));
        for (int x = 0; x < part.width(); ++x, source += 4, target += scale)
            std::fill_n(target, scale, qRgb(source[0], source[1], source[2]));
        for (int copy = 1; copy < scale; ++copy)
            std::memcpy(result.scanLine(y * scale + copy), result.constScanLine(y * scale),
                        static_cast<std::size_t>(result.bytesPerLine()));
    }
    return result;
}

/// The clip in skin pixels, grown to whole ones.
QRect dirtyPart(const QPainter &painter, const QRect &window, int scale) {
    if (!painter.hasClipping())
        return window;
    const QRectF clip = painter.clipBoundingRect();
    const QRectF part(clip.topLeft() / scale, clip.size() / scale);
    return part.toAlignedRect() & window;
}

QRect windowRect(bool shaded) {
    return {QPoint(), shaded ? MainWindowLayout::shadeSize : MainWindowLayout::size};
}

/// Collects the rectangles of what differs between two scenes.
class Difference {
  public:
    Difference(const MainWindowScene &before, const MainWindowScene &after)
        : m_before(before), m_after(after) {}

    QRegion region() {
        if (m_before.shaded != m_after.shaded)
            return windowRect(m_after.shaded);
        comparePressed();
        compareClock();
        comparePosition();
        if (m_before.focused != m_after.focused)
            m_region += m_after.shaded ? windowRect(true) : MainWindowLayout::titleBar;
        if (m_before.visualizer != m_after.visualizer)
            m_region += m_after.shaded ? MainShadeLayout::visualizerFrame : MainWindowLayout::visualizer;
        if (!m_after.shaded)
            compareFullWindow();
        return m_region & windowRect(m_after.shaded);
    }

  private:
    template <class Look>
    void compare(const QRect &rect, Look look) {
        if (look(m_before) != look(m_after))
            m_region += rect;
    }

    void comparePressed() {
        if (m_before.pressed == m_after.pressed)
            return;
        for (const MainWindowControl control : {m_before.pressed, m_after.pressed})
            m_region += mainWindowControlRect(control, m_after.shaded);
    }

    void compareClock() {
        // From the sign's cell to the last digit's edge.
        const QRect clock = m_after.shaded ? MainShadeLayout::miniTimeHitArea
                                           : QRect(QPoint(36, MainWindowLayout::digitY), QPoint(98, 38));
        compare(clock, [](const MainWindowScene &scene) {
            const bool lit = scene.status.showsTime() && scene.timeLit;
            return std::pair(lit && scene.status.showsMinus(),
                             lit ? std::optional(scene.status.digits()) : std::nullopt);
        });
    }

    void comparePosition() {
        const MainSliders::Slider &slider =
            m_after.shaded ? MainSliders::shadePosition : MainSliders::position;
        compare(QRect(slider.origin, slider.size), [&](const MainWindowScene &scene) {
            const double place = scene.position.value_or(-1);
            return std::tuple(scene.position.has_value(), slider.thumbX(place),
                              m_after.shaded ? MainSliders::shadePositionThumbName(place) : QString());
        });
    }

    void compareFullWindow() {
        compare(MainWindowLayout::clutterBar,
                [](const MainWindowScene &scene) { return std::pair(scene.alwaysOnTop, scene.doubleSize); });
        compare(QRect(MainWindowLayout::workIndicator.topLeft(), QSize(11, 9)),
                [](const MainWindowScene &scene) {
                    return std::pair(scene.status.workIndicator(), scene.status.indicator());
                });
        compare(QRect(MainWindowLayout::kbps, QSize(15, 6)),
                [](const MainWindowScene &scene) { return scene.status.kbps(); });
        compare(QRect(MainWindowLayout::khz, QSize(10, 6)),
                [](const MainWindowScene &scene) { return scene.status.khz(); });
        compare(QRect(MainWindowLayout::mono, QSize(56, 12)), [](const MainWindowScene &scene) {
            return std::pair(scene.status.monoSelected(), scene.status.stereoSelected());
        });
        compare(MainWindowLayout::marquee, [](const MainWindowScene &scene) {
            return std::pair(scene.marquee, Marquee::scrolls(scene.marquee) ? scene.marqueeOffset : 0);
        });
        compare(QRect(MainSliders::volume.origin, MainSliders::volume.size),
                [](const MainWindowScene &scene) {
                    return std::pair(MainSliders::volumeFrame(static_cast<float>(scene.volume)),
                                     MainSliders::volume.thumbX(scene.volume));
                });
        compare(
            QRect(MainSliders::balance.origin, MainSliders::balance.size), [](const MainWindowScene &scene) {
                return std::pair(MainSliders::balanceFrame(static_cast<float>(scene.balance)),
                                 MainSliders::balance.thumbX(MainSliders::fractionForBalance(scene.balance)));
            });
        using Toggle = MainSliders::Toggle;
        compare(MainSliders::frame(Toggle::shuffle), [](const auto &scene) { return scene.shuffle; });
        compare(MainSliders::frame(Toggle::repeatAll), [](const auto &scene) { return scene.repeat; });
        compare(MainSliders::frame(Toggle::equalizer), [](const auto &scene) { return scene.equalizerOpen; });
        compare(MainSliders::frame(Toggle::playlist), [](const auto &scene) { return scene.playlistOpen; });
    }

    const MainWindowScene &m_before;
    const MainWindowScene &m_after;
    QRegion m_region;
};

QRegion polygonRegion(const QList<SkinRegion::Polygon> &polygons) {
    // A file can hold more than any outline needs; what is left out of such a file no eye would miss.
    constexpr qsizetype maxPoints = 65'536;
    QRegion region;
    qsizetype points = 0;
    for (const SkinRegion::Polygon &polygon : polygons) {
        points += polygon.size();
        if (points > maxPoints)
            break;
        region += QRegion(QPolygon(polygon), Qt::WindingFill);
    }
    return region;
}

} // namespace

QSize size(bool shaded, int scale) {
    return windowRect(shaded).size() * scale;
}

void draw(QPainter &painter, const Skin &skin, const MainWindowScene &scene, int scale) {
    const QRect dirty = dirtyPart(painter, windowRect(scene.shaded), scale);
    if (dirty.isEmpty())
        return;
    const QImage picture = MainWindowPainter(skin, scene, dirty).paint();
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.drawImage(dirty.topLeft() * scale, enlarged(picture, dirty, scale));
    painter.restore();
}

QRegion changed(const MainWindowScene &before, const MainWindowScene &after) {
    return Difference(before, after).region();
}

QRegion mask(const Skin &skin, bool shaded, int scale) {
    const QRect window = windowRect(shaded);
    const auto polygons = shaded ? skin.region.windowShade() : skin.region.normal();
    QRegion outline = polygons ? polygonRegion(*polygons) & window : QRegion();
    if (outline.isEmpty())
        outline = window;
    if (scale == 1)
        return outline;
    QRegion result;
    for (const QRect &rect : outline)
        result += QRect(rect.topLeft() * scale, rect.size() * scale);
    return result;
}

} // namespace vantor::MainWindowRenderer
