#include "SendspinPlayback/Decoding/SendspinDecoder.h"

#include "AudioCore/Decoding/FFmpegHandles_p.h"
#include "AudioCore/Decoding/StereoResampler.h"

#include <cstring>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

static constexpr int mostChannels = 8;
static constexpr int lowestRate = 8'000;
static constexpr int highestRate = 384'000;
static constexpr int opusRate = 48'000; // whatever was coded

static AVCodecID codecOf(const SendspinStreamFormat &format) {
    const bool is24 = format.bitDepth == 24;
    if (format.codec == "pcm"_L1)
        return format.bitDepth == 16   ? AV_CODEC_ID_PCM_S16LE
               : is24                  ? AV_CODEC_ID_PCM_S24LE
               : format.bitDepth == 32 ? AV_CODEC_ID_PCM_S32LE
                                       : AV_CODEC_ID_NONE;
    if (format.codec == "flac"_L1)
        return format.bitDepth == 16 || is24 ? AV_CODEC_ID_FLAC : AV_CODEC_ID_NONE;
    return format.codec == "opus"_L1 && format.channels <= 2 ? AV_CODEC_ID_OPUS : AV_CODEC_ID_NONE;
}

class SendspinDecoder::Private {
  public:
    explicit Private(int outputRate)
        : m_resampler(outputRate), m_mostFrames(static_cast<std::size_t>(longestChunk * outputRate)),
          m_frame(av_frame_alloc()), m_packet(av_packet_alloc()) {}

    int open(const SendspinStreamFormat &format) {
        m_context.reset(avcodec_alloc_context3(nullptr));
        const AVCodec *codec = avcodec_find_decoder(codecOf(format));
        if (!codec || !m_context)
            return AVERROR_DECODER_NOT_FOUND;
        m_context->sample_rate = codec->id == AV_CODEC_ID_OPUS ? opusRate : format.sampleRate;
        av_channel_layout_default(&m_context->ch_layout, format.channels);
        // A damaged chunk is better silent than noise.
        m_context->err_recognition = AV_EF_CRCCHECK | AV_EF_EXPLODE;
        m_context->thread_count = 1;
        if (codec->id == AV_CODEC_ID_FLAC && !setExtraData(format.codecHeader))
            return AVERROR(ENOMEM);
        const int result = avcodec_open2(m_context.get(), codec, nullptr);
        if (result < 0)
            m_context.reset();
        return result;
    }

    void decode(const QByteArray &data, std::vector<StereoFrame> &out) {
        if (!m_context || data.isEmpty() || av_new_packet(m_packet.get(), static_cast<int>(data.size())) < 0)
            return;
        std::memcpy(m_packet->data, data.constData(), static_cast<std::size_t>(data.size()));
        int result = avcodec_send_packet(m_context.get(), m_packet.get());
        av_packet_unref(m_packet.get());
        const std::size_t most = out.size() + m_mostFrames;
        while (result >= 0 && out.size() < most) {
            result = avcodec_receive_frame(m_context.get(), m_frame.get());
            if (result >= 0)
                convert(most, out);
        }
        out.resize(std::min(out.size(), most));
        if (result != AVERROR(EAGAIN))
            avcodec_flush_buffers(m_context.get()); // of what is left
    }

    FFmpegHandle<AVCodecContext> m_context;
    StereoResampler m_resampler;

  private:
    bool setExtraData(const QByteArray &header) {
        if (header.isEmpty())
            return true;
        const auto size = static_cast<std::size_t>(header.size());
        m_context->extradata = static_cast<std::uint8_t *>(av_mallocz(size + AV_INPUT_BUFFER_PADDING_SIZE));
        if (!m_context->extradata)
            return false;
        std::memcpy(m_context->extradata, header.constData(), size);
        m_context->extradata_size = static_cast<int>(size);
        return true;
    }

    void convert(std::size_t most, std::vector<StereoFrame> &out) {
        for (int done = 0; done < m_frame->nb_samples && out.size() < most;) {
            const int count = m_resampler.convert(*m_frame, done, out);
            if (count == 0)
                break;
            done += count;
        }
    }

    const std::size_t m_mostFrames;
    FFmpegHandle<AVFrame> m_frame;
    FFmpegHandle<AVPacket> m_packet;
};

SendspinDecoder::SendspinDecoder(int outputRate) : d(std::make_unique<Private>(outputRate)) {}

SendspinDecoder::~SendspinDecoder() = default;
SendspinDecoder &SendspinDecoder::operator=(SendspinDecoder &&other) noexcept = default;

bool SendspinDecoder::isSupported(const SendspinStreamFormat &format) {
    return codecOf(format) != AV_CODEC_ID_NONE && format.channels <= mostChannels &&
           format.sampleRate >= lowestRate && format.sampleRate <= highestRate;
}

bool SendspinDecoder::open(const SendspinStreamFormat &format, QString &reason) {
    const int result = d->open(format);
    if (result < 0) {
        std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
        av_strerror(result, text.data(), text.size());
        reason = QString::fromLocal8Bit(text.data());
    }
    return result >= 0;
}

void SendspinDecoder::restart() {
    std::vector<StereoFrame> forgotten;
    d->m_resampler.drain(forgotten);
}

void SendspinDecoder::decode(const QByteArray &data, std::vector<StereoFrame> &out) {
    d->decode(data, out);
}

void SendspinDecoder::finish(std::vector<StereoFrame> &out) {
    d->m_resampler.drain(out);
}

std::int64_t SendspinDecoder::framesDue() const {
    return d->m_resampler.framesDue();
}

} // namespace vantor
