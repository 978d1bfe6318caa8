#include "AudioCore/Equalizer/PeakingBank.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#if defined(__clang__)
// Fused multiply-adds would round differently in the two kernels. GCC makes none in ISO mode.
#pragma STDC FP_CONTRACT OFF
#endif

#if defined(__has_builtin)
#if __has_builtin(__builtin_shufflevector)
#define VANTOR_VECTOR_LANES 1
#endif
#endif

namespace vantor {

namespace {

constexpr std::size_t channels = PeakingBank::channelCount;
constexpr std::size_t filters = PeakingBank::Parameters::filterCount;

} // namespace

// A peaking filter of gain A² is 1 + k(A² − 1) · bandpass(k) with k = 1 / (Q · A): R. Bristow-Johnson's
// "Cookbook formulae for audio EQ biquad filter coefficients", written for the state variable form.
void PeakingBank::Parameters::setBand(int band, const Shape &shape, double decibels) {
    const double amplitude = std::pow(10.0, decibels / 40);
    const double damping = shape.inverseQ / amplitude;
    const double tuning = shape.tuning;
    const double feedback = 2 / (1 + tuning * (tuning + damping));
    const std::size_t first = static_cast<std::size_t>(band) * channels;
    for (std::size_t filter = first; filter < first + channels; ++filter) {
        fromBand[filter] = static_cast<float>(feedback);
        fromInput[filter] = static_cast<float>(feedback * tuning);
        mix[filter] = static_cast<float>(damping * (amplitude * amplitude - 1) / 2);
    }
}

void PeakingBank::setShape(int band, const Shape &shape) {
    const std::size_t first = static_cast<std::size_t>(band) * channels;
    std::fill_n(m_tuning.begin() + static_cast<std::ptrdiff_t>(first), channels, shape.tuning);
}

void PeakingBank::reset() {
    m_bandState.fill(0);
    m_lowState.fill(0);
}

void PeakingBank::process(float *interleaved, int frames) {
    run<false>({}, interleaved, frames);
}

void PeakingBank::processTowards(const Parameters &target, float *interleaved, int frames) {
    Slopes slopes;
    const float share = 1.0F / static_cast<float>(frames);
    for (std::size_t filter = 0; filter < filters; ++filter) {
        slopes.fromBand[filter] = (target.fromBand[filter] - m_parameters.fromBand[filter]) * share;
        slopes.fromInput[filter] = (target.fromInput[filter] - m_parameters.fromInput[filter]) * share;
        slopes.mix[filter] = (target.mix[filter] - m_parameters.mix[filter]) * share;
    }
    slopes.inputGain = (target.inputGain - m_parameters.inputGain) * share;
    run<true>(slopes, interleaved, frames);
    m_parameters = target;
}

template <bool moving>
void PeakingBank::run(const Slopes &slopes, float *interleaved, int frames) {
    if (m_kernel == Kernel::vector)
        runVector<moving>(slopes, interleaved, frames);
    else
        runScalar<moving>(slopes, interleaved, frames);
    repair(interleaved, frames);
}

template <bool moving>
void PeakingBank::runScalar(const Slopes &slopes, float *interleaved, int frames) {
    Parameters &now = m_parameters;
    for (int frame = 0; frame < frames; ++frame) {
        for (std::size_t channel = 0; channel < channels; ++channel) {
            float signal = interleaved[channel] * now.inputGain;
            for (std::size_t filter = channel; filter < filters; filter += channels) {
                const float remembered =
                    now.fromBand[filter] * m_bandState[filter] - now.fromInput[filter] * m_lowState[filter];
                const float band = remembered + now.fromInput[filter] * signal;
                m_bandState[filter] = band - m_bandState[filter];
                m_lowState[filter] += m_tuning[filter] * band;
                signal += now.mix[filter] * band;
            }
            interleaved[channel] = signal;
        }
        if constexpr (moving) {
            for (std::size_t filter = 0; filter < filters; ++filter) {
                now.fromBand[filter] += slopes.fromBand[filter];
                now.fromInput[filter] += slopes.fromInput[filter];
                now.mix[filter] += slopes.mix[filter];
            }
            now.inputGain += slopes.inputGain;
        }
        interleaved += channels;
    }
}

#if VANTOR_VECTOR_LANES

namespace {

// Four filters side by side: two bands, left and right.
using Lanes = float __attribute__((vector_size(16)));
using Mask = int __attribute__((vector_size(16)));
constexpr std::size_t lanes = sizeof(Lanes) / sizeof(float);
constexpr std::size_t groups = filters / lanes;
using Groups = std::array<Lanes, groups>;
using Values = PeakingBank::Parameters::Values;

Lanes load(const Values &values, std::size_t group) {
    Lanes result;
    std::memcpy(&result, std::assume_aligned<sizeof(Lanes)>(&values[group * lanes]), sizeof result);
    return result;
}

Lanes loadFrame(const float *interleaved, int number) {
    Lanes frame{};
    std::memcpy(&frame, interleaved + channels * static_cast<std::size_t>(number), channels * sizeof(float));
    return frame;
}

// From the upper half, where a group's second band is.
void storeFrame(Lanes source, float *interleaved, int number) {
    const Lanes frame = __builtin_shufflevector(source, source, 2, 3, 2, 3);
    std::memcpy(interleaved + channels * static_cast<std::size_t>(number), &frame, channels * sizeof(float));
}

} // namespace

// A cascade is serial: band k needs what band k − 1 made of the same frame. So the bands work as on a
// conveyor, all at once, band k on the frame `number` − k; what leaves the last band is nine frames old. At
// the two ends of a block some bands have no frame yet or no more, and `partial` steps leave them alone.
//
// The critical path runs from one step's band-pass signal to the next one's. What it needs is kept in
// registers (`remembered`, `output`), and as there are no more of them, the states and coefficients stay in
// memory, where their latency does not matter.
template <bool moving>
struct PeakingBank::Conveyor {
    static constexpr int lag = bandCount - 1;

