#include "AudioCore/Analysis/SpectrumColumnMap.h"

namespace vantor {

static constexpr double lowestFrequency = 40;
static constexpr double highestFrequency = 16000;

SpectrumColumnMap::SpectrumColumnMap(int fftSize, double sampleRate, int columnCount)
    : m_fftSize(fftSize), m_sampleRate(sampleRate) {
    const int binCount = fftSize / 2;
    const double binWidth = sampleRate / fftSize;
    const double ratio = std::min(sampleRate / 2 - binWidth, highestFrequency) / lowestFrequency;
    const auto edge = [&](int k) {
        const double frequency = lowestFrequency * std::pow(ratio, static_cast<double>(k) / columnCount);
        return static_cast<int>(std::clamp(std::round(frequency / binWidth), 1.0, binCount - 1.0));
    };
    for (int column = 0; column < columnCount; ++column) {
        const int start = edge(column);
        m_columns.push_back({start, std::min(binCount, std::max(start + 1, edge(column + 1)))});
    }
}

int SpectrumColumnMap::bin(double frequency) const {
    const double bin = std::round(frequency / m_sampleRate * m_fftSize);
    return bin > 0 ? static_cast<int>(std::min(bin, m_fftSize - 1.0)) : 0;
}

std::pair<double, double> SpectrumColumnMap::frequencyRange(int column) const {
    const Bins &bins = m_columns.at(static_cast<size_t>(column));
    const double binWidth = m_sampleRate / m_fftSize;
    return {binWidth * bins.start, binWidth * (bins.end - 1)};
}

} // namespace vantor
