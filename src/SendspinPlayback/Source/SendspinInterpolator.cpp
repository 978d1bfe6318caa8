#include "SendspinPlayback/Source/SendspinInterpolator.h"

#include <cmath>
#include <numbers>

namespace vantor {

static double besselI0(double x) {
    double sum = 1;
    double term = 1;
    for (int k = 1; k < 40; ++k) {
        term *= (x / (2 * k)) * (x / (2 * k));
        sum += term;
    }
    return sum;
}

static double windowedSinc(double x, double halfLength) {
    constexpr double beta = 9; // a stop band of −90 dB
    const double part = x / halfLength;
    if (std::abs(part) >= 1)
        return 0;
    const double window = besselI0(beta * std::sqrt(1 - part * part)) / besselI0(beta);
    const double angle = std::numbers::pi * x;
    return window * (std::abs(x) < 1e-9 ? 1 : std::sin(angle) / angle);
}

SendspinInterpolator::SendspinInterpolator() {
    m_table.reserve(static_cast<std::size_t>((phases + 1) * taps));
    for (int phase = 0; phase <= phases; ++phase) {
        std::array<double, taps> row{};
        double sum = 0;
        for (int tap = 0; tap < taps; ++tap) {
            row[static_cast<std::size_t>(tap)] =
                windowedSinc(tap - before - static_cast<double>(phase) / phases, taps / 2.0);
            sum += row[static_cast<std::size_t>(tap)];
        }
        for (const double value : row) // the same level at every phase, or a constant would ripple
            m_table.push_back(static_cast<float>(value / sum));
    }
}

StereoFrame SendspinInterpolator::at(const SpscRing<StereoFrame> &ring, double position, std::int64_t first,
                                     std::int64_t end) const {
    const double base = std::floor(position);
    const double phase = (position - base) * phases;
    const int row = std::min(static_cast<int>(phase), phases - 1);
    const auto share = static_cast<float>(phase - row);
    const float *low = m_table.data() + static_cast<std::ptrdiff_t>(row) * taps;
    const float *high = low + taps;

    const std::int64_t start = static_cast<std::int64_t>(base) - before;
    const int from = static_cast<int>(std::clamp<std::int64_t>(first - start, 0, taps));
    const int to = static_cast<int>(std::clamp<std::int64_t>(end - start, 0, taps));
    StereoFrame sum;
    for (int tap = from; tap < to; ++tap) {
        const float weight = low[tap] + share * (high[tap] - low[tap]);
        const StereoFrame &frame = ring.at(static_cast<std::uint64_t>(start + tap));
        sum.left += weight * frame.left;
        sum.right += weight * frame.right;
    }
    return sum;
}

} // namespace vantor