    PeakingBank *bank;
    const Slopes *slopes;
    Groups remembered{}; ///< the part of the next band-pass signal that the states give
    Groups output{};

    Conveyor(PeakingBank &owner, const Slopes &change) : bank(&owner), slopes(&change) {
        for (std::size_t group = 0; group < groups; ++group)
            remember(group, load(bank->m_bandState, group), load(bank->m_lowState, group));
    }

    // From the last group to the first, as each takes what the one before it made in the previous step.
    template <bool partial>
    void step(Lanes frame, int number, int frames) {
        for (std::size_t group = groups; group-- > 1;) {
            const Lanes input = __builtin_shufflevector(output[group - 1], output[group], 2, 3, 4, 5);
            filter<partial>(group, input, number, frames);
        }
        filter<partial>(0, __builtin_shufflevector(frame, output[0], 0, 1, 4, 5), number, frames);
    }

    template <bool partial>
    void filter(std::size_t group, Lanes input, int number, int frames) {
        Parameters &now = bank->m_parameters;
        const Mask busy = partial ? busyLanes(group, number, frames) : Mask{};
        const Lanes band = remembered[group] + load(now.fromInput, group) * input;
        output[group] = input + load(now.mix, group) * band;
        const Lanes bandState = load(bank->m_bandState, group);
        const Lanes lowState = load(bank->m_lowState, group);
        const Lanes nextBand = advance<partial>(bank->m_bandState, group, band - bandState, busy);
        const Lanes nextLow =
            advance<partial>(bank->m_lowState, group, lowState + load(bank->m_tuning, group) * band, busy);
        if constexpr (moving) {
            slide<partial>(now.fromBand, slopes->fromBand, group, busy);
            slide<partial>(now.fromInput, slopes->fromInput, group, busy);
            slide<partial>(now.mix, slopes->mix, group, busy);
        }
        remember(group, nextBand, nextLow);
    }

    void remember(std::size_t group, Lanes bandState, Lanes lowState) {
        const Parameters &now = bank->m_parameters;
        remembered[group] = load(now.fromBand, group) * bandState - load(now.fromInput, group) * lowState;
    }

    template <bool partial>
    static void slide(Values &values, const Values &slope, std::size_t group, Mask busy) {
        advance<partial>(values, group, load(values, group) + load(slope, group), busy);
    }

    template <bool partial>
    static Lanes advance(Values &values, std::size_t group, Lanes next, Mask busy) {
        if constexpr (partial)
            next = busy ? next : load(values, group);
        std::memcpy(std::assume_aligned<sizeof(Lanes)>(&values[group * lanes]), &next, sizeof next);
        return next;
    }

    static Mask busyLanes(std::size_t group, int number, int frames) {
        const int band = static_cast<int>(group) * 2;
        const int first = band <= number && number < band + frames ? -1 : 0;
        const int second = band + 1 <= number && number < band + 1 + frames ? -1 : 0;
        return Mask{first, first, second, second};
    }
};

template <bool moving>
void PeakingBank::runVector(const Slopes &slopes, float *interleaved, int frames) {
    Conveyor<moving> conveyor(*this, slopes);
    const auto take = [&](int number) {
        const Lanes frame = loadFrame(interleaved, number) * m_parameters.inputGain;
        if constexpr (moving)
            m_parameters.inputGain += slopes.inputGain;
        return frame;
    };
    constexpr int lag = Conveyor<moving>::lag;
    for (int number = 0; number < lag; ++number)
        conveyor.template step<true>(number < frames ? take(number) : Lanes{}, number, frames);
    Conveyor<moving> full = conveyor; // a copy that no call can reach stays in registers
    for (int number = lag; number < frames; ++number) {
        full.template step<false>(take(number), number, frames);
        storeFrame(full.output.back(), interleaved, number - lag);
    }
    conveyor = full;
    for (int number = std::max(lag, frames); number < frames + lag; ++number) {
        conveyor.template step<true>(Lanes{}, number, frames);
        storeFrame(conveyor.output.back(), interleaved, number - lag);
    }
}

#else

template <bool moving>
void PeakingBank::runVector(const Slopes &slopes, float *interleaved, int frames) {
    runScalar<moving>(slopes, interleaved, frames);
}

#endif

void PeakingBank::repair(float *interleaved, int frames) {
    const auto isFinite = [](float value) { return std::isfinite(value); };
    if (std::all_of(m_bandState.begin(), m_bandState.end(), isFinite) &&
        std::all_of(m_lowState.begin(), m_lowState.end(), isFinite))
        return;
    reset();
    for (float *sample = interleaved; sample != interleaved + channels * static_cast<std::size_t>(frames);
         ++sample) {
        if (!std::isfinite(*sample))
            *sample = 0;
    }
}

} // namespace vantor
