#include "AudioCore/Playback/Player.h"
#include "tests/Support/AudioFileBuilder.h"
#include "tests/Support/Sweep.h"
#include "tests/Support/TestFolder.h"
#include "tests/Support/TestOutput.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

using namespace vantor;
using testing::ElementsAre;

namespace {

// A square of its own level, so that every heard frame tells which track it is of.
std::vector<StereoFrame> level(float value, double seconds) {
    return std::vector<StereoFrame>(static_cast<std::size_t>(seconds * 44100), StereoFrame{value, value});
}

std::int64_t framesAt(const std::vector<StereoFrame> &sound, float value) {
    return std::count_if(sound.begin(), sound.end(),
                         [&](const StereoFrame &frame) { return std::abs(frame.left - value) < 0.0001F; });
}

class GaplessTest : public testing::Test, protected TestFolder {
  protected:
    GaplessTest() {
        m_player.addEventObserver([this](const PlayerEvent &event) {
            static constexpr std::array states{"stopped", "loading", "playing", "paused"};
            if (const auto *changed = std::get_if<PlayerEvents::TrackChanged>(&event))
                m_events.push_back(changed->track->title.toStdString());
            if (const auto *state = std::get_if<PlayerEvents::StateChanged>(&event))
                m_events.push_back(states[static_cast<std::size_t>(state->state)]);
            if (const auto *failed = std::get_if<PlayerEvents::Failed>(&event))
                m_events.push_back("failed " + failed->failure.track->title.toStdString() + " " +
                                   std::to_string(failed->failure.consecutiveFailures));
        });
    }

    Track track(const QString &name, std::span<const StereoFrame> sound = {}, int rate = 44100) {
        Track track;
        track.id = QUuid::createUuid();
        track.title = name.section(QLatin1Char('.'), 0, 0);
        track.source = QUrl::fromLocalFile(path(name.toUtf8().constData()));
        if (!sound.empty())
            encodeAudioFile(path(name.toUtf8().constData()), sound, rate);
        return track;
    }

    bool pumpUntil(PlaybackState state) {
        return m_output.pump([&] { return m_player.state() == state; });
    }
    bool pumpUntilHeard(const char *title, double seconds) {
        return m_output.pump([&] {
            const std::optional<Track> current = m_player.queue().current();
            return current && current->title == QLatin1String(title) && m_player.currentTime() >= seconds;
        });
    }
    bool pumpFor(double seconds) {
        const std::size_t end =
            m_output.heard.size() + static_cast<std::size_t>(seconds * m_output.sampleRate);
        return m_output.pump([&] { return m_output.heard.size() >= end; });
    }
    std::vector<std::string> takeEvents() { return std::exchange(m_events, {}); }

    // What was heard from the first sound on.
    [[nodiscard]] std::vector<StereoFrame> heard() const {
        const auto loud = [](const StereoFrame &frame) { return frame.left != 0; };
        return {std::find_if(m_output.heard.begin(), m_output.heard.end(), loud), m_output.heard.end()};
    }

