#pragma once

#include "AudioCore/Graph/PlayerNode.h"

#include <cmath>
#include <numbers>
#include <span>
#include <vector>

namespace vantor {

/// A sine that glides from 100 Hz up by 400 Hz a second, in steps of 16 bits; the right side is inverted. No
/// stretch of it looks like another, so that sound from a wrong place is never mistaken for the right one.
inline std::vector<StereoFrame> makeSweep(std::size_t frames, int sampleRate) {
    std::vector<StereoFrame> sound(frames);
    for (std::size_t i = 0; i < frames; ++i) {
        const double time = static_cast<double>(i) / sampleRate;
        const double value = 0.5 * std::sin(2 * std::numbers::pi * (100 * time + 200 * time * time));
        sound[i].left = static_cast<float>(std::round(value * 32768) / 32768);
        sound[i].right = -sound[i].left;
    }
    return sound;
}

/// The root of the mean squared difference of the left sides, up to the shorter one's end.
inline double difference(std::span<const StereoFrame> a, std::span<const StereoFrame> b) {
    const std::size_t count = std::min(a.size(), b.size());
    double sum = 0;
    for (std::size_t i = 0; i < count; ++i)
        sum += (double{a[i].left} - b[i].left) * (double{a[i].left} - b[i].left);
    return count == 0 ? 0 : std::sqrt(sum / static_cast<double>(count));
}

/// The largest difference of the left sides, up to the shorter one's end.
inline double largestDifference(std::span<const StereoFrame> a, std::span<const StereoFrame> b) {
    double largest = 0;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i)
        largest = std::max(largest, std::abs(double{a[i].left} - b[i].left));
    return largest;
}

} // namespace vantor
