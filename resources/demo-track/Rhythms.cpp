#include "demo-track/Rhythms.h"

#include "demo-track/Oscillators.h"

#include <span>
#include <string_view>

namespace vantor::demo {

namespace {

/// A part of one bar in sixteenths: '.' is silence, '1' the softest stroke and '9' the hardest.
using Pattern = std::string_view;

constexpr Pattern kickTheme = "9.....7...8.....";
constexpr Pattern kickFour = "9...8...9...8..3";
constexpr Pattern kickReprise = "9..5..7.8...7...";
constexpr Pattern snareBackbeat = "....8.......8..2";
constexpr Pattern snareBusy = "....8..2.1..8..2";
constexpr Pattern snareFill = "....8...4.5.6789";
constexpr Pattern hatEighths = "6.3.6.3.6.3.6.32";
constexpr Pattern hatSixteenths = "6242624262426243";
constexpr Pattern hatLight = "4...3...4...3.2.";
constexpr Pattern openOffbeats = "..5...5...5...5.";
constexpr Pattern openLast = "..............6.";

class DrumWriter {
  public:
    void write(std::vector<Stroke> &part, int bar, Pattern pattern) {
        for (std::size_t i = 0; i < pattern.size(); ++i) {
            if (pattern[i] == '.')
                continue;
            // Sixteenths off the eighths come late (swing), all strokes some milliseconds uneven.
            const double swing = i % 2 == 1 ? 0.035 : 0.0;
            const double uneven = 0.004 * (1.0 + m_noise.next());
            const double level = (pattern[i] - '0') / 9.0 * (1.0 + 0.06 * m_noise.next());
            part.push_back({bar * beatsPerBar + static_cast<double>(i) * 0.25 + swing + uneven, level});
        }
    }

  private:
    Noise m_noise{7};
};

struct Groove {
    Pattern kick;
    Pattern snare;
    Pattern hat;
    Pattern openHat;
};

void writeSection(DrumWriter &writer, Score &score, int from, int to, const Groove &groove) {
    for (int bar = from; bar < to; ++bar) {
        const bool last = bar == to - 1;
        writer.write(score.kick, bar, groove.kick);
        writer.write(score.snare, bar, last ? snareFill : groove.snare);
        writer.write(score.hat, bar, groove.hat);
        writer.write(score.openHat, bar, (bar - from) % 4 == 3 ? openLast : groove.openHat);
    }
}

} // namespace

void writeDrums(Score &score) {
    DrumWriter writer;
    for (int bar = Form::introduction + 2; bar < Form::theme; ++bar)
        writer.write(score.hat, bar, hatLight);
    writer.write(score.kick, Form::theme - 1, "6.......6.....6.");
    writeSection(writer, score, Form::theme, Form::variation, {kickTheme, snareBackbeat, hatEighths, ""});
    writeSection(writer, score, Form::variation, Form::breakdown,
                 {kickFour, snareBusy, hatSixteenths, openOffbeats});
    writer.write(score.kick, Form::breakdown, "8...............");
    for (int bar = Form::breakdown + 2; bar < Form::reprise; ++bar)
        writer.write(score.hat, bar, hatLight);
    writer.write(score.snare, Form::reprise - 1, "........2.3.4567");
    writeSection(writer, score, Form::reprise, Form::ending,
                 {kickReprise, snareBusy, hatSixteenths, openOffbeats});
    writer.write(score.kick, Form::ending, "9...............");
    writer.write(score.hat, Form::ending, hatLight);

    for (const int bar : {Form::theme, Form::variation, Form::breakdown, Form::reprise, Form::ending})
        score.cymbal.push_back({static_cast<double>(bar * beatsPerBar), bar == Form::breakdown ? 0.6 : 1.0});
}

} // namespace vantor::demo