    // What was heard from where it is likest to a sound's beginning.
    [[nodiscard]] std::span<const StereoFrame> alignedTo(std::span<const StereoFrame> sound) const {
        const std::span<const StereoFrame> all(m_output.heard);
        const std::size_t loud = all.size() - heard().size();
        std::size_t best = loud;
        double least = 1;
        for (std::size_t start = loud - std::min<std::size_t>(loud, 1500); start <= loud + 2; ++start) {
            const double error = difference(all.subspan(start), sound.first(10'000));
            if (error < least)
                std::tie(least, best) = std::pair(error, start);
        }
        return all.subspan(best);
    }

    TestOutput::Shared m_output;
    std::vector<std::string> m_events;
    Player m_player{std::make_unique<FileTrackResolver>(), std::make_unique<TestOutputDevices>(m_output)};
};

} // namespace

TEST_F(GaplessTest, ASweepInTenFilesSoundsAsIfItWereOne) {
    const struct {
        const char *ending;
        int rate;
        int outputRate;
        std::size_t parts;
        double seconds;
        double difference; ///< of any sample; what a codec does to a sound's edges is most of it
    } rows[] = {
        {"wav", 44100, 44100, 10, 2.5, 0},    {"flac", 44100, 44100, 10, 2.5, 0},
        {"flac", 44100, 48000, 2, 6, 0.01},   {"mp3", 44100, 44100, 10, 2.5, 0.12},
        {"ogg", 44100, 44100, 10, 2.5, 0.12}, {"opus", 48000, 48000, 10, 2.5, 0.05},
        {"opus", 48000, 44100, 2, 6, 0.05},   {"m4a", 44100, 44100, 10, 2.5, 0.12},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.ending);
        m_output.sampleRate = row.outputRate;
        m_output.heard.clear();
        const std::size_t frames = static_cast<std::size_t>(row.rate * row.seconds);
        const std::vector<StereoFrame> source = makeSweep(frames, row.rate);
        std::vector<Track> tracks;
        for (std::size_t part = 0; part < row.parts; ++part) {
            const std::size_t begin = frames * part / row.parts + (part % 3) * 100;
            const std::size_t end =
                part == row.parts - 1 ? frames : frames * (part + 1) / row.parts + ((part + 1) % 3) * 100;
            tracks.push_back(track(QStringLiteral("%1.%2").arg(part).arg(QLatin1String(row.ending)),
                                   std::span(source).subspan(begin, end - begin), row.rate));
        }
        Player player(std::make_unique<FileTrackResolver>(), std::make_unique<TestOutputDevices>(m_output));
        player.enqueue(tracks);
        player.play();
        ASSERT_TRUE(m_output.pump([&] { return player.state() == PlaybackState::playing; }));
        ASSERT_TRUE(m_output.pump([&] { return player.state() == PlaybackState::stopped; }));

        const auto length =
            static_cast<std::size_t>(std::llround(static_cast<double>(frames) * row.outputRate / row.rate));
        const std::vector<StereoFrame> expected =
            row.rate == row.outputRate ? source : makeSweep(length, row.outputRate);
        const std::span<const StereoFrame> sound = alignedTo(expected);
        ASSERT_GE(sound.size(), length);
        EXPECT_LE(largestDifference(sound, expected), row.difference);
        EXPECT_EQ(framesAt({sound.begin() + static_cast<std::ptrdiff_t>(length), sound.end()}, 0),
                  static_cast<std::int64_t>(sound.size() - length))
            << "and silence after it";
    }
}

TEST_F(GaplessTest, PartsOfAFileSoundLikeTheFile) {
    const struct {
        const char *ending;
        int rate;
        int outputRate;
    } rows[] = {
        {"flac", 44100, 44100}, {"flac", 44100, 48000}, {"mp3", 44100, 44100}, {"opus", 48000, 44100}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.ending);
        m_output.sampleRate = row.outputRate;
        const Track whole = track(QStringLiteral("whole.%1").arg(QLatin1String(row.ending)),
                                  makeSweep(static_cast<std::size_t>(row.rate) * 2, row.rate), row.rate);
        std::vector<Track> parts(3, whole);
        const double starts[] = {0, 31 / 75.0, 93 / 75.0};
        for (std::size_t i = 0; i < parts.size(); ++i) {
            parts[i].id = QUuid::createUuid();
            parts[i].range = TrackRange{starts[i], {}};
            if (i + 1 < parts.size())
                parts[i].range->end = starts[i + 1];
        }
        const auto soundOf = [&](const std::vector<Track> &tracks) {
            m_output.heard.clear();
            Player player(std::make_unique<FileTrackResolver>(),
                          std::make_unique<TestOutputDevices>(m_output));
            player.enqueue(tracks);
            player.play();
            EXPECT_TRUE(m_output.pump([&] { return player.state() == PlaybackState::playing; }));
            EXPECT_NEAR(player.duration(), tracks.size() == 1 ? 2 : starts[1], 0.05);
            EXPECT_TRUE(m_output.pump([&] { return player.state() == PlaybackState::stopped; }));
            EXPECT_EQ(player.queue().currentIndex(), static_cast<int>(tracks.size()) - 1);
            std::vector<StereoFrame> sound = heard();
            while (!sound.empty() && sound.back() == StereoFrame{})
                sound.pop_back();
            return sound;
        };
        const std::vector<StereoFrame> expected = soundOf({whole});
        EXPECT_GT(expected.size(), static_cast<std::size_t>(row.outputRate) * 19 / 10);
        EXPECT_TRUE(soundOf(parts) == expected);
    }
}

