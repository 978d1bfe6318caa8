#include "SkinKit/Rendering/VisualizerPainter_p.h"

#include <QImage>

#include <algorithm>
#include <bit>
#include <cmath>

namespace vantor {

namespace {

constexpr int fullRows = 16; // the unit of bar heights
constexpr std::size_t backgroundColor = 0;
constexpr std::size_t dotColor = 1;
constexpr std::size_t firstBarColor = 2; // top row; one colour a row
constexpr std::size_t firstScopeColor = 18;
constexpr int scopeColorCount = 5;
constexpr std::size_t peakColor = 23;

/// Pixel access inside the frame, row 0 at the top.
class Canvas {
  public:
    Canvas(QImage &image, const QRect &frame, const VisColors &colors)
        : m_image(image), m_frame(frame & image.rect()) {
        std::ranges::transform(colors, m_pixels.begin(), [](const RGBColor &color) {
            return std::bit_cast<std::uint32_t>(
                std::array<std::uint8_t, 4>{color.red, color.green, color.blue, 255});
        });
    }

    [[nodiscard]] int rows() const { return m_frame.height(); }
    [[nodiscard]] int columns() const { return m_frame.width(); }

    void set(int column, int row, std::size_t color) {
        if (column >= 0 && column < columns() && row >= 0 && row < rows())
            line(row)[column] = m_pixels[color];
    }

    void clear() {
        for (int row = 0; row < rows(); ++row) {
            std::fill_n(line(row), columns(), m_pixels[backgroundColor]);
            if (row % 2 == 0)
                continue;
            for (int column = 0; column < columns(); column += 2)
                line(row)[column] = m_pixels[dotColor];
        }
    }

  private:
    [[nodiscard]] std::uint32_t *line(int row) {
        return reinterpret_cast<std::uint32_t *>(m_image.scanLine(m_frame.y() + row)) + m_frame.x();
    }

    QImage &m_image;
    QRect m_frame;
    std::array<std::uint32_t, std::tuple_size_v<VisColors>> m_pixels{};
};

/// Levels of the full height as rows of a lower frame; a level that is there stays visible.
int scaledRows(int level, int rows) {
    return rows == fullRows ? level : (level * rows + fullRows - 1) / fullRows;
}

std::size_t barColor(int row, int rows) {
    return firstBarColor + static_cast<std::size_t>(rows == fullRows ? row : row * fullRows / rows);
}

// Columns come in groups of four equal ones, of which the last is the gap.
void paintBars(Canvas &canvas, const VisualizerBars &bars) {
    const int rows = canvas.rows();
    for (int column = 0; column < static_cast<int>(bars.heights.size()); ++column) {
        if (column % 4 == 3)
            continue;
        const auto index = static_cast<std::size_t>(column);
        const int height = std::clamp(scaledRows(bars.heights[index], rows), 0, rows);
        for (int row = rows - height; row < rows; ++row)
            canvas.set(column, row, barColor(row, rows));
        if (bars.peaks[index] >= 1)
            canvas.set(column, rows - std::min(scaledRows(bars.peaks[index], rows), rows), peakColor);
    }
}

std::size_t scopeColor(int row, int rows) {
    const int fromMiddle = std::abs(2 * row - (rows - 1)); // in half rows
    return firstScopeColor + static_cast<std::size_t>(fromMiddle * scopeColorCount / (rows + 1));
}

void paintScope(Canvas &canvas, const VisualizerScope &scope) {
    const int rows = canvas.rows();
    const auto rowOf = [rows](float sample) {
        const float value = std::isfinite(sample) ? std::clamp(sample, -1.0F, 1.0F) : 0;
        return static_cast<int>(std::lround((1 - value) / 2 * static_cast<float>(rows - 1)));
    };
    int previous = rowOf(scope.samples[0]);
    for (int column = 0; column < static_cast<int>(scope.samples.size()); ++column) {
        const int row = rowOf(scope.samples[static_cast<std::size_t>(column)]);
        // The line is joined downwards or upwards, without drawing the neighbour's end twice.
        const int step = previous < row ? 1 : -1;
        for (int joined = previous == row ? row : previous + step; joined != row; joined += step)
            canvas.set(column, joined, scopeColor(joined, rows));
        canvas.set(column, row, scopeColor(row, rows));
        previous = row;
    }
}

} // namespace

void paintVisualizer(QImage &image, const QRect &frame, const VisColors &colors,
                     const VisualizerPicture &picture) {
    if (std::holds_alternative<std::monostate>(picture))
        return;
    Canvas canvas(image, frame, colors);
    canvas.clear();
    if (const auto *bars = std::get_if<VisualizerBars>(&picture))
        paintBars(canvas, *bars);
    else if (const auto *scope = std::get_if<VisualizerScope>(&picture))
        paintScope(canvas, *scope);
}

} // namespace vantor
