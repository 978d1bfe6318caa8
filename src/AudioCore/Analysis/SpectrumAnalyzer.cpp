#include "AudioCore/Analysis/SpectrumAnalyzer.h"

extern "C" {
#include <libavutil/mem.h>
#include <libavutil/tx.h>
}

#include <bit>
#include <numbers>

namespace vantor {

/// The real FFT and its buffers, aligned as it wants them.
struct SpectrumAnalyzer::Transform {
    explicit Transform(int size)
        : input(static_cast<float *>(av_calloc(static_cast<size_t>(size), sizeof(float)))),
          output(static_cast<AVComplexFloat *>(
              av_calloc(static_cast<size_t>(size) / 2 + 1, sizeof(AVComplexFloat)))) {
        if (input && output)
            av_tx_init(&context, &function, AV_TX_FLOAT_RDFT, 0, size, &scale, 0);
    }
    ~Transform() {
        av_tx_uninit(&context);
        av_free(input);
        av_free(output);
    }
    Transform(const Transform &) = delete;
    Transform &operator=(const Transform &) = delete;

    void run() { function(context, output, input, sizeof(float)); }

    // The plain sum, without a factor: with the Hann window, whose mean is 1/2, a full-scale sine in one bin
    // has the magnitude N/4 there, which the normalisation by (N / 2)² reads as −6 dB.
    static constexpr float scale = 1;

    AVTXContext *context = nullptr;
    av_tx_fn function = nullptr;
    float *input;
    AVComplexFloat *output;
};

static constexpr int smallestSize = 64;
static constexpr int largestSize = 65536;

std::unique_ptr<SpectrumAnalyzer> SpectrumAnalyzer::make(const Settings &settings) {
    const int size = settings.fftSize;
    if (size < smallestSize || size > largestSize || !std::has_single_bit(static_cast<unsigned>(size)))
        return nullptr;
    if (!std::isfinite(settings.sampleRate) || settings.sampleRate <= 0 || !(settings.floorDB < 0))
        return nullptr;
    if (settings.columnCount < 1 || settings.columnCount > size || settings.scopeLength < 1 ||
        settings.scopeStride < 1 || settings.scopeLength > largestSize || settings.scopeStride > largestSize)
        return nullptr;
    auto transform = std::make_unique<Transform>(size);
    if (!transform->context)
        return nullptr;
    return std::unique_ptr<SpectrumAnalyzer>(new SpectrumAnalyzer(settings, std::move(transform)));
}

SpectrumAnalyzer::SpectrumAnalyzer(const Settings &settings, std::unique_ptr<Transform> transform)
    : m_settings(settings), m_columnMap(settings.fftSize, settings.sampleRate, settings.columnCount),
      m_transform(std::move(transform)), m_window(static_cast<size_t>(settings.fftSize)),
      m_magnitudes(m_window.size() / 2) {
    const auto size = static_cast<double>(m_window.size());
    for (size_t i = 0; i < m_window.size(); ++i) {
        const double phase = 2 * std::numbers::pi * static_cast<double>(i) / size;
        m_window[i] = static_cast<float>((1 - std::cos(phase)) / 2);
    }
    m_normalisation = static_cast<float>(size * size / 4);
}

SpectrumAnalyzer::~SpectrumAnalyzer() = default;

void SpectrumAnalyzer::analyze(std::span<const float> samples, std::span<float> spectrum,
                               std::span<float> scope) {
    Q_ASSERT(samples.size() == m_window.size());
    Q_ASSERT(spectrum.size() == m_columnMap.columns().size());
    Q_ASSERT(scope.size() == static_cast<size_t>(m_settings.scopeLength));

    for (size_t i = 0; i < m_window.size(); ++i)
        m_transform->input[i] = samples[i] * m_window[i];
    m_transform->run();
    for (size_t bin = 0; bin < m_magnitudes.size(); ++bin) {
        const AVComplexFloat value = m_transform->output[bin];
        m_magnitudes[bin] = value.re * value.re + value.im * value.im;
    }

    const auto floor = static_cast<float>(m_settings.floorDB);
    for (size_t column = 0; column < spectrum.size(); ++column) {
        const SpectrumColumnMap::Bins bins = m_columnMap.columns()[column];
        float sum = 0;
        for (int bin = bins.start; bin < bins.end; ++bin)
            sum += m_magnitudes[static_cast<size_t>(bin)];
        const float level = (10 * std::log10(sum / m_normalisation + 1e-12F) - floor) / -floor;
        spectrum[column] = level > 0 ? std::min(level, 1.0F) : 0.0F; // also for NaN
    }

    // What a short transform does not reach back to reads as silence.
    const auto first = std::ssize(samples) - std::int64_t{m_settings.scopeLength} * m_settings.scopeStride;
    for (size_t k = 0; k < scope.size(); ++k) {
        const std::int64_t index = first + static_cast<std::int64_t>(k) * m_settings.scopeStride;
        const float sample = index < 0 ? 0.0F : samples[static_cast<size_t>(index)];
        scope[k] = std::isnan(sample) ? 0.0F : std::clamp(sample, -1.0F, 1.0F);
    }
}

} // namespace vantor