TEST_F(GaplessTest, APartStartsEndsAndSeeksWithinItsBounds) {
    const std::vector<StereoFrame> source = makeSweep(44100 * 4, 44100);
    Track part = track(QStringLiteral("whole.flac"), source);
    part.range = TrackRange{1, 3};
    Track other = part;
    other.id = QUuid::createUuid();
    other.range = TrackRange{0.5, 0.7}; // does not follow in the file
    m_player.enqueue({part, other});
    m_player.play();
    ASSERT_TRUE(pumpUntil(PlaybackState::playing));
    EXPECT_EQ(m_player.duration(), 2);
    ASSERT_TRUE(pumpUntil(PlaybackState::stopped));
    std::vector<StereoFrame> expected(source.begin() + 44100, source.begin() + 3 * 44100);
    expected.insert(expected.end(), source.begin() + 22050, source.begin() + 30870);
    const auto at =
        std::search(m_output.heard.begin(), m_output.heard.end(), expected.begin(), expected.end());
    EXPECT_NE(at, m_output.heard.end());

    m_output.heard.clear();
    m_player.play(0);
    ASSERT_TRUE(pumpUntil(PlaybackState::playing));
    m_player.seek(1.5);
    EXPECT_EQ(m_player.currentTime(), 1.5);
    ASSERT_TRUE(m_output.pump([&] { return m_player.queue().currentIndex() == 1; }));
    const auto tail = std::search(m_output.heard.begin(), m_output.heard.end(),
                                  source.begin() + 44100 * 5 / 2 + 1000, source.begin() + 44100 * 3);
    EXPECT_NE(tail, m_output.heard.end());
    m_player.seek(0);
    ASSERT_TRUE(pumpUntil(PlaybackState::stopped));
}

TEST_F(GaplessTest, WhatFollowsCanStillBeChangedBeforeTheJoin) {
    const Track a = track(QStringLiteral("a.wav"), level(0.1F, 1)),
                b = track(QStringLiteral("b.wav"), level(0.2F, 1)),
                c = track(QStringLiteral("c.wav"), level(0.3F, 0.5));
    const std::pair<const char *, std::function<void()>> rows[] = {
        {"remove", [&] { m_player.removeTrack(1); }},
        {"move", [&] { m_player.moveTracks({2}, -1); }},
        {"replace several times",
         [&] {
             for (int i = 0; i < 3; ++i) {
                 m_player.moveTracks({2}, -1);
                 ASSERT_TRUE(pumpFor(0.03));
             }
             m_player.removeTrack(2);
         }},
    };
    for (const auto &[name, edit] : rows) {
        SCOPED_TRACE(name);
        m_player.restoreQueue({a, b, c}, 0, RepeatMode::off, false);
        m_output.heard.clear();
        m_player.play();
        ASSERT_TRUE(pumpUntilHeard("a", 0.5)); // b is in the node
        edit();
        ASSERT_TRUE(pumpUntilHeard("c", 0.2));
        const std::vector<StereoFrame> sound = heard();
        EXPECT_EQ(framesAt(sound, 0.2F), 0);
        EXPECT_EQ(framesAt(sound, 0.1F), 44100);
        EXPECT_NEAR(sound.at(44100).left, 0.3, 0.0001) << "no gap either";
        m_player.stop();
        ASSERT_TRUE(pumpFor(0.05)); // what is heard fades out
    }
    m_player.restoreQueue({a, b}, 0, RepeatMode::off, false);
    m_output.heard.clear();
    m_player.play();
    ASSERT_TRUE(pumpUntilHeard("a", 0.5));
    m_player.removeTrack(1);
    ASSERT_TRUE(pumpUntil(PlaybackState::stopped));
    EXPECT_EQ(framesAt(heard(), 0.2F), 0) << "nothing follows";
    m_player.enqueue({b});
    m_output.heard.clear();
    m_player.play();
    ASSERT_TRUE(pumpUntilHeard("a", 0.5));
    m_player.setRepeatMode(RepeatMode::one);
    ASSERT_TRUE(pumpFor(2));
    const std::vector<StereoFrame> again = heard();
    EXPECT_EQ(framesAt(again, 0.1F), static_cast<std::int64_t>(again.size()))
        << "over and over, without a gap";
}

