#pragma once

#include "AudioCore/Graph/PlayerNode.h"
#include "AudioCore/Output/NullAudioOutput.h"
#include "AudioCore/Output/OutputDeviceProvider.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <vector>

namespace vantor {

/// An output that renders when the test says so, and remembers what it heard.
class TestOutput final : public AudioOutput {
  public:
    /// What the test sees of its outputs, which belong to the player, and of the devices.
    struct Shared {
        static OutputDeviceDescription device(quint32 id, const char *key) {
            OutputDeviceDescription made;
            made.id = id;
            made.key = QLatin1String(key);
            return made;
        }

        TestOutput *current = nullptr;
        int made = 0;
        int sampleRate = 44100;
        double latency = 0;
        std::optional<quint32> refusing; ///< the device that cannot be played on
        std::vector<StereoFrame> heard;

        bool isSettled = true;
        std::vector<OutputDeviceDescription> devices{device(1, "speakers")};
        std::optional<quint32> defaultDevice = 1;

        /// Lets events and sound flow until something holds; false after 20 seconds. The sound runs at twice
        /// the pace of the clock at most: time that a busy machine has lost is not made up for, as the
        /// decoder has lost it too.
        template <class Condition>
        bool pump(Condition condition) {
            using Clock = std::chrono::steady_clock;
            const Clock::time_point start = Clock::now();
            std::int64_t rendered = 0;
            while (!condition()) {
                const Clock::duration elapsed = Clock::now() - start;
                if (elapsed > std::chrono::seconds(20))
                    return false;
                const auto due = std::chrono::duration_cast<std::chrono::microseconds>(elapsed).count() *
                                 sampleRate * 2 / 1'000'000;
                for (rendered = std::max(rendered, due - 1024); rendered < due; rendered += 64) {
                    if (current)
                        current->render(64);
                }
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 1);
            }
            return true;
        }
    };

    TestOutput(Shared &shared, std::optional<quint32> device)
        : m_shared(shared), m_sampleRate(shared.sampleRate), m_device(device) {
        ++shared.made;
        shared.current = this;
    }
    ~TestOutput() override {
        if (m_shared.current == this)
            m_shared.current = nullptr;
    }

    void start(Render render, Reports reports) override {
        m_render = std::move(render);
        m_reports = std::move(reports);
        if (m_device && m_device == m_shared.refusing)
            m_reports.lost(false, QStringLiteral("refused"));
    }
    void stop() override { m_render = nullptr; }
    void setSuspended(bool suspended) override { m_suspended = suspended; }
    void setTimed(bool) override {}
    [[nodiscard]] int sampleRate() const override { return m_sampleRate; }
    [[nodiscard]] double latency() const override { return m_shared.latency; }
    [[nodiscard]] std::optional<std::chrono::steady_clock::time_point> heardAt() const override {
        return std::chrono::steady_clock::time_point(
            std::chrono::microseconds(1'000'000 + m_rendered * 1'000'000 / m_sampleRate));
    }
    [[nodiscard]] std::optional<quint32> device() const override { return m_device; }
    [[nodiscard]] QString name() const override { return QStringLiteral("test"); }

    void render(int frames) {
        if (!m_render || m_suspended)
            return;
        const std::size_t before = m_shared.heard.size();
        m_shared.heard.resize(before + static_cast<std::size_t>(frames));
        m_render(&m_shared.heard[before].left, frames);
        m_rendered += frames;
    }
    void lose() { m_reports.lost(true, QStringLiteral("pulled out")); }
    void move(quint32 device) {
        m_device = device;
        m_reports.moved();
    }

  private:
    Shared &m_shared;
    const int m_sampleRate;
    Render m_render;
    Reports m_reports;
    std::optional<quint32> m_device;
    bool m_suspended = true;
    std::int64_t m_rendered = 0; ///< frames
};

/// The devices that the test has set up; it emits changed() itself.
class TestOutputDevices final : public OutputDeviceProvider {
  public:
    explicit TestOutputDevices(TestOutput::Shared &shared) : m_shared(shared) {}

    [[nodiscard]] bool isSettled() const override { return m_shared.isSettled; }
    [[nodiscard]] std::vector<OutputDeviceDescription> devices() const override { return m_shared.devices; }
    [[nodiscard]] std::optional<quint32> defaultDevice() const override { return m_shared.defaultDevice; }
    [[nodiscard]] std::unique_ptr<AudioOutput> makeOutput(std::optional<quint32> device) override {
        return std::make_unique<TestOutput>(m_shared, device ? device : m_shared.defaultDevice);
    }

  private:
    TestOutput::Shared &m_shared;
};

/// A system without sound, on which the player runs in real time.
class SilentOutputDevices final : public OutputDeviceProvider {
  public:
    [[nodiscard]] bool isSettled() const override { return true; }
    [[nodiscard]] std::vector<OutputDeviceDescription> devices() const override { return {}; }
    [[nodiscard]] std::optional<quint32> defaultDevice() const override { return std::nullopt; }
    [[nodiscard]] std::unique_ptr<AudioOutput> makeOutput(std::optional<quint32>) override {
        return std::make_unique<NullAudioOutput>();
    }
};

} // namespace vantor
