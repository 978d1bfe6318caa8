#pragma once

#include "AudioCore/Output/AudioOutput.h"
#include "Platform/ThreadSafety.h"

#include <chrono>
#include <condition_variable>
#include <thread>

namespace vantor {

/// Plays into nothing, at the pace of the monotonic clock: the player goes on where there is no sound server.
class NullAudioOutput final : public AudioOutput {
  public:
    explicit NullAudioOutput(int sampleRate = 44100) : m_sampleRate(sampleRate) {}
    ~NullAudioOutput() override { stop(); }

    void start(Render render, Reports reports) override;
    void stop() override;
    void setSuspended(bool suspended) override;
    void setTimed(bool) override {}

    [[nodiscard]] int sampleRate() const override { return m_sampleRate; }
    [[nodiscard]] double latency() const override { return 0; }
    [[nodiscard]] std::optional<std::chrono::steady_clock::time_point> heardAt() const override {
        return m_due;
    }
    [[nodiscard]] std::optional<quint32> device() const override { return std::nullopt; }
    [[nodiscard]] QString name() const override { return QStringLiteral("no sound server"); }

  private:
    using Clock = std::chrono::steady_clock;

    void run(const Render &render);
    [[nodiscard]] bool waitUntil(Clock::time_point due);

    const int m_sampleRate;
    std::thread m_thread;
    Clock::time_point m_due; ///< of the block that is rendered; its thread's
    Mutex m_mutex;
    std::condition_variable m_changed;
    bool m_stopping VANTOR_GUARDED_BY(m_mutex) = false;
    bool m_suspended VANTOR_GUARDED_BY(m_mutex) = false;
};

} // namespace vantor
