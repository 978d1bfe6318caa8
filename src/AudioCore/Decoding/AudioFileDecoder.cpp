#include "AudioCore/Decoding/AudioFileDecoder.h"

#include "AudioCore/AudioCoreError.h"
#include "AudioCore/Decoding/FileInput.h"
#include "AudioCore/Decoding/FrameIndex.h"
#include "AudioCore/Decoding/MP4Length.h"
#include "AudioCore/Decoding/MediaContainer.h"
#include "AudioCore/Decoding/StereoResampler.h"
#include "AudioCore/Network/ProgressiveError.h"

#include <array>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace vantor {

// Lossy codecs need a few packets before their sound is right again: an MP3 frame may begin in one that is a
// quarter of a second earlier. The later ones are for places that tell no time, such as the last page of an
// Ogg file.
static constexpr std::array prerollSeconds{0.3, 2.0, 8.0, 32.0};
// What the sound's first frame may be after the file's own start: the encoder's delay, which is cut off.
static constexpr double longestDelay = 0.1;
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

// The length in samples that some encoders write into a tag: "00000000 00000840 000001CC 00000000003F31F4 …"
// is nothing, delay, padding and length, of which FFmpeg uses the delay.
static std::optional<std::int64_t> lengthInTag(const AVFormatContext &format) {
    const AVDictionaryEntry *const tag = av_dict_get(format.metadata, "iTunSMPB", nullptr, 0);
    unsigned delay = 0, padding = 0;
    std::uint64_t length = 0;
    if (!tag || std::sscanf(tag->value, "%*X %X %X %" SCNx64, &delay, &padding, &length) != 3 ||
        length == 0 || length > std::uint64_t{1} << 48)
        return std::nullopt;
    return static_cast<std::int64_t>(length);
}

// Sold with a lock on it: what is in there would be decoded to noise.
static bool isEncrypted(const AVCodecParameters &parameters) {
    return parameters.codec_tag == MKTAG('d', 'r', 'm', 's') ||
           parameters.codec_tag == MKTAG('e', 'n', 'c', 'a');
}

class AudioFileDecoder::Private {
  public:
    Private(std::shared_ptr<AudioInput> input, int sampleRate)
        : m_input(std::move(input)), m_sampleRate(sampleRate), m_packet(av_packet_alloc()),
          m_frame(av_frame_alloc()) {
        open();
    }

    [[nodiscard]] const AVStream &stream() const { return *m_stream; }
    [[nodiscard]] double duration() const;
    [[nodiscard]] ReplayGain replayGain() const;
    [[nodiscard]] std::span<const StereoFrame> read();
    [[nodiscard]] bool hasMore();
    [[nodiscard]] std::optional<std::int64_t> continueFrom(Private &previous);
    void seek(double seconds);

  private:
    void open();
    void reopen();
    [[noreturn]] void failFormat() const;
    bool seekFile(double seconds);
    bool nextFrame();
    bool receiveFrame();
    [[nodiscard]] bool isTimed() const;
    bool takeFrame();
    void trimEnd(std::int64_t start);
    [[nodiscard]] std::optional<std::int64_t> findEnd();
    [[nodiscard]] bool isInLastPage();
    void trimOnlyPage();
    [[nodiscard]] bool isFormat(std::string_view name) const {
        return std::string_view(m_container->format().iformat->name).starts_with(name);
    }
    [[nodiscard]] std::int64_t samples(std::int64_t time, int rate) const {
        return av_rescale_q(time, m_stream->time_base, {1, rate});
    }
    void feed();
    void countError();

    const std::shared_ptr<AudioInput> m_input;
    std::unique_ptr<MediaContainer> m_container;
    AVStream *m_stream = nullptr;
    FFmpegHandle<AVCodecContext> m_codec;
    const int m_sampleRate;
    std::unique_ptr<StereoResampler> m_resampler = std::make_unique<StereoResampler>(m_sampleRate);
    FFmpegHandle<AVPacket> m_packet;
    FFmpegHandle<AVFrame> m_frame;
    int m_frameDone = 0;         ///< samples of m_frame that are used up
    std::int64_t m_position = 0; ///< in samples of the source: where the next decoded frame starts
    /// In samples of the source and the file's time: where the sound starts; known with the first frame.
    std::optional<std::int64_t> m_origin;
    /// In samples: the sound's length, where only the file knows it and FFmpeg does not cut there.
    std::optional<std::int64_t> m_end;
    std::optional<double> m_target; ///< seconds: sound before it is dropped
    std::vector<StereoFrame> m_out;
    std::int64_t m_seekPlace = -1;  ///< in bytes: of the first packet after opening or a seek
    bool m_isAtStart = true;        ///< no packet has been read
    std::int64_t m_firstPlace = -1; ///< in bytes: of the file's first packet
    std::optional<FrameIndex> m_frames;
    bool m_inputEnded = false;
    bool m_ended = false;
    int m_errorsInARow = 0;
};