TEST_F(GaplessTest, ATrackIsCurrentWhenItIsHeard) {
    m_output.latency = 0.3;
    m_player.enqueue({track(QStringLiteral("a.wav"), level(0.1F, 1)),
                      track(QStringLiteral("b.wav"), level(0.2F, 1)),
                      track(QStringLiteral("c.wav"), level(0.3F, 1))});
    const auto inTheGapAfterA = [&] {
        m_player.play(0);
        ASSERT_TRUE(pumpUntil(PlaybackState::playing));
        m_output.heard.clear();
        ASSERT_TRUE(m_output.pump([&] { return framesAt(m_output.heard, 0.2F) > 2000; }));
        ASSERT_EQ(m_player.queue().currentIndex(), 0) << "b is rendered, a is heard";
        takeEvents();
    };
    inTheGapAfterA();
    double last = 0;
    ASSERT_TRUE(m_output.pump([&] {
        if (m_player.queue().currentIndex() == 0)
            last = m_player.currentTime();
        return m_player.queue().currentIndex() == 1;
    }));
    EXPECT_NEAR(static_cast<double>(framesAt(m_output.heard, 0.2F)) / 44100, 0.3, 0.1);
    EXPECT_NEAR(last, 1, 0.1);
    EXPECT_LT(m_player.currentTime(), 0.1);
    EXPECT_THAT(takeEvents(), ElementsAre("b")) << "and it plays all the while";
    ASSERT_TRUE(pumpUntilHeard("c", 0.2));

    inTheGapAfterA();
    m_player.pause();
    ASSERT_TRUE(m_output.pump([&] { return m_player.queue().currentIndex() == 1; }))
        << "what is on its way is heard";
    EXPECT_THAT(takeEvents(), ElementsAre("paused", "b"));
    const double onItsWay = static_cast<double>(framesAt(m_output.heard, 0.2F)) / 44100;
    EXPECT_TRUE(m_output.pump([&] { return m_player.currentTime() >= onItsWay; }));
    EXPECT_NEAR(m_player.currentTime(), onItsWay, 0.01) << "and the fade";
    m_player.play();
    ASSERT_TRUE(pumpUntilHeard("b", 0.2));
    EXPECT_NEAR(static_cast<double>(framesAt(m_output.heard, 0.2F)) / 44100, 0.55, 0.2);

    inTheGapAfterA();
    m_player.seek(0.5);
    ASSERT_TRUE(pumpUntilHeard("a", 0.7));
    ASSERT_TRUE(pumpUntilHeard("b", 0.1));
    EXPECT_THAT(takeEvents(), ElementsAre("b")) << "back in a";

    inTheGapAfterA();
    m_player.removeTrack(1);
    ASSERT_TRUE(pumpUntilHeard("c", 0.1));
    EXPECT_LT(framesAt(m_output.heard, 0.2F), 0.2 * 44100);

    m_player.enqueue({track(QStringLiteral("b.wav"))});
    m_player.moveTracks({2}, -1);
    inTheGapAfterA();
    m_player.removeTracks({1, 2});
    ASSERT_TRUE(pumpUntil(PlaybackState::stopped));
    EXPECT_LT(framesAt(m_output.heard, 0.2F), 0.2 * 44100);
}

