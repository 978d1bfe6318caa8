#pragma once

#include "AudioCore/Output/AudioOutput.h"
#include "AudioCore/Output/PulseServer_p.h"

#include <QObject>

#include <atomic>
#include <cstdint>
#include <span>

struct pa_operation;
struct pa_stream;
struct pa_time_event;

namespace vantor {

/// A stream to a sink of the PulseAudio server. `render` runs on the connection's thread.
class PulseAudioOutput final : public AudioOutput {
  public:
    /// The sink's name, or an empty one for wherever the server wants it. Best at the sink's own rate in Hz:
    /// resampling once, in the decoder, is better than a second time in the server.
    PulseAudioOutput(std::shared_ptr<PulseServer> server, const QString &sink, int sinkRate);
    ~PulseAudioOutput() override { stop(); }

    void start(Render render, Reports reports) override;
    void stop() override;
    void setSuspended(bool suspended) override;
    void setTimed(bool timed) override;

    [[nodiscard]] int sampleRate() const override { return m_sampleRate; }
    [[nodiscard]] double latency() const override;
    [[nodiscard]] std::optional<std::chrono::steady_clock::time_point> heardAt() const override;
    [[nodiscard]] std::optional<quint32> device() const override { return m_device; }
    [[nodiscard]] QString name() const override { return QStringLiteral("PulseAudio"); }

  private:
    struct Callbacks;

    [[nodiscard]] bool connectStream();
    void streamChanged();
    void streamReady();
    void streamLost();
    void stopWaiting();
    void cork(bool corked);
    void fillBuffer(std::size_t bytes);
    void noteLatency(std::size_t afterSilence);
    [[nodiscard]] bool endsLongSilence(std::span<const float> samples);
    void reportDevice();
    void reportLoss();
    void post(std::function<void()> call);

    const std::shared_ptr<PulseServer> m_server;
    const QByteArray m_sink;
    const int m_sampleRate;

    // With the server's lock.
    pa_stream *m_stream = nullptr;
    pa_time_event *m_patience = nullptr; ///< until the stream is ready
    pa_operation *m_lastQuestion = nullptr;
    pa_operation *m_timingQuestion = nullptr;
    Render m_render;
    bool m_isReady = false;
    bool m_isSuspended = true;
    bool m_isTimed = false;
    bool m_hasWoken = false;     ///< it has told its timing since it was suspended last
    bool m_knowsLatency = false; ///< m_heardAt is true
    QString m_lossReason;
    std::size_t m_targetBytes = 0; ///< kept rendered ahead of what is heard
    std::size_t m_silentBytes = 0; ///< rendered since the last sound

    // Main thread's.
    Reports m_reports;
    std::optional<quint32> m_device;

    /// When the sound rendered so far will all have been heard, in ns of the monotonic clock: written on the
    /// library's thread, so that asking for the latency never waits for it.
    std::atomic<std::int64_t> m_heardAt{0};
    std::unique_ptr<QObject> m_mainThread; ///< receives what is reported; its end drops what is on the way
};

} // namespace vantor
