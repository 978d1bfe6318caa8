#include "AudioCore/Playback/Player.h"

#include "tests/Support/AudioFileBuilder.h"
#include "tests/Support/TestOutput.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cmath>
#include <numbers>

using namespace vantor;
using testing::ElementsAre;

namespace {

using Clock = std::chrono::steady_clock;

// What happened, in the words of the rows below: "track a", "playing", "seeked 3", "failed b 1 skipped".
std::string text(const PlayerEvent &event) {
    static constexpr std::array states{"stopped", "loading", "playing", "paused"};
    if (const auto *changed = std::get_if<PlayerEvents::TrackChanged>(&event))
        return "track " + (changed->track ? changed->track->title.toStdString() : "none");
    if (const auto *state = std::get_if<PlayerEvents::StateChanged>(&event))
        return states[static_cast<std::size_t>(state->state)];
    if (const auto *seeked = std::get_if<PlayerEvents::Seeked>(&event))
        return "seeked " + QString::number(seeked->time).toStdString();
    if (const auto *failed = std::get_if<PlayerEvents::Failed>(&event)) {
        const PlaybackFailure &failure = failed->failure;
        return "failed " + (failure.track ? failure.track->title.toStdString() : "none") + " " +
               std::to_string(failure.consecutiveFailures) + (failure.skipped ? " skipped" : "");
    }
    return "?";
}

class PlayerTest : public testing::Test {
  protected:
    PlayerTest() {
        m_player.addEventObserver([this](const PlayerEvent &event) {
            m_events.push_back(text(event));
            if (const auto *failed = std::get_if<PlayerEvents::Failed>(&event))
                m_failures.push_back(failed->failure);
        });
    }

    Track track(const char *title, double seconds = 1) {
        const Track track = missing(title);
        const QString path = std::get<QUrl>(track.source).toLocalFile();
        if (!QFile::exists(path))
            writeAudioFile(path, {.frequency = 440, .seconds = seconds, .amplitude = 1});
        return track;
    }
    Track missing(const char *title) {
        Track track;
        track.id = QUuid::createUuid();
        track.title = QLatin1String(title);
        track.source = QUrl::fromLocalFile(m_folder.filePath(track.title + QStringLiteral(".wav")));
        return track;
    }

    bool pumpUntil(PlaybackState state) {
        return m_output.pump([&] { return m_player.state() == state; });
    }
    bool pumpUntilHeard(double seconds) {
        return m_output.pump([&] { return m_player.currentTime() >= seconds; });
    }
    std::vector<std::string> takeEvents() { return std::exchange(m_events, {}); }

    QTemporaryDir m_folder;
    TestOutput::Shared m_output;
    std::vector<std::string> m_events;
    std::vector<PlaybackFailure> m_failures;
    TestOutputDevices *const m_devices = new TestOutputDevices(m_output); // the player's
    Player m_player{std::make_unique<FileTrackResolver>(), std::unique_ptr<TestOutputDevices>(m_devices)};
};

double largestStep(const std::vector<StereoFrame> &sound) {
    double largest = 0;
    StereoFrame last;
    for (const StereoFrame &frame : sound) {
        largest = std::max(largest, std::abs(double{frame.left} - last.left));
        last = frame;
    }
    return largest;
}

} // namespace

TEST_F(PlayerTest, PlaysAQueueToItsEndInOrder) {
    m_player.enqueue({track("a", 0.3), track("b", 0.3)});
    EXPECT_THAT(takeEvents(), ElementsAre());
    m_player.play();
    EXPECT_EQ(m_player.state(), PlaybackState::loading);
    ASSERT_TRUE(pumpUntil(PlaybackState::stopped));
    EXPECT_THAT(takeEvents(), ElementsAre("track a", "loading", "playing", "track b", "stopped"));
    EXPECT_EQ(m_player.currentTime(), 0);
    EXPECT_EQ(m_player.currentFormat(), std::nullopt);
    EXPECT_EQ(m_player.queue().currentIndex(), 1) << "the last track stays current";

    const auto loud = std::count_if(m_output.heard.begin(), m_output.heard.end(),
                                    [](const StereoFrame &frame) { return frame.left != 0; });
    EXPECT_NEAR(static_cast<double>(loud), 0.6 * 44100, 20) << "every sample once; a sine has some zeros";
    m_player.setRepeatMode(RepeatMode::one);
    m_player.play();
    ASSERT_TRUE(m_output.pump([&] { return m_events.size() == 4; }));
    EXPECT_THAT(takeEvents(), ElementsAre("loading", "playing", "seeked 0", "seeked 0"))
        << "the same entry is not announced again, but everybody hears that it starts anew";
}

