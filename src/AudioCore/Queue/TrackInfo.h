#pragma once

#include "AudioCore/PlaybackFormat.h"
#include "AudioCore/Queue/Track.h"

#include <vector>

namespace vantor {

/// The facts of the file-info sheet. A value; any thread.
struct TrackInfo {
    struct Row {
        QString label;
        QString value;
        bool operator==(const Row &) const = default;
    };

    QString title;
    QString artist;
    std::optional<QString> album;
    std::optional<double> duration; ///< seconds
    std::optional<PlaybackFormat> format;
    std::optional<int> bitrateKbps;
    std::optional<double> sampleRate; ///< Hz
    std::optional<int> channels;

    /// `format`: what the player reports for the track; it also gives the rate and channels that the track
    /// lacks.
    [[nodiscard]] static TrackInfo fromTrack(const Track &track, const std::optional<PlaybackFormat> &format);

    /// In the sheet's order, without what is unknown or empty.
    [[nodiscard]] std::vector<Row> rows() const;

    /// "3:07", "1:02:03"; negative or not a number: "0:00".
    [[nodiscard]] static QString durationText(double seconds);
    /// "44.1 kHz", "48 kHz".
    [[nodiscard]] static QString rateText(double hertz);

    bool operator==(const TrackInfo &) const = default;
};

} // namespace vantor
