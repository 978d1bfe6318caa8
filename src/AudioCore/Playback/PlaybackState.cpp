#include "AudioCore/Playback/PlaybackState.h"

namespace vantor {

std::optional<StatusNotice> StatusNotice::skipped(int skipped, int added, Clock::time_point shownAt) {
    if (skipped <= 0)
        return std::nullopt;
    const int total = skipped + std::max(added, 0);
    QString text = QStringLiteral("Skipped %1").arg(skipped);
    if (total > skipped)
        text += QStringLiteral(" of %1").arg(total);
    text += total == 1 ? QStringLiteral(" file") : QStringLiteral(" files");
    return StatusNotice{text, QStringLiteral("see Console"), shownAt};
}

StatusNotice StatusNotice::skinFailed(const QString &name, Clock::time_point shownAt) {
    return {QStringLiteral("Could not load ") + name, std::nullopt, shownAt};
}

StatusNotice StatusNotice::playbackFailed(const PlaybackFailure &failure, Clock::time_point shownAt) {
    const bool named = failure.track && !failure.track->title.isEmpty();
    QString subject = named ? failure.track->title : QStringLiteral("this track");
    if (!failure.skipped && failure.consecutiveFailures >= 2)
        subject = QStringLiteral("%1 tracks").arg(failure.consecutiveFailures);
    return {QStringLiteral("Could not play ") + subject, failure.message, shownAt};
}

} // namespace vantor
