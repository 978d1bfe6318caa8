#pragma once

#include "AudioCore/Queue/TrackRange.h"
#include "MusicBackendKit/MediaID.h"

#include <QString>
#include <QUrl>
#include <QUuid>

#include <optional>
#include <variant>

namespace vantor {

/// One playable item of the queue. A value; any thread.
struct Track {
    /// A file (as a local-file URL) or an item of a music library.
    using Source = std::variant<QUrl, MediaID>;

    QUuid id; ///< names this queue entry: two entries of one file differ
    QString title;
    QString artist; ///< may be empty
    std::optional<QString> album;
    double duration = 0;              ///< seconds, 0 when unknown
    std::optional<int> bitrate;       ///< kbit/s
    std::optional<double> sampleRate; ///< Hz
    std::optional<int> channels;
    Source source;
    std::optional<TrackRange> range = {}; ///< none: all of the source

    /// Reads a file's metadata: tags first, the decoder for what they lack; the file's stem is the title of
    /// an untagged one. Reads from disk: worker threads. Throws AudioCoreError for what is no audio file.
    [[nodiscard]] static Track file(const QUrl &url);

    bool operator==(const Track &) const = default;
};

[[nodiscard]] size_t qHash(const Track::Source &source, size_t seed = 0) noexcept;
[[nodiscard]] size_t qHash(const Track &track, size_t seed = 0) noexcept;

} // namespace vantor
