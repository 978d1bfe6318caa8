#include "AudioCore/Decoding/AudioFileDecoder.h"

#include "AudioCore/AudioCoreError.h"
#include "AudioCore/Decoding/FileInput.h"
#include "AudioCore/Decoding/MediaContainer.h"
#include "AudioCore/Decoding/StereoResampler.h"
#include "AudioCore/Network/ProgressiveError.h"

#include <cmath>

namespace vantor {

// Lossy codecs need a few packets before their sound is right again; more than any of them asks for.
static constexpr double prerollSeconds = 0.1;
// A damaged stretch this long is the end: some seconds of the usual packets.
static constexpr int mostErrorsInARow = 256;

static QString codecName(AVCodecID codec) {
    if (av_get_exact_bits_per_sample(codec) > 0 && codec >= AV_CODEC_ID_FIRST_AUDIO &&
        codec < AV_CODEC_ID_ADPCM_IMA_QT)
        return QStringLiteral("PCM");
    return QString::fromLatin1(avcodec_get_name(codec)).toUpper();
}

static std::optional<int> losslessBits(const AVCodecParameters &parameters) {
    const AVCodecDescriptor *const descriptor = avcodec_descriptor_get(parameters.codec_id);
    if (!descriptor || !(descriptor->props & AV_CODEC_PROP_LOSSLESS))
        return std::nullopt;
    for (const int bits : {parameters.bits_per_raw_sample, av_get_exact_bits_per_sample(parameters.codec_id),
                           parameters.bits_per_coded_sample}) {
        if (bits > 0)
            return bits;
    }
    return std::nullopt;
}

class AudioFileDecoder::Private {
  public:
    Private(std::shared_ptr<AudioInput> input, int sampleRate)
        : m_input(std::move(input)), m_resampler(sampleRate), m_packet(av_packet_alloc()),
          m_frame(av_frame_alloc()) {
        open();
    }

    [[nodiscard]] const AVStream &stream() const { return *m_stream; }
    [[nodiscard]] double duration() const;
    [[nodiscard]] std::span<const StereoFrame> read();
    void seek(double seconds);

  private:
    void open();
    void reopen();
    [[noreturn]] void failFormat() const;
    bool seekFile(double seconds);
    bool nextFrame();
    bool takeFrame();
    void feed();
    void countError();
    [[nodiscard]] std::int64_t origin() const {
        return m_stream->start_time == AV_NOPTS_VALUE ? 0 : m_stream->start_time;
    }

