#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace vantor {

/// How sound is coded, as this player offers it to the server. A value.
struct SendspinAudioFormat {
    QString codec; ///< "pcm", "flac" or "opus"
    int channels = 2;
    int sampleRate = 48'000; ///< in Hz
    int bitDepth = 16;       ///< of "opus" without meaning

    bool operator==(const SendspinAudioFormat &) const = default;
};

/// How the chunks of a stream are coded, as the server announces it. A value.
///
/// The numbers are in the ranges below; what else they are, and the codec, nobody has looked at: a server may
/// announce a format that was not offered.
struct SendspinStreamFormat {
    static constexpr int maxChannels = 64;          ///< at least 1
    static constexpr int maxSampleRate = 1'000'000; ///< at least 1
    static constexpr int maxBitDepth = 64;          ///< at least 0, which tells nothing

    QString codec;
    int sampleRate = 0; ///< in Hz
    int channels = 0;
    int bitDepth = 0;
    QByteArray codecHeader; ///< what the decoder needs before the first chunk, decoded; empty when none came

    bool operator==(const SendspinStreamFormat &) const = default;
};

/// A piece of a stream. A value; the data is shared, not copied.
///
///     pcm   whole frames, interleaved, signed little-endian samples; 24 bits take three bytes
///     flac  one or more whole frames, without the stream's header
///     opus  exactly one packet
struct SendspinAudioChunk {
    /// When its first sample is to be heard, in microseconds of the server's clock. Any number can come.
    std::int64_t timestamp = 0;
    QByteArray data; ///< may be empty

    bool operator==(const SendspinAudioChunk &) const = default;
};

} // namespace vantor
