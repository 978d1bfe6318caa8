#include "AudioCore/Output/SystemOutputDeviceProvider.h"
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
#include <cstring>
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

// A sound server of our own with two sinks that play into nothing, and recorders that listen to them.
class PulseAudioOutputTest : public testing::Test {
  protected:
    void SetUp() override {
        for (const char *program : {"pulseaudio", "parec", "pactl"}) {
            if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty())
                GTEST_SKIP() << "NOT TESTED: " << program
                             << " is not installed, nothing was played or measured";
        }
        qputenv("PULSE_SERVER", "unix:" + m_socket.toUtf8());
        startServer();
        ASSERT_TRUE(pump([&] { return run("info"); }));
    }
    void TearDown() override {
        end(m_recorder);
        end(m_server);
        qunsetenv("PULSE_SERVER");
    }

    // Without rewinding an idle sink works in short blocks, and what begins to play need not wait for
    // seconds.
    void startServer() {
        const std::string folder = m_folder.path().toStdString();
        m_server =
            spawn({"env", "HOME=" + folder, "XDG_RUNTIME_DIR=" + folder, "pulseaudio", "-n", "--daemonize=no",
                   "--use-pid-file=no", "--exit-idle-time=-1", "--disable-shm=yes",
                   "--load=module-null-sink norewinds=1 sink_name=first rate=48000 "
                   "sink_properties=\"device.bus=usb device.description='The First'\"",
                   "--load=module-null-sink norewinds=1 sink_name=second rate=44100",
                   "--load=module-native-protocol-unix auth-anonymous=1 socket=" + m_socket.toStdString()});
    }
    // pactl with these arguments.
    static bool run(const char *arguments) {
        std::vector<std::string> words{"pactl"};
        for (const QString &word : QString::fromLatin1(arguments).split(u' '))
            words.push_back(word.toStdString());
        int status = -1;
        return waitpid(spawn(words), &status, 0) > 0 && status == 0;
    }

    void record() {
        m_recorder = spawn({"parec", "--device=first.monitor", "--format=float32le", "--rate=48000",
                            "--channels=1", "--raw", "--latency-msec=20", m_recording.toStdString()});
        ASSERT_TRUE(pump([&] { return QFile(m_recording).size() > 0; }));
    }
    // What the first sink has played, from the first sound on.
    std::vector<float> recorded() const {
        QFile file(m_recording);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        std::vector<float> sound(static_cast<std::size_t>(bytes.size()) / sizeof(float));
        std::memcpy(sound.data(), bytes.constData(), sound.size() * sizeof(float));
        sound.erase(sound.begin(), std::ranges::find_if(sound, [](float sample) { return sample != 0; }));
        return sound;
    }
    Track sine(double seconds) const {
        const QString path = m_folder.filePath(QStringLiteral("sine.flac"));
        writeAudioFile(path, {.frequency = sineHertz, .seconds = seconds, .sampleRate = 48000});
        Track track;
        track.id = QUuid::createUuid();
        track.source = QUrl::fromLocalFile(path);
        return track;
    }
    static std::unique_ptr<Player> makePlayer() {
        return std::make_unique<Player>(std::make_unique<FileTrackResolver>(),
                                        std::make_unique<SystemOutputDeviceProvider>());
    }
    static QString inUse(const Player &player) {
        return player.outputDevice().value_or(OutputDeviceDescription{}).key;
    }

    QTemporaryDir m_folder;
    const QString m_socket = m_folder.filePath(QStringLiteral("native"));
    const QString m_recording = m_folder.filePath(QStringLiteral("recording"));
    pid_t m_server = 0;
    pid_t m_recorder = 0;
};

} // namespace