    const std::shared_ptr<AudioInput> m_input;
    std::unique_ptr<MediaContainer> m_container;
    AVStream *m_stream = nullptr;
    FFmpegHandle<AVCodecContext> m_codec;
    StereoResampler m_resampler;
    FFmpegHandle<AVPacket> m_packet;
    FFmpegHandle<AVFrame> m_frame;
    int m_frameDone = 0;            ///< samples of m_frame that are used up
    std::int64_t m_position = 0;    ///< in samples of the source: where the next decoded frame starts
    std::optional<double> m_target; ///< seconds: sound before it is dropped
    std::vector<StereoFrame> m_out;
    bool m_inputEnded = false;
    bool m_ended = false;
    int m_errorsInARow = 0;
};

void AudioFileDecoder::Private::open() {
    m_container = std::make_unique<MediaContainer>(m_input);
    AVFormatContext &format = m_container->format();
    const AVCodec *codec = nullptr;
    const int index = av_find_best_stream(&format, AVMEDIA_TYPE_AUDIO, -1, -1, &codec, 0);
    if (index < 0 || !codec)
        failFormat();
    for (unsigned i = 0; i < format.nb_streams; ++i)
        format.streams[i]->discard = static_cast<int>(i) == index ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    m_stream = format.streams[index];
    m_codec.reset(avcodec_alloc_context3(codec));
    if (avcodec_parameters_to_context(m_codec.get(), m_stream->codecpar) < 0)
        failFormat();
    m_codec->pkt_timebase = m_stream->time_base;
    m_codec->thread_count = 1;
    if (avcodec_open2(m_codec.get(), codec, nullptr) < 0)
        failFormat();
}

void AudioFileDecoder::Private::failFormat() const {
    if (m_input->isProgressive())
        throw ProgressiveError::formatUnsupported();
    throw AudioCoreError::openFailure();
}

void AudioFileDecoder::Private::reopen() {
    m_codec.reset();
    m_container.reset();
    if (!m_input->seek(0))
        throw AudioCoreError::readFailure();
    open();
}

double AudioFileDecoder::Private::duration() const {
    if (m_stream->duration > 0)
        return static_cast<double>(m_stream->duration) * av_q2d(m_stream->time_base);
    const std::int64_t whole = m_container->format().duration;
    return whole > 0 ? static_cast<double>(whole) / AV_TIME_BASE : 0.0;
}

std::span<const StereoFrame> AudioFileDecoder::Private::read() {
    m_out.clear();
    while (m_out.empty() && !m_ended) {
        if (m_frameDone < m_frame->nb_samples) {
            const int count = m_resampler.convert(*m_frame, m_frameDone, m_out);
            if (count == 0)
                throw AudioCoreError::readFailure();
            m_frameDone += count;
        } else if (!nextFrame()) {
            m_resampler.drain(m_out);
            m_ended = true;
        }
    }
    return m_out;
}

// False at the end.
bool AudioFileDecoder::Private::nextFrame() {
    while (true) {
        const int result = avcodec_receive_frame(m_codec.get(), m_frame.get());
        if (result == 0) {
            m_errorsInARow = 0;
            if (takeFrame())
                return true;
        } else if (result == AVERROR_EOF) {
            return false;
        } else {
            if (result != AVERROR(EAGAIN))
                countError();
            feed();
        }
    }
}

// Places the decoded frame in time; false when all of it lies before the place that was sought.
bool AudioFileDecoder::Private::takeFrame() {
    const int rate = m_frame->sample_rate;
    const std::int64_t time = m_frame->best_effort_timestamp;
    if (time != AV_NOPTS_VALUE && rate > 0)
        m_position = av_rescale_q(time - origin(), m_stream->time_base, {1, rate});
    const std::int64_t start = m_position;
    m_position += m_frame->nb_samples;
    m_frameDone = 0;
    if (!m_target)
        return true;
    const std::int64_t before = std::llround(*m_target * rate) - start;
    if (before >= m_frame->nb_samples) {
        m_frameDone = m_frame->nb_samples;
        return false;
    }
    m_frameDone = static_cast<int>(std::max<std::int64_t>(before, 0));
    m_target.reset();
    return true;
}

void AudioFileDecoder::Private::feed() {
    if (m_inputEnded) {
        countError();
        return;
    }
    const int result = av_read_frame(&m_container->format(), m_packet.get());
    m_container->throwFailure();
    if (result == AVERROR_EOF) {
        if (m_container->format().pb->error < 0 && m_container->format().pb->error != AVERROR_EOF)
            throw AudioCoreError::readFailure();
        m_inputEnded = true;
        avcodec_send_packet(m_codec.get(), nullptr);
        return;
    }
    if (result < 0) {
        countError();
        return;
    }
    if (m_packet->stream_index == m_stream->index && avcodec_send_packet(m_codec.get(), m_packet.get()) < 0)
        countError();
    av_packet_unref(m_packet.get());
}

void AudioFileDecoder::Private::countError() {
    if (++m_errorsInARow > mostErrorsInARow)
        throw AudioCoreError::readFailure();
}

void AudioFileDecoder::Private::seek(double seconds) {
    av_frame_unref(m_frame.get());
    m_frameDone = 0;
    m_resampler.reset();
    m_target = seconds;
    m_errorsInARow = 0;
    m_inputEnded = false;
    m_ended = duration() > 0 && seconds >= duration();
    if (m_ended)
        return;
    if (seekFile(seconds)) {
        avcodec_flush_buffers(m_codec.get());
    } else {
        reopen(); // and decode up to the place
        m_position = 0;
    }
}

bool AudioFileDecoder::Private::seekFile(double seconds) {
    const double before = std::max(0.0, seconds - prerollSeconds) / av_q2d(m_stream->time_base);
    const std::int64_t time = origin() + static_cast<std::int64_t>(before);
    m_position = av_rescale_q(time - origin(), m_stream->time_base, {1, std::max(1, m_codec->sample_rate)});
    const bool found =
        av_seek_frame(&m_container->format(), m_stream->index, time, AVSEEK_FLAG_BACKWARD) >= 0;
    m_container->throwFailure();
    return found;
}

AudioFileDecoder::AudioFileDecoder(std::shared_ptr<AudioInput> input, int sampleRate)
    : d(std::make_unique<Private>(std::move(input), sampleRate)) {}

AudioFileDecoder::AudioFileDecoder(const QString &path, int sampleRate)
    : AudioFileDecoder(std::make_shared<FileInput>(path), sampleRate) {}

AudioFileDecoder::~AudioFileDecoder() = default;

PlaybackFormat AudioFileDecoder::format() const {
    const AVCodecParameters &parameters = *d->stream().codecpar;
    return {.sampleRate = static_cast<double>(parameters.sample_rate),
            .channels = parameters.ch_layout.nb_channels,
            .codec = codecName(parameters.codec_id),
            .bitDepth = losslessBits(parameters)};
}

double AudioFileDecoder::duration() const {
    return d->duration();
}

std::span<const StereoFrame> AudioFileDecoder::read() {
    return d->read();
}

void AudioFileDecoder::seek(double seconds) {
    d->seek(seconds);
}

} // namespace vantor
