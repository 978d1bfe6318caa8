#include "AudioCore/Decoding/AudioFileDecoder.h"

#include "AudioCore/AudioCoreError.h"
#include "tests/Support/AudioFileBuilder.h"
#include "tests/Support/TestFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <numbers>

using namespace vantor;

namespace {

// Its period fits no whole number of samples, so that sound from a wrong place never looks right.
constexpr double frequency = 437.0371;

class AudioFileDecoderTest : public testing::Test, protected TestFolder {
  protected:
    [[nodiscard]] QString make(const char *name, AudioFileContent content = {}) const {
        content.frequency = frequency;
        writeAudioFile(path(name), content);
        return path(name);
    }
};

std::vector<StereoFrame> readAll(AudioFileDecoder &decoder, std::size_t atMost = 100'000'000) {
    std::vector<StereoFrame> sound;
    while (sound.size() < atMost) {
        const std::span<const StereoFrame> block = decoder.read();
        if (block.empty())
            break;
        sound.insert(sound.end(), block.begin(), block.end());
    }
    return sound;
}

double rms(std::span<const StereoFrame> sound) {
    double sum = 0;
    for (const StereoFrame &frame : sound)
        sum += double{frame.left} * frame.left;
    return std::sqrt(sum / static_cast<double>(std::max<std::size_t>(sound.size(), 1)));
}

std::optional<AudioCoreError::Case> failureOf(const QString &path) {
    try {
        AudioFileDecoder decoder(path, 44100);
        readAll(decoder);
    } catch (const AudioCoreError &error) {
        return error.errorCase();
    }
    return std::nullopt;
}

} // namespace

