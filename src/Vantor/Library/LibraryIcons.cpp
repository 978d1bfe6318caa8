#include "Vantor/Library/LibraryIcons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace vantor::LibraryIcons {

namespace {

constexpr double unit = 24; // all paths are in a square of this size
constexpr double lineWidth = 1.7;

QPainterPath artistPath() {
    QPainterPath path;
    path.addEllipse(QPointF(12, 8), 4, 4);
    path.moveTo(4.5, 20.5);
    path.cubicTo(4.5, 12.8, 19.5, 12.8, 19.5, 20.5);
    return path;
}

QPainterPath albumPath() {
    QPainterPath path;
    path.addEllipse(QPointF(12, 12), 9, 9);
    path.addEllipse(QPointF(12, 12), 2.2, 2.2);
    path.arcMoveTo(QRectF(6.5, 6.5, 11, 11), 100);
    path.arcTo(QRectF(6.5, 6.5, 11, 11), 100, 65);
    return path;
}

QPainterPath trackPath() {
    QPainterPath path;
    path.addEllipse(QPointF(7, 18), 2.8, 2.3);
    path.addEllipse(QPointF(17, 16), 2.8, 2.3);
    path.moveTo(9.8, 18);
    path.lineTo(9.8, 6);
    path.lineTo(19.8, 4);
    path.lineTo(19.8, 16);
    return path;
}

QPainterPath playlistPath() {
    QPainterPath path;
    for (const auto &[y, end] : {std::pair(6.0, 20.0), {11.0, 20.0}, {16.0, 12.0}}) {
        path.moveTo(4, y);
        path.lineTo(end, y);
    }
    path.addEllipse(QPointF(15.6, 19), 2.2, 1.9);
    path.moveTo(17.8, 19);
    path.lineTo(17.8, 13.6);
    path.lineTo(20.5, 14.6);
    return path;
}

QPainterPath radioPath() {
    QPainterPath path;
    path.addEllipse(QPointF(12, 12), 1.6, 1.6);
    for (const double radius : {5.0, 9.0}) {
        const QRectF circle(12 - radius, 12 - radius, 2 * radius, 2 * radius);
        for (const double start : {-42.0, 138.0}) {
            path.arcMoveTo(circle, start);
            path.arcTo(circle, start, 84);
        }
    }
    return path;
}

QPainterPath heartPath() {
    QPainterPath path(QPointF(12, 20));
    path.cubicTo(1, 12.5, 3.5, 4, 8.4, 4.4);
    path.cubicTo(10.2, 4.5, 11.4, 5.6, 12, 7);
    path.cubicTo(12.6, 5.6, 13.8, 4.5, 15.6, 4.4);
    path.cubicTo(20.5, 4, 23, 12.5, 12, 20);
    return path;
}

QPainterPath starPath() {
    QPainterPath path(QPointF(12, 3));
    for (int i = 1; i < 10; ++i) {
        const double angle = i * 3.14159265 / 5;
        const double radius = i % 2 == 0 ? 9 : 3.9;
        path.lineTo(12 + radius * std::sin(angle), 12 - radius * std::cos(angle));
    }
    path.closeSubpath();
    return path;
}

QPainterPath chevronPath(double point, double open) {
    QPainterPath path(QPointF(open, 6));
    path.lineTo(point, 12);
    path.lineTo(open, 18);
    return path;
}

QPainterPath searchPath() {
    QPainterPath path;
    path.addEllipse(QPointF(10.5, 10.5), 5.5, 5.5);
    path.moveTo(14.6, 14.6);
    path.lineTo(19.5, 19.5);
    return path;
}

QPainterPath speakerPath() {
    QPainterPath path(QPointF(3.5, 9.5));
    path.lineTo(7.5, 9.5);
    path.lineTo(12, 5.5);
    path.lineTo(12, 18.5);
    path.lineTo(7.5, 14.5);
    path.lineTo(3.5, 14.5);
    path.closeSubpath();
    return path;
}

QPainterPath wavesPath() {
    QPainterPath path;
    for (const double radius : {4.0, 8.0}) {
        const QRectF circle(12 - radius, 12 - radius, 2 * radius, 2 * radius);
        path.arcMoveTo(circle.translated(1, 0), -45);
        path.arcTo(circle.translated(1, 0), -45, 90);
    }
    return path;
}

QPainterPath dotsPath() {
    QPainterPath path;
    for (const double x : {5.5, 12.0, 18.5})
        path.addEllipse(QPointF(x, 12), 0.9, 0.9);
    return path;
}

void stroke(QPainter &painter, const QRectF &place, const QPainterPath &path, const QColor &color,
            bool filled = false) {
    const double side = std::min(place.width(), place.height());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(place.center() - QPointF(side / 2, side / 2));
    painter.scale(side / unit, side / unit);
    painter.setPen(QPen(color, lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(filled ? QBrush(color) : QBrush());
    painter.drawPath(path);
    painter.restore();
}

QIcon icon(const QPainterPath &path, const QColor &color, bool filled = false) {
    QIcon made;
    for (const int side : {18, 36, 54}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        stroke(painter, pixmap.rect(), path, color, filled);
        painter.end();
        made.addPixmap(pixmap);
    }
    return made;
}

QPainterPath pathOf(MediaKind kind) {
    switch (kind) {
    case MediaKind::artist:
        return artistPath();
    case MediaKind::album:
        return albumPath();
    case MediaKind::track:
        return trackPath();
    case MediaKind::playlist:
        return playlistPath();
    case MediaKind::radio:
        break;
    }
    return radioPath();
}

} // namespace

void draw(QPainter &painter, const QRectF &place, std::optional<MediaKind> kind, const QColor &color) {
    stroke(painter, place, kind ? pathOf(*kind) : starPath(), color);
}

void drawHeart(QPainter &painter, const QRectF &place, const QColor &color, bool filled) {
    stroke(painter, place, heartPath(), color, filled);
}

void drawSpeaker(QPainter &painter, const QRectF &place, const QColor &color, bool sounds) {
    stroke(painter, place, speakerPath(), color, true);
    if (sounds)
        stroke(painter, place, wavesPath(), color);
}

QIcon section(LibrarySection section, const QColor &color) {
    switch (section) {
    case LibrarySection::artists:
        return icon(artistPath(), color);
    case LibrarySection::albums:
        return icon(albumPath(), color);
    case LibrarySection::tracks:
        return icon(trackPath(), color);
    case LibrarySection::playlists:
        return icon(playlistPath(), color);
    case LibrarySection::radios:
        return icon(radioPath(), color);
    case LibrarySection::favorites:
        return icon(heartPath(), color);
    case LibrarySection::recommendations:
        break;
    }
    return icon(starPath(), color);
}

QIcon left(const QColor &color) {
    return icon(chevronPath(9, 15), color);
}

QIcon right(const QColor &color) {
    return icon(chevronPath(15, 9), color);
}

QIcon search(const QColor &color) {
    return icon(searchPath(), color);
}

QIcon heart(const QColor &color, bool filled) {
    return icon(heartPath(), color, filled);
}

QIcon more(const QColor &color) {
    return icon(dotsPath(), color, true);
}

} // namespace vantor::LibraryIcons
