#include "AudioCore/Decoding/AudioFileDecoder.h"

#include "AudioCore/AudioCoreError.h"
#include "tests/Support/AudioFileBuilder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <numbers>

using namespace vantor;

namespace {

// Its period fits no whole number of samples, so that sound from a wrong place never looks right.
constexpr double frequency = 437.0371;

class AudioFileDecoderTest : public testing::Test {
  protected:
    [[nodiscard]] QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }

    [[nodiscard]] QString make(const char *name, AudioFileContent content = {}) const {
        content.frequency = frequency;
        writeAudioFile(path(name), content);
        return path(name);
    }

    void write(const char *name, const QByteArray &bytes) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    [[nodiscard]] QByteArray bytes(const QString &name) const {
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    QTemporaryDir m_folder;
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

TEST_F(AudioFileDecoderTest, LosslessFilesDecodeToTheirVerySamplesAndSeekToThem) {
    for (const char *name : {"a.wav", "a.aiff", "a.flac", "a.mka"}) {
        SCOPED_TRACE(name);
        AudioFileDecoder decoder(make(name, {.seconds = 7, .channels = 2}), 44100);
        EXPECT_DOUBLE_EQ(decoder.duration(), 7.0);
        const std::vector<StereoFrame> whole = readAll(decoder);
        ASSERT_EQ(whole.size(), 7U * 44100);
        for (std::size_t i = 0; i < whole.size(); ++i) {
            const double phase = 2 * std::numbers::pi * frequency * static_cast<double>(i) / 44100;
            const double source = std::round(0.5 * std::sin(phase) * 32768) / 32768;
            ASSERT_NEAR(whole[i].left, source, 1.01 / 32768) << i;
            ASSERT_EQ(whole[i].left, whole[i].right) << i;
        }
        if (std::string_view(name) == "a.mka")
            continue; // its clock ticks in milliseconds
        for (const double seconds : {3.0, 6.99, 0.0, 0.05, 1.2345678, 5.5, 6.999977}) {
            SCOPED_TRACE(seconds);
            decoder.seek(seconds);
            const auto place = static_cast<std::ptrdiff_t>(std::llround(seconds * 44100));
            const std::vector<StereoFrame> rest(whole.begin() + place, whole.end());
            ASSERT_EQ(readAll(decoder), rest);
        }
        decoder.seek(7.0);
        EXPECT_TRUE(decoder.read().empty());
        decoder.seek(1e9);
        EXPECT_TRUE(decoder.read().empty());
    }
}

TEST_F(AudioFileDecoderTest, EveryFormatKeepsItsLevelLengthAndName) {
    const struct {
        const char *name;
        int rate, channels;
        PlaybackFormat format;
    } rows[] = {
        {"a.wav", 44100, 1, {44100, 1, QStringLiteral("PCM"), 16}},
        {"b.wav", 8000, 2, {8000, 2, QStringLiteral("PCM"), 16}},
        {"c.wav", 192000, 6, {192000, 6, QStringLiteral("PCM"), 16}},
        {"a.aiff", 22050, 2, {22050, 2, QStringLiteral("PCM"), 16}},
        {"a.flac", 96000, 2, {96000, 2, QStringLiteral("FLAC"), 16}},
        {"b.flac", 44100, 8, {44100, 8, QStringLiteral("FLAC"), 16}},
        {"a.mp3", 44100, 2, {44100, 2, QStringLiteral("MP3"), std::nullopt}},
        {"b.mp3", 22050, 1, {22050, 1, QStringLiteral("MP3"), std::nullopt}},
        {"a.ogg", 44100, 2, {44100, 2, QStringLiteral("VORBIS"), std::nullopt}},
        {"a.opus", 48000, 2, {48000, 2, QStringLiteral("OPUS"), std::nullopt}},
        {"a.m4a", 44100, 2, {44100, 2, QStringLiteral("AAC"), std::nullopt}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        AudioFileDecoder decoder(
            make(row.name, {.seconds = 3, .sampleRate = row.rate, .channels = row.channels}), 44100);
        EXPECT_EQ(decoder.format(), row.format);
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
    const QString wav = make("good.wav");
    write("empty.mp3", {});
    write("text.flac", "This is not a sound.\n");
    write("noise.bin", QByteArray(100'000, '\x5a'));
    write("head.wav", bytes(wav).left(20));
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("folder.mp3")));
    ASSERT_EQ(mkfifo(path("pipe.mp3").toLocal8Bit(), 0600), 0);
    for (const char *name :
         {"missing.mp3", "empty.mp3", "text.flac", "noise.bin", "head.wav", "folder.mp3", "pipe.mp3"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(failureOf(path(name)), AudioCoreError::Case::openFailure);
    }
}

TEST_F(AudioFileDecoderTest, AListDressedUpAsASongOpensNothingElse) {
    const QByteArray song = make("secret.wav").toUtf8();
    const QByteArray segment = make("secret.m4a").toUtf8();
    const struct {
        const char *name;
        QByteArray text;
    } rows[] = {
        {"hls.mp3", "#EXTM3U\n#EXT-X-TARGETDURATION:5\n#EXTINF:5,\n" + segment + "\n#EXT-X-ENDLIST\n"},
        {"hls.m3u8", "#EXTM3U\n#EXT-X-TARGETDURATION:5\n#EXTINF:5,\nfile:" + segment + "\n#EXT-X-ENDLIST\n"},
        {"concat.mp3", "ffconcat version 1.0\nfile '" + song + "'\n"},
        {"relative.ffconcat", "ffconcat version 1.0\nfile secret.wav\n"},
        {"net.mp3", "#EXTM3U\n#EXT-X-TARGETDURATION:5\n#EXTINF:5,\nhttp://127.0.0.1:9/a.ts\n"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        write(row.name, row.text);
        EXPECT_TRUE(failureOf(path(row.name)).has_value());
    }
}

TEST_F(AudioFileDecoderTest, DamageIsSkippedAndCutsEndTheSong) {
    for (const char *name : {"a.mp3", "a.flac", "a.ogg"}) {
        SCOPED_TRACE(name);
        QByteArray song = bytes(make(name, {.seconds = 4}));
        const qsizetype middle = song.size() / 2;
        song.replace(middle, 900, QByteArray(900, '\xff'));
        write("damaged", song);
        AudioFileDecoder damaged(path("damaged"), 44100);
        EXPECT_NEAR(static_cast<double>(readAll(damaged).size()) / 44100, 4.0, 1.1);

        write("cut", song.left(middle));
        AudioFileDecoder cut(path("cut"), 44100);
        EXPECT_NEAR(static_cast<double>(readAll(cut).size()) / 44100, 2.0, 1.1);
    }
    // A header that promises sound, and then nothing that decodes.
    QByteArray flac = bytes(make("b.flac", {.seconds = 60}));
    for (qsizetype i = 9000; i < flac.size(); ++i)
        flac[i] = static_cast<char>(i * 7919 >> 5);
    write("ruined.flac", flac);
    AudioFileDecoder ruined(path("ruined.flac"), 44100);
    try {
        EXPECT_LT(readAll(ruined).size(), 60U * 44100 / 2);
    } catch (const AudioCoreError &error) {
        EXPECT_EQ(error, AudioCoreError::readFailure());
    }
}

TEST_F(AudioFileDecoderTest, AbsurdSampleRatesTakeNoAbsurdMemory) {
    QByteArray wav = bytes(make("a.wav", {.seconds = 0.2}));
    for (const quint32 rate : {1U, 7U, 768000U, 0U, 768001U, 0x7fffffffU}) {
        SCOPED_TRACE(rate);
        for (int byte = 0; byte < 4; ++byte)
            wav[24 + byte] = static_cast<char>(rate >> (8 * byte));
        write("rate.wav", wav);
        try {
            AudioFileDecoder decoder(path("rate.wav"), 44100);
            for (int block = 0; block < 20; ++block)
                EXPECT_LT(decoder.read().size(), 1'000'000U);
            EXPECT_LE(rate, 768000U);
        } catch (const AudioCoreError &) {
            EXPECT_TRUE(rate == 0 || rate > 768000);
        }
    }
}
