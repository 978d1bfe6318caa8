#include "SkinKit/Rendering/EQGraph.h"

#include "SkinKit/Layout/EQLayout.h"
#include "SkinKit/Loading/Skin.h"
#include "SkinKit/Rendering/CubicSpline.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace vantor::EQGraph {

namespace {

constexpr int lastRow = EQLayout::graph.height() - 1;
constexpr int knotSpacing = 12;
/// Leaves as much free on either side of the 109 columns.
constexpr int curveX = (EQLayout::graph.width() - knotSpacing * (EQLayout::bandCount - 1) - 1) / 2;

double exactRow(double value) {
    return value > 0 ? (100 - std::min(value, 100.0)) / 100 * lastRow : lastRow;
}

/// Joins the rows of neighbouring columns, so that the line has no gaps where it is steep. A sheet that is
/// cut off gives its last colour to what lies below.
void drawCurve(QImage &picture, const std::vector<int> &rows, const QImage &colors) {
    int from = rows.front();
    int x = curveX;
    for (const int row : rows) {
        // The row before belongs to the column before, unless the line is level.
        const int first = row > from ? from + 1 : (row < from ? from - 1 : row);
        for (int y = std::min(first, row); y <= std::max(first, row); ++y)
            picture.setPixel(x, y, colors.pixel(0, std::min(y, colors.height() - 1)));
        from = row;
        ++x;
    }
}

} // namespace

int knotY(double value) {
    return static_cast<int>(std::round(exactRow(value)));
}

int preampLineY(double value) {
    return value > 0 ? static_cast<int>(std::round(std::min(value, 100.0) / 100 * lastRow)) : 0;
}

std::vector<int> curve(std::span<const double> values) {
    std::vector<double> xs;
    std::vector<double> ys;
    for (std::size_t band = 0; band < EQLayout::bandCount; ++band) {
        xs.push_back(static_cast<double>(band) * knotSpacing);
        ys.push_back(exactRow(band < values.size() ? values[band] : EQLayout::midValue));
    }
    std::vector<int> rows;
    for (const double y : CubicSpline::interpolate(xs, ys))
        rows.push_back(std::clamp(static_cast<int>(std::floor(y + 0.5)), 0, lastRow));
    return rows;
}

std::optional<QImage> render(const Skin &skin, std::span<const double> values, double preamp) {
    const QImage background = skin.image(QStringLiteral("EQ_GRAPH_BACKGROUND"));
    const QImage colors = skin.image(QStringLiteral("EQ_GRAPH_LINE_COLORS"));
    if (background.isNull() || colors.isNull())
        return std::nullopt;
    QImage picture(EQLayout::graph.size(), QImage::Format_RGB32);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    painter.drawImage(0, 0, background);
    painter.drawImage(0, preampLineY(preamp), skin.image(QStringLiteral("EQ_PREAMP_LINE")));
    painter.end();
    drawCurve(picture, curve(values), colors);
    return picture;
}

} // namespace vantor::EQGraph
