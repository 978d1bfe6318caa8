#include "AudioCore/Analysis/AnalyzerTap.h"
#include "AudioCore/Analysis/VisBars.h"

#include <benchmark/benchmark.h>

#include <random>

using namespace vantor;

static std::vector<float> noise(size_t count) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> values(-1, 1);
    std::vector<float> samples(count);
    std::ranges::generate(samples, [&] { return values(random); });
    return samples;
}

static void analyze(benchmark::State &state) {
    const int size = static_cast<int>(state.range(0));
    const std::vector<float> samples = noise(static_cast<size_t>(size));
    const auto analyzer = SpectrumAnalyzer::make({.fftSize = size, .sampleRate = 44100});
    VisFrame frame;
    for (auto _ : state) {
        analyzer->analyze(samples, frame.spectrum, frame.scope);
        benchmark::DoNotOptimize(frame);
    }
}
BENCHMARK(analyze)->Arg(1024)->Arg(4096);

static void stepBars(benchmark::State &state) {
    const std::vector<float> levels = noise(VisBars::columnCount);
    VisBars bars;
    for (auto _ : state) {
        bars.step(levels);
        benchmark::DoNotOptimize(bars);
    }
}
BENCHMARK(stepBars);

/// What the audio thread pays for a block of 512 frames.
static void writeBlock(benchmark::State &state) {
    const std::vector<float> block = noise(1024);
    AnalyzerTap tap(1024, 32768);
    for (auto _ : state)
        tap.write(block.data(), 512);
}
BENCHMARK(writeBlock);
