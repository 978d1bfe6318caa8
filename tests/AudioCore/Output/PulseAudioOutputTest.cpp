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

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

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

// Of the sine that is played, at half of full level. No block of samples holds a whole number of its periods.
constexpr double sineHertz = 997;
constexpr double largestSineStep = 0.5 * 2 * std::numbers::pi * sineHertz / 48000 * 1.1;

struct Measured {
    double decibels = -99; ///< against the source
    double hertz = 0;
    double largestStep = 0; ///< more than the sine's is a gap or a click
};

Measured measure(const std::vector<float> &sound) {
    Measured measured;
    double squares = 0;
    std::vector<double> crossings; // upwards, between samples
    for (std::size_t i = 1; i < sound.size(); ++i) {
        const double last = sound[i - 1];
        const double next = sound[i];
        squares += next * next;
        measured.largestStep = std::max(measured.largestStep, std::abs(next - last));
        if (last < 0 && next >= 0)
            crossings.push_back(static_cast<double>(i) - next / (next - last));
    }
    if (crossings.size() < 2)
        return measured;
    measured.decibels = 10 * std::log10(squares / static_cast<double>(sound.size()) / (0.5 * 0.5 / 2));
    measured.hertz =
        48000.0 * static_cast<double>(crossings.size() - 1) / (crossings.back() - crossings.front());
    return measured;
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
    // The next second of the recording, counted from the first sound.
    std::vector<float> nextSecond() {
        std::vector<float> second;
        pump([&] {
            std::array<float, 1000> block{};
            while (second.size() < 48000) {
                if (m_recording.bytesAvailable() < qint64{sizeof block})
                    return false;
                m_recording.read(reinterpret_cast<char *>(block.data()), sizeof block);
                second.insert(second.end(), block.begin(), block.end());
                if (m_isSilent)
                    second.erase(second.begin(), std::find_if(second.begin(), second.end(),
                                                              [](float sample) { return sample != 0; }));
                m_isSilent = m_isSilent && second.empty();
            }
            return true;
        });
        return second;
    }
    Track sine() const {
        const QString path = m_folder.filePath(QStringLiteral("sine.flac"));
        writeAudioFile(path, {.frequency = sineHertz, .seconds = 20});
        Track track;
        track.id = QUuid::createUuid();
        track.source = QUrl::fromLocalFile(path);
        return track;
    }

    QTemporaryDir m_folder;
    QFile m_recording{m_folder.filePath(QStringLiteral("recording"))};
    bool m_isSilent = true;
    pid_t m_server = 0;
    pid_t m_recorder = 0;
};

} // namespace

TEST_F(PulseAudioOutputTest, PlaysTheVerySoundPausesAndOutlivesItsServer) {
    record();
    Player player(std::make_unique<FileTrackResolver>(), makeSystemAudioOutput);
    player.enqueue({sine()});
    player.play();
    // A busy machine may starve a second of them of time; a fault of ours would spoil all three.
    bool isRight = false;
    for (int attempt = 0; attempt < 3 && !isRight; ++attempt) {
        const Measured measured = measure(nextSecond());
        isRight = std::abs(measured.decibels) < 0.1 && std::abs(measured.hertz - sineHertz) < 1 &&
                  measured.largestStep < largestSineStep;
        std::cout << measured.decibels << " dB, " << measured.hertz << " Hz, step " << measured.largestStep
                  << '\n';
    }
    EXPECT_TRUE(isRight);
    EXPECT_EQ(player.outputName(), QStringLiteral("PulseAudio"));

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
    output.setSuspended(false);
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
