#pragma once

#include "AudioCore/Analysis/SpectrumAnalyzer.h"
#include "AudioCore/Analysis/VisReadCursor.h"
#include "AudioCore/Analysis/VisSampleRing.h"

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

namespace vantor {

/// Carries rendered sound from the audio thread to the analyser. write() runs on the audio thread and only
/// copies into the ring; everything else belongs to the main thread.
class AnalyzerTap {
  public:
    /// `fftSize`: a power of two, at least 64, or there is never an analyser; `ringCapacity`: samples, room
    /// for several transforms.
    AnalyzerTap(int fftSize, int ringCapacity);

    /// The mean of both channels goes into the ring. Audio thread: no allocation, lock or system call.
    void write(const float *interleavedStereo, int frames);

    /// Rebuilds the analyser for a rate in Hz; 0 or less leaves none.
    void prepare(double sampleRate);
    /// Forgets the place in the sound, for example after a seek or a time without pictures.
    void resetCursor();
    /// The picture for this display refresh, `elapsed` seconds after the last; none without enough sound.
    [[nodiscard]] std::optional<VisFrame> frame(double elapsed);
    /// frame() with the time since its last call, by the monotonic clock.
    [[nodiscard]] std::optional<VisFrame> latestFrame();

    [[nodiscard]] const VisSampleRing &ring() const { return m_ring; }
    [[nodiscard]] double sampleRate() const { return m_sampleRate; }
    [[nodiscard]] std::optional<SpectrumColumnMap> columnMap() const;

  private:
    VisSampleRing m_ring;
    VisReadCursor m_cursor;
    std::unique_ptr<SpectrumAnalyzer> m_analyzer;
    std::vector<float> m_samples;
    double m_sampleRate = 0;
    std::optional<std::chrono::steady_clock::time_point> m_lastCall;
};

} // namespace vantor
