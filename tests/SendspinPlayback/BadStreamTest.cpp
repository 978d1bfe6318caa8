#include "tests/SendspinPlayback/PlaybackRig.h"

#include <gtest/gtest.h>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();

QByteArray garbage(qsizetype size, unsigned seed) {
    std::mt19937 chance(seed);
    QByteArray bytes(size, Qt::Uninitialized);
    std::generate(bytes.begin(), bytes.end(), [&chance] { return static_cast<char>(chance()); });
    return bytes;
}

/// A player that is in the middle of a stream.
class SendspinBadStreamTest : public testing::Test {
  protected:
    void SetUp() override {
        rig.start();
        rig.simulation.server.play({});
        rig.listen(1500ms);
    }
    void start(const SendspinStreamFormat &format) {
        rig.player.take({SendspinEvent::StreamStarted{format}});
    }
    void chunk(std::int64_t timestamp, const QByteArray &data) {
        rig.player.take({SendspinEvent::Audio{{timestamp, data}}});
        EXPECT_LE(rig.player.figures().bufferedBytes, rig.simulation.configuration.bufferCapacity);
    }
    void expectRecovery() {
        rig.simulation.server.endStream();
        rig.listen(1s);
        rig.simulation.server.play({});
        rig.listen(1500ms);
        rig.listen(200ms);
        EXPECT_LT(rig.leastDifference(), 0.1);
    }

    PlaybackRig rig;
};

} // namespace

TEST_F(SendspinBadStreamTest, SurvivesChunksOfGarbage) {
    const QByteArray header = "fLaC\x80" + garbage(37, 1);
    const SendspinStreamFormat formats[] = {
        {u"pcm"_s, 48'000, 2, 24, {}},     {u"pcm"_s, 384'000, 8, 32, {}},     {u"flac"_s, 48'000, 2, 16, {}},
        {u"flac"_s, 8'000, 8, 24, header}, {u"flac"_s, 96'000, 1, 16, "fLaC"}, {u"opus"_s, 48'000, 2, 16, {}},
        {u"opus"_s, 8'000, 1, 0, header},
    };
    for (const SendspinStreamFormat &format : formats) {
        SCOPED_TRACE(format.codec.toStdString());
        start(format);
        for (unsigned i = 0; i < 60; ++i) {
            const qsizetype size = i % 7 == 0 ? 300'000 : static_cast<qsizetype>(i * i);
            chunk(rig.simulation.server.clock() + i * 10'000, garbage(size, i));
            rig.listen(10ms);
        }
    }
    for (const PlaybackRig::Heard &sound : rig.heard)
        EXPECT_TRUE(std::isfinite(sound.left));
    expectRecovery();
}

TEST_F(SendspinBadStreamTest, PlaysOnAmongWildTimestamps) {
    for (int i = 0; i < 20; ++i) {
        const std::int64_t now = rig.simulation.server.clock();
        for (const std::int64_t time : {least, least + 1, std::int64_t{0}, now - 3'600'000'000,
                                        now + 3'600'000'000, greatest - 1, greatest})
            chunk(time, garbage(100, 3));
        rig.listen(100ms);
    }
    rig.listen(1s);
    rig.listen(200ms);
    EXPECT_LT(rig.leastDifference(), 0.1);
    EXPECT_GE(rig.player.figures().dropped + rig.player.figures().late, 100);
}

TEST_F(SendspinBadStreamTest, RefusesFormatsThatItCannotDecode) {
    const SendspinStreamFormat formats[] = {
        {u"vorbis"_s, 48'000, 2, 16, {}},
        {u"pcm"_s, 48'000, 2, 17, {}},
        {u"pcm"_s, 1, 2, 16, {}},
        {u"pcm"_s, 1'000'000, 2, 16, {}},
        {u"pcm"_s, 48'000, 64, 16, {}},
        {u"opus"_s, 48'000, 6, 16, {}},
        {u"flac"_s, 48'000, 2, 16, QByteArray(1'000'000, 'x')},
        {QString(), 48'000, 2, 16, {}},
    };
    for (const SendspinStreamFormat &format : formats) {
        const std::int64_t dropped = rig.player.figures().dropped;
        start(format);
        EXPECT_FALSE(rig.player.isStreaming());
        chunk(rig.simulation.server.clock() + 400'000, garbage(500, 1));
        EXPECT_EQ(rig.player.figures().dropped, dropped + 1);
    }
    expectRecovery();
}

TEST_F(SendspinBadStreamTest, HoldsNoMoreThanItsCapacity) {
    start({u"pcm"_s, 48'000, 2, 16, {}});
    const std::int64_t now = rig.simulation.server.clock();
    const std::int64_t dropped = rig.player.figures().dropped;
    for (int i = 0; i < 100; ++i)
        chunk(now + 2'000'000 + i * 1'000'000, QByteArray(50'000, 'a'));
    EXPECT_GE(rig.player.figures().dropped, dropped + 80);
    rig.player.take({SendspinEvent::StreamCleared{}});
    EXPECT_EQ(rig.player.figures().bufferedBytes, 0);
    for (int i = 0; i < 20'000; ++i)
        chunk(now + 2'000'000 + i, QByteArray(1, 'a'));
    EXPECT_LE(rig.player.figures().bufferedBytes, std::int64_t{SendspinBuffer::mostChunks});
    expectRecovery();
}

TEST_F(SendspinBadStreamTest, CountsChunksThatComeTooLate) {
    rig.simulation.server.endStream();
    rig.listen(500ms);
    start({u"pcm"_s, 48'000, 2, 16, {}});
    const std::int64_t late = rig.player.figures().late;
    for (int i = 0; i < 10; ++i)
        chunk(rig.simulation.server.clock() - 1'000'000 + i * 10'000, QByteArray(1920, 'a'));
    rig.listen(200ms);
    EXPECT_EQ(rig.player.figures().late, late + 10);
    EXPECT_TRUE(rig.isSilent());
    expectRecovery();
}
