#pragma once

#include "AudioCore/Decoding/FFmpegHandles_p.h"
#include "AudioCore/Graph/PlayerNode.h"

#include <vector>

namespace vantor {

/// Turns decoded frames of any layout, sample format and rate into float stereo at one rate: of n samples
/// become round(n · output rate / rate) frames, over all that was put in.
class StereoResampler {
  public:
    explicit StereoResampler(int outputRate) : m_outputRate(outputRate) {}
    ~StereoResampler() { av_channel_layout_uninit(&m_layout); }
    StereoResampler(const StereoResampler &) = delete;
    StereoResampler &operator=(const StereoResampler &) = delete;

    /// Appends the sound of some of the frame's samples from `first` on and says of how many; a very low rate
    /// would otherwise ask for a giant buffer. 0: this sound cannot be converted.
    [[nodiscard]] int convert(const AVFrame &frame, int first, std::vector<StereoFrame> &out);
    /// Appends what is still in the filter, at the end of the sound.
    void drain(std::vector<StereoFrame> &out);

    /// Whether the filter holds the end of a sound that the frame can continue as if both were one.
    [[nodiscard]] bool canContinue(const AVFrame &frame) const {
        return m_swr && isMadeFor(frame) && m_rate != m_outputRate;
    }
    /// How many frames drain() would append.
    [[nodiscard]] std::int64_t framesDue() const;

  private:
    [[nodiscard]] bool isMadeFor(const AVFrame &frame) const;
    [[nodiscard]] bool configure(const AVFrame &frame, std::vector<StereoFrame> &out);
    [[nodiscard]] bool convertSome(const std::uint8_t *const *data, int samples,
                                   std::vector<StereoFrame> &out);

    const int m_outputRate;
    FFmpegHandle<SwrContext> m_swr;
    int m_format = AV_SAMPLE_FMT_NONE;
    int m_rate = 0;
    AVChannelLayout m_layout{};
    std::int64_t m_samplesIn = 0; ///< since m_swr was made
    std::int64_t m_framesOut = 0;
};

} // namespace vantor
