#pragma once

#include "AudioCore/Equalizer/EQState.h"
#include "AudioCore/Equalizer/PeakingBank.h"

#include <atomic>
#include <cstdint>

namespace vantor {

/// The equalizer in the audio graph: a preamp and ten peaking filters with the centres and bandwidths of
/// EQBands, on interleaved stereo.
///
/// apply() and configureWinampBands() are called on the main thread at any time, process() on the audio
/// thread only, prepare() while process() is not running. Changes glide over 25 ms. Disabled or flat, and
/// once the glide is over, the unit does not touch the samples. It delays nothing.
///
/// A band at or above 0.45 of the sample rate is left out: there the filter's shape would be all distortion.
class EqualizerUnit {
  public:
    explicit EqualizerUnit(PeakingBank::Kernel kernel = PeakingBank::Kernel::vector);

    /// `sampleRate` in Hz. Forgets all sound; the settings are kept and hold from the first frame.
    void prepare(int sampleRate);
    /// All bands as EQBands has them and at 0 dB, nothing bypassed; the preamp is left alone.
    void configureWinampBands();
    void apply(const EQState &state);

    /// Filters in place. Never allocates, locks or makes a system call.
    void process(float *interleaved, int frames);

  private:
    static constexpr std::size_t preampIndex = EQState::bandCount;
    static_assert(EQState::bandCount == PeakingBank::bandCount);
    using Levels = std::array<float, EQState::bandCount + 1>; ///< decibels; the last one is the preamp

    void takeTarget();
    void startGlide(const Levels &target);
    void glide(float *interleaved, int frames);
    void settle();
    [[nodiscard]] PeakingBank::Parameters parametersAt(const Levels &levels) const;

    // Written on the main thread, read on the audio thread. A reader may see half of a change; the version,
    // raised after it, makes it look again.
    std::array<std::atomic<float>, EQState::bandCount + 1> m_requested{};
    std::atomic<std::uint32_t> m_version{0};

    // The audio thread's own.
    enum class Work { none, gainOnly, filters };
    PeakingBank m_bank;
    std::array<PeakingBank::Shape, EQState::bandCount> m_shapes{};
    std::uint32_t m_seenVersion = 0;
    Work m_work = Work::none;
    Levels m_start{};
    Levels m_now{};
    Levels m_target{};
    int m_glideFrames = 1;
    int m_glideLeft = 0;
};

} // namespace vantor
