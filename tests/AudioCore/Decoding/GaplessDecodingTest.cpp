#include "AudioCore/Decoding/AudioFileDecoder.h"
#include "tests/Support/AudioFileBuilder.h"
#include "tests/Support/Sweep.h"
#include "tests/Support/TestFolder.h"

#include <gtest/gtest.h>
#include <taglib/mp4file.h>

using namespace vantor;

namespace {

class GaplessDecodingTest : public testing::Test, protected TestFolder {
  protected:
    [[nodiscard]] QString encode(const char *name, std::span<const StereoFrame> sound, int rate,
                                 const std::vector<std::string> &options = {}) const {
        encodeAudioFile(path(name), sound, rate, options);
        return path(name);
    }
};

std::vector<StereoFrame> readAll(AudioFileDecoder &decoder, std::size_t atMost = SIZE_MAX) {
    std::vector<StereoFrame> sound;
    for (std::span<const StereoFrame> block; sound.size() < atMost && !(block = decoder.read()).empty();)
        sound.insert(sound.end(), block.begin(), block.end());
    return sound;
}

} // namespace

TEST_F(GaplessDecodingTest, WhatEncodersAddIsCutOffAtBothEndsAlsoAfterASeek) {
    const struct {
        const char *name;
        int rate;
        std::vector<std::string> options;
        double difference; ///< one sample's delay makes 0.02 and more
    } rows[] = {
        {"a.wav", 44100, {}, 0},
        {"a.aiff", 44100, {}, 0},
        {"a.flac", 44100, {}, 0},
        {"a.wv", 44100, {}, 0},
        {"a.mka", 44100, {}, 0},
        {"lossless.m4a", 44100, {"-c:a", "alac"}, 0},
        {"constant.mp3", 44100, {"-b:a", "320k"}, 0.002},
        {"variable.mp3", 48000, {"-q:a", "2"}, 0.002},
        {"a.ogg", 44100, {}, 0.008},
        {"a.opus", 48000, {}, 0.01},
        {"a.webm", 48000, {}, 0.01},
        {"a.m4a", 44100, {}, 0.008},
        {"b.m4a", 48000, {"-movflags", "+faststart"}, 0.008},
    };
    for (const auto &row : rows) {
        for (const std::size_t frames : {100'000U, 77'777U, 17'740U}) {
            SCOPED_TRACE(row.name);
            SCOPED_TRACE(frames);
            const std::vector<StereoFrame> source = makeSweep(frames, row.rate);
            AudioFileDecoder decoder(encode(row.name, source, row.rate, row.options), row.rate);
            EXPECT_NEAR(decoder.duration(), static_cast<double>(frames) / row.rate, 0.03);
            const std::vector<StereoFrame> whole = readAll(decoder);
            EXPECT_EQ(whole.size(), frames);
            EXPECT_LE(difference(whole, source), row.difference);
            for (const double seconds : {0.01, 1.2345678, 0.3}) {
                SCOPED_TRACE(seconds);
                if (seconds > decoder.duration())
                    continue;
                decoder.seek(seconds);
                const std::vector<StereoFrame> rest = readAll(decoder);
                const auto place = static_cast<std::size_t>(std::llround(seconds * row.rate));
                // The clock of these containers ticks in milliseconds.
                const std::string_view name(row.name);
                const std::size_t tolerance = name == "a.webm" || name == "a.mka" ? 48 : 0;
                EXPECT_NEAR(static_cast<double>(rest.size()), static_cast<double>(frames - place),
                            static_cast<double>(tolerance));
                if (tolerance == 0)
                    EXPECT_LE(difference(rest, std::span(whole).subspan(place)), row.difference / 2);
            }
            for (const double seconds : {decoder.duration(), 1e9}) {
                decoder.seek(seconds);
                EXPECT_TRUE(decoder.read().empty()) << "behind the end";
            }
        }
    }
}

TEST_F(GaplessDecodingTest, ATagMayHoldTheLengthOfAnMP4File) {
    constexpr std::size_t frames = 77'777;
    const std::vector<StereoFrame> source = makeSweep(frames, 44100);
    const QString path = encode("a.m4a", source, 44100, {"-use_editlist", "0"});
    TagLib::MP4::File file(path.toUtf8().constData());
    const char *const gaps = " 00000000 00000400 00000030 0000000000012FD1 00000000 00000000";
    file.tag()->setItem("----:com.apple.iTunes:iTunSMPB", TagLib::StringList(gaps));
    ASSERT_TRUE(file.save());
    AudioFileDecoder decoder(path, 44100);
    EXPECT_DOUBLE_EQ(decoder.duration(), frames / 44100.0);
    const std::vector<StereoFrame> whole = readAll(decoder);
    EXPECT_EQ(whole.size(), frames);
    EXPECT_LE(difference(whole, source), 0.008);
}

TEST_F(GaplessDecodingTest, AnotherSampleRateKeepsLengthAndPlace) {
    const std::tuple<int, int, std::size_t> rows[] = {{44100, 48000, 100'000}, {44100, 48000, 77'777},
                                                      {48000, 44100, 77'777},  {96000, 44100, 100'001},
                                                      {22050, 48000, 30'001},  {44100, 192000, 20'003}};
    for (const auto &[from, to, frames] : rows) {
        SCOPED_TRACE(from);
        SCOPED_TRACE(to);
        AudioFileDecoder decoder(encode("a.wav", makeSweep(frames, from), from), to);
        const std::vector<StereoFrame> sound = readAll(decoder);
        EXPECT_EQ(sound.size(), static_cast<std::size_t>(std::llround(double(frames) * to / from)));
        EXPECT_LE(difference(sound, makeSweep(sound.size(), to)), 0.0005);
    }
}

TEST_F(GaplessDecodingTest, FilesThatAreResampledAsOneJoinLikeOne) {
    const std::vector<StereoFrame> source = makeSweep(100'000, 44100);
    const std::span<const StereoFrame> parts(source);
    AudioFileDecoder whole(encode("whole.wav", source, 44100), 48000);
    AudioFileDecoder first(encode("first.wav", parts.first(61'111), 44100), 48000);
    AudioFileDecoder second(encode("second.wav", parts.subspan(61'111), 44100), 48000);
    AudioFileDecoder other(encode("other.wav", parts.first(500), 48000), 48000);

    std::vector<StereoFrame> joined;
    while (first.hasMore()) {
        const std::span<const StereoFrame> block = first.read();
        joined.insert(joined.end(), block.begin(), block.end());
    }
    EXPECT_EQ(other.continueFrom(first), std::nullopt) << "it is not resampled";
    const std::optional<std::int64_t> tail = second.continueFrom(first);
    ASSERT_TRUE(tail);
    EXPECT_EQ(joined.size() + static_cast<std::size_t>(*tail), 66'515U) << "61111 · 48000 / 44100";
    EXPECT_TRUE(first.read().empty());
    for (const StereoFrame &frame : readAll(second))
        joined.push_back(frame);
    EXPECT_EQ(joined, readAll(whole));
}

TEST_F(GaplessDecodingTest, ASeekInBareFramesFindsTheSampleThatDecodingThroughFinds) {
    const struct {
        const char *name;
        double seconds;
        std::vector<std::string> options;
    } rows[] = {
        {"long.mp3", 230, {"-write_xing", "0"}}, // so large that the constant rate is calculated
        {"variable.mp3", 60, {"-q:a", "5", "-write_xing", "0"}},
        {"variable xing.mp3", 60, {"-q:a", "5"}},
        {"low.mp3", 60, {"-ar", "22050", "-ac", "1", "-b:a", "32k"}},
        {"a.mp2", 60, {}},
        {"a.aac", 60, {}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const auto frames = static_cast<std::size_t>(row.seconds * 44100);
        AudioFileDecoder decoder(encode(row.name, makeSweep(frames, 44100), 44100, row.options), 44100);
        const std::vector<StereoFrame> whole = readAll(decoder);
        for (const double seconds : {0.9, 0.1, 0.5, 0.99, 0.0}) {
            SCOPED_TRACE(seconds);
            decoder.seek(seconds * row.seconds);
            const auto place = static_cast<std::size_t>(std::llround(seconds * row.seconds * 44100));
            const bool toTheEnd = seconds > 0.95;
            const std::vector<StereoFrame> rest = readAll(decoder, toTheEnd ? SIZE_MAX : 20'000);
            if (toTheEnd)
                EXPECT_EQ(rest.size(), whole.size() - place);
            EXPECT_LE(difference(rest, std::span(whole).subspan(place)), 0.002);
        }
    }
}
