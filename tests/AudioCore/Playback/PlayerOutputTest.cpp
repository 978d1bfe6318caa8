#include "AudioCore/Playback/Player.h"
#include "tests/Support/AudioFileBuilder.h"
#include "tests/Support/TestOutput.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <numbers>

using namespace vantor;

namespace {

using Clock = std::chrono::steady_clock;

class PlayerOutputTest : public testing::Test {
  protected:
    PlayerOutputTest() {
        writeAudioFile(m_folder.filePath(QStringLiteral("a.wav")), {.frequency = 441, .seconds = 20});
        Track track;
        track.id = QUuid::createUuid();
        track.source = QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("a.wav")));
        m_player.enqueue({track});
        m_player.addEventObserver([this](const PlayerEvent &event) {
            m_failures += std::holds_alternative<PlayerEvents::Failed>(event);
        });
    }

    bool pumpUntilHeard(double seconds) {
        return m_system.pump([&] { return m_player.currentTime() >= seconds; });
    }
    bool pumpUntilPlayingOn(std::optional<quint32> device) {
        return m_system.pump([&] { return m_system.current && m_system.current->device() == device; });
    }
    void plug(quint32 id, const char *key) { m_system.devices.push_back(m_system.device(id, key)); }
    void tellChange() { Q_EMIT m_devices->changed(); }
    QString inUse() const { return m_player.outputDevice().value_or(OutputDeviceDescription{}).key; }

    QTemporaryDir m_folder;
    TestOutput::Shared m_system;
    int m_failures = 0;
    TestOutputDevices *const m_devices = new TestOutputDevices(m_system); // the player's
    Player m_player{std::make_unique<FileTrackResolver>(), std::unique_ptr<TestOutputDevices>(m_devices)};
};

} // namespace

TEST_F(PlayerOutputTest, FollowsTheDefaultAndTheChoiceAsTheyComeAndGo) {
    plug(2, "headphones");
    m_system.latency = 0.03;
    m_player.play();
    ASSERT_TRUE(pumpUntilHeard(0.2));
    const auto unplug = [&](quint32 id) {
        std::erase_if(m_system.devices, [id](const auto &device) { return device.id == id; });
        tellChange();
    };
    const auto makeDefault = [&](quint32 id) {
        m_system.defaultDevice = id;
        tellChange();
    };
    const auto expectWholeSound = [&] {
        std::size_t silent = 0;
        double largestStep = 0;
        const std::vector<StereoFrame> &heard = m_system.heard;
        for (std::size_t i = 1; i < heard.size(); ++i) {
            silent += heard[i] == StereoFrame{} && heard[i - 1] == StereoFrame{};
            largestStep = std::max(largestStep, std::abs(double{heard[i].left} - heard[i - 1].left));
        }
        EXPECT_LT(largestStep, 0.5 * 2 * std::numbers::pi * 441 / 44100 * 1.1);
        // Every fade sounds for a few milliseconds more.
        const double sounded = static_cast<double>(heard.size() - silent) / 44100;
        EXPECT_NEAR(sounded, m_player.currentTime() + m_system.latency, 0.1);
    };
    const struct {
        const char *name;
        std::function<void()> change;
        quint32 playsOn;
    } rows[] = {
        {"another default", [&] { makeDefault(2); }, 2},
        {"a choice", [&] { m_player.outputDeviceChanged(1); }, 1},
        {"a default that does not matter", [&] { makeDefault(1), makeDefault(2); }, 1},
        {"the chosen one is pulled out", [&] { unplug(1); }, 2},
        {"and returns", [&] { plug(9, "speakers"), tellChange(); }, 9},
        {"moved by the user's hand", [&] { m_system.current->move(2); }, 2},
        {"no choice any more", [&] { m_player.chooseOutputDevice(std::nullopt); }, 2},
        {"moved with the default", [&] { m_system.current->move(9), makeDefault(9); }, 9},
        {"left where the user's hand put it", [&] { m_system.current->move(2), makeDefault(9); }, 2},
        {"every sample was heard once, without a click", [&] { expectWholeSound(); }, 2},
        {"no device, then one", [&] { m_system.defaultDevice.reset(), m_system.current->lose(); }, 0},
        {"a system appears", [&] { makeDefault(2); }, 2},
        {"lost and found", [&] { m_system.current->lose(); }, 2},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const double before = m_player.currentTime();
        row.change();
        ASSERT_TRUE(pumpUntilPlayingOn(row.playsOn ? std::optional(row.playsOn) : std::nullopt));
        EXPECT_EQ(m_player.outputDevice().has_value(), row.playsOn != 0);
        EXPECT_EQ(m_player.state(), PlaybackState::playing);
        EXPECT_GE(m_player.currentTime(), before);
        EXPECT_LT(m_player.currentTime(), before + 0.3) << "twice the pace while the old device fades out";
        ASSERT_TRUE(pumpUntilHeard(before + 0.4));
        EXPECT_EQ(m_system.current->device().value_or(0), row.playsOn);
    }
    EXPECT_EQ(m_failures, 0);
}

