#include "AudioCore/Graph/Limiter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

using namespace vantor;

namespace {

constexpr int rate = 48000;
constexpr int lookAhead = 72;

// A tone that is louder in its middle half.
std::vector<StereoFrame> tone(int frames, float quiet, float loud) {
    std::vector<StereoFrame> sound;
    for (int i = 0; i < frames; ++i) {
        const float level = i >= frames / 4 && i < frames * 3 / 4 ? loud : quiet;
        const auto value = static_cast<float>(level * std::sin(2 * std::numbers::pi * 440 * i / rate));
        sound.push_back({value, -value / 2});
    }
    return sound;
}

void process(Limiter &limiter, std::span<StereoFrame> sound) {
    for (std::size_t i = 0; i < sound.size(); i += 509)
        limiter.process(sound.subspan(i, std::min<std::size_t>(509, sound.size() - i)));
}

float peak(std::span<const StereoFrame> sound) {
    float most = 0;
    for (const StereoFrame &frame : sound)
        most = std::max({most, std::abs(frame.left), std::abs(frame.right)});
    return most;
}

float largestStep(std::span<const StereoFrame> sound) {
    float most = 0;
    for (std::size_t i = 1; i < sound.size(); ++i)
        most = std::max(most, std::abs(sound[i].left - sound[i - 1].left));
    return most;
}

// Of a sine: the part of the sound that is not its first harmonic.
double distortion(std::span<const StereoFrame> sound, double frequency) {
    double sine = 0, cosine = 0, power = 0;
    for (std::size_t i = 0; i < sound.size(); ++i) {
        const double phase = 2 * std::numbers::pi * frequency * static_cast<double>(i) / rate;
        const double value = static_cast<double>(sound[i].left);
        sine += value * std::sin(phase);
        cosine += value * std::cos(phase);
        power += value * value;
    }
    const double whole = power * static_cast<double>(sound.size()) / 2;
    return std::sqrt(std::max(0.0, 1 - (sine * sine + cosine * cosine) / whole));
}

} // namespace

TEST(LimiterTest, OffItTouchesNothing) {
    Limiter limiter(rate);
    std::vector<StereoFrame> sound = tone(rate, 0.5F, 4);
    const std::vector<StereoFrame> before = sound;
    process(limiter, sound);
    EXPECT_EQ(sound, before);
}

TEST(LimiterTest, HoldsPeaksWithoutTouchingWhatIsQuiet) {
    Limiter limiter(rate);
    limiter.setEnabled(true);
    std::vector<StereoFrame> settled(rate / 10);
    process(limiter, settled);
    for (const float loud : {1.2F, 4.0F, 100.0F}) {
        const std::vector<StereoFrame> before = tone(4 * rate, 0.5F, loud);
        std::vector<StereoFrame> sound = before;
        process(limiter, sound);
        EXPECT_LE(peak(sound), Limiter::ceiling) << loud;
        EXPECT_GT(peak(sound), 0.9F * Limiter::ceiling) << "it only turns down as much as it must";
        const auto quiet = std::span(sound).subspan(lookAhead, rate - 2 * lookAhead);
        EXPECT_TRUE(std::ranges::equal(quiet, std::span(before).first(quiet.size()))) << loud;
        const std::size_t end = sound.size() - lookAhead;
        EXPECT_TRUE(std::ranges::equal(std::span(sound).subspan(end),
                                       std::span(before).subspan(end - lookAhead, lookAhead)))
            << "bit for bit again, once it has come back";
        for (std::size_t i = 0; i < sound.size(); ++i)
            ASSERT_NEAR(sound[i].right, -sound[i].left / 2, 1e-6) << "both sides are turned down alike";
    }
}

TEST(LimiterTest, LoudTonesStayPure) {
    const struct {
        double frequency;
        double most; ///< what else is in the tone, of the whole
    } rows[] = {{20, 0.03}, {40, 0.0005}, {100, 0.0005}, {1000, 0.0005}, {10000, 0.0005}};
    for (const auto &row : rows) {
        Limiter limiter(rate);
        limiter.setEnabled(true);
        std::vector<StereoFrame> sound(2 * rate);
        for (std::size_t i = 0; i < sound.size(); ++i) {
            const double phase = 2 * std::numbers::pi * row.frequency * static_cast<double>(i) / rate;
            sound[i].left = static_cast<float>(2 * std::sin(phase));
        }
        process(limiter, sound);
        EXPECT_LT(distortion(std::span(sound).last(rate), row.frequency), row.most) << row.frequency;
    }
}

TEST(LimiterTest, WhatIsNoNumberIsSilent) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    Limiter limiter(rate);
    limiter.setEnabled(true);
    std::vector<StereoFrame> sound = tone(rate, 0.5F, 0.5F);
    std::vector<StereoFrame> expected = sound;
    std::size_t place = rate / 2;
    for (const float broken : {std::numeric_limits<float>::quiet_NaN(), infinity, -infinity}) {
        sound[++place].left = broken;
        expected[place].left = 0;
    }
    process(limiter, sound);
    const auto settled = std::span(sound).subspan(rate / 4);
    EXPECT_TRUE(
        std::ranges::equal(settled, std::span(expected).subspan(rate / 4 - lookAhead, settled.size())));
}

TEST(LimiterTest, ASinglePeakIsHeldAndForgotten) {
    Limiter limiter(rate);
    limiter.setEnabled(true);
    std::vector<StereoFrame> sound(rate);
    sound[rate / 2] = {50, 0};
    process(limiter, sound);
    EXPECT_NEAR(peak(sound), Limiter::ceiling, 1e-3);
    EXPECT_EQ(sound.back(), StereoFrame{});
}

TEST(LimiterTest, SwitchingItDoesNotClick) {
    Limiter limiter(rate);
    std::vector<StereoFrame> sound = tone(2 * rate, 0.7F, 0.7F);
    const float step = largestStep(sound);
    const auto whole = std::span(sound);
    process(limiter, whole.first(rate / 2));
    limiter.setEnabled(true);
    process(limiter, whole.subspan(rate / 2, rate / 2));
    limiter.setEnabled(false);
    process(limiter, whole.subspan(rate));
    EXPECT_LE(largestStep(sound), 1.15F * step);
}
