#pragma once

#include <QString>

#include <chrono>
#include <functional>
#include <optional>

namespace vantor {

/// Where rendered sound goes. Everything but the render callback is called on the main thread, and nothing
/// there waits for the sound system.
class AudioOutput {
  public:
    /// Fills `frames` interleaved stereo frames. Runs on the output's own thread and never blocks.
    using Render = std::function<void(float *interleaved, int frames)>;

    /// What an output tells, on the main thread. Both may delete it.
    struct Reports {
        /// It broke, or never came to play (`wasReady` is false), and is stopped. Once at most; `reason` is
        /// in the sound system's own words.
        std::function<void(bool wasReady, const QString &reason)> lost;
        /// device() is another: it is ready, or the sound system has moved it.
        std::function<void()> moved;
    };

    virtual ~AudioOutput() = default;

    /// Gets ready to call `render`, suspended at first. Returns at once; what comes of it is reported.
    virtual void start(Render render, Reports reports) = 0;
    /// After it returns `render` is not called any more, and nothing reported. Harmless when not started.
    virtual void stop() = 0;
    /// While suspended `render` is not needed, so that the machine can rest, and what it gives may be
    /// dropped, like what was rendered before and not yet heard. Taken back, what is rendered from then on is
    /// heard at once, or as soon as the output is ready.
    virtual void setSuspended(bool suspended) = 0;

    /// While on, what is rendered is heard when heardAt() said so. Else sound may overtake the silence that
    /// was rendered before it.
    virtual void setTimed(bool timed) = 0;

    /// Hz; fixed for the object's life.
    [[nodiscard]] virtual int sampleRate() const = 0;
    /// Between a frame's rendering and its sound, in seconds. Any thread.
    [[nodiscard]] virtual double latency() const = 0;
    /// When the first of the frames that are being rendered will be heard; none while that is not known. In
    /// `render` only.
    [[nodiscard]] virtual std::optional<std::chrono::steady_clock::time_point> heardAt() const = 0;
    /// The device that plays, by its OutputDeviceDescription::id; none before it is ready and where there is
    /// none.
    [[nodiscard]] virtual std::optional<quint32> device() const = 0;
    /// For logs and the status line: "PulseAudio" or "no sound server".
    [[nodiscard]] virtual QString name() const = 0;
};

} // namespace vantor
