#pragma once

#include <utility>
#include <vector>

namespace vantor {

/// Spreads the bins of a transform over columns of equal musical width, from 40 Hz to 16 kHz or to where the
/// sample rate ends. Every column has at least one bin; at the low end neighbours may share theirs.
class SpectrumColumnMap {
  public:
    /// Half-open range of bins.
    struct Bins {
        int start = 0;
        int end = 0;
        bool operator==(const Bins &) const = default;
    };

    /// `fftSize`: at least 4; `sampleRate`: Hz, above 0.
    SpectrumColumnMap(int fftSize, double sampleRate, int columnCount);

    [[nodiscard]] const std::vector<Bins> &columns() const { return m_columns; }
    [[nodiscard]] int bin(double frequency) const;
    /// Hz of the column's first and last bin.
    [[nodiscard]] std::pair<double, double> frequencyRange(int column) const;

    bool operator==(const SpectrumColumnMap &) const = default;

  private:
    int m_fftSize;
    double m_sampleRate;
    std::vector<Bins> m_columns;
};

} // namespace vantor
