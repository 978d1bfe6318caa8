#include "Sheet.h"

#include <QDataStream>
#include <QIODevice>
#include <QPainter>
#include <QPainterPath>

namespace vantor::art {

namespace {

using namespace palette;

constexpr int side = 32;

enum class Shape {
    arrow,
    arrowMove,
    arrowClose,
    arrowMinimize,
    arrowMenu,
    arrowShade,
    horizontal,
    vertical,
    diagonal,
    hand
};

struct Row {
    const char *name;
    Shape shape;
};

constexpr Row pointers[] = {
    {"close", Shape::arrowClose},   {"eqclose", Shape::arrowClose}, {"eqnormal", Shape::arrow},
    {"eqslid", Shape::vertical},    {"eqtitle", Shape::arrowMove},  {"mainmenu", Shape::arrowMenu},
    {"mmenu", Shape::arrowMenu},    {"min", Shape::arrowMinimize},  {"normal", Shape::arrow},
    {"pclose", Shape::arrowClose},  {"pnormal", Shape::arrow},      {"posbar", Shape::horizontal},
    {"psize", Shape::diagonal},     {"ptbar", Shape::arrowMove},    {"pvscroll", Shape::vertical},
    {"pwinbut", Shape::arrowShade}, {"pwsnorm", Shape::arrow},      {"pwssize", Shape::horizontal},
    {"songname", Shape::hand},      {"titlebar", Shape::arrowMove}, {"volbal", Shape::horizontal},
    {"winbut", Shape::arrowShade},  {"wsnormal", Shape::arrow},     {"wsposbar", Shape::horizontal},
};

/// Dark with a light rim, so that it stands out on any ground.
void paintShape(QPainter &painter, const QPainterPath &path, Color inside) {
    painter.setPen(QPen(QColor(0, 0, 0, 70), 3.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(path.translated(0.7, 0.9));
    painter.setPen(QPen(QColor(glyph), 2.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(QColor(inside));
    painter.drawPath(path);
    painter.fillPath(path, QColor(inside));
}

QPainterPath polygon(std::initializer_list<QPointF> points) {
    QPainterPath path;
    path.addPolygon(QPolygonF(QList<QPointF>(points)));
    path.closeSubpath();
    return path;
}

QPainterPath arrow() {
    return polygon({{2, 2}, {2, 16.5}, {6, 13}, {12.5, 13}});
}

/// A two-headed arrow along x, centred on the origin.
QPainterPath doubleArrow(double reach) {
    return polygon({{-reach, 0},
                    {-reach + 5, -5},
                    {-reach + 5, -1.5},
                    {reach - 5, -1.5},
                    {reach - 5, -5},
                    {reach, 0},
                    {reach - 5, 5},
                    {reach - 5, 1.5},
                    {-reach + 5, 1.5},
                    {-reach + 5, 5}});
}

QPainterPath hand() {
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    path.addRoundedRect(QRectF(9, 3, 4, 14), 2, 2);
    path.addRoundedRect(QRectF(13, 8, 4, 9), 2, 2);
    path.addRoundedRect(QRectF(17, 9, 4, 9), 2, 2);
    path.addRoundedRect(QRectF(8.5, 12, 13, 12), 4, 4);
    path.addRoundedRect(QRectF(5, 13, 7, 4), 2, 2);
    return path.simplified();
}

/// The small sign beside an arrow that tells what a click does.
void paintSign(QPainter &painter, Shape shape) {
    const auto stroke = [&painter, shape](const QPainterPath &path) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(QColor(ink), 4.4, Qt::SolidLine, Qt::RoundCap));
        painter.drawPath(path);
        painter.setPen(QPen(QColor(amber), shape == Shape::arrowMove ? 1.4 : 2, Qt::SolidLine, Qt::RoundCap));
        painter.drawPath(path);
    };
    QPainterPath path;
    const auto line = [&path](double x1, double y1, double x2, double y2) {
        path.moveTo(x1, y1);
        path.lineTo(x2, y2);
    };
    switch (shape) {
    case Shape::arrowClose:
        line(16, 17, 22, 23);
        line(22, 17, 16, 23);
        break;
    case Shape::arrowMinimize:
        line(15, 22, 23, 22);
        break;
    case Shape::arrowMenu:
        line(15, 18, 23, 18);
        line(15, 22.5, 23, 22.5);
        break;
    case Shape::arrowShade:
        line(15, 22, 23, 22);
        line(16, 18, 19, 15.5);
        line(19, 15.5, 22, 18);
        break;
    case Shape::arrowMove:
        line(20, 14, 20, 26);
        line(14, 20, 26, 20);
        for (const double end : {-6.0, 6.0}) {
            const double back = end < 0 ? 2 : -2;
            line(20 - 2, 20 + end + back, 20, 20 + end);
            line(20 + 2, 20 + end + back, 20, 20 + end);
            line(20 + end + back, 20 - 2, 20 + end, 20);
            line(20 + end + back, 20 + 2, 20 + end, 20);
        }
        break;
    default:
        return;
    }
    stroke(path);
}

QImage draw(Shape shape) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    switch (shape) {
    case Shape::horizontal:
        painter.translate(15.5, 15.5);
        paintShape(painter, doubleArrow(10.5), ink);
        break;
    case Shape::vertical:
        painter.translate(15.5, 15.5);
        painter.rotate(90);
        paintShape(painter, doubleArrow(10.5), ink);
        break;
    case Shape::diagonal:
        painter.translate(15.5, 15.5);
        painter.rotate(45);
        paintShape(painter, doubleArrow(10.5), ink);
        break;
    case Shape::hand:
        paintShape(painter, hand(), ink);
        painter.setPen(QPen(QColor(print), 1));
        for (const double x : {13.0, 17.0})
            painter.drawLine(QPointF(x, 12), QPointF(x, 16.5));
        break;
    default:
        paintShape(painter, arrow(), ink);
        paintSign(painter, shape);
    }
    painter.end();
    return image.convertToFormat(QImage::Format_ARGB32);
}

QPoint hotSpot(Shape shape) {
    switch (shape) {
    case Shape::horizontal:
    case Shape::vertical:
    case Shape::diagonal:
        return {15, 15};
    case Shape::hand:
        return {11, 3};
    default:
        return {2, 2};
    }
}

/// A cursor file with one 32-bit frame; its mask repeats the alpha channel for readers that know no other.
QByteArray encode(const QImage &image, QPoint spot) {
    constexpr quint32 headerSize = 40;
    constexpr quint32 maskBytes = side * side / 8;
    constexpr quint32 dataSize = headerSize + side * side * 4 + maskBytes;
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out << quint16(0) << quint16(2) << quint16(1);
    out << quint8(side) << quint8(side) << quint16(0) << quint16(spot.x()) << quint16(spot.y()) << dataSize
        << quint32(22);
    out << headerSize << qint32(side) << qint32(side * 2) << quint16(1) << quint16(32) << quint32(0)
        << quint32(dataSize - headerSize) << qint32(0) << qint32(0) << quint32(0) << quint32(0);
    for (int y = side - 1; y >= 0; --y)
        for (int x = 0; x < side; ++x)
            out << quint32(image.pixel(x, y));
    for (int y = side - 1; y >= 0; --y) {
        quint32 bits = 0;
        for (int x = 0; x < side; ++x)
            bits = bits << 1U | (qAlpha(image.pixel(x, y)) < 128 ? 1U : 0U);
        for (const unsigned shift : {24U, 16U, 8U, 0U})
            out << static_cast<quint8>(bits >> shift);
    }
    return bytes;
}

} // namespace

std::vector<SkinFile> cursorFiles() {
    std::vector<SkinFile> files;
    for (const Row &row : pointers)
        files.push_back({QByteArray(row.name) + ".cur", encode(draw(row.shape), hotSpot(row.shape))});
    return files;
}

} // namespace vantor::art
