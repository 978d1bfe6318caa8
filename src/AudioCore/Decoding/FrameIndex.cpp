#include "AudioCore/Decoding/FrameIndex.h"

#include <QtEndian>

#include <array>
#include <cmath>
#include <string_view>

namespace vantor {

static constexpr std::size_t headerBytes = 8; // MP3 has four, ADTS seven
// As much as stays in the processor's cache between reading it and looking at it.
static constexpr std::size_t scanBytes = 1 << 18;
static constexpr std::size_t glanceBytes = 4096; // a few frames
// How far frames may lie apart: tags and damage between them.
static constexpr std::int64_t longestJunk = 16 << 20;
// Between two entries: what a seek decodes for nothing at most. The index costs memory and time in FFmpeg.
static constexpr int secondsBetweenEntries = 2;
// Smaller files are read through as quickly as they are sampled.
static constexpr std::int64_t smallestToSample = 8 << 20;
static constexpr std::int64_t samplesOfRate = 32;

// Bits of a frame's header, from the first on.
class HeaderBits {
  public:
    explicit HeaderBits(std::span<const std::uint8_t> bytes)
        : m_bits(qFromBigEndian<quint64>(bytes.data())) {}
    [[nodiscard]] int at(unsigned first, unsigned count) const {
        return static_cast<int>(m_bits >> (8 * headerBytes - first - count) & ((1U << count) - 1));
    }

  private:
    std::uint64_t m_bits;
};

FrameIndex::FrameIndex(AVFormatContext &format, AVStream &stream, std::int64_t firstFrame)
    : m_format(format), m_stream(stream), m_first(firstFrame), m_size(avio_size(format.pb)),
      m_isADTS(std::string_view(format.iformat->name) == "aac"), m_place(firstFrame),
      m_readAhead(glanceBytes) {
    m_kind = frameAt(m_first);
    if (m_kind && m_size - m_first >= smallestToSample)
        m_constantSize = findConstantSize();
}

bool FrameIndex::isNeeded(const AVFormatContext &format) {
    const std::string_view name = format.iformat->name;
    return (name == "mp3" || name == "aac") && format.pb && (format.pb->seekable & AVIO_SEEKABLE_NORMAL) != 0;
}

// Those of a header; empty behind the end.
std::span<const std::uint8_t> FrameIndex::bytesAt(std::int64_t place) {
    const auto held = static_cast<std::int64_t>(m_window.size());
    if (place < m_windowPlace || place + std::int64_t{headerBytes} > m_windowPlace + held) {
        m_windowPlace = place;
        m_window.resize(m_readAhead);
        const bool isThere = avio_seek(m_format.pb, place, SEEK_SET) == place;
        const int got = isThere ? avio_read(m_format.pb, m_window.data(), static_cast<int>(m_readAhead)) : 0;
        m_window.resize(static_cast<std::size_t>(std::max(got, 0)));
        if (m_window.size() < headerBytes)
            return {};
    }
    return std::span(m_window).subspan(static_cast<std::size_t>(place - m_windowPlace), headerBytes);
}

// In kbit/s, by the header's four bits; 0 where the header gives none.
constexpr std::array<std::array<int, 16>, 5> bitrates{{
    {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448, 0}, // MPEG 1, layer I
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384, 0},    // layer II
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 0},     // layer III
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256, 0},    // MPEG 2, layer I
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, 0},         // layers II and III
}};
constexpr std::array mpegRates{44100, 48000, 32000, 0};
constexpr std::array adtsRates{96000, 88200, 64000, 48000, 44100, 32000, 24000, 22050,
                               16000, 12000, 11025, 8000,  7350,  0,     0,     0};

std::optional<FrameIndex::Frame> FrameIndex::readADTS(const HeaderBits &bits) {
    const Frame frame{.bytes = bits.at(30, 13),
                      .samples = 1024 * (bits.at(54, 2) + 1),
                      .sampleRate = adtsRates[static_cast<std::size_t>(bits.at(18, 4))],
                      .bitrate = 0};
    const bool isSync = bits.at(0, 12) == 0xfff && bits.at(13, 2) == 0;
    if (!isSync || frame.sampleRate == 0 || frame.bytes < static_cast<int>(headerBytes))
        return std::nullopt;
    return frame;
}

// What the header's ten bits of version, layer, bit rate and sample rate come to, without the padding; no
// bytes for those that mean nothing.
constexpr FrameIndex::Frame FrameIndex::mpegFrame(unsigned kind) {
    const unsigned version = kind >> 8; // 0: 2.5, 2: 2, 3: 1
    const unsigned layer = 4 - (kind >> 6 & 3);
    const int rate = mpegRates[kind & 3] >> (version == 3 ? 0 : version == 2 ? 1 : 2);
    if (version == 1 || layer == 4 || rate == 0)
        return {};
    const unsigned table = version == 3 ? layer - 1 : layer == 1 ? 3 : 4;
    const int bitrate = 1000 * bitrates[table][kind >> 2 & 15];
    const int samples = layer == 1 ? 384 : layer == 3 && version != 3 ? 576 : 1152;
    const int slot = layer == 1 ? 4 : 1; // bytes
    return {.bytes = samples / 8 / slot * bitrate / rate * slot,
            .samples = samples,
            .sampleRate = rate,
            .bitrate = bitrate};
}

