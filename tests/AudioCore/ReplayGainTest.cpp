#include "AudioCore/ReplayGain.h"

#include "AudioCore/Decoding/AudioFileDecoder.h"
#include "tests/Support/AudioFileBuilder.h"
#include "tests/Support/TestFolder.h"

#include <QMap>

#include <gtest/gtest.h>

#include <cmath>

using namespace vantor;

TEST(ReplayGainTest, TagsOfBothKindsBecomeAFactor) {
    using Tags = QMap<QByteArray, QByteArray>;
    const Tags both{{"REPLAYGAIN_TRACK_GAIN", "-6.00 dB"}, {"REPLAYGAIN_ALBUM_GAIN", "+6 dB"}};
    const Tags loud{{"REPLAYGAIN_TRACK_GAIN", "12"}, {"REPLAYGAIN_TRACK_PEAK", "0.5"}};
    const auto decibels = [](double value) { return std::pow(10, value / 20); };
    const struct {
        const char *name;
        Tags tags;
        ReplayGainMode mode;
        bool holdsPeaks;
        double expected;
    } rows[] = {
        {"off", both, ReplayGainMode::off, true, 1},
        {"track", both, ReplayGainMode::track, true, decibels(-6)},
        {"album", both, ReplayGainMode::album, true, decibels(6)},
        {"no tags", {}, ReplayGainMode::track, true, 1},
        {"no words", {{"REPLAYGAIN_TRACK_GAIN", "loud"}}, ReplayGainMode::track, true, 1},
        {"nothing finite", {{"REPLAYGAIN_TRACK_GAIN", "nan dB"}}, ReplayGainMode::track, true, 1},
        {"the track's for the album", loud, ReplayGainMode::album, false, decibels(12)},
        {"a known peak is held", loud, ReplayGainMode::track, true, 2},
        {"or left to the limiter", loud, ReplayGainMode::track, false, decibels(12)},
        {"absurd", {{"REPLAYGAIN_TRACK_GAIN", "-400 dB"}}, ReplayGainMode::track, true, decibels(-24)},
        {"against the other reference", {{"R128_TRACK_GAIN", "-1280"}}, ReplayGainMode::track, true, 1},
        {"the album's of that kind", {{"R128_ALBUM_GAIN", "256"}}, ReplayGainMode::track, true, decibels(6)},
    };
    for (const auto &row : rows) {
        const ReplayGain gain = ReplayGain::fromTags([&](const char *name) { return row.tags.value(name); });
        EXPECT_NEAR(gain.factor(row.mode, row.holdsPeaks), row.expected, 1e-5) << row.name;
    }
}

TEST(ReplayGainTest, TheDecoderReadsItFromFilesOfEveryKind) {
    const TestFolder folder;
    const QMap<QString, QString> tags{{u"REPLAYGAIN_TRACK_GAIN"_qs, u"-7.25 dB"_qs},
                                      {u"REPLAYGAIN_ALBUM_PEAK"_qs, u"0.875"_qs}};
    for (const char *name : {"a.flac", "a.mp3", "a.ogg", "a.opus"}) {
        writeAudioFile(folder.path(name), {.seconds = 0.5, .tags = tags});
        const ReplayGain expected{.trackGain = -7.25, .trackPeak = {}, .albumGain = {}, .albumPeak = 0.875};
        EXPECT_EQ(AudioFileDecoder(folder.path(name), 44100).replayGain(), expected) << name;
    }
}