TEST_F(PlayerTest, NoCommandEverClicks) {
    m_player.enqueue({track("a", 20)});
    m_player.play();
    ASSERT_TRUE(pumpUntilHeard(0.1));
    const auto listenFor = [&](std::size_t frames) {
        const std::size_t end = m_output.heard.size() + frames;
        ASSERT_TRUE(m_output.pump([&] { return m_output.heard.size() >= end; }));
    };
    const std::function<void()> commands[] = {
        [&] { m_player.pause(); },        [&] { m_player.play(); },       [&] { m_player.setVolume(0.2F); },
        [&] { m_player.setBalance(-1); }, [&] { m_player.setVolume(1); }, [&] { m_player.setBalance(1); },
        [&] { m_player.seek(10.00123); }, [&] { m_player.seek(3.3); },    [&] { m_player.pause(); },
        [&] { m_player.seek(7.0007); },   [&] { m_player.play(); },       [&] { m_player.stop(); },
    };
    for (const auto &command : commands) {
        command();
        listenFor(3333);
    }
    EXPECT_EQ(m_output.heard.back(), StereoFrame{});
    EXPECT_LT(largestStep(m_output.heard), 2 * std::numbers::pi * 440 / 44100 * 1.1);
}

TEST_F(PlayerTest, SeekIsClampedAndGoesToThePlace) {
    m_player.enqueue({track("a", 4)});
    m_player.seek(2); // nothing is loaded
    EXPECT_THAT(takeEvents(), ElementsAre());
    for (const auto &[seconds, expected] :
         {std::pair(-3.0, 0.0), {2.5, 2.5}, {std::nan(""), 0}, {HUGE_VAL, 4}}) {
        SCOPED_TRACE(seconds);
        m_player.play();
        ASSERT_TRUE(pumpUntilHeard(0.05));
        m_player.pause();
        takeEvents();
        m_player.seek(seconds);
        EXPECT_EQ(m_player.currentTime(), expected);
        EXPECT_EQ(m_player.state(), PlaybackState::paused);
        EXPECT_THAT(takeEvents(), ElementsAre("seeked " + QString::number(expected).toStdString()));
        m_player.play();
        EXPECT_TRUE(expected < 4 ? pumpUntilHeard(expected + 0.1) : pumpUntil(PlaybackState::stopped));
        EXPECT_LT(m_player.currentTime(), expected + 1);
        m_player.stop();
    }
}

TEST_F(PlayerTest, ASeekWhileLoadingIsRemembered) {
    m_player.enqueue({track("a", 4)});
    m_player.play();
    m_player.seek(2);
    m_player.pause();
    ASSERT_TRUE(pumpUntil(PlaybackState::paused));
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(50);
    ASSERT_TRUE(m_output.pump([&] { return std::chrono::steady_clock::now() > deadline; }));
    EXPECT_EQ(m_player.currentTime(), 2) << "time stands still in a pause";
    EXPECT_THAT(m_output.heard, testing::Each(StereoFrame{}));
    m_player.togglePlayPause();
    ASSERT_TRUE(pumpUntilHeard(2.2));
    EXPECT_EQ(m_player.currentFormat(), (PlaybackFormat{44100, 2, QStringLiteral("PCM"), 16}));
    EXPECT_THAT(takeEvents(), ElementsAre("track a", "loading", "seeked 2", "paused", "playing"));
}

TEST_F(PlayerTest, TimeIsThatOfTheSoundThatIsHeardAndNeverRunsBack) {
    m_output.latency = 0.2;
    m_player.enqueue({track("a", 2)});
    m_player.play();
    ASSERT_TRUE(pumpUntil(PlaybackState::playing));
    std::vector<double> times;
    QObject::connect(&m_player, &Player::currentTimeChanged,
                     [&] { times.push_back(m_player.currentTime()); });
    ASSERT_TRUE(pumpUntilHeard(0.5));
    const auto first = std::find_if(m_output.heard.begin(), m_output.heard.end(),
                                    [](const StereoFrame &frame) { return frame.left != 0; });
    const double rendered = static_cast<double>(m_output.heard.end() - first) / 44100;
    EXPECT_NEAR(rendered - m_player.currentTime(), 0.2, 0.15);
    m_player.seek(1);
    ASSERT_TRUE(pumpUntilHeard(1.2));
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));
    // The end comes when the last sound has been heard.
    ASSERT_TRUE(pumpUntilHeard(1.75));
    const Clock::time_point nearEnd = Clock::now();
    ASSERT_TRUE(pumpUntil(PlaybackState::stopped));
    EXPECT_GT(Clock::now() - nearEnd, std::chrono::milliseconds(100));
    times.pop_back(); // back to 0
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));
    EXPECT_LE(times.back(), 2.0);
}

