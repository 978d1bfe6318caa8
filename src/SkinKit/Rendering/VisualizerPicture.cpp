#include "SkinKit/Rendering/VisualizerPicture_p.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace vantor {

namespace {

constexpr int fullColumns = 76;
constexpr int fullRows = 16;
constexpr int barColumns = 4; // the last of them is the gap to the next bar
constexpr std::size_t dotColor = 1;
constexpr std::size_t topBarColor = 2; // the bars' 16 colours, downwards
constexpr std::size_t middleScopeColor = 18;
constexpr int scopeColorCount = 5;
constexpr std::size_t peakColor = 23;

/// An image whose pixels are set by the index of a skin colour; whoever writes stays inside.
class Plot {
  public:
    Plot(const VisColors &colors, QSize size) : m_image(size, QImage::Format_RGB32) {
        for (std::size_t i = 0; i < colors.size(); ++i)
            m_colors[i] = qRgb(colors[i].red, colors[i].green, colors[i].blue);
        m_image.fill(m_colors[0]);
        m_bits = m_image.bits();
    }

    [[nodiscard]] int columns() const { return m_image.width(); }
    [[nodiscard]] int rows() const { return m_image.height(); }
    [[nodiscard]] const QImage &image() const { return m_image; }

    void set(int x, int y, std::size_t color) {
        reinterpret_cast<QRgb *>(m_bits + y * m_image.bytesPerLine())[x] = m_colors[color];
    }

  private:
    QImage m_image;
    uchar *m_bits = nullptr;
    std::array<QRgb, std::tuple_size_v<VisColors>> m_colors{};
};

void plotDots(Plot &plot) {
    for (int y = 1; y < plot.rows(); y += 2) {
        for (int x = 0; x < plot.columns(); x += 2)
            plot.set(x, y, dotColor);
    }
}

/// How many of the picture's columns one column of the plot stands for.
int columnStep(const Plot &plot) {
    return fullColumns / plot.columns();
}

void plotBars(Plot &plot, const VisualizerBars &bars) {
    const int rows = plot.rows();
    const int step = columnStep(plot);
    for (int x = 0; x < plot.columns(); ++x) {
        const auto column = static_cast<std::size_t>(x * step);
        const bool isGap = !bars.thin && x * step % barColumns + step >= barColumns;
        if (isGap || column >= bars.heights.size())
            continue;
        const int height = (std::clamp(bars.heights[column], 0, fullRows) * rows + fullRows / 2) / fullRows;
        for (int y = rows - height; y < rows; ++y)
            plot.set(x, y, topBarColor + static_cast<std::size_t>(y * (fullRows - 1) / (rows - 1)));
        // Rounded up, so that a peak never hides in a bar that it floats above.
        const int peak = (std::clamp(bars.peaks[column], 0, fullRows) * rows + fullRows - 1) / fullRows;
        if (peak > 0)
            plot.set(x, rows - peak, peakColor);
    }
}

int scopeRow(float sample, int rows) {
    const float level = std::isfinite(sample) ? std::clamp(sample, -1.0F, 1.0F) : 0.0F;
    return static_cast<int>(std::round((1 - level) / 2 * static_cast<float>(rows - 1)));
}

/// Brightest in the middle, in equal bands outwards.
std::size_t scopeColor(int y, int rows) {
    const int doubledDistance = std::abs(2 * y - (rows - 1));
    return middleScopeColor + static_cast<std::size_t>(doubledDistance * scopeColorCount / (rows + 1));
}

/// The row up or down to which a sample's column is filled.
int scopeJoint(ScopeStyle style, int row, int previous, int rows) {
    switch (style) {
    case ScopeStyle::dots:
        break;
    case ScopeStyle::lines: // beside the neighbour's, so that the curve has no holes
        return previous < row ? previous + 1 : previous > row ? previous - 1 : row;
    case ScopeStyle::solid:
        return scopeRow(0, rows);
    }
    return row;
}

void plotScope(Plot &plot, const VisualizerScope &scope) {
    const int rows = plot.rows();
    const int step = columnStep(plot);
    int previous = scopeRow(scope.samples[0], rows);
    for (int x = 0; x < plot.columns(); ++x) {
        const int row = scopeRow(scope.samples.at(static_cast<std::size_t>(x * step)), rows);
        const int joint = scopeJoint(scope.style, row, previous, rows);
        for (int y = std::min(row, joint); y <= std::max(row, joint); ++y)
            plot.set(x, y, scopeColor(y, rows));
        previous = row;
    }
}

} // namespace

QImage visualizerImage(const VisualizerPicture &picture, const VisColors &colors, QSize size) {
    if (std::holds_alternative<std::monostate>(picture))
        return {};
    Plot plot(colors, size);
    if (size.height() >= fullRows)
        plotDots(plot);
    if (const auto *bars = std::get_if<VisualizerBars>(&picture))
        plotBars(plot, *bars);
    else if (const auto *scope = std::get_if<VisualizerScope>(&picture))
        plotScope(plot, *scope);
    return plot.image();
}

} // namespace vantor
