#include "SkinKit/Rendering/CubicSpline.h"

#include <cstddef>

namespace vantor::CubicSpline {

namespace {

/// A row of the system: below × k[i−1] + diagonal × k[i] + above × k[i+1] = right.
struct Row {
    double below = 0;
    double diagonal = 0;
    double above = 0;
    double right = 0;
};

/// The system says that neighbouring pieces bend alike where they meet and that the ends do not bend.
std::vector<Row> slopeSystem(std::span<const double> xs, std::span<const double> ys) {
    std::vector<Row> rows(xs.size());
    for (std::size_t i = 1; i < xs.size(); ++i) {
        const double inverse = 1 / (xs[i] - xs[i - 1]);
        const double bend = 3 * (ys[i] - ys[i - 1]) * inverse * inverse;
        for (Row *row : {&rows[i - 1], &rows[i]}) {
            row->diagonal += 2 * inverse;
            row->right += bend;
        }
        rows[i - 1].above = inverse;
        rows[i].below = inverse;
    }
    return rows;
}

std::vector<double> solve(std::vector<Row> rows) {
    for (std::size_t i = 1; i < rows.size(); ++i) {
        const double factor = rows[i].below / rows[i - 1].diagonal;
        rows[i].diagonal -= factor * rows[i - 1].above;
        rows[i].right -= factor * rows[i - 1].right;
    }
    std::vector<double> solution(rows.size());
    double next = 0;
    for (std::size_t i = rows.size(); i-- > 0;) {
        next = (rows[i].right - rows[i].above * next) / rows[i].diagonal;
        solution[i] = next;
    }
    return solution;
}

/// The slope at each knot.
std::vector<double> naturalKs(std::span<const double> xs, std::span<const double> ys) {
    return solve(slopeSystem(xs, ys));
}

} // namespace

std::vector<double> interpolate(std::span<const double> xs, std::span<const double> ys) {
    if (xs.size() < 2 || xs.size() != ys.size())
        return {ys.begin(), ys.end()};
    const std::vector<double> ks = naturalKs(xs, ys);
    std::vector<double> heights;
    std::size_t i = 1;
    for (double x = 0; x <= xs.back(); ++x) {
        while (xs[i] < x)
            ++i;
        const double dx = xs[i] - xs[i - 1];
        const double dy = ys[i] - ys[i - 1];
        const double t = (x - xs[i - 1]) / dx;
        const double a = ks[i - 1] * dx - dy;
        const double b = -ks[i] * dx + dy;
        heights.push_back((1 - t) * ys[i - 1] + t * ys[i] + t * (1 - t) * ((1 - t) * a + t * b));
    }
    return heights;
}

} // namespace vantor::CubicSpline
