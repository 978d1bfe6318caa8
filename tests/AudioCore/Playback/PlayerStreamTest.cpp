#include "AudioCore/Playback/Player.h"
#include "tests/Support/AudioFileBuilder.h"
#include "tests/Support/TestOutput.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace vantor;

namespace {

/// A constant, so that what is heard is how loud it plays.
class ConstantStream : public LiveSource {
  public:
    static constexpr float level = 0.5F;

    void render(float *interleaved, int frames, std::int64_t whenHeard) override {
        isGapless = isGapless && (next == 0 || std::abs(whenHeard - next) <= 1);
        next = whenHeard + std::int64_t{frames} * 1'000'000 / TestOutput::Shared().sampleRate;
        std::fill(interleaved, interleaved + std::ptrdiff_t{2} * frames, level);
    }
    std::int64_t next = 0; ///< when the next block has to be heard
    bool isGapless = true;
};

class PlayerStreamTest : public testing::Test {
  protected:
    PlayerStreamTest() {
        std::vector<Track> tracks(3);
        for (Track &track : tracks) {
            track.id = QUuid::createUuid();
            track.source = QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("a.wav")));
        }
        writeAudioFile(m_folder.filePath(QStringLiteral("a.wav")), {.frequency = 441, .seconds = 20});
        m_player.enqueue(tracks);
        m_player.setVolume(0.1F);
        m_player.addEventObserver([this](const PlayerEvent &event) {
            if (!std::holds_alternative<PlayerEvents::TrackChanged>(event))
                m_events.push_back(event);
        });
    }

    void startStream() {
        m_player.startStream([this](int rate) {
            m_rates.push_back(rate);
            return m_stream;
        });
    }
    bool pumpUntilHearingStream() {
        return m_system.pump([this] {
            return !m_system.heard.empty() && m_system.heard.back().left == ConstantStream::level;
        });
    }

    QTemporaryDir m_folder;
    TestOutput::Shared m_system;
    TestOutputDevices *const m_devices = new TestOutputDevices(m_system); // the player's
    Player m_player{std::make_unique<FileTrackResolver>(), std::unique_ptr<TestOutputDevices>(m_devices)};
    std::shared_ptr<ConstantStream> m_stream = std::make_shared<ConstantStream>();
    std::vector<int> m_rates;
    std::vector<PlayerEvent> m_events;
};

} // namespace

TEST_F(PlayerStreamTest, TakesTheOutputFromWhatPlaysWhichKeepsItsPlace) {
    m_player.play(1);
    ASSERT_TRUE(m_system.pump([this] { return m_player.currentTime() > 0.3; }));
    m_events.clear();
    startStream();
    EXPECT_EQ(m_events, (std::vector<PlayerEvent>{PlayerEvents::StateChanged{PlaybackState::paused},
                                                  PlayerEvents::StreamStarted{}}));
    ASSERT_TRUE(pumpUntilHearingStream()) << "as loud as it is, whatever the volume";
    EXPECT_TRUE(m_stream->isGapless);
    const double place = m_player.currentTime();
    ASSERT_TRUE(m_system.pump([this, heard = m_system.heard.size()] {
        return m_system.heard.size() > heard + 44100 * 6;
    })) << "longer than a paused output stays awake";
    EXPECT_EQ(m_system.heard.back().left, ConstantStream::level);
    m_player.play();
    ASSERT_TRUE(m_system.pump([&] { return m_player.currentTime() > place + 0.2; }));
    EXPECT_LT(m_player.currentTime(), place + 2);
    for (std::size_t i = m_system.heard.size() - 441; i < m_system.heard.size(); ++i)
        ASSERT_LE(std::abs(m_system.heard[i].left), 0.1F) << "the volume counts again";
}

TEST_F(PlayerStreamTest, EndsAsTheCommandSays) {
    const PlayerEvent preempted = PlayerEvents::StreamPreempted{};
    const PlayerEvent ended = PlayerEvents::StreamEnded{};
    const struct {
        const char *name;
        std::function<void()> command;
        std::optional<PlayerEvent> first;
    } rows[] = {
        {"play", [&] { m_player.play(); }, preempted},
        {"pause", [&] { m_player.pause(); }, preempted},
        {"toggle", [&] { m_player.togglePlayPause(); }, preempted},
        {"seek", [&] { m_player.seek(3); }, preempted},
        {"previous", [&] { m_player.previous(); }, preempted},
        {"next", [&] { m_player.next(); }, preempted},
        {"a row", [&] { m_player.play(2); }, preempted},
        {"stop", [&] { m_player.stop(); }, ended},
        {"the end", [&] { m_player.endStream(); }, ended},
        {"an edit of the queue", [&] { m_player.removeTrack(0); }, std::nullopt},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        m_player.stop();
        m_player.play(1);
        m_player.pause();
        startStream();
        m_events.clear();
        row.command();
        EXPECT_EQ(m_player.isStreaming(), !row.first);
        EXPECT_EQ(m_events.empty() ? std::nullopt : std::optional(m_events.front()), row.first);
        EXPECT_EQ(std::ranges::count(m_events, preempted) + std::ranges::count(m_events, ended),
                  row.first ? 1 : 0);
    }
}

TEST_F(PlayerStreamTest, GoesOnThroughAnotherOutput) {
    startStream();
    ASSERT_TRUE(pumpUntilHearingStream());
    m_system.devices.push_back(m_system.device(2, "headphones"));
    m_system.defaultDevice = 2;
    m_system.sampleRate = 48000;
    Q_EMIT m_devices->changed();
    ASSERT_TRUE(m_system.pump([this] { return m_rates.size() == 2; }));
    EXPECT_EQ(m_rates, (std::vector<int>{44100, 48000}));
    m_system.heard.clear();
    ASSERT_TRUE(pumpUntilHearingStream());
    m_system.current->lose();
    ASSERT_TRUE(m_system.pump([this] { return m_rates.size() == 3; }));
    m_system.heard.clear();
    EXPECT_TRUE(pumpUntilHearingStream());
}

TEST_F(PlayerStreamTest, OneThatCannotBeDecodedIsAFailure) {
    startStream();
    m_events.clear();
    m_player.failStream(AudioCoreError::unsupportedStreamFormat());
    const PlaybackFailure failure{std::nullopt, QStringLiteral("The stream's audio format is not supported."),
                                  1, false};
    EXPECT_EQ(m_events,
              (std::vector<PlayerEvent>{PlayerEvents::StreamEnded{}, PlayerEvents::Failed{failure}}));
    EXPECT_EQ(m_player.errorMessage(), failure.message);
}