TEST_F(PlayerTest, FailuresSkipAndStopByTheRule) {
    const Track x = missing("x"), y = missing("y"), z = missing("z"), good = track("good", 0.1);
    const struct {
        std::vector<Track> tracks;
        RepeatMode repeat;
        const char *expected;
    } rows[] = {
        {{x}, RepeatMode::off, "track x, loading, stopped, failed x 1"},
        {{x, y, z},
         RepeatMode::all,
         "track x, loading, failed x 1 skipped, track y, failed y 2 skipped, track z, stopped, failed z 3"},
        {{x, good}, RepeatMode::one, "track x, loading, stopped, failed x 1"},
        {{x, good, y, z},
         RepeatMode::off,
         "track x, loading, failed x 1 skipped, track good, playing, track y, failed y 1 skipped, track z, "
         "stopped, failed z 2"},
    };
    for (const auto &row : rows) {
        m_player.restoreQueue(row.tracks, std::nullopt, row.repeat, false);
        takeEvents();
        m_failures.clear();
        m_player.play();
        EXPECT_TRUE(pumpUntil(PlaybackState::stopped));
        std::string happened;
        for (const std::string &event : takeEvents())
            happened += (happened.empty() ? "" : ", ") + event;
        EXPECT_EQ(happened, row.expected);
        ASSERT_FALSE(m_failures.empty());
        EXPECT_EQ(m_failures.front().message, AudioCoreError::readFailure().description());
        EXPECT_EQ(m_player.errorMessage(), m_failures.back().message);
    }
}

