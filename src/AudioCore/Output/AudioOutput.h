#pragma once

#include <QString>

#include <functional>

namespace vantor {

/// Where rendered sound goes. Everything but the render callback is called on the main thread.
class AudioOutput {
  public:
    /// Fills `frames` interleaved stereo frames. Runs on the output's own thread and never blocks.
    using Render = std::function<void(float *interleaved, int frames)>;

    virtual ~AudioOutput() = default;

    /// Gets ready to call `render`, suspended at first. `onLost` is called once, on the main thread, if the
    /// output breaks later; the output is then stopped. Throws AudioCoreError::engineStart.
    virtual void start(Render render, std::function<void(const QString &reason)> onLost) = 0;
    /// After it returns `render` is not called any more. Harmless when not started.
    virtual void stop() = 0;
    /// While suspended `render` is not needed, so that the machine can rest, and what it gives may be
    /// dropped, like what was rendered before and not yet heard. Taken back, what is rendered from then on is
    /// heard at once.
    virtual void setSuspended(bool suspended) = 0;

    /// Hz; fixed for the object's life.
    [[nodiscard]] virtual int sampleRate() const = 0;
    /// Between a frame's rendering and its sound, in seconds. Any thread.
    [[nodiscard]] virtual double latency() const = 0;
    /// For logs and the status line: "PulseAudio" or "no sound server".
    [[nodiscard]] virtual QString name() const = 0;
};

} // namespace vantor
