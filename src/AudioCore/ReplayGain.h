#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

namespace vantor {

/// Which of a file's loudness tags count.
enum class ReplayGainMode { off, track, album };
[[nodiscard]] QString rawValue(ReplayGainMode mode);
[[nodiscard]] std::optional<ReplayGainMode> replayGainModeFromRawValue(QStringView text);

/// What a file's tags say of its loudness. A value; any thread.
struct ReplayGain {
    std::optional<double> trackGain; ///< decibels to the reference loudness, −24…24
    std::optional<double> trackPeak; ///< the largest sample, 1 being full scale
    std::optional<double> albumGain;
    std::optional<double> albumPeak;

    /// `tag` gives the text behind a name, empty when there is none: REPLAYGAIN_TRACK_GAIN and its like, as
    /// ReplayGain 2.0 has them, else R128_TRACK_GAIN and R128_ALBUM_GAIN of RFC 7845. What is no number
    /// counts as absent.
    [[nodiscard]] static ReplayGain fromTags(const std::function<QByteArray(const char *)> &tag);

    /// The linear factor for a mode; where its value is missing, track and album stand in for each other, and
    /// without both it is 1. `holdsPeaks`: never so large that a known peak goes beyond full scale. Neither
    /// allocates nor locks.
    [[nodiscard]] float factor(ReplayGainMode mode, bool holdsPeaks) const;

    bool operator==(const ReplayGain &) const = default;
};

} // namespace vantor
