#include "AudioCore/Queue/TrackInfo.h"

namespace vantor {

TrackInfo TrackInfo::fromTrack(const Track &track, const std::optional<PlaybackFormat> &format) {
    TrackInfo info{track.title, track.artist,  track.album,      {},
                   format,      track.bitrate, track.sampleRate, track.channels};
    if (track.duration > 0)
        info.duration = track.duration;
    if (format && !info.sampleRate && format->sampleRate > 0)
        info.sampleRate = format->sampleRate;
    if (format && !info.channels && format->channels > 0)
        info.channels = format->channels;
    return info;
}

static QString formatText(const PlaybackFormat &format) {
    QStringList parts;
    if (!format.codec.isEmpty())
        parts << format.codec;
    if (format.bitDepth)
        parts << QStringLiteral("%1-bit").arg(*format.bitDepth);
    return parts.join(QStringLiteral(", "));
}

static QString channelsText(int channels) {
    if (channels == 1)
        return QStringLiteral("Mono");
    if (channels == 2)
        return QStringLiteral("Stereo");
    return QStringLiteral("%1 channels").arg(channels);
}

std::vector<TrackInfo::Row> TrackInfo::rows() const {
    std::vector<Row> rows;
    const auto add = [&](const char *label, const QString &value) {
        if (!value.isEmpty())
            rows.push_back({QLatin1String(label), value});
    };
    add("Title", title);
    add("Artist", artist);
    add("Album", album.value_or(QString()));
    if (duration && *duration > 0)
        add("Duration", durationText(*duration));
    if (format)
        add("Format", formatText(*format));
    if (bitrateKbps)
        add("Bitrate", QStringLiteral("%1 kbps").arg(*bitrateKbps));
    if (sampleRate)
        add("Sample rate", rateText(*sampleRate));
    if (channels)
        add("Channels", channelsText(*channels));
    return rows;
}

QString TrackInfo::durationText(double seconds) {
    constexpr double longest = 1e9; // bounds the conversion; thirty years
    const int whole = seconds > 0 ? static_cast<int>(std::min(seconds, longest)) : 0;
    if (whole >= 3600)
        return QString::asprintf("%d:%02d:%02d", whole / 3600, whole / 60 % 60, whole % 60);
    return QString::asprintf("%d:%02d", whole / 60, whole % 60);
}

QString TrackInfo::rateText(double hertz) {
    QString text = QString::number(std::isfinite(hertz) ? hertz / 1000 : 0, 'f', 1);
    if (text.endsWith(QLatin1String(".0")))
        text.chop(2);
    return text + QStringLiteral(" kHz");
}

} // namespace vantor
