#include "demo-track/Score.h"

#include "demo-track/Harmony.h"
#include "demo-track/Melodies.h"
#include "demo-track/Rhythms.h"

#include <array>
#include <span>

namespace vantor::demo {

namespace {

constexpr double barBeat(int bar) {
    return static_cast<double>(bar * beatsPerBar);
}

void writeMelody(std::vector<Note> &part, int bar, std::span<const MelodyStep> steps, double velocity,
                 int transposition = 0) {
    double beat = barBeat(bar);
    for (const MelodyStep &step : steps) {
        if (step.pitch != rest) {
            // Longer notes carry the line; short ones lead to them.
            const double weight = step.beats >= 1.0 ? 1.0 : 0.85;
            part.push_back({beat, step.beats * 0.94, step.pitch + transposition, velocity * weight});
        }
        beat += step.beats;
    }
}

/// A voice that stays on its pitch is held over the bar line.
void writePad(Score &score, const std::vector<Voicing> &voicings) {
    for (std::size_t voice = 0; voice < Voicing{}.size(); ++voice) {
        std::size_t start = 0;
        for (std::size_t bar = 1; bar <= voicings.size(); ++bar) {
            const bool held = bar < voicings.size() && voicings[bar][voice] == voicings[start][voice] &&
                              bar - start < 4 && static_cast<int>(bar) != Form::breakdown;
            if (held)
                continue;
            const auto beat = static_cast<double>(start) * beatsPerBar;
            const auto length = static_cast<double>(bar - start) * beatsPerBar;
            score.pad.push_back({beat, length, voicings[start][voice] - 12 * (voice == 0), 1.0});
            start = bar;
        }
    }
}

void writeBassBar(std::vector<Note> &part, int bar, int root, int nextRoot) {
    const double beat = barBeat(bar);
    if (bar >= Form::variation && bar < Form::breakdown) {
        for (int eighth = 0; eighth < 8; ++eighth) {
            const bool offbeat = eighth % 2 == 1;
            part.push_back({beat + eighth * 0.5, 0.42, root + (offbeat ? 12 : 0), offbeat ? 0.75 : 0.95});
        }
        return;
    }
    part.push_back({beat, 1.3, root, 1.0});
    part.push_back({beat + 1.5, 0.45, root + 12, 0.7});
    part.push_back({beat + 2.0, 0.9, root, 0.9});
    part.push_back({beat + 3.0, 0.45, root, 0.7});
    // The last eighth leads into the next bar's root from the step of the scale (D major) below it.
    const int nextClass = nextRoot % 12;
    const int stepBelow = nextClass == pitch("G1") % 12 || nextClass == pitch("D2") % 12 ? 1 : 2;
    part.push_back({beat + 3.5, 0.45, nextRoot == root ? root + 12 : nextRoot - stepBelow, 0.7});
}

void writeBass(Score &score, const std::vector<Chord> &chords) {
    for (int bar = Form::introduction; bar < Form::end; ++bar) {
        const int root = chords[static_cast<std::size_t>(bar)].bass;
        const bool playing =
            (bar >= Form::theme && bar < Form::breakdown) || (bar >= Form::reprise && bar < Form::ending);
        if (playing)
            writeBassBar(score.bass, bar, root, chords[static_cast<std::size_t>(bar) + 1].bass);
        else if (bar >= Form::introduction + 2 && bar != Form::ending + 1)
            score.bass.push_back({barBeat(bar), bar == Form::ending ? 6.0 : 3.8, root, 0.55});
    }
}

void writeArpeggioBar(std::vector<Note> &part, int bar, const Voicing &voicing) {
    constexpr std::array<std::size_t, 16> rising{0, 1, 2, 3, 1, 2, 3, 2, 0, 2, 1, 3, 2, 3, 1, 2};
    constexpr std::array<std::size_t, 16> falling{3, 2, 1, 3, 2, 0, 3, 1, 2, 3, 0, 2, 3, 1, 2, 0};
    const auto &order = bar % 2 == 0 ? rising : falling;
    for (std::size_t i = 0; i < order.size(); ++i) {
        const bool accent = i % 8 == 0 || i % 8 == 3 || i % 8 == 6;
        // The return lifts every accent by an octave, which makes a second line of them.
        const int lift = bar >= Form::reprise && accent ? 24 : 12;
        part.push_back({barBeat(bar) + static_cast<double>(i) * 0.25 + (i % 2 == 1 ? 0.02 : 0.0), 0.22,
                        voicing[order[i]] + lift, accent ? 1.0 : 0.6});
    }
}

void writeArpeggio(Score &score, const std::vector<Voicing> &voicings) {
    for (int bar = Form::introduction; bar < Form::ending; ++bar) {
        if (bar != Form::breakdown && bar != Form::breakdown + 1)
            writeArpeggioBar(score.arpeggio, bar, voicings[static_cast<std::size_t>(bar)]);
    }
}

/// Short broken chords between the beats.
void writePlucks(Score &score, const std::vector<Voicing> &voicings) {
    for (int bar = Form::theme; bar < Form::ending; ++bar) {
        const bool resting = bar >= Form::breakdown && bar < Form::reprise;
        const Voicing &voicing = voicings[static_cast<std::size_t>(bar)];
        for (std::size_t voice = 0; voice < voicing.size() && !resting; ++voice) {
            const double strum = static_cast<double>(voice) * 0.035;
            score.plucks.push_back({barBeat(bar) + 0.5 + strum, 0.5, voicing[voice], 0.55});
            score.plucks.push_back({barBeat(bar) + 2.5 + strum, 0.5, voicing[3 - voice], 0.45});
        }
    }
}

void writeMelodies(Score &score) {
    writeMelody(score.bells, Form::introduction, Melodies::introduction(), 0.8);
    writeMelody(score.lead, Form::theme, Melodies::theme(), 0.95);
    writeMelody(score.lead, Form::variation, Melodies::variation(), 0.9);
    writeMelody(score.bells, Form::variation, Melodies::variationAnswer(), 0.7);
    writeMelody(score.plucks, Form::breakdown, Melodies::breakdown(), 1.0);
    writeMelody(score.bells, Form::breakdown, Melodies::breakdown(), 0.75, 12);
    writeMelody(score.lead, Form::reprise, Melodies::reprise(), 1.0);
    writeMelody(score.lead, Form::reprise, Melodies::repriseSecond(), 0.6);
    writeMelody(score.bells, Form::reprise, Melodies::reprise(), 0.35, 12);
    writeMelody(score.plucks, Form::ending, Melodies::ending(), 0.9);
    writeMelody(score.bells, Form::ending, Melodies::ending(), 0.4, 12);
}

void writeCurves(Score &score) {
    score.padCutoff = {{barBeat(Form::introduction), 350.0}, {barBeat(Form::theme), 1500.0},
                       {barBeat(Form::variation), 1300.0},   {barBeat(Form::breakdown) - 0.5, 2600.0},
                       {barBeat(Form::breakdown), 900.0},    {barBeat(Form::reprise), 4200.0},
                       {barBeat(Form::reprise) + 1, 2200.0}, {barBeat(Form::ending), 3000.0},
                       {barBeat(Form::end), 500.0}};
    score.arpeggioCutoff = {{barBeat(Form::introduction), 500.0},  {barBeat(Form::theme), 5200.0},
                            {barBeat(Form::variation), 3800.0},    {barBeat(Form::breakdown), 6500.0},
                            {barBeat(Form::breakdown) + 8, 600.0}, {barBeat(Form::reprise), 7000.0},
                            {barBeat(Form::ending), 4500.0}};
    score.risers = {{barBeat(Form::theme) - 4, 4.0, 0, 0.6}, {barBeat(Form::reprise) - 8, 8.0, 0, 1.0}};
}

} // namespace

Score composeScore() {
    const std::vector<Chord> &chords = chordProgression();
    const std::vector<Voicing> voicings = leadVoices(chords);
    Score score;
    writePad(score, voicings);
    writeBass(score, chords);
    writeArpeggio(score, voicings);
    writePlucks(score, voicings);
    writeMelodies(score);
    writeDrums(score);
    writeCurves(score);
    return score;
}

} // namespace vantor::demo
