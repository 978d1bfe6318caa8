#pragma once

#include "AudioCore/Decoding/FFmpegHandles_p.h"

#include <QFile>

namespace vantor {

/// One regular local file, opened for FFmpeg so that nothing in it can make FFmpeg open anything else: a
/// play list dressed up as a song finds no file and no network behind its entries.
class FileInput {
  public:
    /// Throws AudioCoreError::openFailure.
    explicit FileInput(const QString &path);

    [[nodiscard]] AVFormatContext &format() const { return *m_format; }

  private:
    static int readData(void *opaque, std::uint8_t *buffer, int size);
    static std::int64_t seekData(void *opaque, std::int64_t offset, int whence);

    QFile m_file;
    FFmpegHandle<AVIOContext> m_io;
    FFmpegHandle<AVFormatContext> m_format; ///< last, because it uses the others
};

} // namespace vantor
