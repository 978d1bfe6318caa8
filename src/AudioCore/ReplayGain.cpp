#include "AudioCore/ReplayGain.h"

#include <algorithm>
#include <cmath>

namespace vantor {

static constexpr double mostGain = 24; // decibels; beyond it a tag is wrong
// RFC 7845 measures against −23 LUFS, ReplayGain 2.0 against −18.
static constexpr double r128Offset = 5;
static constexpr double r128StepsPerDecibel = 256;

// "-7.89 dB", "−7.89" or "0.988": the number at the start.
static std::optional<double> number(const QByteArray &text) {
    const QByteArray first = text.simplified().split(' ').front();
    bool isNumber = false;
    const double value = first.toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

static std::optional<double> gain(const QByteArray &text, const QByteArray &r128) {
    std::optional<double> decibels = number(text);
    if (!decibels) {
        if (const std::optional<double> steps = number(r128))
            decibels = *steps / r128StepsPerDecibel + r128Offset;
    }
    return decibels ? std::optional(std::clamp(*decibels, -mostGain, mostGain)) : std::nullopt;
}

static std::optional<double> peak(const QByteArray &text) {
    const std::optional<double> value = number(text);
    return value && *value > 0 ? value : std::nullopt;
}

QString rawValue(ReplayGainMode mode) {
    switch (mode) {
    case ReplayGainMode::off:
        return QStringLiteral("off");
    case ReplayGainMode::track:
        return QStringLiteral("track");
    case ReplayGainMode::album:
        return QStringLiteral("album");
    }
    return {};
}

std::optional<ReplayGainMode> replayGainModeFromRawValue(QStringView text) {
    for (const ReplayGainMode mode : {ReplayGainMode::off, ReplayGainMode::track, ReplayGainMode::album}) {
        if (text == rawValue(mode))
            return mode;
    }
    return std::nullopt;
}

ReplayGain ReplayGain::fromTags(const std::function<QByteArray(const char *)> &tag) {
    return {.trackGain = gain(tag("REPLAYGAIN_TRACK_GAIN"), tag("R128_TRACK_GAIN")),
            .trackPeak = peak(tag("REPLAYGAIN_TRACK_PEAK")),
            .albumGain = gain(tag("REPLAYGAIN_ALBUM_GAIN"), tag("R128_ALBUM_GAIN")),
            .albumPeak = peak(tag("REPLAYGAIN_ALBUM_PEAK"))};
}

float ReplayGain::factor(ReplayGainMode mode, bool holdsPeaks) const {
    if (mode == ReplayGainMode::off || (!trackGain && !albumGain))
        return 1;
    const bool byAlbum = mode == ReplayGainMode::album ? albumGain.has_value() : !trackGain;
    double factor = std::pow(10, (byAlbum ? *albumGain : *trackGain) / 20);
    const std::optional<double> &largest = byAlbum && albumPeak ? albumPeak : trackPeak;
    if (holdsPeaks && largest && factor * *largest > 1)
        factor = 1 / *largest;
    return static_cast<float>(factor);
}

} // namespace vantor
