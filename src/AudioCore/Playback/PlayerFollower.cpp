#include "AudioCore/Playback/PlayerPrivate_p.h"
#include "AudioCore/Playback/PlayerRules.h"

namespace vantor {

using Clock = std::chrono::steady_clock;

void Player::Private::planFollower() {
    if ((state != PlaybackState::playing && state != PlaybackState::paused) || url.isEmpty())
        return;
    const std::optional<int> index = queue.indexAfterCurrentEnds();
    const Track *const next = index ? &queue.tracks()[static_cast<std::size_t>(*index)] : nullptr;
    if (next ? follower && follower->trackID == next->id : !follower)
        return;

    follower.reset();
    std::optional<TrackStreamer::Request> request;
    if (next) {
        follower = Follower{.trackID = next->id, .generation = newGeneration(), .url = {}, .report = {}};
        try {
            follower->url = resolver->resolve(*next);
            request = {.generation = follower->generation,
                       .url = follower->url,
                       .start = 0,
                       .sampleRate = graph->sampleRate(),
                       .node = graph->node()};
        } catch (const AudioCoreError &error) {
            follower->report = {.generation = follower->generation,
                                .format = {},
                                .duration = 0,
                                .download = {},
                                .error = error};
        }
    }
    graph->node()->follow(request ? request->generation : 0);
    streamer.follow(generation, std::move(request));
}

void Player::Private::forgetFollower() {
    follower.reset();
    endHeardAt.reset();
}

// A newer generation than the current one can only sound when the current one has ended, also if it has been
// replaced since.
bool Player::Private::endIsHeard(const PlayerNode::Progress &progress) {
    const bool follows = progress.generation > generation;
    if (!follows && !(progress.generation == generation && progress.ended))
        return false;
    const double behind = follows ? static_cast<double>(progress.frame) / graph->sampleRate() : 0;
    const double left = output->latency() - behind;
    if (!endHeardAt)
        endHeardAt = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                        std::chrono::duration<double>(std::max(left, 0.0)));
    return left <= 0 || Clock::now() >= *endHeardAt;
}

void Player::Private::adoptFollower() {
    const Follower adopted = *std::exchange(follower, std::nullopt);
    const std::optional<TrackStreamer::Report> &report = adopted.report;
    const bool sounds = report && !report->error;
    generation = adopted.generation;
    url = adopted.url;
    download = sounds ? report->download : nullptr;
    fileDuration = sounds ? report->duration : 0;
    endHeardAt.reset();
    queue.advanceAfterTrackEnd();
    if (sounds)
        consecutiveFailures = 0;
    graph->node()->discardBefore(generation);

    const auto isCurrent = [this, &adopted] { return generation == adopted.generation; };
    setFormat(sounds ? std::optional(report->format) : std::nullopt);
    setCurrentTime(0);
    Q_EMIT q.queueChanged();
    announceTrack();
    if (isCurrent() && !sounds) {
        autoplayAfterLoad = state == PlaybackState::playing;
        timeUpdates.stop();
        setState(PlaybackState::loading);
    }
    if (!isCurrent())
        return; // an observer has given another command
    if (report && report->error)
        trackFailed(*report->error);
    else
        planFollower();
    if (!isCurrent())
        return;
    watchDownload();
    if (state != PlaybackState::loading)
        tick();
}

} // namespace vantor
