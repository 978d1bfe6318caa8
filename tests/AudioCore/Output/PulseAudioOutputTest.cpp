#include "AudioCore/Output/PulseAudioOutput.h"

#include "AudioCore/AudioCoreError.h"
#include "AudioCore/Output/SystemAudioOutput.h"
#include "AudioCore/Playback/Player.h"
#include "tests/Support/AudioFileBuilder.h"

#include <QCoreApplication>
#include <QFile>
#include <QLocalServer>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <numbers>

using namespace vantor;

namespace {

using Clock = std::chrono::steady_clock;

template <class Condition>
bool pump(Condition condition, std::chrono::milliseconds atMost = std::chrono::seconds(10)) {
    const Clock::time_point deadline = Clock::now() + atMost;
    while (!condition() && Clock::now() < deadline)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 5);
    return condition();
}

// Not QProcess, whose way to start a program the thread sanitizer does not survive.
pid_t spawn(const std::vector<std::string> &words) {
    std::vector<char *> arguments;
    for (const std::string &word : words)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    EXPECT_EQ(posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    return process;
}

void end(pid_t &process) {
    if (process > 0) {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
    process = 0;
}

// A sound server of our own with one sink that plays into nothing, and a recorder that listens to it.
class PulseAudioOutputTest : public testing::Test {
  protected:
    void SetUp() override {
        for (const char *program : {"pulseaudio", "parec"}) {
            if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty())
                GTEST_SKIP() << "NOT TESTED: " << program
                             << " is not installed, nothing was played or measured";
        }
        const std::string folder = m_folder.path().toStdString();
        m_server =
            spawn({"env", "HOME=" + folder, "XDG_RUNTIME_DIR=" + folder, "pulseaudio", "-n", "--daemonize=no",
                   "--use-pid-file=no", "--exit-idle-time=-1", "--disable-shm=yes",
                   "--load=module-null-sink sink_name=test rate=48000",
                   "--load=module-native-protocol-unix auth-anonymous=1 socket=" + folder + "/native"});
        qputenv("PULSE_SERVER", ("unix:" + folder + "/native").c_str());
        ASSERT_TRUE(pump([&] { return QFile::exists(m_folder.filePath(QStringLiteral("native"))); }));
    }
    void TearDown() override {
        end(m_recorder);
        end(m_server);
        qunsetenv("PULSE_SERVER");
    }

    void record() {
        m_recorder =
            spawn({"parec", "--device=test.monitor", "--format=float32le", "--rate=48000", "--channels=1",
                   "--raw", "--latency-msec=20", m_recording.fileName().toStdString()});
        ASSERT_TRUE(pump([&] { return m_recording.size() > 0; }));
        ASSERT_TRUE(m_recording.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    }
    // The recording from the first sound on.
    std::vector<float> sound(std::size_t samples) {
        std::vector<float> recording;
        pump([&] {
            std::array<float, 4096> block{};
            while (const qint64 size = m_recording.read(reinterpret_cast<char *>(block.data()), sizeof block))
                recording.insert(recording.end(), block.begin(), block.begin() + size / 4);
            if (recording.empty() || recording.front() == 0)
                recording.erase(recording.begin(), std::find_if(recording.begin(), recording.end(),
                                                                [](float sample) { return sample != 0; }));
            return recording.size() >= samples;
        });
        return recording;
    }
    Track sine() const {
        const QString path = m_folder.filePath(QStringLiteral("sine.flac"));
        writeAudioFile(path, {.frequency = 1000, .seconds = 20});
        Track track;
        track.id = QUuid::createUuid();
        track.source = QUrl::fromLocalFile(path);
        return track;
    }

    QTemporaryDir m_folder;
    QFile m_recording{m_folder.filePath(QStringLiteral("recording"))};
    pid_t m_server = 0;
    pid_t m_recorder = 0;
};

} // namespace

TEST_F(PulseAudioOutputTest, PlaysTheVerySoundPausesAndOutlivesItsServer) {
    record();
    Player player(std::make_unique<FileTrackResolver>(), makeSystemAudioOutput);
    player.enqueue({sine()});
    player.play();
    const std::vector<float> recording = sound(48000);
    ASSERT_GE(recording.size(), 48000U);
    EXPECT_EQ(player.outputName(), QStringLiteral("PulseAudio"));

    double squares = 0;
    double largestStep = 0;
    std::vector<double> crossings; // upwards, between samples
    for (std::size_t i = 1; i < recording.size(); ++i) {
        const double last = recording[i - 1];
        const double next = recording[i];
        squares += next * next;
        largestStep = std::max(largestStep, std::abs(next - last));
        if (last < 0 && next >= 0)
            crossings.push_back(static_cast<double>(i) - next / (next - last));
    }
    const double decibels =
        10 * std::log10(squares / static_cast<double>(recording.size()) / (0.5 * 0.5 / 2));
    EXPECT_NEAR(decibels, 0, 0.1);
    ASSERT_GT(crossings.size(), 500U);
    const double frequency =
        48000.0 * static_cast<double>(crossings.size() - 1) / (crossings.back() - crossings.front());
    EXPECT_NEAR(frequency, 1000, 1);
    EXPECT_LT(largestStep, 0.5 * 2 * std::numbers::pi * 1000 / 48000 * 1.1) << "a gap or a click";
    RecordProperty("decibels", std::to_string(decibels));
    RecordProperty("hertz", std::to_string(frequency));

    end(m_server);
    const double place = player.currentTime();
    ASSERT_TRUE(pump([&] { return player.outputName() == QStringLiteral("no sound server"); }));
    EXPECT_LT(player.currentTime(), place + 0.3);
    EXPECT_TRUE(pump([&] { return player.currentTime() > place + 0.3; }));
    EXPECT_EQ(player.state(), PlaybackState::playing);
}

TEST_F(PulseAudioOutputTest, LatencyIsShortAndSoundIsBackSoonAfterARest) {
    PulseAudioOutput output;
    EXPECT_EQ(output.sampleRate(), 48000);
    std::atomic<int> frames{0};
    output.start([&](float *, int count) { frames += count; }, [](const QString &) {});
    ASSERT_TRUE(pump([&] { return frames > 24000; }));
    EXPECT_GT(output.latency(), 0.0);
    EXPECT_LT(output.latency(), 0.15);

    output.setSuspended(true);
    pump([] { return false; }, std::chrono::milliseconds(200));
    const int before = frames;
    const Clock::time_point woken = Clock::now();
    output.setSuspended(false);
    ASSERT_TRUE(pump([&] { return frames > before; }));
    EXPECT_LT(Clock::now() - woken, std::chrono::milliseconds(50));
}

TEST(SystemAudioOutputTest, AServerThatIsMissingOrHangsMeansSilenceWithinASecond) {
    const QTemporaryDir folder;
    QLocalServer hanging; // accepts, and says nothing
    ASSERT_TRUE(hanging.listen(folder.filePath(QStringLiteral("hanging"))));
    for (const char *name : {"missing", "hanging"}) {
        SCOPED_TRACE(name);
        qputenv("PULSE_SERVER", "unix:" + folder.filePath(QLatin1String(name)).toUtf8());
        const Clock::time_point start = Clock::now();
        EXPECT_EQ(makeSystemAudioOutput()->name(), QStringLiteral("no sound server"));
        EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(1300));
    }
    qunsetenv("PULSE_SERVER");
}
