#include "demo-track/Harmony.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace vantor::demo {

namespace {

// Pitch classes.
constexpr int C = 0, Cs = 1, D = 2, E = 4, F = 5, Fs = 6, G = 7, A = 9, Bb = 10, B = 11;

constexpr Chord Dmaj9{pitch("D2"), {D, Fs, A, E}};
constexpr Chord DoverFs{pitch("F#2"), {D, Fs, A, E}};
constexpr Chord AoverCs{pitch("C#2"), {Cs, E, A, B}};
constexpr Chord Amaj{pitch("A1"), {Cs, E, A, B}};
constexpr Chord Asus{pitch("A1"), {D, E, A, B}};
constexpr Chord Bm7{pitch("B1"), {D, Fs, A, B}};
constexpr Chord Bm9{pitch("B1"), {D, Fs, A, Cs}};
constexpr Chord Gmaj7{pitch("G1"), {D, Fs, G, B}};
constexpr Chord Gmaj9{pitch("G1"), {D, Fs, A, B}};
constexpr Chord Gm6{pitch("G1"), {D, E, G, Bb}};
constexpr Chord Em9{pitch("E2"), {D, Fs, G, B}};
constexpr Chord Fsm7{pitch("F#2"), {Cs, E, Fs, A}};
constexpr Chord Bbmaj9{pitch("Bb1"), {C, D, F, A}};

constexpr int lowestVoice = pitch("B3");
constexpr int highestVoice = pitch("C#5");

/// The pitch of the class that lies nearest to `from`.
int nearest(int from, int pitchClass) {
    const int up = ((pitchClass - from) % 12 + 12) % 12;
    return up <= 6 ? from + up : from + up - 12;
}

/// The smaller, the better: movement, and a high price for crowded, crossed or stray voices.
int cost(const Voicing &before, const Voicing &after) {
    int sum = 0;
    for (std::size_t i = 0; i < after.size(); ++i) {
        sum += std::abs(after[i] - before[i]);
        sum += 4 * std::max({0, lowestVoice - after[i], after[i] - highestVoice});
        if (i > 0 && after[i] <= after[i - 1])
            sum += 50;
    }
    return sum;
}

Voicing follow(const Voicing &before, std::array<int, 4> tones) {
    std::sort(tones.begin(), tones.end());
    Voicing best{};
    int bestCost = std::numeric_limits<int>::max();
    do {
        Voicing candidate{};
        for (std::size_t i = 0; i < tones.size(); ++i)
            candidate[i] = nearest(before[i], tones[i]);
        const int candidateCost = cost(before, candidate);
        if (candidateCost < bestCost) {
            best = candidate;
            bestCost = candidateCost;
        }
    } while (std::next_permutation(tones.begin(), tones.end()));
    return best;
}

} // namespace

const std::vector<Chord> &chordProgression() {
    static const std::vector<Chord> chords{
        Dmaj9, Gmaj7,   Bm7,     Asus,                           // introduction
        Dmaj9, AoverCs, Bm7,     Gmaj7, Em9, Fsm7,  Gmaj9, Asus, // theme
        Bm9,   Gmaj7,   DoverFs, Amaj,  Em9, Gmaj9, Fsm7,  Asus, // variation
        Gmaj9, Bm7,     Bbmaj9,  Asus,                           // break
        Dmaj9, AoverCs, Bm7,     Gmaj7, Em9, Fsm7,  Gm6,   Asus, // return
        Dmaj9, Dmaj9,                                            // ending
    };
    return chords;
}

std::vector<Voicing> leadVoices(const std::vector<Chord> &chords) {
    std::vector<Voicing> voicings;
    Voicing current{pitch("D4"), pitch("E4"), pitch("F#4"), pitch("A4")};
    for (const Chord &chord : chords) {
        current = follow(current, chord.tones);
        voicings.push_back(current);
    }
    return voicings;
}

} // namespace vantor::demo
