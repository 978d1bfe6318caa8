#pragma once

#include <QString>

#include <optional>

namespace vantor {

/// What the current source is made of.
struct PlaybackFormat {
    double sampleRate = 0; ///< Hz
    int channels = 0;
    QString codec;               ///< "FLAC", "MP3" …; empty when unknown
    std::optional<int> bitDepth; ///< bits per sample of lossless sources

    bool operator==(const PlaybackFormat &) const = default;
};

} // namespace vantor
