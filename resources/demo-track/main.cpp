// Renders the demo track: make-demo-track <output.flac>

#include "demo-track/Effects.h"
#include "demo-track/FlacWriter.h"
#include "demo-track/Instruments/Drums.h"
#include "demo-track/Instruments/Keys.h"
#include "demo-track/Instruments/Strings.h"
#include "demo-track/Oscillators.h"
#include "demo-track/Score.h"

#include <cstdio>
#include <exception>
#include <utility>

using namespace vantor::demo;

namespace {

StereoBuffer render(const Score &score) {
    Desk desk(static_cast<std::size_t>(scoreSeconds() * sampleRate));
    playDrums(desk, score);
    playPad(desk, score);
    playBass(desk, score);
    playArpeggio(desk, score);
    playLead(desk, score);
    playPlucks(desk, score);
    playBells(desk, score);
    addDelay(desk);
    addReverb(desk);
    master(desk.dry);
    return std::move(desk.dry);
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fputs("usage: make-demo-track <output.flac>\n", stderr);
        return 2;
    }
    try {
        writeFlac(argv[1], render(composeScore()),
                  {{"TITLE", "Seventy-Five Columns"},
                   {"ARTIST", "Vantor"},
                   {"ALBUM", "Vantor Demo"},
                   {"GENRE", "Electronic"},
                   {"TRACKNUMBER", "1"}});
    } catch (const std::exception &error) {
        std::fprintf(stderr, "make-demo-track: %s\n", error.what());
        return 1;
    }
    return 0;
}
