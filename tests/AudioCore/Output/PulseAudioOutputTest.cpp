#include "AudioCore/Output/PulseAudioOutput.h"

#include "AudioCore/AudioCoreError.h"
#include "AudioCore/Output/SystemAudioOutput.h"
#include "AudioCore/Playback/Player.h"
#include "tests/Support/AudioFileBuilder.h"

#include <QCoreApplication>
#include <QLocalServer>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <numbers>

using namespace vantor;

namespace {

using Clock = std::chrono::steady_clock;

template <class Condition>
bool pump(Condition condition, std::chrono::seconds atMost = std::chrono::seconds(10)) {
    const Clock::time_point deadline = Clock::now() + atMost;
    while (!condition() && Clock::now() < deadline)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 5);
    return condition();
}

// A sound server of our own with one sink that plays into nothing, and a recorder that listens to it.
class PulseAudioOutputTest : public testing::Test {
  protected:
    void SetUp() override {
        for (const char *program : {"pulseaudio", "parec"}) {
            if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty())
                GTEST_SKIP() << "NOT TESTED: " << program
                             << " is not installed, so nothing was played or measured";
        }
        const QString socket = m_folder.filePath(QStringLiteral("native"));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char *name : {"XDG_RUNTIME_DIR", "HOME", "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH"})
            environment.insert(QLatin1String(name), m_folder.path());
        m_server.setProcessEnvironment(environment);
        m_server.start(
            QStringLiteral("pulseaudio"),
            {QStringLiteral("-n"), QStringLiteral("--daemonize=no"), QStringLiteral("--use-pid-file=no"),
             QStringLiteral("--exit-idle-time=-1"), QStringLiteral("--disable-shm=yes"),
             QStringLiteral("--load=module-null-sink sink_name=test rate=48000"),
             QStringLiteral("--load=module-native-protocol-unix auth-anonymous=1 socket=") + socket});
        qputenv("PULSE_SERVER", "unix:" + socket.toUtf8());
        ASSERT_TRUE(pump([&] { return QFile::exists(socket); }))
            << m_server.readAllStandardError().toStdString();
    }
    void TearDown() override {
        for (QProcess *process : {&m_recorder, &m_server}) {
            process->kill();
            process->waitForFinished();
        }
        qunsetenv("PULSE_SERVER");
    }

    void record() {
        m_recorder.start(QStringLiteral("parec"),
                         {QStringLiteral("--device=test.monitor"), QStringLiteral("--format=float32le"),
                          QStringLiteral("--rate=48000"), QStringLiteral("--channels=1"),
                          QStringLiteral("--raw"), QStringLiteral("--latency-msec=20")});
        ASSERT_TRUE(pump([&] { return m_recorder.bytesAvailable() > 0; }));
    }
    // The recording from the first sound on.
    std::vector<float> sound(std::size_t samples) {
        const auto isLoud = [](float sample) { return std::abs(sample) > 0.01F; };
        std::vector<float> recording;
        pump([&] {
            const QByteArray bytes = m_recorder.readAllStandardOutput();
            const std::size_t before = recording.size();
            recording.resize(before + static_cast<std::size_t>(bytes.size()) / sizeof(float));
            std::memcpy(recording.data() + before, bytes.constData(),
                        (recording.size() - before) * sizeof(float));
            if (before == 0 || !isLoud(recording.front()))
                recording.erase(recording.begin(), std::find_if(recording.begin(), recording.end(), isLoud));
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
    QProcess m_server;
    QProcess m_recorder;
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

    m_server.kill();
    m_server.waitForFinished();
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
