#include "AudioCore/Analysis/SpectrumAnalyzer.h"

#include <gtest/gtest.h>

#include <numbers>

using namespace vantor;

namespace {

constexpr int size = 1024;
constexpr double rate = 44100;
using Bins = SpectrumColumnMap::Bins;

VisFrame analyze(const std::vector<float> &samples) {
    VisFrame frame;
    SpectrumAnalyzer::make({.sampleRate = rate})->analyze(samples, frame.spectrum, frame.scope);
    return frame;
}

std::vector<float> sine(double cycles, double decibels) {
    std::vector<float> samples(size);
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] =
            static_cast<float>(std::pow(10, decibels / 20) *
                               std::sin(2 * std::numbers::pi * cycles * static_cast<double>(i) / size));
    return samples;
}

} // namespace

TEST(SpectrumColumnMapTest, CoversTheBinsWithoutGaps) {
    for (const double sampleRate : {20.0, 8000.0, 44100.0, 192000.0, 1e300}) {
        SCOPED_TRACE(sampleRate);
        const SpectrumColumnMap map(size, sampleRate, 75);
        int previousEnd = map.columns().front().start;
        for (const Bins &bins : map.columns()) {
            EXPECT_LE(bins.start, previousEnd);
            EXPECT_LT(bins.start, bins.end);
            EXPECT_LE(bins.end, size / 2);
            previousEnd = bins.end;
        }
    }
    const SpectrumColumnMap map(size, rate, 75);
    EXPECT_EQ(map.columns().front(), (Bins{1, 2}));
    EXPECT_EQ(map.columns().back(), (Bins{343, 372})); // 14.8 kHz … 16 kHz
    EXPECT_EQ(map.bin(1000), 23);
    EXPECT_NEAR(map.frequencyRange(74).second, 15978, 1);
}

TEST(SpectrumAnalyzerTest, ReadsTheLevelOfASine) {
    // The window halves the amplitude: 6.02 dB. A column of several bins also holds the window's two side
    // bins: a quarter of the power each, 1.76 dB.
    const std::tuple<double, double, size_t, double> rows[] = {// cycles per transform, dB of full scale
                                                               {5, 0, 22, 1 - 6.02 / 60},
                                                               {5, -30, 22, 0.5 - 6.02 / 60},
                                                               {360, -30, 74, 0.5 + (1.76 - 6.02) / 60},
                                                               {360, -70, 74, 0},
                                                               {360, 6, 74, 1},
                                                               {360, 0, 40, 0}};
    for (const auto &[cycles, decibels, column, level] : rows)
        EXPECT_NEAR(analyze(sine(cycles, decibels)).spectrum[column], level, 1e-3)
            << cycles << ' ' << decibels;
}

TEST(SpectrumAnalyzerTest, ShowsTheNewestSamplesInTheScope) {
    std::vector<float> samples(size);
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = (static_cast<float>(i) - 720) / 256; // −1 … 1 between the samples 464 and 976
    samples.back() = 9;
    VisFrame frame = analyze(samples);
    EXPECT_EQ(frame.scope.front(), -1.0F); // sample 416
    EXPECT_EQ(frame.scope[38], 0.0F);      // sample 720
    EXPECT_EQ(frame.scope[69], 248.0F / 256);
    EXPECT_EQ(frame.scope.back(), 1.0F);

    const auto shorter = SpectrumAnalyzer::make({.fftSize = 512, .sampleRate = rate});
    shorter->analyze(std::vector<float>(512, 0.5F), frame.spectrum, frame.scope);
    EXPECT_EQ(frame.scope[11], 0.0F); // silence before the transform: sample −8
    EXPECT_EQ(frame.scope[12], 0.5F);
}

TEST(SpectrumAnalyzerTest, BrokenSamplesReadNothingAndImpossibleSettingsMakeNone) {
    EXPECT_EQ(analyze(std::vector<float>(size, NAN)), VisFrame());
    for (const int fftSize : {-64, 0, 32, 1000, 1 << 20})
        EXPECT_FALSE(SpectrumAnalyzer::make({.fftSize = fftSize, .sampleRate = rate, .scopeStride = 1}));
    for (const double sampleRate : {0.0, -1.0, static_cast<double>(NAN), static_cast<double>(INFINITY)})
        EXPECT_FALSE(SpectrumAnalyzer::make({.sampleRate = sampleRate}));
    EXPECT_TRUE(SpectrumAnalyzer::make({.fftSize = 128, .sampleRate = rate, .scopeStride = 1}));
}
