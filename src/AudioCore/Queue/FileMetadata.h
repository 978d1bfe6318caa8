#pragma once

#include <QString>

namespace vantor {

/// What an audio file says of itself; empty or 0 where it says nothing.
struct FileMetadata {
    QString title;
    QString artist; ///< several are joined with ", "
    QString album;
    QString trackNumber;   ///< as it is written: "3", "3/12"
    QString discNumber;    ///< likewise
    double duration = 0;   ///< seconds
    int bitrate = 0;       ///< kbit/s
    double sampleRate = 0; ///< Hz
    int channels = 0;

    /// From the tags and headers, and from the decoder for what they lack. Embedded pictures are not looked
    /// at. Any thread. Throws AudioCoreError: readFailure for a file that is missing or not readable,
    /// openFailure for what is no audio file.
    [[nodiscard]] static FileMetadata read(const QString &path);

    bool operator==(const FileMetadata &) const = default;
};

} // namespace vantor
