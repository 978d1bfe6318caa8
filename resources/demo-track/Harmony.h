#pragma once

#include <array>
#include <string_view>
#include <vector>

namespace vantor::demo {

/// The MIDI pitch of a name such as "F#4" or "Bb3"; used at compile time, where a wrong name is an error.
[[nodiscard]] consteval int pitch(std::string_view name) {
    constexpr std::string_view letters = "C D EF G A B";
    int value = static_cast<int>(letters.find(name.at(0)));
    std::size_t next = 1;
    if (name.at(next) == '#' || name.at(next) == 'b')
        value += name.at(next++) == '#' ? 1 : -1;
    return value + 12 * (name.at(next) - '0' + 1);
}

/// A chord as written: the bass's pitch and four pitch classes, not yet laid out for voices.
struct Chord {
    int bass = 0;
    std::array<int, 4> tones{};
};

/// Four voices' pitches, by voice.
using Voicing = std::array<int, 4>;

/// The piece's chords, one for each bar.
[[nodiscard]] const std::vector<Chord> &chordProgression();

/// Lays the chords out for four voices, each of which moves as little as it can from chord to chord.
[[nodiscard]] std::vector<Voicing> leadVoices(const std::vector<Chord> &chords);

} // namespace vantor::demo
