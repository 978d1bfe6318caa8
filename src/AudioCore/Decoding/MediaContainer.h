#pragma once

#include "AudioCore/Decoding/AudioInput.h"
#include "AudioCore/Decoding/FFmpegHandles_p.h"

#include <exception>
#include <memory>

namespace vantor {

/// One input, opened for FFmpeg so that nothing in it can make FFmpeg open anything else: a play list dressed
/// up as a song finds no file and no network behind its entries.
class MediaContainer {
  public:
    /// Throws AudioCoreError or ProgressiveError, and what the input throws.
    explicit MediaContainer(std::shared_ptr<AudioInput> input);

    [[nodiscard]] AVFormatContext &format() const { return *m_format; }
    /// FFmpeg knows only numbers for errors, and goes on after some: throws what the input threw meanwhile.
    void throwFailure() const;

  private:
    static int readData(void *opaque, std::uint8_t *buffer, int size);
    static std::int64_t seekData(void *opaque, std::int64_t offset, int whence);
    void createIO();
    void open(AVFormatContext *format);
    void forgetDuration();
    [[noreturn]] void failOpening() const;

    std::shared_ptr<AudioInput> m_input;
    std::exception_ptr m_failure;
    bool m_refusedSeek = false;
    FFmpegHandle<AVIOContext> m_io;
    FFmpegHandle<AVFormatContext> m_format; ///< last, because it uses the others
};

} // namespace vantor