std::optional<FrameIndex::Frame> FrameIndex::readMPEG(const HeaderBits &bits) {
    // Reckoned once: a long file has more than a million frames.
    static constexpr auto frames = [] {
        std::array<Frame, 1024> all;
        for (unsigned kind = 0; kind < all.size(); ++kind)
            all[kind] = mpegFrame(kind);
        return all;
    }();
    Frame frame = frames[static_cast<std::size_t>(bits.at(11, 4) << 6 | bits.at(16, 6))];
    if (bits.at(0, 11) != 0x7ff || frame.bytes == 0)
        return std::nullopt;
    if (bits.at(22, 1) != 0)
        frame.bytes += frame.samples == 384 ? 4 : 1;
    return frame;
}

std::optional<FrameIndex::Frame> FrameIndex::frameAt(std::int64_t place) {
    const std::span<const std::uint8_t> bytes = bytesAt(place);
    if (bytes.empty())
        return std::nullopt;
    const HeaderBits bits(bytes);
    const std::optional<Frame> frame = m_isADTS ? readADTS(bits) : readMPEG(bits);
    if (frame && m_kind && (frame->samples != m_kind->samples || frame->sampleRate != m_kind->sampleRate) &&
        !m_isADTS)
        return std::nullopt;
    return frame;
}

// At or after a place. One header may be chance, two in a row are frames.
std::optional<std::int64_t> FrameIndex::nextFrame(std::int64_t place) {
    const std::int64_t end = std::min(place + longestJunk, m_size);
    for (; place < end; ++place) {
        const std::optional<Frame> frame = frameAt(place);
        if (frame && (place + frame->bytes >= m_size || frameAt(place + frame->bytes)))
            return place;
    }
    return std::nullopt;
}

// The frames at the beginning tell the rate, those throughout the file whether it holds everywhere.
std::optional<double> FrameIndex::findConstantSize() {
    if (m_kind->bitrate == 0)
        return std::nullopt;
    const double size = m_kind->samples / 8.0 * m_kind->bitrate / m_kind->sampleRate;
    const auto frames = static_cast<double>(m_size - m_first) / size;
    for (std::int64_t i = 0; i < samplesOfRate; ++i) {
        const double expected = std::floor(frames * static_cast<double>(i) / samplesOfRate) * size;
        const std::optional<std::int64_t> found =
            nextFrame(m_first + static_cast<std::int64_t>(expected) - 1);
        if (!found || std::abs(static_cast<double>(*found - m_first) - expected) > 2 ||
            frameAt(*found)->bitrate != m_kind->bitrate)
            return std::nullopt;
    }
    return size;
}

void FrameIndex::prepare(std::int64_t time) {
    if (!m_kind)
        return;
    const std::int64_t sample =
        av_rescale_q(std::max<std::int64_t>(time, 0), m_stream.time_base, {1, m_kind->sampleRate});
    // One entry behind the place: from its last one on FFmpeg would read packet by packet.
    const std::int64_t margin = std::int64_t{2} * secondsBetweenEntries * m_kind->sampleRate;
    if (!m_constantSize) {
        m_readAhead = scanBytes;
        scanTo(sample + margin);
        return;
    }
    m_readAhead = glanceBytes;
    calculate(sample);
    calculate(sample + margin);
}

void FrameIndex::scanTo(std::int64_t sample) {
    while (m_sample <= sample) {
        std::optional<Frame> frame = frameAt(m_place);
        if (!frame) {
            m_place = nextFrame(m_place + 1).value_or(m_size);
            if (!(frame = frameAt(m_place)))
                return;
        }
        if (m_indexed < 0 ||
            m_sample - m_indexed >= std::int64_t{secondsBetweenEntries} * frame->sampleRate) {
            m_indexed = m_sample;
            add(m_place, m_sample);
        }
        m_place += frame->bytes;
        m_sample += frame->samples;
    }
}

void FrameIndex::calculate(std::int64_t sample) {
    const double frame = std::floor(static_cast<double>(sample) / m_kind->samples);
    const auto place = m_first + static_cast<std::int64_t>(frame * *m_constantSize) - 1;
    if (const std::optional<std::int64_t> found = nextFrame(std::max(place, m_first)))
        add(*found, std::llround(static_cast<double>(*found - m_first) / *m_constantSize) * m_kind->samples);
}

void FrameIndex::add(std::int64_t place, std::int64_t sample) {
    av_add_index_entry(&m_stream, place, av_rescale_q(sample, {1, m_kind->sampleRate}, m_stream.time_base), 0,
                       0, AVINDEX_KEYFRAME);
}

} // namespace vantor
