#include "tests/Support/FakeSendspin/MadeStream.h"

#include <QtEndian>

#include <cmath>
#include <numbers>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/channel_layout.h>
}

namespace vantor {

namespace {

constexpr double sweepLength = 20;
constexpr int pcmChunksPerSecond = 40;
constexpr int flacBlock = 1152;

double noise(double seconds) {
    auto hash = static_cast<std::uint64_t>(std::llround(seconds * 1'000'000)) * 0x9E3779B97F4A7C15ULL;
    hash ^= hash >> 29;
    hash *= 0xBF58476D1CE4E5B9ULL;
    hash ^= hash >> 32;
    return static_cast<double>(hash & 0xFFFF) / 0x8000 - 1;
}

/// The made sound as a whole number, at the top of 32 bits.
std::int32_t sample(double seconds) {
    return static_cast<std::int32_t>(std::lround(madeSound(seconds) * 2147483392.0));
}

struct FreeContext {
    void operator()(AVCodecContext *context) const { avcodec_free_context(&context); }
};
struct FreeFrame {
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
};
struct FreePacket {
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
};

} // namespace

double madeSound(double seconds) {
    const double time = std::fmod(seconds, sweepLength);
    return 0.5 * std::sin(2 * std::numbers::pi * (100 * time + 200 * time * time)) + 0.02 * noise(seconds);
}

class MadeEncoder::Codec {
  public:
    explicit Codec(const MadeFormat &format) {
        const bool isOpus = format.codec == QLatin1String("opus");
        const AVCodec *codec = avcodec_find_encoder_by_name(isOpus ? "libopus" : "flac");
        if (!codec)
            return;
        m_context.reset(avcodec_alloc_context3(codec));
        m_context->sample_rate = format.sampleRate;
        m_context->sample_fmt = isOpus || format.bitDepth == 16 ? AV_SAMPLE_FMT_S16 : AV_SAMPLE_FMT_S32;
        m_context->bits_per_raw_sample = format.bitDepth;
        m_context->bit_rate = isOpus ? 160'000 : 0;
        m_context->frame_size = isOpus ? 0 : flacBlock;
        av_channel_layout_default(&m_context->ch_layout, format.channels);
        if (avcodec_open2(m_context.get(), codec, nullptr) < 0)
            m_context.reset();
    }
    [[nodiscard]] bool isOpen() const { return m_context != nullptr; }
    [[nodiscard]] int frameSize() const { return m_context->frame_size; }
    [[nodiscard]] QByteArray extraData() const {
        return {reinterpret_cast<const char *>(m_context->extradata), m_context->extradata_size};
    }

    /// The samples of one packet, each at the top of 32 bits.
    [[nodiscard]] QByteArray encode(const std::vector<std::int32_t> &samples) {
        const std::unique_ptr<AVFrame, FreeFrame> frame(av_frame_alloc());
        frame->nb_samples = frameSize();
        frame->format = m_context->sample_fmt;
        av_channel_layout_copy(&frame->ch_layout, &m_context->ch_layout);
        av_frame_get_buffer(frame.get(), 0);
        if (m_context->sample_fmt == AV_SAMPLE_FMT_S16) {
            auto *out = reinterpret_cast<std::int16_t *>(frame->data[0]);
            std::transform(samples.begin(), samples.end(), out,
                           [](std::int32_t value) { return static_cast<std::int16_t>(value >> 16); });
        } else {
            std::copy(samples.begin(), samples.end(), reinterpret_cast<std::int32_t *>(frame->data[0]));
        }
        QByteArray data;
        const std::unique_ptr<AVPacket, FreePacket> packet(av_packet_alloc());
        avcodec_send_frame(m_context.get(), frame.get());
        while (avcodec_receive_packet(m_context.get(), packet.get()) == 0)
            data.append(reinterpret_cast<const char *>(packet->data), packet->size);
        return data;
    }

  private:
    std::unique_ptr<AVCodecContext, FreeContext> m_context;
};

MadeEncoder::MadeEncoder(const MadeFormat &format, double from) : m_format(format), m_from(from) {
    if (format.codec != QLatin1String("pcm"))
        m_codec = std::make_unique<Codec>(format);
}

MadeEncoder::~MadeEncoder() = default;

bool MadeEncoder::isValid() const {
    return !m_codec || m_codec->isOpen();
}

MadeEncoder::Piece MadeEncoder::next() {
    const int frames = m_codec ? m_codec->frameSize() : m_format.sampleRate / pcmChunksPerSecond;
    std::vector<std::int32_t> samples;
    samples.reserve(static_cast<std::size_t>(frames) * static_cast<std::size_t>(m_format.channels));
    for (int i = 0; i < frames; ++i, ++m_frame) {
        const auto value = sample(m_from + static_cast<double>(m_frame) / m_format.sampleRate);
        samples.insert(samples.end(), static_cast<std::size_t>(m_format.channels), value);
    }
    if (m_codec)
        return {.data = m_codec->encode(samples), .frames = frames};
    QByteArray data;
    for (const std::int32_t value : samples) {
        const qint32 little = qToLittleEndian(value);
        const int bytes = m_format.bitDepth / 8;
        data.append(reinterpret_cast<const char *>(&little) + 4 - bytes, bytes);
    }
    return {.data = data, .frames = frames};
}

QByteArray MadeEncoder::codecHeader() const {
    if (m_format.codec != QLatin1String("flac"))
        return {};
    const QByteArray info = m_codec->extraData();
    return QByteArray("fLaC\x80\0\0", 7) + static_cast<char>(info.size()) + info;
}

MadeStream::MadeStream(const MadeFormat &format, std::int64_t start, double from)
    : m_start(start), m_from(from), m_encoderStart(start) {
    encodeFromHere(format);
}

void MadeStream::changeFormat(const MadeFormat &format) {
    m_encoderStart += m_encodedFrames * 1'000'000 / m_codings.back().format.sampleRate;
    m_encodedFrames = 0;
    encodeFromHere(format);
}

void MadeStream::encodeFromHere(const MadeFormat &format) {
    m_encoder = std::make_unique<MadeEncoder>(format, contentAt(m_encoderStart));
    m_codings.push_back({.format = format, .codecHeader = m_encoder->codecHeader()});
}

const MadeStream::Chunk &MadeStream::chunk(std::int64_t index) {
    while (index >= m_firstIndex + std::ssize(m_chunks))
        make();
    return m_chunks[static_cast<std::size_t>(index - m_firstIndex)];
}

std::int64_t MadeStream::firstFrom(std::int64_t timestamp) {
    std::int64_t index = m_firstIndex;
    while (chunk(index).timestamp < timestamp)
        ++index;
    return index;
}

void MadeStream::forgetPlayed(std::int64_t beforeIndex, std::int64_t now) {
    for (; m_firstIndex < beforeIndex && !m_chunks.empty() && m_chunks.front().end <= now; ++m_firstIndex)
        m_chunks.pop_front();
}

double MadeStream::contentAt(std::int64_t timestamp) const {
    return m_from + static_cast<double>(timestamp - m_start) / 1'000'000;
}

void MadeStream::make() {
    const auto [data, frames] = m_encoder->next();
    const auto timeOf = [this](std::int64_t frame) {
        return m_encoderStart + frame * 1'000'000 / m_codings.back().format.sampleRate;
    };
    m_chunks.push_back({.timestamp = timeOf(m_encodedFrames),
                        .end = timeOf(m_encodedFrames + frames),
                        .formatNumber = newestFormat(),
                        .data = data});
    m_encodedFrames += frames;
}

} // namespace vantor
