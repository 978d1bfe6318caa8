#pragma once

#include "AudioCore/Decoding/AudioInput.h"
#include "AudioCore/Graph/PlayerNode.h"
#include "AudioCore/PlaybackFormat.h"
#include "AudioCore/ReplayGain.h"

#include <QString>

#include <memory>
#include <span>

namespace vantor {

/// Decodes one audio file or stream into float stereo at a given rate. Mono plays on both sides at full
/// level, more than two channels are mixed down. Damaged stretches are skipped. Whatever the file says, no
/// other file and no network address is opened. One thread at a time.
class AudioFileDecoder {
  public:
    /// `sampleRate`: of the output, in Hz. Throws AudioCoreError::openFailure, ProgressiveError for
    /// progressive inputs, and what the input throws; the other functions throw that too. After
    /// AudioInput::Interrupted the decoder can only be destroyed.
    AudioFileDecoder(std::shared_ptr<AudioInput> input, int sampleRate);
    /// Of a local file.
    AudioFileDecoder(const QString &path, int sampleRate);
    ~AudioFileDecoder();

    [[nodiscard]] PlaybackFormat format() const;
    /// What the file's tags say.
    [[nodiscard]] ReplayGain replayGain() const;
    /// Seconds; 0 when unknown.
    [[nodiscard]] double duration() const;

    /// The next frames, valid until the next call; empty at the end. Throws AudioCoreError::readFailure when
    /// nothing but damage is left.
    [[nodiscard]] std::span<const StereoFrame> read();
    /// Whether there is more sound in the file. If not, read() still gives what the change of the sample rate
    /// holds back. Throws as read() does.
    [[nodiscard]] bool hasMore();
    /// Before the first read(): takes over what a file without more sound holds back, so that both are
    /// resampled as one sound. The number of frames that read() gives next and that still belong to
    /// `previous`, which is at its end now; none when there is nothing to take over. Throws as read() does.
    [[nodiscard]] std::optional<std::int64_t> continueFrom(AudioFileDecoder &previous);
    /// Goes on at the frame nearest to a time of 0 or more: exactly there for lossless formats, within one
    /// codec frame for others. Behind the end there is nothing to read.
    void seek(double seconds);

  private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace vantor