TEST_F(PulseAudioOutputTest, PlaysTheVerySound) {
    record();
    const auto player = makePlayer();
    player->enqueue({sine(20)});
    player->play();
    // A busy machine may starve a second of them of time; a fault of ours would spoil all three.
    bool isRight = false;
    for (int second = 1; second <= 3 && !isRight; ++second) {
        std::vector<float> sound;
        ASSERT_TRUE(pump([&] {
            sound = recorded();
            return sound.size() > static_cast<std::size_t>(48000 * second);
        }));
        sound = std::vector(sound.begin() + 48000 * (second - 1), sound.end());
        const Measured measured = measure(sound);
        isRight = std::abs(measured.decibels) < 0.1 && std::abs(measured.hertz - sineHertz) < 1 &&
                  measured.largestStep < largestSineStep;
        std::cout << measured.decibels << " dB, " << measured.hertz << " Hz, step " << measured.largestStep
                  << '\n';
    }
    EXPECT_TRUE(isRight);
    EXPECT_EQ(player->outputName(), QStringLiteral("PulseAudio"));
}

TEST_F(PulseAudioOutputTest, LatencyIsShortAndSoundIsBackSoonAfterARest) {
    SystemOutputDeviceProvider devices;
    ASSERT_TRUE(pump([&] { return devices.isSettled(); }));
    const std::unique_ptr<AudioOutput> output = devices.makeOutput(std::nullopt);
    EXPECT_EQ(output->sampleRate(), 48000);
    std::atomic<int> frames{0};
    output->start([&](float *, int count) { frames += count; }, {});
    output->setSuspended(false);
    ASSERT_TRUE(pump([&] { return frames > 24000; }));
    EXPECT_GT(output->latency(), 0.0);
    EXPECT_LT(output->latency(), 0.15);

    output->setSuspended(true);
    pump([] { return false; }, std::chrono::milliseconds(200));
    const int before = frames;
    const Clock::time_point woken = Clock::now();
    output->setSuspended(false);
    ASSERT_TRUE(pump([&] { return frames > before; }));
    EXPECT_LT(Clock::now() - woken, std::chrono::milliseconds(50));
}

TEST_F(PulseAudioOutputTest, TheListTellsOfEveryDeviceAndEveryChange) {
    SystemOutputDeviceProvider devices;
    const auto list = [&] {
        std::string text;
        for (const OutputDeviceDescription &device : devices.devices()) {
            const bool isDefault = devices.defaultDevice() == device.id;
            text += QStringLiteral("%1, %2, %3, %4%5; ")
                        .arg(device.key, device.name, device.transport)
                        .arg(device.nominalSampleRate)
                        .arg(QLatin1String(isDefault ? " default" : ""))
                        .toStdString();
        }
        return text;
    };
    const struct {
        const char *command;
        const char *expected;
    } rows[] = {
        {"info", "first, The First, USB, 48000 default; second, Null Output, Virtual, 44100; "},
        {"set-default-sink second",
         "first, The First, USB, 48000; second, Null Output, Virtual, 44100 default; "},
        {"unload-module 1", "first, The First, USB, 48000 default; "},
        {"load-module module-null-sink sink_name=tv rate=44100 "
         "sink_properties=device.profile.name=hdmi-stereo",
         "first, The First, USB, 48000 default; tv, Null Output, HDMI, 44100; "},
        {"unload-module module-null-sink", ""},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.command);
        ASSERT_TRUE(run(row.command));
        pump([&] { return list() == row.expected; }, std::chrono::seconds(3));
        EXPECT_EQ(list(), row.expected);
    }
}