TEST_F(AudioFileDecoderTest, EveryFormatKeepsItsLevelLengthAndName) {
    const std::tuple<const char *, int, int, const char *> rows[] = {
        {"a.wav", 44100, 1, "PCM"},    {"b.wav", 192000, 6, "PCM"},  {"a.flac", 96000, 2, "FLAC"},
        {"b.flac", 44100, 8, "FLAC"},  {"c.wav", 11025, 3, "PCM"},   {"d.wav", 48000, 7, "PCM"},
        {"c.flac", 32000, 4, "FLAC"},  {"d.flac", 88200, 5, "FLAC"}, {"a.mp3", 22050, 1, "MP3"},
        {"a.ogg", 44100, 2, "VORBIS"}, {"a.opus", 48000, 2, "OPUS"}, {"a.m4a", 44100, 2, "AAC"},
    };
    for (const auto &[name, rate, channels, codec] : rows) {
        SCOPED_TRACE(name);
        AudioFileDecoder decoder(make(name, {.seconds = 3, .sampleRate = rate, .channels = channels}), 44100);
        const bool lossless = name[2] == 'w' || name[2] == 'f';
        EXPECT_EQ(decoder.format(), (PlaybackFormat{static_cast<double>(rate), channels, QLatin1String(codec),
                                                    lossless ? std::optional(16) : std::nullopt}));
        EXPECT_NEAR(decoder.duration(), 3.0, 0.08);
        const std::vector<StereoFrame> sound = readAll(decoder);
        EXPECT_NEAR(static_cast<double>(sound.size()) / 44100, 3.0, 0.08);
        ASSERT_GT(sound.size(), 100'000U);
        const std::span<const StereoFrame> middle(sound.data() + 10'000, 80'000);
        // Mixed-down channels that carry the same sine add up to the same level. The MP3 encoder takes 5 %.
        EXPECT_NEAR(rms(middle), 0.5 / std::numbers::sqrt2, 0.02);

        decoder.seek(1.5);
        const std::vector<StereoFrame> rest = readAll(decoder);
        EXPECT_NEAR(static_cast<double>(rest.size()) / 44100, 1.5, 0.08);
        EXPECT_NEAR(rms({rest.data(), 40'000}), rms(middle), 0.01);
    }
}

TEST_F(AudioFileDecoderTest, WhatIsNoSongIsRefused) {
    write("empty.mp3", {});
    write("text.flac", "This is not a sound.\n");
    write("noise.bin", QByteArray(100'000, '\x5a'));
    write("head.wav", read(make("good.wav")).left(20));
    write("folder.mp3/file", {});
    write("locked.m4p", read(make("plain.m4a")).replace("mp4a", "drms"));
    write("locked.m4a", read(path("plain.m4a")).replace("mp4a", "enca"));
    ASSERT_EQ(mkfifo(path("pipe.mp3").toLocal8Bit(), 0600), 0);
    for (const char *name : {"empty.mp3", "text.flac", "noise.bin", "head.wav", "folder.mp3", "pipe.mp3",
                             "locked.m4p", "locked.m4a"})
        EXPECT_EQ(failureOf(path(name)), AudioCoreError::Case::openFailure) << name;
    EXPECT_EQ(failureOf(path("missing.mp3")), AudioCoreError::Case::readFailure);
}

TEST_F(AudioFileDecoderTest, WhatIsInAFileCountsNotItsName) {
    for (const auto &[name, alias] :
         {std::pair("a.mp3", "mp3.flac"), {"a.flac", "flac.mp3"}, {"a.m4a", "m4a.ogg"}}) {
        SCOPED_TRACE(alias);
        AudioFileDecoder decoder(write(alias, read(make(name))), 44100);
        EXPECT_NEAR(static_cast<double>(readAll(decoder).size()), 44100, 2);
    }
}

TEST_F(AudioFileDecoderTest, AListDressedUpAsASongOpensNothingElse) {
    const QByteArray song = make("secret.wav").toUtf8();
    const QByteArray list = "#EXTM3U\n#EXT-X-TARGETDURATION:5\n#EXTINF:5,\n";
    const QByteArray segment = list + make("secret.m4a").toUtf8() + "\n#EXT-X-ENDLIST\n";
    const std::pair<const char *, QByteArray> rows[] = {
        {"hls.mp3", segment},
        {"hls.m3u8", segment},
        {"concat.mp3", "ffconcat version 1.0\nfile '" + song + "'\n"},
        {"relative.ffconcat", "ffconcat version 1.0\nfile secret.wav\n"},
        {"net.mp3", list + "http://127.0.0.1:9/a.ts\n"},
    };
    for (const auto &[name, text] : rows)
        EXPECT_TRUE(failureOf(write(name, text)).has_value()) << name;
}

TEST_F(AudioFileDecoderTest, DamageIsSkippedAndCutsEndTheSong) {
    for (const char *name : {"a.mp3", "a.flac", "a.ogg"}) {
        SCOPED_TRACE(name);
        QByteArray song = read(make(name, {.seconds = 4}));
        const qsizetype middle = song.size() / 2;
        song.replace(middle, 900, QByteArray(900, '\xff'));
        AudioFileDecoder damaged(write("damaged", song), 44100);
        EXPECT_NEAR(static_cast<double>(readAll(damaged).size()) / 44100, 4.0, 1.1);
        AudioFileDecoder cut(write("cut", song.left(middle)), 44100);
        EXPECT_NEAR(static_cast<double>(readAll(cut).size()) / 44100, 2.0, 1.1);
    }
    // A header that promises sound, and then nothing that decodes.
    QByteArray flac = read(make("b.flac", {.seconds = 60}));
    for (qsizetype i = 9000; i < flac.size(); ++i)
        flac[i] = static_cast<char>(i * 7919 >> 5);
    AudioFileDecoder ruined(write("ruined.flac", flac), 44100);
    try {
        EXPECT_LT(readAll(ruined).size(), 60U * 44100 / 2);
    } catch (const AudioCoreError &error) {
        EXPECT_EQ(error, AudioCoreError::readFailure());
    }
}

TEST_F(AudioFileDecoderTest, AbsurdSampleRatesTakeNoAbsurdMemory) {
    QByteArray wav = read(make("a.wav", {.seconds = 0.2}));
    for (const quint32 rate : {1U, 7U, 768000U, 0U, 768001U, 0x7fffffffU}) {
        SCOPED_TRACE(rate);
        for (int byte = 0; byte < 4; ++byte)
            wav[24 + byte] = static_cast<char>(rate >> (8 * byte));
        try {
            AudioFileDecoder decoder(write("rate.wav", wav), 44100);
            for (int block = 0; block < 20; ++block)
                EXPECT_LT(decoder.read().size(), 1'000'000U);
            EXPECT_LE(rate, 768000U);
        } catch (const AudioCoreError &) {
            EXPECT_TRUE(rate == 0 || rate > 768000);
        }
    }
}
