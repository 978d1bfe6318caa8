#include "AudioCore/Equalizer/EqualizerUnit.h"

#include "AudioCore/Equalizer/FlushDenormals_p.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vantor {

namespace {

constexpr double glideSeconds = 0.025;
// Between two sets of exact parameters they move in a straight line.
constexpr int glideStepFrames = 32;
constexpr double highestCentre = 0.45; // of the sample rate

double linear(float decibels) {
    return std::pow(10.0, decibels / 20.0);
}

// The digital filter's Q for a bandwidth in octaves, from the cookbook that PeakingBank names.
PeakingBank::Shape shapeOf(const EQBand &band, int sampleRate) {
    if (band.frequency >= highestCentre * sampleRate)
        return {};
    const double w0 = 2 * std::numbers::pi * band.frequency / sampleRate;
    const double inverseQ = 2 * std::sinh(std::numbers::ln2 / 2 * band.bandwidth * w0 / std::sin(w0));
    return {static_cast<float>(std::tan(w0 / 2)), static_cast<float>(inverseQ)};
}

} // namespace

EqualizerUnit::EqualizerUnit(PeakingBank::Kernel kernel) : m_bank(kernel) {}

void EqualizerUnit::prepare(int sampleRate) {
    for (int band = 0; band < EQState::bandCount; ++band) {
        const auto index = static_cast<std::size_t>(band);
        m_shapes[index] = shapeOf(EQBands::all[index], sampleRate);
        m_bank.setShape(band, m_shapes[index]);
    }
    m_glideFrames = std::max(1, static_cast<int>(glideSeconds * sampleRate));
    takeTarget();
    m_now = m_target;
    settle();
    m_bank.reset();
}

void EqualizerUnit::configureWinampBands() {
    for (std::size_t band = 0; band < EQBands::all.size(); ++band)
        m_requested[band].store(0, std::memory_order_relaxed);
    m_version.fetch_add(1, std::memory_order_release);
}

void EqualizerUnit::apply(const EQState &state) {
    // At 0 dB everywhere the samples pass untouched, so bypassing needs no switch of its own.
    const auto level = [&](float decibels) { return state.isEnabled() ? decibels : 0.0F; };
    for (std::size_t band = 0; band < state.gains().size(); ++band)
        m_requested[band].store(level(state.gains()[band]), std::memory_order_relaxed);
    m_requested[preampIndex].store(level(state.preamp()), std::memory_order_relaxed);
    m_version.fetch_add(1, std::memory_order_release);
}

void EqualizerUnit::process(float *interleaved, int frames) {
    takeTarget();
    const FlushDenormals flush;
    while (m_glideLeft > 0 && frames > 0) {
        const int step = std::min({frames, m_glideLeft, glideStepFrames});
        glide(interleaved, step);
        interleaved += step * PeakingBank::channelCount;
        frames -= step;
    }
    if (frames <= 0 || m_work == Work::none)
        return;
    if (m_work == Work::filters) {
        m_bank.process(interleaved, frames);
        return;
    }
    const float gain = m_bank.parameters().inputGain;
    std::for_each_n(interleaved, frames * PeakingBank::channelCount,
                    [gain](float &sample) { sample *= gain; });
}

void EqualizerUnit::takeTarget() {
    const std::uint32_t version = m_version.load(std::memory_order_acquire);
    if (version == m_seenVersion)
        return;
    m_seenVersion = version;
    Levels target{};
    std::transform(m_requested.begin(), m_requested.end(), target.begin(),
                   [](const auto &level) { return level.load(std::memory_order_relaxed); });
    if (target != m_target)
        startGlide(target);
}

void EqualizerUnit::startGlide(const Levels &target) {
    m_target = target;
    m_start = m_now;
    m_glideLeft = m_glideFrames;
}

void EqualizerUnit::glide(float *interleaved, int frames) {
    m_glideLeft -= frames;
    const float time = static_cast<float>(m_glideLeft) / static_cast<float>(m_glideFrames);
    const float rest = time * time * (3 - 2 * time); // no kink where it begins and ends
    for (std::size_t index = 0; index < m_now.size(); ++index)
        m_now[index] = m_target[index] + (m_start[index] - m_target[index]) * rest;
    m_bank.processTowards(parametersAt(m_now), interleaved, frames);
    if (m_glideLeft == 0)
        settle();
}

// A filter at 0 dB passes its input bit for bit, so leaving out filters that all stand there changes nothing.
void EqualizerUnit::settle() {
    m_glideLeft = 0;
    m_bank.setParameters(parametersAt(m_now));
    const bool flat =
        std::all_of(m_now.begin(), m_now.begin() + preampIndex, [](float level) { return level == 0; });
    if (flat)
        m_bank.reset();
    m_work = !flat ? Work::filters : m_now[preampIndex] == 0 ? Work::none : Work::gainOnly;
}

PeakingBank::Parameters EqualizerUnit::parametersAt(const Levels &levels) const {
    PeakingBank::Parameters parameters;
    for (int band = 0; band < EQState::bandCount; ++band) {
        const auto index = static_cast<std::size_t>(band);
        parameters.setBand(band, m_shapes[index], levels[index]);
    }
    parameters.inputGain = static_cast<float>(linear(levels[preampIndex]));
    return parameters;
}

} // namespace vantor
