#include "SkinKit/Layout/EQLayout.h"

#include <algorithm>
#include <cmath>

namespace vantor::EQLayout {

namespace {

constexpr double maxGain = 12;
constexpr double maxValue = 100;

/// 0…1, from the bottom of a slider to its top.
double height(double value) {
    return value > 0 ? std::min(value, maxValue) / maxValue : 0;
}

} // namespace

int bandIndex(double x) {
    const double column = std::floor((x - bandStrip.x()) / bandSpacing);
    return std::isfinite(column) ? static_cast<int>(std::clamp(column, 0.0, bandCount - 1.0)) : 0;
}

double value(double gain) {
    const double value = (gain + maxGain) / (2 * maxGain) * maxValue;
    return value > 0 ? std::min(value, maxValue) : 0;
}

double gain(double value) {
    return height(value) * 2 * maxGain - maxGain;
}

double snapped(double value) {
    return std::abs(value - midValue) < snapDistance ? midValue : value;
}

int frame(double value) {
    return static_cast<int>(std::round(height(value) * (frameCount - 1)));
}

QRect bandFrameRect(const QRect &rect, int frame) {
    constexpr int columns = 14;
    constexpr int pitchX = 15;
    constexpr int pitchY = 65;
    return {rect.topLeft() + QPoint(frame % columns * pitchX, frame / columns * pitchY), bandSize};
}

int thumbY(double value) {
    return static_cast<int>(std::floor((1 - height(value)) * thumbTravel));
}

double valueForPointerY(double y) {
    const double way = (y - thumbSize.height() / 2.0) / thumbTravel;
    return way > 0 ? (1 - std::min(way, 1.0)) * maxValue : maxValue;
}

} // namespace vantor::EQLayout