TEST_F(PlayerOutputTest, APauseStaysAPauseAtThePlaceThatWasHeard) {
    plug(2, "headphones");
    m_system.latency = 0.1;
    m_player.chooseOutputDevice(QStringLiteral("headphones"));
    m_player.play();
    ASSERT_TRUE(pumpUntilHeard(0.5));
    m_player.pause();
    const Clock::time_point later = Clock::now() + std::chrono::milliseconds(250);
    ASSERT_TRUE(m_system.pump([&] { return Clock::now() > later; }));
    const auto sounds = [](const StereoFrame &frame) { return frame != StereoFrame{}; };
    const auto last = std::find_if(m_system.heard.rbegin(), m_system.heard.rend(), sounds).base();
    const auto first = std::find_if(m_system.heard.begin(), m_system.heard.end(), sounds);

    const double shown = m_player.currentTime();
    EXPECT_NEAR(shown, static_cast<double>(last - first) / 44100, 0.001)
        << "all that was on its way is heard";

    m_system.sampleRate = 48000;
    m_player.chooseOutputDevice(std::nullopt);
    ASSERT_TRUE(pumpUntilPlayingOn(1));
    EXPECT_EQ(m_player.state(), PlaybackState::paused);
    EXPECT_EQ(m_player.currentTime(), shown);
    m_player.stop();
    m_player.chooseOutputDevice(QStringLiteral("headphones"));
    EXPECT_EQ(m_system.current, nullptr) << "made when it is needed";
    m_player.play();
    EXPECT_TRUE(pumpUntilHeard(0.1));
    EXPECT_EQ(inUse(), QStringLiteral("headphones"));
}

TEST_F(PlayerOutputTest, WaitsUntilTheDevicesAreKnownAndLosesNothing) {
    m_system.isSettled = false;
    m_system.defaultDevice.reset();
    m_player.play();
    m_player.seek(3);
    const Clock::time_point later = Clock::now() + std::chrono::milliseconds(150);
    m_system.pump([&] { return Clock::now() > later; });
    EXPECT_EQ(m_player.state(), PlaybackState::loading);
    m_system.isSettled = true;
    m_system.defaultDevice = 1;
    tellChange();
    EXPECT_EQ(m_player.state(), PlaybackState::loading);
    ASSERT_TRUE(m_system.pump([&] { return m_player.state() == PlaybackState::playing; }));
    EXPECT_EQ(inUse(), QStringLiteral("speakers"));
    EXPECT_NEAR(m_player.currentTime(), 3, 0.1);
}

TEST_F(PlayerOutputTest, ADeviceThatRefusesIsReportedAndTheDefaultPlays) {
    plug(2, "headphones");
    m_player.play();
    ASSERT_TRUE(pumpUntilHeard(0.1));
    m_system.refusing = 2;
    QStringList told;
    QObject::connect(&m_player, &Player::outputDevicesChanged, [&] { told.append(inUse()); });
    m_player.outputDeviceChanged(2);
    ASSERT_TRUE(m_system.pump([&] { return m_failures == 1; }));
    EXPECT_EQ(m_player.errorMessage(), QStringLiteral("Could not switch the audio output device: refused"));
    EXPECT_TRUE(pumpUntilHeard(0.5));
    EXPECT_EQ(inUse(), QStringLiteral("speakers"));
    EXPECT_EQ(m_player.chosenOutputDevice(), QStringLiteral("headphones"));
    EXPECT_EQ(told.back(), inUse());

    m_player.outputDeviceChanged(77);
    EXPECT_EQ(m_failures, 2);
    m_system.refusing.reset();
    m_player.outputDeviceChanged(2); // once more
    EXPECT_TRUE(pumpUntilPlayingOn(2));
    EXPECT_EQ(m_failures, 2);
    EXPECT_EQ(m_player.state(), PlaybackState::playing);
}
