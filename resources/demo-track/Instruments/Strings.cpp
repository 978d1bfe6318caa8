#include "demo-track/Instruments/Strings.h"

#include "demo-track/Filters.h"
#include "demo-track/Oscillators.h"

#include <algorithm>
#include <cmath>

namespace vantor::demo {

namespace {

/// A string as a delay line that loses its upper partials at each pass (Karplus and Strong).
class PluckedString {
  public:
    PluckedString(double hertz, double brightness, std::uint64_t seed) {
        // The loop's low pass delays by half a frame, the all-pass by the fraction that is left.
        const double period = sampleRate / hertz - 0.5;
        const auto whole = static_cast<std::size_t>(period - 0.1);
        const double fraction = period - static_cast<double>(whole);
        m_allPass = (1.0 - fraction) / (1.0 + fraction);
        m_loss = std::pow(0.001, 1.0 / (hertz * 2.2));
        Noise noise(seed);
        Smoother pick(1200.0 + 5200.0 * brightness);
        m_line.resize(whole);
        double mean = 0.0;
        for (std::size_t i = 0; i < whole; ++i) {
            // The string is drawn aside at a fifth of its length, and the plectrum scrapes.
            const double x = static_cast<double>(i) / static_cast<double>(whole);
            const double drawn = x < 0.2 ? x / 0.2 : (1.0 - x) / 0.8;
            m_line[i] = 1.5 * drawn + 0.8 * brightness * pick.next(noise.next());
            mean += m_line[i] / static_cast<double>(whole);
        }
        // What is constant in the loop would ring as an offset.
        for (double &value : m_line)
            value -= mean;
    }

    [[nodiscard]] double next() {
        const double out = m_line[m_position];
        const double damped = m_loss * 0.5 * (out + m_previous);
        m_previous = out;
        const double tuned = m_allPass * (damped - m_allPassOut) + m_allPassIn;
        m_allPassIn = damped;
        m_allPassOut = tuned;
        m_line[m_position] = tuned;
        m_position = (m_position + 1) % m_line.size();
        return out;
    }

  private:
    std::vector<double> m_line;
    std::size_t m_position = 0;
    double m_allPass = 0.0;
    double m_loss = 0.0;
    double m_previous = 0.0;
    double m_allPassIn = 0.0;
    double m_allPassOut = 0.0;
};

} // namespace

void playPlucks(Desk &desk, const Score &score) {
    Channel channel(desk, {.gain = 0.21, .delay = 0.22, .reverb = 0.35, .ducking = 0.1});
    for (std::size_t index = 0; index < score.plucks.size(); ++index) {
        const Note &note = score.plucks[index];
        PluckedString string(frequency(note.pitch), note.velocity, index + 1000);
        Filter rumble(90.0);
        const Pan pan(std::clamp((note.pitch - 69) / 20.0, -0.5, 0.5));
        const double held = std::max(note.beats * secondsPerBeat, 0.25);
        const double ringSeconds = held + 1.5;
        const auto frames = static_cast<std::size_t>(ringSeconds * sampleRate);
        for (std::size_t i = 0; i < frames; ++i) {
            const double time = static_cast<double>(i) / sampleRate;
            const double muted = time > held ? std::exp((held - time) / 0.25) : 1.0;
            const double onset = std::min(1.0, time / 0.001);
            const double last = std::min(1.0, (ringSeconds - time) / 0.05);
            const double value = rumble.highPass(string.next()) * muted * onset * last;
            channel.add(frameAt(note.beat) + i, value * note.velocity, pan);
        }
    }
}

void playBells(Desk &desk, const Score &score) {
    Channel channel(desk, {.gain = 0.105, .delay = 0.4, .reverb = 0.5});
    constexpr Envelope loudness{.attack = 0.002, .decay = 0.55, .sustain = 0.0, .release = 0.4};
    for (std::size_t index = 0; index < score.bells.size(); ++index) {
        const Note &note = score.bells[index];
        const double hertz = frequency(note.pitch);
        Oscillator modulator(hertz * 3.5);
        Oscillator overtone(hertz * 2.0);
        double phase = 0.0;
        const Pan pan(index % 2 == 0 ? -0.6 : 0.6);
        const auto frames = static_cast<std::size_t>(2.8 * sampleRate);
        for (std::size_t i = 0; i < frames; ++i) {
            const double time = static_cast<double>(i) / sampleRate;
            // The overtones of the stroke fade at once; the pure tone rings on.
            const double depth = 1.3 * note.velocity * std::exp(-time / 0.18);
            const double carrier = std::sin(2.0 * std::numbers::pi * phase + depth * modulator.sine());
            phase += hertz / sampleRate;
            phase -= std::floor(phase);
            const double tone = carrier + 0.25 * overtone.sine() * std::exp(-time / 0.25);
            const double level = loudness.at(time, 2.8) * note.velocity;
            channel.add(frameAt(note.beat) + i, tone * level, pan);
        }
    }
}

} // namespace vantor::demo
