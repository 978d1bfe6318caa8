#pragma once

#include "demo-track/Envelopes.h"
#include "demo-track/Oscillators.h"

#include <cstddef>
#include <vector>

namespace vantor::demo {

inline constexpr double beatsPerMinute = 118.0;
inline constexpr double secondsPerBeat = 60.0 / beatsPerMinute;
inline constexpr int beatsPerBar = 4;

/// The form, as the first bar of each section.
namespace Form {
inline constexpr int introduction = 0;
inline constexpr int theme = 4;
inline constexpr int variation = 12;
inline constexpr int breakdown = 20;
inline constexpr int reprise = 24;
inline constexpr int ending = 32;
inline constexpr int end = 34;
} // namespace Form

/// A note; beats count from the start of the piece, pitches are MIDI's, the velocity is 0…1.
struct Note {
    double beat = 0.0;
    double beats = 0.0;
    int pitch = 0;
    double velocity = 1.0;
};

/// A drum stroke.
struct Stroke {
    double beat = 0.0;
    double velocity = 1.0;
};

/// Everything that is played, part by part; cutoffs are hertz.
struct Score {
    std::vector<Note> pad;
    std::vector<Note> bass;
    std::vector<Note> arpeggio;
    std::vector<Note> lead;
    std::vector<Note> plucks;
    std::vector<Note> bells;
    std::vector<Stroke> kick;
    std::vector<Stroke> snare;
    std::vector<Stroke> hat;
    std::vector<Stroke> openHat;
    std::vector<Stroke> cymbal;
    std::vector<Note> risers;
    std::vector<CurvePoint> padCutoff;
    std::vector<CurvePoint> arpeggioCutoff;
};

[[nodiscard]] Score composeScore();

/// The frame at which a beat falls.
[[nodiscard]] constexpr std::size_t frameAt(double beat) {
    return static_cast<std::size_t>(beat * secondsPerBeat * sampleRate);
}

/// Length of the rendered piece, the last chord's dying away included.
[[nodiscard]] constexpr double scoreSeconds() {
    return Form::end * beatsPerBar * secondsPerBeat + 2.2;
}

} // namespace vantor::demo
