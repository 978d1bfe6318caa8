#pragma once

#include "AudioCore/Graph/PlayerNode.h"
#include "SendspinKit/Wire/SendspinStream.h"

#include <memory>
#include <vector>

namespace vantor {

/// Decodes the chunks of a stream into float stereo at the output's rate. More than two channels are mixed
/// down, mono plays on both sides. Whatever chunks and headers claim, one chunk never becomes more than
/// `longestChunk` seconds. One thread at a time.
class SendspinDecoder {
  public:
    static constexpr double longestChunk = 1;

    /// `outputRate`: in Hz.
    explicit SendspinDecoder(int outputRate);
    ~SendspinDecoder();
    SendspinDecoder &operator=(SendspinDecoder &&other) noexcept;

    /// Whether there is a decoder for such chunks: pcm of 16, 24 and 32 bits, flac of 16 and 24, each of up
    /// to eight channels and 8 to 384 kHz, and opus.
    [[nodiscard]] static bool isSupported(const SendspinStreamFormat &format);
    /// The next chunks are coded like this. What the resampler holds of the last ones goes over into them
    /// without a gap. False, and the reason, when the decoder does not begin: then there is no format.
    [[nodiscard]] bool open(const SendspinStreamFormat &format, QString &reason);
    /// Forgets what the resampler holds: the next chunk has nothing to do with the last one.
    void restart();

    /// Appends the chunk's sound; what is damaged is left out.
    void decode(const QByteArray &data, std::vector<StereoFrame> &out);
    /// Appends what the resampler holds, at the end of a sound.
    void finish(std::vector<StereoFrame> &out);
    /// How many frames the resampler holds back: the sound that decode() appends begins that much before the
    /// chunk does.
    [[nodiscard]] std::int64_t framesDue() const;

  private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace vantor
