#include "demo-track/Instruments/Keys.h"

#include "demo-track/Filters.h"
#include "demo-track/Oscillators.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace vantor::demo {

namespace {

double slowWave(double hertz, double seconds) {
    return std::sin(2.0 * std::numbers::pi * hertz * seconds);
}

/// Calls `voice(frame, seconds since the note's start, level)` for every frame of the note.
template <typename Voice>
void renderNote(const Note &note, const Envelope &envelope, Voice voice) {
    const double held = note.beats * secondsPerBeat;
    const auto frames = static_cast<std::size_t>(envelope.duration(held) * sampleRate);
    const std::size_t start = frameAt(note.beat);
    for (std::size_t i = 0; i < frames; ++i) {
        const double time = static_cast<double>(i) / sampleRate;
        voice(start + i, time, envelope.at(time, held) * note.velocity);
    }
}

// Filters follow their curves in steps of this many frames (1.5 ms), too short to be heard.
constexpr std::size_t controlFrames = 64;

/// Five saws to a voice, spread by cents and across the panorama.
void playPadNote(Channel &channel, const Score &score, const Note &note, std::size_t index) {
    constexpr std::array<double, 5> cents{-11.0, -5.0, 0.0, 6.0, 12.0};
    constexpr std::array<double, 5> leftShare{1.0, 0.2, 0.6, 0.8, 0.1};
    std::array<Oscillator, 5> oscillators;
    Noise phases(index + 100);
    for (std::size_t i = 0; i < oscillators.size(); ++i)
        oscillators[i] = Oscillator(frequency(note.pitch, cents[i]), 0.5 + 0.5 * phases.next());
    Filter left(1000.0);
    Filter right(1000.0);
    double tremolo = 1.0;
    const double drift = 0.07 + 0.02 * phases.next();
    renderNote(note, {0.35, 1.5, 0.85, 0.35}, [&](std::size_t frame, double time, double level) {
        if (frame % controlFrames == 0) {
            tremolo = 1.0 + 0.08 * slowWave(0.31, time);
            const double seconds = static_cast<double>(frame) / sampleRate;
            const double cutoff = curveAt(score.padCutoff, seconds / secondsPerBeat);
            left.tune(cutoff * (1.0 + 0.25 * slowWave(drift, seconds)), 0.8);
            right.tune(cutoff * (1.0 - 0.25 * slowWave(drift, seconds)), 0.8);
        }
        double leftSum = 0.0;
        double rightSum = 0.0;
        for (std::size_t i = 0; i < oscillators.size(); ++i) {
            const double value = oscillators[i].saw();
            leftSum += value * leftShare[i];
            rightSum += value * (1.1 - leftShare[i]);
        }
        channel.add(frame, left.lowPass(leftSum) * level * tremolo,
                    right.lowPass(rightSum) * level * tremolo);
    });
}

} // namespace

void playPad(Desk &desk, const Score &score) {
    Channel channel(desk, {.gain = 0.032, .delay = 0.0, .reverb = 0.45, .ducking = 0.55});
    for (std::size_t i = 0; i < score.pad.size(); ++i)
        playPadNote(channel, score, score.pad[i], i);
}

void playBass(Desk &desk, const Score &score) {
    Channel channel(desk, {.gain = 0.19, .ducking = 0.45});
    for (const Note &note : score.bass) {
        Oscillator fundamental(frequency(note.pitch));
        Oscillator saw(frequency(note.pitch, 4.0), 0.25);
        Filter filter(400.0);
        // The last note is let ring.
        const double release = note.beats > beatsPerBar ? 0.7 : 0.035;
        renderNote(note, {0.006, 0.8, 0.55, release}, [&](std::size_t frame, double time, double level) {
            if (frame % controlFrames == 0)
                filter.tune(160.0 + 900.0 * note.velocity * std::exp(-time / 0.12), 1.1);
            const double tone = 0.75 * fundamental.sine() + 0.45 * filter.lowPass(saw.saw());
            // A bent sine carries the bass to small loudspeakers by its overtones.
            const double warm = tone / std::sqrt(1.0 + 0.6 * tone * tone);
            channel.add(frame, warm * level, warm * level);
        });
    }
}

void playArpeggio(Desk &desk, const Score &score) {
    Channel channel(desk, {.gain = 0.105, .delay = 0.38, .reverb = 0.22, .ducking = 0.25});
    for (const Note &note : score.arpeggio) {
        Oscillator pulse(frequency(note.pitch, -3.0));
        Oscillator triangle(frequency(note.pitch, 3.0), 0.4);
        Filter filter(1000.0);
        const double width = 0.5 - 0.3 * std::abs(slowWave(0.013, note.beat));
        const Pan pan(0.85 * slowWave(0.125, note.beat + 0.5 * note.pitch));
        renderNote(note, {0.003, 0.16, 0.12, 0.05}, [&](std::size_t frame, double time, double level) {
            if (frame % controlFrames == 0 || time == 0.0) {
                const double cutoff = curveAt(score.arpeggioCutoff, note.beat);
                filter.tune(cutoff * (0.35 + 0.65 * std::exp(-time / 0.09)), 1.4);
            }
            const double tone = 0.6 * pulse.pulse(width) + 0.7 * triangle.triangle();
            channel.add(frame, filter.lowPass(tone) * level, pan);
        });
    }
}

void playLead(Desk &desk, const Score &score) {
    Channel channel(desk, {.gain = 0.15, .delay = 0.28, .reverb = 0.30, .ducking = 0.12});
    for (const Note &note : score.lead) {
        Oscillator first(frequency(note.pitch));
        Oscillator second(frequency(note.pitch), 0.3);
        Oscillator body(frequency(note.pitch), 0.6);
        Filter left(2000.0);
        Filter right(2000.0);
        renderNote(note, {0.018, 0.5, 0.7, 0.09}, [&](std::size_t frame, double time, double level) {
            if (frame % controlFrames == 0 || time == 0.0) {
                // The vibrato sets in once the note stands.
                const double vibrato = 9.0 * std::clamp((time - 0.22) / 0.4, 0.0, 1.0) * slowWave(5.3, time);
                first.setFrequency(frequency(note.pitch, vibrato - 6.0));
                second.setFrequency(frequency(note.pitch, vibrato + 6.0));
                body.setFrequency(frequency(note.pitch, vibrato));
                const double cutoff = 1200.0 + 4400.0 * note.velocity * std::exp(-time / 0.5);
                left.tune(cutoff, 0.9);
                right.tune(cutoff * 1.08, 0.9);
            }
            const double core = 0.7 * body.triangle();
            channel.add(frame, (left.lowPass(0.5 * first.saw()) + core) * level,
                        (right.lowPass(0.5 * second.saw()) + core) * level);
        });
    }
}

} // namespace vantor::demo