TEST_F(PlayerTest, ALibraryItemIsNoLocalFileAndTenThousandOfThemAreNoRecursion) {
    std::vector<Track> tracks(10'000, missing("x"));
    for (Track &track : tracks) {
        track.id = QUuid::createUuid();
        track.source = MediaID{MediaKind::track, QStringLiteral("1")};
    }
    m_player.enqueue(tracks);
    m_player.play();
    ASSERT_TRUE(pumpUntil(PlaybackState::stopped));
    ASSERT_EQ(m_failures.size(), 10'000U);
    const QString reason = AudioCoreError::unresolvableSource().description();
    EXPECT_EQ(m_failures.back(), (PlaybackFailure{tracks.back(), reason, 10'000, false}));
}

TEST_F(PlayerTest, TwentyQuickStepsOpenOnlyTheLast) {
    std::vector<Track> tracks;
    for (int i = 0; i <= 20; ++i)
        tracks.push_back(track(("t" + std::to_string(i)).c_str(), 0.5));
    m_player.enqueue(tracks);
    m_player.play();
    ASSERT_TRUE(pumpUntil(PlaybackState::playing));

    const int watch = inotify_init1(IN_NONBLOCK);
    ASSERT_GE(inotify_add_watch(watch, m_folder.path().toUtf8(), IN_OPEN), 0);
    for (int step = 0; step < 20; ++step)
        m_player.next();
    ASSERT_TRUE(pumpUntil(PlaybackState::playing));
    EXPECT_EQ(m_player.queue().currentIndex(), 20);
    alignas(inotify_event) std::array<char, 8192> events{};
    const ssize_t size = read(watch, events.data(), events.size());
    close(watch);
    std::set<std::string> opened;
    for (const char *place = events.data(); place < events.data() + size;) {
        const auto *event = reinterpret_cast<const inotify_event *>(place);
        opened.insert(event->name);
        place += sizeof *event + event->len;
    }
    EXPECT_TRUE(opened.contains("t20.wav"));
    EXPECT_LE(opened.size(), 3U) << "the decoder was busy with one or two when the last was asked for";
}

TEST_F(PlayerTest, StepsAndRowsMoveTheQueue) {
    m_player.enqueue({track("a", 3), track("b", 3), track("c", 3)});
    m_player.previous();
    m_player.play(7);
    EXPECT_THAT(takeEvents(), ElementsAre()) << "nothing to step back to, no such row";
    m_player.play(1);
    ASSERT_TRUE(pumpUntilHeard(0.2));
    m_player.previous();
    EXPECT_EQ(m_player.currentTime(), 0);
    ASSERT_TRUE(pumpUntilHeard(0.2));
    m_player.previous(); // at the first: back to its start
    EXPECT_EQ(m_player.currentTime(), 0);
    ASSERT_TRUE(pumpUntilHeard(0.1));
    m_player.play(2);
    m_player.next(); // nowhere to go: it plays on
    ASSERT_TRUE(pumpUntil(PlaybackState::playing));
    EXPECT_THAT(takeEvents(), ElementsAre("track b", "loading", "playing", "track a", "loading", "playing",
                                          "seeked 0", "track c", "loading", "playing"));
}

TEST_F(PlayerTest, RemovingTheCurrentTrackMovesPlaybackToItsSuccessor) {
    m_player.restoreQueue({track("x"), track("a"), track("b"), track("c")}, 1, RepeatMode::off, false);
    EXPECT_EQ(m_output.made, 0) << "a restored queue waits";
    m_player.play();
    ASSERT_TRUE(pumpUntil(PlaybackState::playing));
    m_player.reverseQueue();
    m_player.reverseQueue();
    m_player.removeTracks({1, 2});
    ASSERT_TRUE(pumpUntil(PlaybackState::playing));
    EXPECT_THAT(takeEvents(), ElementsAre("track a", "loading", "playing", "track c", "loading", "playing"));
    m_player.pause();
    m_player.enqueue({track("d")});
    m_player.removeTrack(1);
    ASSERT_TRUE(pumpUntil(PlaybackState::paused)) << "what was paused stays silent";
    m_player.clearQueue();
    EXPECT_THAT(takeEvents(), ElementsAre("paused", "track d", "loading", "paused", "stopped", "track none"));
}

TEST_F(PlayerTest, VolumeAndBalanceAreClampedAndWaitForTheGraph) {
    m_player.setVolume(1.5F);
    m_player.setBalance(-2);
    EXPECT_EQ(m_player.volume(), 1);
    EXPECT_EQ(m_player.balance(), -1);
    m_player.setVolume(std::nanf(""));
    EXPECT_EQ(m_player.volume(), 0);
    m_player.setVolume(0.5F);
    m_player.enqueue({track("a", 2)});
    m_player.play();
    ASSERT_TRUE(pumpUntilHeard(0.2));
    EXPECT_NEAR(m_player.takePeak(), 0.5, 0.001);
    for (const StereoFrame &frame : m_output.heard)
        ASSERT_EQ(frame.right, 0);
}

TEST_F(PlayerTest, WithoutAnyOutputNoTrackIsTried) {
    m_player.enqueue({track("a", 9), track("b")});
    m_player.play();
    ASSERT_TRUE(pumpUntil(PlaybackState::playing));
    takeEvents();
    m_output.refusing = 1;
    m_output.current->lose();
    ASSERT_TRUE(pumpUntil(PlaybackState::stopped));
    EXPECT_THAT(takeEvents(), ElementsAre("stopped", "failed a 1"));
    EXPECT_EQ(m_player.errorMessage(), QStringLiteral("Could not switch the audio output device: refused"));
    m_player.play();
    ASSERT_TRUE(pumpUntil(PlaybackState::stopped));
    EXPECT_THAT(takeEvents(), ElementsAre("loading", "stopped", "failed a 1")) << "b is not tried";
    EXPECT_EQ(m_player.errorMessage(), QStringLiteral("Could not start the audio engine: refused"));
    m_output.refusing.reset();
    m_player.play();
    EXPECT_TRUE(pumpUntil(PlaybackState::playing));
}

TEST_F(PlayerTest, ObserversMayLeaveAndCommandFromWithin) {
    m_player.enqueue({missing("x"), track("b"), track("c")});
    PlayerEventToken token;
    int calls = 0;
    token = m_player.addEventObserver([&](const PlayerEvent &event) {
        ++calls;
        if (std::holds_alternative<PlayerEvents::Failed>(event)) {
            m_player.removeEventObserver(token);
            m_player.play(2);
        }
    });
    m_player.play();
    ASSERT_TRUE(pumpUntil(PlaybackState::playing));
    EXPECT_EQ(m_player.queue().currentIndex(), 2);
    EXPECT_EQ(calls, 3);
}