TEST_F(GaplessTest, ATrackThatComesAtTheLastMomentIsLoadedAndCanBePaused) {
    using namespace std::chrono_literals;
    m_output.latency = 0.2;
    const Track a = track(QStringLiteral("a.wav"), level(0.1F, 0.3)),
                b = track(QStringLiteral("b.wav"), level(0.2F, 2)),
                c = track(QStringLiteral("c.mp3"), level(0.3F, 2));
    for (int round = 0; round < 12; ++round) {
        SCOPED_TRACE(round);
        m_player.restoreQueue({a}, 0, RepeatMode::off, false);
        m_output.heard.clear();
        m_player.play();
        ASSERT_TRUE(m_output.pump([&] { return framesAt(m_output.heard, 0.1F) == 13230; }));
        ASSERT_TRUE(pumpFor(0.1));
        std::this_thread::sleep_for(250ms); // all is heard, and the player has not looked yet
        if (m_player.state() != PlaybackState::playing)
            continue; // on a busy machine it has looked
        m_player.enqueue({c});
        std::this_thread::sleep_for(round * 100us); // the decoder opens c
        m_player.removeTrack(1);
        m_player.enqueue({b});
        QCoreApplication::processEvents();
        const bool isLoading = m_player.state() == PlaybackState::loading; // else the decoder was quick
        if (isLoading && round % 2 == 1) {
            m_player.pause();
            std::this_thread::sleep_for(50ms); // b is in the node
            m_output.current->render(4096);
            ASSERT_TRUE(pumpUntil(PlaybackState::paused));
            EXPECT_EQ(framesAt(m_output.heard, 0.2F), 0);
            m_player.play();
        }
        ASSERT_TRUE(pumpUntilHeard("b", 0.1));
        m_player.stop();
        ASSERT_TRUE(pumpFor(0.05));
    }
}

TEST_F(GaplessTest, AFollowerFailsWhenItsTurnHasCome) {
    m_player.enqueue({track(QStringLiteral("a.wav"), level(0.1F, 0.5)), track(QStringLiteral("x.wav")),
                      track(QStringLiteral("y.wav")), track(QStringLiteral("b.wav"), level(0.2F, 0.5)),
                      track(QStringLiteral("c.wav"), level(0.3F, 0.5))});
    m_player.play();
    ASSERT_TRUE(pumpUntilHeard("a", 0.3));
    EXPECT_EQ(m_player.errorMessage(), std::nullopt);
    ASSERT_TRUE(pumpUntilHeard("c", 0.2));
    EXPECT_THAT(takeEvents(),
                ElementsAre("a", "loading", "playing", "x", "failed x 1", "y", "failed y 2", "b", "c"));
    EXPECT_EQ(framesAt(m_output.heard, 0.1F), 22050);
    EXPECT_EQ(framesAt(m_output.heard, 0.2F), 22050);
}

TEST_F(GaplessTest, TracksShorterThanTheWayToTheEarFollowWithoutAGap) {
    m_output.latency = 0.25;
    const std::vector<StereoFrame> first = level(0.05F, 0.5);
    std::vector<Track> whole{track(QStringLiteral("first.wav"), first)};
    std::vector<std::vector<StereoFrame>> parts;
    std::vector<std::string> names;
    for (int i = 0; i < 10; ++i) {
        parts.push_back(level(0.1F + static_cast<float>(i) / 20, 0.03));
        whole.push_back(track(QStringLiteral("%1.wav").arg(i), parts.back()));
        names.push_back(std::to_string(i));
    }
    for (const std::size_t broken : {10U, 4U, 8U}) { // and the one after it
        SCOPED_TRACE(broken);
        std::vector<Track> tracks = whole;
        std::vector<StereoFrame> expected = first;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            if (i == broken || i == broken + 1)
                tracks[i + 1].source = QUrl::fromLocalFile(path("none.wav"));
            else
                expected.insert(expected.end(), parts[i].begin(), parts[i].end());
        }
        m_output.heard.clear();
        m_player.restoreQueue(tracks, 0, RepeatMode::off, false);
        takeEvents();
        m_player.play();
        ASSERT_TRUE(pumpUntil(PlaybackState::playing));
        ASSERT_TRUE(pumpUntil(PlaybackState::stopped));
        const std::vector<StereoFrame> sound = heard();
        ASSERT_GE(sound.size(), expected.size());
        EXPECT_LT(largestDifference(sound, expected), 0.0001);
        std::vector<std::string> named = takeEvents();
        std::erase_if(named, [](const std::string &event) { return event.size() != 1; });
        EXPECT_EQ(named, names) << "each was current in its turn";
    }
}
