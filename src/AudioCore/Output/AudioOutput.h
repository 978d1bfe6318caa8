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

    /// Begins to call `render`. `onLost` is called once, on the main thread, if the output breaks later; the
    /// output is then stopped. Throws AudioCoreError::engineStart.
    virtual void start(Render render, std::function<void(const QString &reason)> onLost) = 0;
    /// After it returns `render` is not called any more. Harmless when not started.
    virtual void stop() = 0;
    /// While nothing plays for long: no more calls of `render`, so that the machine can rest, until it is
    /// taken back. What was rendered before the rest and not yet heard may be dropped.
    virtual void setSuspended(bool suspended) = 0;

    /// Hz; fixed for the object's life.
    [[nodiscard]] virtual int sampleRate() const = 0;
    /// Between a frame's rendering and its sound, in seconds. Any thread.
    [[nodiscard]] virtual double latency() const = 0;
    /// For logs and the status line: "PulseAudio" or "no sound server".
    [[nodiscard]] virtual QString name() const = 0;
};

} // namespace vantor