void AudioFileDecoder::Private::open() {
    m_frames.reset();
    av_frame_unref(m_frame.get());
    m_frameDone = 0;
    m_position = 0;
    m_inputEnded = false;
    m_seekPlace = -1;
    m_isAtStart = true;
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
    if (isEncrypted(*m_stream->codecpar) ||
        avcodec_parameters_to_context(m_codec.get(), m_stream->codecpar) < 0)
        failFormat();
    m_codec->pkt_timebase = m_stream->time_base;
    m_codec->thread_count = 1;
    if (avcodec_open2(m_codec.get(), codec, nullptr) < 0)
        failFormat();
    m_end = findEnd();
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

// FFmpeg cuts the padding off that encoders add at the end of all but MP4 files. What has no known end cannot
// be read again.
std::optional<std::int64_t> AudioFileDecoder::Private::findEnd() {
    AVFormatContext &format = m_container->format();
    if (!m_input->size() || m_stream->codecpar->codec_id != AV_CODEC_ID_AAC || !isFormat("mov"))
        return std::nullopt;
    const std::optional<std::int64_t> length = lengthInTag(format);
    return length ? length : lengthInMP4(format, *m_stream);
}

// FFmpeg knows no time there, and makes one up, unless it comes from the page before.
bool AudioFileDecoder::Private::isInLastPage() {
    static constexpr int flagsOffset = 5;
    static constexpr int lastPage = 4;
    AVIOContext *const io = m_container->format().pb;
    if (!m_input->size() || !isFormat("ogg") || m_seekPlace < 0)
        return false;
    const std::int64_t place = avio_tell(io);
    avio_seek(io, m_seekPlace + flagsOffset, SEEK_SET);
    const int flags = avio_r8(io);
    avio_seek(io, place, SEEK_SET);
    return (flags & lastPage) != 0;
}

// In a Vorbis file of one page FFmpeg takes the first packet, which only starts the decoder, for sound, and
// cuts as much too early.
void AudioFileDecoder::Private::trimOnlyPage() {
    if (m_codec->codec_id != AV_CODEC_ID_VORBIS || m_stream->duration <= 0 || !isInLastPage())
        return;
    m_codec->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
    m_end = samples(m_stream->duration, std::max(1, m_codec->sample_rate));
}

double AudioFileDecoder::Private::duration() const {
    const AVCodecParameters &codec = *m_stream->codecpar;
    if (m_end && codec.sample_rate > 0)
        return static_cast<double>(*m_end) / codec.sample_rate;
    double seconds = 0;
    if (m_stream->duration > 0)
        seconds = static_cast<double>(m_stream->duration) * av_q2d(m_stream->time_base);
    else if (const std::int64_t whole = m_container->format().duration; whole > 0)
        seconds = static_cast<double>(whole) / AV_TIME_BASE;
    // These count the encoder's delay as well.
    if (codec.codec_id == AV_CODEC_ID_MP3 && m_stream->start_time > 0)
        seconds -= static_cast<double>(m_stream->start_time) * av_q2d(m_stream->time_base);
    else if (codec.codec_id == AV_CODEC_ID_OPUS && codec.sample_rate > 0)
        seconds -= static_cast<double>(codec.initial_padding) / codec.sample_rate;
    return std::max(seconds, 0.0);
}

ReplayGain AudioFileDecoder::Private::replayGain() const {
    return ReplayGain::fromTags([this](const char *name) {
        for (const AVDictionary *tags : {m_container->format().metadata, m_stream->metadata}) {
            if (const AVDictionaryEntry *tag = av_dict_get(tags, name, nullptr, 0))
                return QByteArray(tag->value);
        }
        return QByteArray();
    });
}

bool AudioFileDecoder::Private::hasMore() {
    while (!m_ended && m_frameDone >= m_frame->nb_samples) {
        if (!nextFrame())
            return false;
    }
    return !m_ended;
}

std::span<const StereoFrame> AudioFileDecoder::Private::read() {
    m_out.clear();
    while (m_out.empty() && !m_ended) {
        if (hasMore()) {
            const int count = m_resampler->convert(*m_frame, m_frameDone, m_out);
            if (count == 0)
                throw AudioCoreError::readFailure();
            m_frameDone += count;
        } else {
            m_resampler->drain(m_out);
            m_ended = true;
        }
    }
    return m_out;
}

std::optional<std::int64_t> AudioFileDecoder::Private::continueFrom(Private &previous) {
    if (!hasMore() || !previous.m_resampler->canContinue(*m_frame))
        return std::nullopt;
    m_resampler = std::exchange(previous.m_resampler, std::make_unique<StereoResampler>(m_sampleRate));
    return m_resampler->framesDue();
}

// False at the end.
bool AudioFileDecoder::Private::nextFrame() {
    while (receiveFrame()) {
        if (takeFrame())
            return true;
    }
    return false;
}

bool AudioFileDecoder::Private::receiveFrame() {
    while (true) {
        const int result = avcodec_receive_frame(m_codec.get(), m_frame.get());
        if (result == 0) {
            m_errorsInARow = 0;
            return true;
        }
        if (result == AVERROR_EOF)
            return false;
        if (result != AVERROR(EAGAIN))
            countError();
        feed();
    }
}

bool AudioFileDecoder::Private::isTimed() const {
    return m_frame->best_effort_timestamp != AV_NOPTS_VALUE && m_frame->sample_rate > 0;
}

// Places the decoded frame in time; false when all of it lies before the place that was sought or behind the
// end.
bool AudioFileDecoder::Private::takeFrame() {
    const int rate = m_frame->sample_rate;
    if (isTimed()) {
        const std::int64_t time = samples(m_frame->best_effort_timestamp, rate);
        if (!m_origin) {
            const std::int64_t start =
                m_stream->start_time == AV_NOPTS_VALUE ? 0 : samples(m_stream->start_time, rate);
            m_origin = time - start <= std::llround(longestDelay * rate) ? time : start;
        }
        m_position = time - *m_origin;
    }
    const std::int64_t start = m_position;
    m_position += m_frame->nb_samples;
    m_frameDone = 0;
    trimEnd(start);
    if (!m_target)
        return m_frame->nb_samples > 0;
    const std::int64_t before = std::llround(*m_target * rate) - start;
    if (before >= m_frame->nb_samples) {
        m_frameDone = m_frame->nb_samples;
        return false;
    }
    m_frameDone = static_cast<int>(std::max<std::int64_t>(before, 0));
    m_target.reset();
    return true;
}

void AudioFileDecoder::Private::trimEnd(std::int64_t start) {
    if (m_end)
        m_frame->nb_samples =
            static_cast<int>(std::clamp<std::int64_t>(*m_end - start, 0, m_frame->nb_samples));
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
    if (m_packet->stream_index == m_stream->index) {
        if (m_seekPlace < 0)
            m_seekPlace = m_packet->pos;
        if (std::exchange(m_isAtStart, false)) {
            m_firstPlace = m_packet->pos;
            trimOnlyPage();
        }
        if (avcodec_send_packet(m_codec.get(), m_packet.get()) < 0)
            countError();
    }
    av_packet_unref(m_packet.get());
}

void AudioFileDecoder::Private::countError() {
    if (++m_errorsInARow > mostErrorsInARow)
        throw AudioCoreError::readFailure();
}

void AudioFileDecoder::Private::seek(double seconds) {
    if (!m_origin)
        static_cast<void>(hasMore());
    m_resampler = std::make_unique<StereoResampler>(m_sampleRate);
    m_errorsInARow = 0;
    const bool isEstimate = m_container->format().duration_estimation_method == AVFMT_DURATION_FROM_BITRATE;
    m_ended = !isEstimate && duration() > 0 && seconds >= duration();
    if (m_ended)
        return;
    m_target = seconds;
    for (const double preroll : prerollSeconds) {
        if (!seekFile(seconds - preroll)) {
            m_ended = false;
            break;
        }
        if (!receiveFrame()) {
            m_ended = true; // unless there is something further ahead
            continue;
        }
        m_ended = false;
        if (isTimed() && !isInLastPage() &&
            samples(m_frame->best_effort_timestamp, m_frame->sample_rate) - m_origin.value_or(0) <=
                std::llround(seconds * m_frame->sample_rate)) {
            takeFrame();
            return;
        }
    }
    if (!m_ended)
        reopen(); // and decode up to the place
}

bool AudioFileDecoder::Private::seekFile(double seconds) {
    const int rate = std::max(1, m_codec->sample_rate);
    const std::int64_t place = std::llround(std::max(0.0, seconds) * rate) + m_origin.value_or(0);
    std::int64_t time = av_rescale_q(place, {1, rate}, m_stream->time_base);
    if (seconds <= 0 && avformat_index_get_entries_count(m_stream) > 0) // that may be before the sound
        time = std::min(time, avformat_index_get_entry(m_stream, 0)->timestamp);
    av_frame_unref(m_frame.get());
    m_frameDone = 0;
    m_inputEnded = false;
    m_seekPlace = -1;
    m_isAtStart = false;
    AVFormatContext &format = m_container->format();
    if (!m_input->isProgressive() && FrameIndex::isNeeded(format) && m_firstPlace >= 0) {
        if (!m_frames)
            m_frames.emplace(format, *m_stream, m_firstPlace);
        m_frames->prepare(time);
    }
    const bool found = av_seek_frame(&format, m_stream->index, time, AVSEEK_FLAG_BACKWARD) >= 0;
    m_container->throwFailure();
    if (!found)
        return false;
    avcodec_flush_buffers(m_codec.get());
    return true;
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

ReplayGain AudioFileDecoder::replayGain() const {
    return d->replayGain();
}

std::span<const StereoFrame> AudioFileDecoder::read() {
    return d->read();
}

bool AudioFileDecoder::hasMore() {
    return d->hasMore();
}

std::optional<std::int64_t> AudioFileDecoder::continueFrom(AudioFileDecoder &previous) {
    return d->continueFrom(*previous.d);
}

void AudioFileDecoder::seek(double seconds) {
    d->seek(seconds);
}

} // namespace vantor
