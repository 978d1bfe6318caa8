#include "AudioCore/Decoding/StereoResampler.h"

extern "C" {
#include <libavutil/opt.h>
}

#include <array>

namespace vantor {

// From what a damaged header may claim to what the filter can be built for.
static constexpr int lowestRate = 1;
static constexpr int highestRate = 768'000;
static constexpr int mostChannels = 64; // the library's own limit
// What one call makes of a frame, about.
static constexpr std::int64_t pieceFrames = 8192;

bool StereoResampler::isMadeFor(const AVFrame &frame) const {
    return frame.format == m_format && frame.sample_rate == m_rate &&
           av_channel_layout_compare(&frame.ch_layout, &m_layout) == 0;
}

std::int64_t StereoResampler::framesDue() const {
    return m_swr ? av_rescale(m_samplesIn, m_outputRate, m_rate) - m_framesOut : 0;
}

bool StereoResampler::configure(const AVFrame &frame, std::vector<StereoFrame> &out) {
    const AVChannelLayout &layout = frame.ch_layout;
    if (m_swr && isMadeFor(frame))
        return true;
    drain(out);
    if (frame.sample_rate < lowestRate || frame.sample_rate > highestRate || layout.nb_channels < 1 ||
        layout.nb_channels > mostChannels)
        return false;
    m_format = frame.format;
    m_rate = frame.sample_rate;
    av_channel_layout_uninit(&m_layout);
    if (av_channel_layout_copy(&m_layout, &layout) < 0)
        return false;

    AVChannelLayout source{};
    if (layout.order == AV_CHANNEL_ORDER_UNSPEC)
        av_channel_layout_default(&source, layout.nb_channels);
    else if (av_channel_layout_copy(&source, &layout) < 0)
        return false;
    AVChannelLayout stereo{};
    av_channel_layout_default(&stereo, 2);
    SwrContext *swr = nullptr;
    const int result =
        swr_alloc_set_opts2(&swr, &stereo, AV_SAMPLE_FMT_FLT, m_outputRate, &source,
                            static_cast<AVSampleFormat>(frame.format), frame.sample_rate, 0, nullptr);
    av_channel_layout_uninit(&source);
    m_swr.reset(swr);
    if (result < 0)
        return false;
    if (layout.nb_channels == 1) {
        static constexpr std::array<double, 2> bothSides{1.0, 1.0};
        swr_set_matrix(swr, bothSides.data(), 1);
    } else {
        // Channels that are mixed together must not add up to more than full level.
        av_opt_set_double(swr, "rematrix_maxval", 1.0, 0);
    }
    if (swr_init(swr) < 0)
        m_swr.reset();
    return m_swr != nullptr;
}

int StereoResampler::convert(const AVFrame &frame, int first, std::vector<StereoFrame> &out) {
    if (!configure(frame, out))
        return 0;
    const auto format = static_cast<AVSampleFormat>(frame.format);
    const bool planar = av_sample_fmt_is_planar(format) != 0;
    const int planes = planar ? frame.ch_layout.nb_channels : 1;
    const int stride = av_get_bytes_per_sample(format) * (planar ? 1 : frame.ch_layout.nb_channels);
    std::array<const std::uint8_t *, mostChannels> data{};
    for (int plane = 0; plane < planes; ++plane)
        data[static_cast<std::size_t>(plane)] =
            frame.extended_data[plane] + static_cast<std::ptrdiff_t>(first) * stride;

    const auto piece = std::max<std::int64_t>(1, pieceFrames * m_rate / m_outputRate);
    const int count = static_cast<int>(std::min<std::int64_t>(piece, frame.nb_samples - first));
    return convertSome(data.data(), count, out) ? count : 0;
}

void StereoResampler::drain(std::vector<StereoFrame> &out) {
    if (!m_swr)
        return;
    // The library may give a few frames more or less.
    const std::size_t end = out.size() + static_cast<std::size_t>(std::max<std::int64_t>(framesDue(), 0));
    if (m_rate != m_outputRate)
        static_cast<void>(convertSome(nullptr, 0, out));
    out.resize(end, out.empty() ? StereoFrame{} : out.back());
    m_swr.reset();
    m_samplesIn = m_framesOut = 0;
}

bool StereoResampler::convertSome(const std::uint8_t *const *data, int samples,
                                  std::vector<StereoFrame> &out) {
    const int room = swr_get_out_samples(m_swr.get(), samples);
    if (room < 0)
        return false;
    const std::size_t before = out.size();
    out.resize(before + static_cast<std::size_t>(room));
    auto *target = reinterpret_cast<std::uint8_t *>(out.data() + before);
    // The library takes pointers to mutable data but only reads it.
    const int count =
        swr_convert(m_swr.get(), &target, room, const_cast<const std::uint8_t **>(data), samples);
    out.resize(before + static_cast<std::size_t>(std::max(count, 0)));
    m_samplesIn += samples;
    m_framesOut += std::max(count, 0);
    return count >= 0;
}

} // namespace vantor
