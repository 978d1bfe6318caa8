#include "demo-track/Instruments/Drums.h"

#include "demo-track/Filters.h"
#include "demo-track/Oscillators.h"

#include <algorithm>
#include <cmath>

namespace vantor::demo {

namespace {

/// Calls `sound(frame, seconds)` for `length` seconds from the beat on.
template <typename Sound>
void renderStroke(double beat, double length, Sound sound) {
    const auto frames = static_cast<std::size_t>(length * sampleRate);
    const std::size_t start = frameAt(beat);
    for (std::size_t i = 0; i < frames; ++i)
        sound(start + i, static_cast<double>(i) / sampleRate);
}

void playKick(Desk &desk, const Score &score) {
    Channel channel(desk, {.gain = 0.43, .reverb = 0.03});
    for (const Stroke &stroke : score.kick) {
        Oscillator body(150.0);
        Noise noise(3);
        Filter click(3500.0);
        renderStroke(stroke.beat, 0.5, [&](std::size_t frame, double time) {
            body.setFrequency(47.0 + 110.0 * std::exp(-time / 0.028));
            const double thump = body.sine() * std::exp(-time / 0.13) * std::min(1.0, (0.5 - time) / 0.05);
            const double beater = click.bandPass(noise.next()) * std::exp(-time / 0.004);
            const double value = (thump + 0.25 * beater) * stroke.velocity;
            channel.add(frame, value, value);
        });
    }
}

void playSnare(Desk &desk, const Score &score) {
    Channel channel(desk, {.gain = 0.26, .reverb = 0.22});
    for (std::size_t index = 0; index < score.snare.size(); ++index) {
        const Stroke &stroke = score.snare[index];
        Oscillator low(184.0);
        Oscillator high(331.0);
        Noise leftNoise(index + 5000);
        Noise rightNoise(index + 6000);
        Filter leftWires(1900.0);
        Filter rightWires(1900.0);
        // A soft stroke sounds shorter, not only quieter.
        const double ring = 0.05 + 0.09 * stroke.velocity;
        renderStroke(stroke.beat, 0.6, [&](std::size_t frame, double time) {
            const double onset = std::min(1.0, time / 0.0008);
            const double skin = (low.sine() * 0.6 + high.sine() * 0.3) * std::exp(-time / 0.055);
            const double wires = 0.55 * std::exp(-time / ring);
            const double level = onset * stroke.velocity;
            channel.add(frame, (skin + wires * leftWires.highPass(leftNoise.next())) * level,
                        (skin + wires * rightWires.highPass(rightNoise.next())) * level);
        });
    }
}

/// Closed and open hat differ in how long they ring alone.
void playHats(Desk &desk, const std::vector<Stroke> &strokes, double decay, double gain, std::uint64_t seed) {
    Channel channel(desk, {.gain = gain, .delay = 0.04, .reverb = 0.08});
    for (std::size_t index = 0; index < strokes.size(); ++index) {
        const Stroke &stroke = strokes[index];
        Noise noise(seed + index);
        const Pan pan(0.3);
        Filter first(7200.0);
        Filter second(8200.0, 1.3);
        renderStroke(stroke.beat, decay * 8.0, [&](std::size_t frame, double time) {
            const double onset = std::min(1.0, time / 0.0006);
            const double metal = second.highPass(first.highPass(noise.next()));
            channel.add(frame, metal * onset * std::exp(-time / decay) * stroke.velocity, pan);
        });
    }
}

void playCymbals(Desk &desk, const Score &score) {
    Channel channel(desk, {.gain = 0.10, .reverb = 0.3});
    for (std::size_t index = 0; index < score.cymbal.size(); ++index) {
        const Stroke &stroke = score.cymbal[index];
        Noise leftNoise(index + 8000);
        Noise rightNoise(index + 9000);
        Filter left(4200.0);
        Filter right(4200.0);
        renderStroke(stroke.beat, 4.0, [&](std::size_t frame, double time) {
            const double level = std::min(1.0, time / 0.002) * std::exp(-time / 0.7) * stroke.velocity *
                                 std::min(1.0, 4.0 - time);
            channel.add(frame, left.highPass(leftNoise.next()) * level,
                        right.highPass(rightNoise.next()) * level);
        });
    }
}

/// Noise whose band climbs until the next section begins.
void playRisers(Desk &desk, const Score &score) {
    Channel channel(desk, {.gain = 0.10, .delay = 0.1, .reverb = 0.35});
    for (const Note &riser : score.risers) {
        Noise leftNoise(11);
        Noise rightNoise(12);
        Filter left(500.0);
        Filter right(500.0);
        const double length = riser.beats * secondsPerBeat;
        renderStroke(riser.beat, length, [&](std::size_t frame, double time) {
            const double x = time / length;
            const double hertz = 400.0 * std::exp2(4.2 * x);
            left.tune(hertz, 1.6);
            right.tune(hertz * 1.1, 1.6);
            const double level = x * x * riser.velocity * std::min(1.0, (length - time) / 0.02);
            channel.add(frame, left.bandPass(leftNoise.next()) * level,
                        right.bandPass(rightNoise.next()) * level);
        });
    }
}

} // namespace

void playDrums(Desk &desk, const Score &score) {
    std::vector<std::size_t> kickFrames;
    for (const Stroke &stroke : score.kick)
        kickFrames.push_back(frameAt(stroke.beat));
    duckAt(desk, kickFrames);
    playKick(desk, score);
    playSnare(desk, score);
    playHats(desk, score.hat, 0.035, 0.22, 20000);
    playHats(desk, score.openHat, 0.16, 0.15, 30000);
    playCymbals(desk, score);
    playRisers(desk, score);
}

} // namespace vantor::demo
