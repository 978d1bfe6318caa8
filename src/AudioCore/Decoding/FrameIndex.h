#pragma once

#include "AudioCore/Decoding/FFmpegHandles_p.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace vantor {

class HeaderBits;

/// Where the frames of an MP3 or ADTS stream lie. Such files are bare frames of changing sizes; without an
/// index FFmpeg reads them packet by packet up to the place that is sought, which takes seconds in long ones.
/// The headers alone are read a hundred times faster, and a constant bit rate can be calculated.
class FrameIndex {
  public:
    /// Both outlive the index; `firstFrame`: the place of the stream's first packet, in bytes.
    FrameIndex(AVFormatContext &format, AVStream &stream, std::int64_t firstFrame);

    [[nodiscard]] static bool isNeeded(const AVFormatContext &format);
    /// Adds to the stream's own index what a seek to a time (in its time base) needs. The input stands
    /// anywhere afterwards. Where the frames cannot be followed, nothing is added.
    void prepare(std::int64_t time);

  private:
    struct Frame {
        int bytes = 0;
        int samples = 0;
        int sampleRate = 0;
        int bitrate = 0; ///< bit/s; 0 where it may change with every frame
    };

    [[nodiscard]] static constexpr Frame mpegFrame(unsigned kind);
    [[nodiscard]] static std::optional<Frame> readADTS(const HeaderBits &bits);
    [[nodiscard]] static std::optional<Frame> readMPEG(const HeaderBits &bits);
    [[nodiscard]] std::optional<Frame> frameAt(std::int64_t place);
    [[nodiscard]] std::optional<std::int64_t> nextFrame(std::int64_t place);
    [[nodiscard]] std::span<const std::uint8_t> bytesAt(std::int64_t place);
    [[nodiscard]] std::optional<double> findConstantSize();
    void scanTo(std::int64_t sample);
    void calculate(std::int64_t sample);
    void add(std::int64_t place, std::int64_t sample);

    AVFormatContext &m_format;
    AVStream &m_stream;
    const std::int64_t m_first;
    const std::int64_t m_size; ///< of the file
    const bool m_isADTS;
    std::optional<Frame> m_kind;          ///< of all frames
    std::optional<double> m_constantSize; ///< bytes per frame, on average, at a constant bit rate
    std::int64_t m_place;                 ///< scanned up to here
    std::int64_t m_sample = 0;            ///< which begins there
    std::int64_t m_indexed = -1;          ///< the last sample in the stream's index
    std::size_t m_readAhead;              ///< bytes
    std::vector<std::uint8_t> m_window;
    std::int64_t m_windowPlace = 0;
};

} // namespace vantor
