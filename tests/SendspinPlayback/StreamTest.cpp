#include "tests/SendspinPlayback/PlaybackRig.h"

#include <gtest/gtest.h>

using namespace vantor;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

struct CodecRow {
    MadeFormat format;
    double codecDelay; ///< microseconds that the coded sound begins late
    double difference; ///< at most
};

// An opus encoder looks 6.5 ms ahead. What a sound at another rate cannot have is most of its little noise.
const CodecRow codecs[] = {
    {{.codec = u"pcm"_s}, 0, 0.03},
    {{.codec = u"pcm"_s, .bitDepth = 24}, 0, 0.03},
    {{.codec = u"pcm"_s, .sampleRate = 96'000, .bitDepth = 32}, 0, 0.03},
    {{.codec = u"pcm"_s, .sampleRate = 22'050, .channels = 1}, 0, 0.03},
    {{.codec = u"flac"_s}, 0, 0.03},
    {{.codec = u"flac"_s, .sampleRate = 44'100, .bitDepth = 24}, 0, 0.03},
    {{.codec = u"flac"_s, .channels = 6}, 0, 0.03},
    {{.codec = u"opus"_s}, 6500, 0.06},
};

} // namespace

TEST(SendspinStreamTest, PlaysEveryCodec) {
    for (const CodecRow &row : codecs) {
        SCOPED_TRACE((row.format.codec + u" %1 %2"_s.arg(row.format.sampleRate).arg(row.format.bitDepth))
                         .toStdString());
        PlaybackRig rig;
        rig.start();
        rig.simulation.server.play(row.format);
        rig.listen(2s);
        rig.listen(100ms);
        ASSERT_FALSE(rig.isSilent());
        EXPECT_LT(rig.leastDifference(row.codecDelay), row.difference);
        EXPECT_GT(rig.difference(row.codecDelay + 500), 2 * row.difference);
        EXPECT_EQ(rig.player.figures().dropped, 0);
    }
}

TEST(SendspinStreamTest, GoesOnInStepThroughAnOutputOfAnotherRate) {
    PlaybackRig rig;
    rig.start();
    rig.simulation.server.play({.codec = u"flac"_s});
    rig.listen(2s);
    for (const int rate : {44'100, 96'000}) {
        SCOPED_TRACE(rate);
        rig.switchOutput(rate);
        rig.listen(700ms); // what was decoded for the output before is lost
        rig.listen(100ms);
        ASSERT_FALSE(rig.isSilent());
        EXPECT_LT(rig.leastDifference(), 0.03);
        EXPECT_GT(rig.difference(500), 0.06);
    }
    EXPECT_EQ(rig.player.figures().resyncs, 0);
    EXPECT_EQ(rig.player.figures().dropped, 0);
}

TEST(SendspinStreamTest, ChangesTheFormatWithoutAGap) {
    PlaybackRig rig;
    rig.simulation.configuration.bufferCapacity = 200'000; // so that changes are heard soon
    rig.start();
    rig.simulation.server.play({.codec = u"flac"_s, .sampleRate = 44'100});
    rig.listen(1s);
    const MadeFormat formats[] = {{.codec = u"pcm"_s, .bitDepth = 24},
                                  {.codec = u"flac"_s, .sampleRate = 96'000, .bitDepth = 24},
                                  {.codec = u"flac"_s, .sampleRate = 44'100}};
    for (const MadeFormat &format : formats) {
        rig.simulation.server.changeFormat(format);
        for (int i = 0; i < 60; ++i) {
            rig.listen(50ms);
            EXPECT_LT(rig.leastDifference(), 0.1)
                << format.codec.toStdString() << " after " << i * 50 << " ms";
        }
    }
    EXPECT_EQ(rig.player.figures().resyncs, 0);
}

TEST(SendspinStreamTest, FollowsSeeksAndEnds) {
    PlaybackRig rig;
    std::vector<bool> streaming;
    QObject::connect(&rig.player, &SendspinPlayer::streamingChanged, &rig.player,
                     [&streaming](bool isStreaming) { streaming.push_back(isStreaming); });
    rig.start();
    rig.simulation.server.play({});
    rig.listen(2s);
    for (const auto how : {FakeSendspin::Seek::clears, FakeSendspin::Seek::restarts}) {
        rig.simulation.server.seek(41, how);
        rig.listen(60ms);
        rig.listen(200ms);
        EXPECT_TRUE(rig.isSilent()) << "the old sound is dropped";
        rig.listen(1s);
        rig.listen(200ms);
        EXPECT_LT(rig.leastDifference(), 0.1);
    }
    EXPECT_EQ(rig.player.figures().resyncs, 0);
    rig.simulation.server.endStream();
    rig.listen(60ms);
    rig.listen(1s);
    EXPECT_TRUE(rig.isSilent());
    EXPECT_EQ(rig.player.figures().bufferedBytes, 0);
    EXPECT_EQ(streaming, (std::vector<bool>{true, false, true, false}));
}

TEST(SendspinStreamTest, TakesUpAgainAfterALostConnection) {
    PlaybackRig rig;
    rig.start();
    rig.simulation.server.play({});
    rig.listen(3s);
    rig.simulation.server.dropClients();
    rig.listen(200ms);
    EXPECT_FALSE(rig.isSilent()) << "what has come is played";
    rig.listen(10s);
    rig.listen(200ms);
    EXPECT_LT(rig.leastDifference(), 0.1);
}

TEST(SendspinStreamTest, ObeysVolumeAndMuteAndKeepsThem) {
    PlaybackRig rig;
    rig.start();
    rig.simulation.server.play({});
    rig.listen(3s);
    const auto loudest = [&rig] {
        float most = 0;
        for (const PlaybackRig::Heard &sound : rig.heard)
            most = std::max(most, std::abs(sound.left));
        return most;
    };
    rig.simulation.server.command(u"volume"_s, {{u"volume"_s, 25}});
    rig.listen(500ms);
    rig.listen(200ms);
    EXPECT_NEAR(loudest(), 0.125F * 0.51F, 0.003F);
    rig.player.setMuted(true);
    rig.listen(50ms);
    rig.player.setVolume(100);
    rig.listen(200ms);
    EXPECT_TRUE(rig.isSilent()) << "the volume leaves mute alone";
    rig.player.setStaticDelay(99'999);
    rig.listen(200ms);

    const QJsonObject reported = rig.simulation.server.received(u"client/state"_s).last();
    const QJsonObject told = reported[u"player"_s].toObject();
    EXPECT_EQ(told[u"volume"_s].toInt(), 100);
    EXPECT_EQ(told[u"muted"_s].toBool(), true);
    EXPECT_EQ(told[u"static_delay_ms"_s].toInt(), 5000);
    QSettings(rig.settingsPath, QSettings::IniFormat).sync();
    const SendspinPlayer later(rig.simulation.session, rig.simulation.time.scheduler, rig.simulation.time,
                               rig.source,
                               std::make_unique<QSettings>(rig.settingsPath, QSettings::IniFormat), 1);
    EXPECT_EQ(later.state(), (SendspinPlayerState{true, 100, true, 5000}));
}
