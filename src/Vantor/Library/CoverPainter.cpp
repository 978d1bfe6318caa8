#include "Vantor/Library/CoverPainter.h"

#include "Vantor/Library/LibraryIcons.h"

#include <QPaintDevice>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

namespace vantor {

namespace {

constexpr int keptKiB = 96 * 1024;
constexpr double cornerRadius = 6;
// Covers are asked for in a few sizes, so that a window that is drawn wider does not ask anew for each step.
constexpr std::array askedSides{128, 256, 512, 1024};

int askedSide(int side) {
    const auto enough = std::ranges::lower_bound(askedSides, side);
    return enough != askedSides.end() ? *enough : askedSides.back();
}

QPainterPath outline(const QRectF &place, bool isRound) {
    const double radius = isRound ? place.width() / 2 : cornerRadius;
    QPainterPath path;
    path.addRoundedRect(place, radius, radius);
    return path;
}

/// The middle of a picture, in the size and shape that it has on the screen.
QPixmap shaped(const QImage &image, int side, bool isRound, double ratio) {
    const QImage scaled = image.scaled(side, side, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    QBrush brush(scaled);
    brush.setTransform(QTransform::fromTranslate((side - scaled.width()) / 2, (side - scaled.height()) / 2));
    painter.scale(ratio, ratio);
    brush.setTransform(brush.transform() * QTransform::fromScale(1 / ratio, 1 / ratio));
    painter.fillPath(outline(QRectF(0, 0, side / ratio, side / ratio), isRound), brush);
    painter.end();
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

} // namespace

CoverPainter::CoverPainter(ArtworkCache &artwork, QObject *parent)
    : QObject(parent), m_artwork(artwork), m_covers(keptKiB) {
    connect(&artwork, &ArtworkCache::imageChanged, this,
            [this](const ArtworkRef &ref) { Q_EMIT changed(ref); });
}

QPixmap CoverPainter::cover(const Key &key, double ratio) {
    if (const QPixmap *const kept = m_covers.object(key); kept && kept->devicePixelRatio() == ratio)
        return *kept;
    const QImage image = m_artwork.image(key.artwork, askedSide(key.side));
    if (image.isNull())
        return {};
    const QPixmap made = shaped(image, key.side, key.isRound, ratio);
    m_covers.insert(key, new QPixmap(made), std::max(1, key.side * key.side * 4 / 1024));
    return made;
}

void CoverPainter::draw(QPainter &painter, const QRect &place, const std::optional<ArtworkRef> &artwork,
                        std::optional<MediaKind> kind, const QPalette &colors) {
    const double ratio = painter.device()->devicePixelRatioF();
    const bool isRound = kind == MediaKind::artist;
    if (artwork) {
        const QPixmap pixmap = cover({*artwork, qRound(place.width() * ratio), isRound}, ratio);
        if (!pixmap.isNull()) {
            painter.drawPixmap(place.topLeft(), pixmap);
            return;
        }
    }
    QColor tint = colors.color(QPalette::Text);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    tint.setAlphaF(0.07F);
    painter.fillPath(outline(place, isRound), tint);
    tint.setAlphaF(0.28F);
    const double side = place.width() * 0.38;
    LibraryIcons::draw(painter,
                       QRectF(0, 0, side, side).translated(QRectF(place).center() - QPointF(side, side) / 2),
                       kind, tint);
    painter.restore();
}

} // namespace vantor
