#pragma once

#include "AudioCore/Analysis/SpectrumColumnMap.h"
#include "AudioCore/Analysis/VisFrame.h"

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace vantor {

/// Turns a stretch of samples into column levels and scope samples. All memory is taken when it is made. One
/// thread at a time.
class SpectrumAnalyzer {
  public:
    struct Settings {
        int fftSize = 1024;    ///< a power of two, 64…65536
        double sampleRate = 0; ///< Hz, above 0
        int columnCount = VisFrame::columnCount;
        int scopeLength = VisFrame::scopeLength;
        int scopeStride = 8;  ///< samples between two of the scope; the scope fits into the FFT size
        double floorDB = -60; ///< the level that reads 0; below 0
    };

    /// Null when a setting is out of range.
    [[nodiscard]] static std::unique_ptr<SpectrumAnalyzer> make(const Settings &settings);
    ~SpectrumAnalyzer();

    /// `samples`: exactly fftSize, the newest last; `spectrum`: columnCount levels 0…1; `scope`: scopeLength
    /// samples −1…1. A full-scale sine in the middle of a bin reads −6 dB. What is not a number reads 0.
    void analyze(std::span<const float> samples, std::span<float> spectrum, std::span<float> scope);

    [[nodiscard]] const SpectrumColumnMap &columnMap() const { return m_columnMap; }

  private:
    struct Transform;

    SpectrumAnalyzer(const Settings &settings, std::unique_ptr<Transform> transform);

    Settings m_settings;
    SpectrumColumnMap m_columnMap;
    std::unique_ptr<Transform> m_transform;
    std::vector<float> m_window;
    std::vector<float> m_magnitudes; ///< squared, by bin
    float m_normalisation;
};

} // namespace vantor
