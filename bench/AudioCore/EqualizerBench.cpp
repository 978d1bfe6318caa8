#include "AudioCore/Equalizer/EQPreset.h"
#include "AudioCore/Equalizer/EqualizerUnit.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <random>

using namespace vantor;

namespace {

constexpr int sampleRate = 48000;
constexpr int channels = PeakingBank::channelCount;

std::vector<float> noise(int frames) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> level(-0.25F, 0.25F);
    std::vector<float> samples(static_cast<size_t>(frames) * channels);
    std::generate(samples.begin(), samples.end(), [&] { return level(random); });
    return samples;
}

// A preset that uses every band, a little lowered so that no sample grows without end.
EQState busyState(float shift) {
    EQState state = EQState::flat();
    for (int band = 0; band < EQState::bandCount; ++band)
        state.setBand(band, static_cast<float>(band % 2 == 0 ? 4 : -5) + shift);
    state.setPreamp(-3);
    return state;
}

void report(benchmark::State &state, int frames) {
    const double samples = static_cast<double>(frames) * channels;
    const auto perUnit = benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert;
    state.counters["s/sample"] = benchmark::Counter(samples, perUnit);
    state.counters["s/sample/band"] = benchmark::Counter(samples * EQState::bandCount, perUnit);
}

void equalizer(benchmark::State &state, PeakingBank::Kernel kernel) {
    const int frames = static_cast<int>(state.range(0));
    const std::vector<float> source = noise(frames);
    std::vector<float> samples = source;
    EqualizerUnit unit(kernel);
    unit.apply(busyState(0));
    unit.prepare(sampleRate);
    for (auto _ : state) {
        std::memcpy(samples.data(), source.data(), source.size() * sizeof(float));
        unit.process(samples.data(), frames);
        benchmark::DoNotOptimize(samples.data());
        benchmark::ClobberMemory();
    }
    report(state, frames);
}

void gliding(benchmark::State &state) {
    const int frames = static_cast<int>(state.range(0));
    const std::vector<float> source = noise(frames);
    std::vector<float> samples = source;
    EqualizerUnit unit;
    unit.prepare(sampleRate);
    float shift = 0;
    for (auto _ : state) {
        shift = 1 - shift;
        unit.apply(busyState(shift));
        std::memcpy(samples.data(), source.data(), source.size() * sizeof(float));
        unit.process(samples.data(), frames);
        benchmark::DoNotOptimize(samples.data());
        benchmark::ClobberMemory();
    }
    report(state, frames);
}

void copy(benchmark::State &state) {
    const int frames = static_cast<int>(state.range(0));
    const std::vector<float> source = noise(frames);
    std::vector<float> samples = source;
    for (auto _ : state) {
        std::memcpy(samples.data(), source.data(), source.size() * sizeof(float));
        benchmark::DoNotOptimize(samples.data());
        benchmark::ClobberMemory();
    }
    report(state, frames);
}

} // namespace

BENCHMARK_CAPTURE(equalizer, vector, PeakingBank::Kernel::vector)->Arg(64)->Arg(512)->Arg(4096);
BENCHMARK_CAPTURE(equalizer, scalar, PeakingBank::Kernel::scalar)->Arg(64)->Arg(512)->Arg(4096);
BENCHMARK(gliding)->Arg(512);
BENCHMARK(copy)->Arg(64)->Arg(512)->Arg(4096);
