#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace vantor::demo {

/// Stereo sound, full scale ±1.
struct StereoBuffer {
    explicit StereoBuffer(std::size_t frames) : left(frames), right(frames) {}

    [[nodiscard]] std::size_t frames() const { return left.size(); }

    std::vector<float> left;
    std::vector<float> right;
};

/// The mixing desk: instruments play into the dry sum and, by their sends, into the delay and the reverb.
struct Desk {
    explicit Desk(std::size_t frames)
        : dry(frames), delaySend(frames), reverbSend(frames), duck(frames, 0.0F) {}

    StereoBuffer dry;
    StereoBuffer delaySend;
    StereoBuffer reverbSend;
    std::vector<float> duck; ///< how far (0…1) the kick pushes the other instruments down, per frame
};

/// Settings of one strip; all are linear factors, 0…1 but for the gain.
struct ChannelSettings {
    double gain = 1.0;
    double delay = 0.0;
    double reverb = 0.0;
    double ducking = 0.0;
};

/// A place between the loudspeakers, at constant power.
struct Pan {
    /// -1 is left, 1 is right.
    explicit Pan(double place);

    double left;
    double right;
};

/// One instrument's strip on the desk, which must outlive it.
class Channel {
  public:
    Channel(Desk &desk, const ChannelSettings &settings) : m_desk(desk), m_settings(settings) {}

    /// Adds one frame; what lies behind the desk's end is dropped.
    void add(std::size_t frame, double left, double right);
    void add(std::size_t frame, double sample, const Pan &pan) {
        add(frame, sample * pan.left, sample * pan.right);
    }

  private:
    Desk &m_desk;
    ChannelSettings m_settings;
};

/// Fills the desk's ducking curve from the kick's frames.
void duckAt(Desk &desk, std::span<const std::size_t> kickFrames);

} // namespace vantor::demo
