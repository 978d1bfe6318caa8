#include "demo-track/FlacWriter.h"

#include "demo-track/Oscillators.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <stdexcept>

namespace vantor::demo {

namespace {

int check(int result, const char *action) {
    if (result < 0) {
        std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
        av_strerror(result, text.data(), text.size());
        throw std::runtime_error(std::string(action) + ": " + text.data());
    }
    return result;
}

template <auto Free>
struct FreeByAddress {
    template <typename T>
    void operator()(T *object) const {
        Free(&object);
    }
};

struct CloseOutput {
    void operator()(AVFormatContext *context) const {
        avio_closep(&context->pb);
        avformat_free_context(context);
    }
};

using CodecContext = std::unique_ptr<AVCodecContext, FreeByAddress<avcodec_free_context>>;
using Frame = std::unique_ptr<AVFrame, FreeByAddress<av_frame_free>>;
using Packet = std::unique_ptr<AVPacket, FreeByAddress<av_packet_free>>;
using Output = std::unique_ptr<AVFormatContext, CloseOutput>;

Output openOutput(const std::string &path) {
    AVFormatContext *context = nullptr;
    check(avformat_alloc_output_context2(&context, nullptr, "flac", nullptr), "no FLAC writer");
    Output output(context);
    // Without versions and times in the file, each build writes the same bytes.
    output->flags |= AVFMT_FLAG_BITEXACT;
    check(avio_open(&output->pb, path.c_str(), AVIO_FLAG_WRITE), path.c_str());
    return output;
}

CodecContext openEncoder() {
    const AVCodec *codec = avcodec_find_encoder(AV_CODEC_ID_FLAC);
    if (codec == nullptr)
        throw std::runtime_error("this FFmpeg has no FLAC encoder");
    CodecContext encoder(avcodec_alloc_context3(codec));
    encoder->sample_fmt = AV_SAMPLE_FMT_S16;
    encoder->sample_rate = static_cast<int>(sampleRate);
    encoder->time_base = {1, encoder->sample_rate};
    encoder->flags |= AV_CODEC_FLAG_BITEXACT;
    av_channel_layout_default(&encoder->ch_layout, 2);
    check(avcodec_open2(encoder.get(), codec, nullptr), "opening the FLAC encoder");
    return encoder;
}

/// Rounds to 16 bits with triangular dither, so that the fade ends in faint hiss and not in crackle.
class Quantiser {
  public:
    [[nodiscard]] std::int16_t next(float sample) {
        const double dither = 0.5 * (m_noise.next() + m_noise.next());
        const double scaled = std::nearbyint(static_cast<double>(sample) * 32767.0 + dither);
        return static_cast<std::int16_t>(std::clamp(scaled, -32768.0, 32767.0));
    }

  private:
    Noise m_noise{42};
};

class Encoding {
  public:
    explicit Encoding(const std::string &path) : m_output(openOutput(path)), m_encoder(openEncoder()) {
        m_stream = avformat_new_stream(m_output.get(), nullptr);
        if (m_stream == nullptr)
            throw std::bad_alloc();
        m_stream->time_base = m_encoder->time_base;
        check(avcodec_parameters_from_context(m_stream->codecpar, m_encoder.get()), "describing the stream");
    }

    void begin(const std::map<std::string, std::string> &tags) {
        for (const auto &[name, value] : tags)
            check(av_dict_set(&m_output->metadata, name.c_str(), value.c_str(), 0), "setting a tag");
        check(avformat_write_header(m_output.get(), nullptr), "writing the header");
    }

    void encode(const StereoBuffer &sound) {
        const auto block = static_cast<std::size_t>(m_encoder->frame_size);
        for (std::size_t start = 0; start < sound.frames(); start += block)
            send(makeFrame(sound, start, std::min(block, sound.frames() - start)).get());
        send(nullptr);
        check(av_write_trailer(m_output.get()), "finishing the file");
    }

  private:
    Frame makeFrame(const StereoBuffer &sound, std::size_t start, std::size_t count) {
        Frame frame(av_frame_alloc());
        frame->format = m_encoder->sample_fmt;
        frame->nb_samples = static_cast<int>(count);
        frame->sample_rate = m_encoder->sample_rate;
        frame->pts = static_cast<std::int64_t>(start);
        check(av_channel_layout_copy(&frame->ch_layout, &m_encoder->ch_layout), "copying the layout");
        check(av_frame_get_buffer(frame.get(), 0), "taking memory for a frame");
        auto *samples = reinterpret_cast<std::int16_t *>(frame->data[0]);
        for (std::size_t i = 0; i < count; ++i) {
            *samples++ = m_quantiser.next(sound.left[start + i]);
            *samples++ = m_quantiser.next(sound.right[start + i]);
        }
        return frame;
    }

    /// A null frame flushes the encoder.
    void send(const AVFrame *frame) {
        check(avcodec_send_frame(m_encoder.get(), frame), "encoding");
        int result = 0;
        while ((result = avcodec_receive_packet(m_encoder.get(), m_packet.get())) >= 0) {
            av_packet_rescale_ts(m_packet.get(), m_encoder->time_base, m_stream->time_base);
            m_packet->stream_index = m_stream->index;
            check(av_interleaved_write_frame(m_output.get(), m_packet.get()), "writing");
        }
        if (result != AVERROR(EAGAIN) && result != AVERROR_EOF)
            check(result, "encoding");
    }

    Output m_output;
    CodecContext m_encoder;
    AVStream *m_stream = nullptr;
    Packet m_packet{av_packet_alloc()};
    Quantiser m_quantiser;
};

} // namespace

void writeFlac(const std::string &path, const StereoBuffer &sound,
               const std::map<std::string, std::string> &tags) {
    Encoding encoding(path);
    encoding.begin(tags);
    encoding.encode(sound);
}

} // namespace vantor::demo