TEST_F(PulseAudioOutputTest, MovesBetweenDevicesWithoutLosingThePlace) {
    const auto player = makePlayer();
    player->enqueue({sine(20)});
    player->play();
    const struct {
        const char *name;
        std::function<void()> change;
        const char *playsOn;
    } rows[] = {
        {"the default", [] {}, "first"},
        {"the default changes", [] { run("set-default-sink second"); }, "second"},
        {"a choice", [&] { player->chooseOutputDevice(QStringLiteral("first")); }, "first"},
        {"another choice", [&] { player->chooseOutputDevice(QStringLiteral("second")); }, "second"},
        {"its sink is taken away", [] { run("unload-module 1"); }, "first"},
        {"and comes back",
         [] { run("load-module module-null-sink norewinds=1 sink_name=second rate=44100"); }, "second"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const double before = player->currentTime();
        const Clock::time_point start = Clock::now();
        row.change();
        ASSERT_TRUE(pump([&] { return inUse(*player) == QLatin1String(row.playsOn); }));
        ASSERT_TRUE(pump([&] { return player->currentTime() > before + 0.3; }));
        const std::chrono::duration<double> elapsed = Clock::now() - start;
        EXPECT_LT(player->currentTime() - before, elapsed.count() + 0.1);
        EXPECT_EQ(player->state(), PlaybackState::playing);
    }
    EXPECT_EQ(player->errorMessage(), std::nullopt);
}

TEST_F(PulseAudioOutputTest, OutlivesItsServerAndSoundsAgainWithTheNext) {
    const auto player = makePlayer();
    player->enqueue({sine(20)});
    player->play();
    ASSERT_TRUE(pump([&] { return player->currentTime() > 0.2; }));
    end(m_server);
    const double place = player->currentTime();
    ASSERT_TRUE(pump([&] { return player->outputName() == QStringLiteral("no sound server"); }));
    EXPECT_LT(player->currentTime(), place + 0.3);
    EXPECT_TRUE(pump([&] { return player->currentTime() > place + 0.3; }));
    EXPECT_EQ(player->state(), PlaybackState::playing);

    startServer();
    ASSERT_TRUE(pump([&] { return inUse(*player) == QStringLiteral("first"); }));
    const double back = player->currentTime();
    EXPECT_TRUE(pump([&] { return player->currentTime() > back + 0.2; }));
    EXPECT_EQ(player->state(), PlaybackState::playing);
    EXPECT_EQ(player->errorMessage(), std::nullopt);
}

TEST_F(PulseAudioOutputTest, AServerThatHangsHoldsNobodyUp) {
    const Track track = sine(20);
    for (const bool hangsFromTheStart : {true, false}) {
        SCOPED_TRACE(hangsFromTheStart);
        const auto hang = [this] { kill(m_server, SIGSTOP); };
        if (hangsFromTheStart)
            hang();
        const auto player = makePlayer();
        player->enqueue({track});
        if (!hangsFromTheStart) {
            ASSERT_TRUE(pump([&] { return !player->outputDevices().empty(); }));
            hang();
        }
        const Clock::time_point start = Clock::now();
        player->play();
        EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(100));
        EXPECT_TRUE(pump([&] { return player->currentTime() > 0.1; })) << "silently";
        EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(2500));
        EXPECT_EQ(player->outputDevice(), std::nullopt);
        kill(m_server, SIGCONT);
        EXPECT_TRUE(pump([&] { return inUse(*player) == QStringLiteral("first"); }));
        EXPECT_EQ(player->state(), PlaybackState::playing);
    }
}

TEST(SystemOutputDeviceProviderTest, SilenceIsKnownWithinASecond) {
    const QTemporaryDir folder;
    QLocalServer hanging; // accepts, and says nothing
    ASSERT_TRUE(hanging.listen(folder.filePath(QStringLiteral("hanging"))));
    for (const char *name : {"missing", "hanging"}) {
        SCOPED_TRACE(name);
        qputenv("PULSE_SERVER", "unix:" + folder.filePath(QLatin1String(name)).toUtf8());
        const Clock::time_point start = Clock::now();
        SystemOutputDeviceProvider devices;
        EXPECT_TRUE(pump([&] { return devices.isSettled(); }));
        EXPECT_EQ(devices.makeOutput(std::nullopt)->name(), QStringLiteral("no sound server"));
        EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(1300));
    }
    qunsetenv("PULSE_SERVER");
}
