#pragma once

#include <array>
#include <cstddef>

namespace vantor {

/// The inner loop of the equalizer: ten peaking filters one behind the other, for two channels, as state
/// variable filters (V. Zavalishin, "The Art of VA Filter Design", 2018, chapter 4). Their digital response
/// is that of the usual bilinear biquad; they are chosen because 32-bit floats stay exact enough when the
/// centre is thousands of times below the sample rate, and because coefficients may move while sound passes.
///
/// Not thread-safe; process() and processTowards() neither allocate nor block.
class PeakingBank {
  public:
    static constexpr int bandCount = 10;
    static constexpr int channelCount = 2;

    /// Both give the same bits; `vector` runs the bands side by side where the compiler can.
    enum class Kernel { vector, scalar };

    /// One filter's place in the spectrum.
    struct Shape {
        float tuning = 0;   ///< tan(π · centre / sample rate); 0 for a band that is left out
        float inverseQ = 0; ///< of the digital filter, that is of 2 · alpha / sin(w0)
    };

    /// What moves with the gains. One entry for each filter: bands in order, in each left before right.
    struct Parameters {
        static constexpr std::size_t filterCount = bandCount * channelCount;
        using Values = std::array<float, filterCount>;

        alignas(16) Values fromBand{};  ///< of the band-pass state into the band-pass signal
        alignas(16) Values fromInput{}; ///< of the input into the band-pass signal
        alignas(16) Values mix{};       ///< of the band-pass signal into the output
        float inputGain = 1;            ///< linear

        void setBand(int band, const Shape &shape, double decibels);
    };

    explicit PeakingBank(Kernel kernel = Kernel::vector) : m_kernel(kernel) {}

    void setShape(int band, const Shape &shape);
    void setParameters(const Parameters &parameters) { m_parameters = parameters; }
    [[nodiscard]] const Parameters &parameters() const { return m_parameters; }

    /// Forgets all sound.
    void reset();

    /// Filters interleaved stereo in place. A block with a sample that is not finite (or so large that the
    /// filters overflow) costs that block's bad samples, which become 0, and the memory of the filters.
    void process(float *interleaved, int frames);
    /// As process(), while the parameters move in a straight line and reach `target` at the end.
    void processTowards(const Parameters &target, float *interleaved, int frames);

  private:
    using Values = Parameters::Values;

    struct Slopes {
        alignas(16) Values fromBand{};
        alignas(16) Values fromInput{};
        alignas(16) Values mix{};
        float inputGain = 0;
    };

    template <bool moving>
    struct Conveyor;

    template <bool moving>
    void run(const Slopes &slopes, float *interleaved, int frames);
    template <bool moving>
    void runScalar(const Slopes &slopes, float *interleaved, int frames);
    template <bool moving>
    void runVector(const Slopes &slopes, float *interleaved, int frames);
    void repair(float *interleaved, int frames);

    Kernel m_kernel;
    Parameters m_parameters;
    alignas(16) Values m_tuning{};
    alignas(16) Values m_bandState{};
    alignas(16) Values m_lowState{};
};

} // namespace vantor
