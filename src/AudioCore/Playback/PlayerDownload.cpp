#include "AudioCore/Playback/PlayerPrivate_p.h"

namespace vantor {

static constexpr std::chrono::milliseconds watchPeriod{100};
// Longer than somebody needs to answer the door; after it a listener expects what is on the air now.
static constexpr std::chrono::milliseconds staleAfter{30'000};

bool Player::Private::isStale() const {
    return download && download->status().isLive && pausedFor.hasExpired(staleAfter.count());
}

void Player::Private::watchDownload() {
    const bool watched = isRemote() && state != PlaybackState::stopped;
    if (!watched)
        downloadTimer.stop();
    else if (!downloadTimer.isActive())
        downloadTimer.start(watchPeriod);
    const DownloadState now = watched ? downloadStateNow() : DownloadState();
    if (now == std::exchange(downloadState, now))
        return;
    Q_EMIT q.downloadChanged();
}

Player::Private::DownloadState Player::Private::downloadStateNow() const {
    DownloadState now;
    const PlayerNode::Progress progress = graph ? graph->node()->progress() : PlayerNode::Progress();
    const bool hasEnded = progress.generation == generation && progress.ended;
    now.isBuffering = state == PlaybackState::loading ||
                      (state == PlaybackState::playing && graph && graph->node()->isStarved() && !hasEnded);
    if (!download)
        return now;
    const DownloadStatus status = download->status();
    if (status.bufferedFraction && duration() > 0)
        now.bufferedTime = *status.bufferedFraction * duration();
    if (status.title && !status.title->isEmpty())
        now.title = status.title;
    now.bitrate = status.bitrate;
    return now;
}

bool Player::isBuffering() const {
    return d->downloadState.isBuffering;
}

std::optional<double> Player::bufferedTime() const {
    return d->downloadState.bufferedTime;
}

std::optional<QString> Player::streamTitle() const {
    return d->downloadState.title;
}

std::optional<int> Player::streamBitrate() const {
    return d->downloadState.bitrate;
}

} // namespace vantor
