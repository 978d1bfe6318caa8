#pragma once

#include "AudioCore/Output/AudioOutput.h"

#include <QObject>

#include <atomic>
#include <cstdint>
#include <memory>

struct pa_context;
struct pa_stream;
struct pa_threaded_mainloop;

namespace vantor {

/// Plays on the default device of a PulseAudio server (PipeWire is one too), at that device's rate.
/// `render` runs on the client library's thread.
class PulseAudioOutput final : public AudioOutput {
  public:
    /// Connects, which takes milliseconds, or two seconds at most with a server that hangs; throws
    /// AudioCoreError::engineStart when no server answers.
    PulseAudioOutput();
    ~PulseAudioOutput() override;

    void start(Render render, std::function<void(const QString &reason)> onLost) override;
    void stop() override;
    void setSuspended(bool suspended) override;

    [[nodiscard]] int sampleRate() const override { return m_sampleRate; }
    [[nodiscard]] double latency() const override;
    [[nodiscard]] QString name() const override { return QStringLiteral("PulseAudio"); }

  private:
    struct Callbacks;
    class Lock;
    struct MainloopDeleter {
        void operator()(pa_threaded_mainloop *loop) const;
    };

    void connectContext();
    void findSampleRate();
    template <class Done>
    void waitUntil(Done done);
    [[noreturn]] void throwStartError() const;
    void fillBuffer(std::size_t bytes);
    void dropContext();
    void dropStream();
    void reportLoss();

    std::unique_ptr<pa_threaded_mainloop, MainloopDeleter> m_loop;
    pa_context *m_context = nullptr; ///< this and the stream: with the loop's lock
    pa_stream *m_stream = nullptr;
    int m_sampleRate = 0;
    Render m_render;
    std::function<void(const QString &reason)> m_onLost;
    bool m_reportsLoss = false; ///< with the loop's lock
    /// When the sound rendered so far will all have been heard, in ns of the monotonic clock: written on the
    /// library's thread, so that asking for the latency never waits for it.
    std::atomic<std::int64_t> m_heardAt{0};
    QObject m_mainThread; ///< receives what the library's thread has to say; its end drops what is on the way
};

} // namespace vantor
