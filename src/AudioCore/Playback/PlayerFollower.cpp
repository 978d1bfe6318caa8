#include "AudioCore/Playback/PlayerPrivate_p.h"
#include "AudioCore/Playback/PlayerRules.h"

#include <limits>

namespace vantor {

using Clock = std::chrono::steady_clock;

// What must be there when a track ends, beyond what is on its way to the ear: time enough for the next ones
// to be opened.
static constexpr double secondsInReserve = 1;
static constexpr std::size_t mostFollowers = PlayerNode::followerSpan;

void Player::Private::Follower::take(const TrackStreamer::Report &news) {
    if (news.endsInNode)
        failure = news.error;
    else
        report = news;
    if (news.error)
        seconds = 0; // or little, of which nobody knows how much
    else
        seconds = news.duration > 0 ? news.duration : std::numeric_limits<double>::infinity();
}

Player::Private::Follower Player::Private::makeFollower(const Track &track) {
    Follower follower;
    follower.trackID = track.id;
    follower.generation = newGeneration();
    follower.range = track.range;
    follower.seconds = track.duration > 0 ? track.duration : std::numeric_limits<double>::infinity();
    try {
        follower.url = resolver->resolve(track);
    } catch (const AudioCoreError &error) {
        TrackStreamer::Report report;
        report.generation = follower.generation;
        report.error = error;
        follower.take(report);
    }
    return follower;
}

// One track, and more where those that follow are very short or do not play.
void Player::Private::planFollowers() {
    if ((state != PlaybackState::playing && state != PlaybackState::paused) || url.isEmpty())
        return;
    const double enough = output->latency() + secondsInReserve;
    bool isNew = false;
    std::size_t count = 0;
    double seconds = 0;
    int failures = failureAtEnd ? consecutiveFailures + 1 : consecutiveFailures;
    bool isInNextPass = false;
    std::optional<PlayQueue> ahead; // taken along when the first one is not enough
    std::optional<int> index = queue.indexAfterCurrentEnds();
    if (failureAtEnd && !PlayerRules::skipsAfterFailure(queue, failures))
        index.reset(); // it will be the end
    while (index && count < mostFollowers) {
        const Track &next = queue.tracks()[static_cast<std::size_t>(*index)];
        if (count == followers.size() || followers[count].trackID != next.id) {
            followers.resize(count);
            const bool hasNumber =
                count == 0 || lastGeneration - followers.front().generation < PlayerNode::followerSpan;
            if (!hasNumber)
                break; // until the first one is heard
            followers.push_back(makeFollower(next));
            isNew = true;
        }
        const Follower &follower = followers[count++];
        seconds += follower.seconds;
        if (seconds >= enough)
            break;
        if (!ahead)
            ahead = queue;
        ahead->advanceAfterTrackEnd();
        // Of the passes to come only the next one is drawn already.
        isInNextPass = isInNextPass || (ahead->isShuffled() && ahead->repeatMode() == RepeatMode::all &&
                                        ahead->shufflePosition() == 0);
        const bool isDrawn = !isInNextPass || ahead->shufflePosition() + 1 < ahead->count();
        const bool fails = follower.fails();
        failures = follower.isSilent() ? failures + 1 : fails ? 1 : 0;
        if (!isDrawn || (fails && !PlayerRules::skipsAfterFailure(*ahead, failures)))
            break;
        index = ahead->indexAfterCurrentEnds();
    }
    isNew = isNew || count < followers.size();
    followers.resize(count);
    if (isNew)
        sendFollowers();
}

TrackStreamer::Request Player::Private::requestFor(const Follower &follower) const {
    return {.generation = follower.generation,
            .url = follower.url,
            .range = follower.range,
            .start = 0,
            .sampleRate = graph->sampleRate(),
            .node = graph->node()};
}

// `adopted`: the current track, when the streamer may not have begun with it yet, and must not forget it.
void Player::Private::sendFollowers(const Follower *adopted) {
    std::vector<std::uint32_t> generations;
    std::vector<TrackStreamer::Request> requests;
    if (adopted)
        requests.push_back(requestFor(*adopted));
    for (const Follower &follower : followers) {
        if (!follower.isSilent())
            generations.push_back(follower.generation);
        if (!follower.url.isEmpty())
            requests.push_back(requestFor(follower));
    }
    graph->node()->follow(generation, generations);
    streamer.follow(generation, std::move(requests));
}

void Player::Private::forgetFollowers() {
    followers.clear();
    failureAtEnd.reset();
    endHeardAt.reset();
}

// A newer generation than the current one can only sound when the current one has ended, also if it has been
// replaced since.
bool Player::Private::endIsHeard(const PlayerNode::Progress &progress) {
    const bool follows = progress.generation > generation;
    if (!follows && !(progress.generation == generation && progress.ended))
        return false;
    double behind = follows ? static_cast<double>(progress.frame) / graph->sampleRate() : 0;
    for (const Follower &follower : followers)
        behind += follower.generation < progress.generation ? follower.seconds : 0;
    const double left = output->latency() - behind;
    if (!endHeardAt)
        endHeardAt = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                        std::chrono::duration<double>(std::max(left, 0.0)));
    return left <= 0 || Clock::now() >= *endHeardAt;
}

void Player::Private::adoptFollower() {
    const Follower adopted = std::move(followers.front());
    followers.erase(followers.begin());
    const std::optional<TrackStreamer::Report> &report = adopted.report;
    const bool sounds = report && !report->error;
    generation = adopted.generation;
    url = adopted.url;
    range = adopted.range;
    download = sounds ? report->download : nullptr;
    fileDuration = sounds ? report->duration : 0;
    failureAtEnd = adopted.failure;
    endHeardAt.reset();
    if (sounds)
        consecutiveFailures = 0;
    sendFollowers(report ? nullptr : &adopted);

    const auto isCurrent = [this, &adopted] { return generation == adopted.generation; };
    setFormat(sounds ? std::optional(report->format) : std::nullopt);
    setCurrentTime(0);
    Q_EMIT q.queueChanged();
    const std::optional<Track> current = queue.current();
    const bool isAgain = current && current->id == lastEmittedTrackID;
    announceTrack();
    if (isCurrent() && isAgain)
        emitEvent(PlayerEvents::Seeked{0}); // back at the start of the same entry
    if (isCurrent() && !report) {
        autoplayAfterLoad = state == PlaybackState::playing;
        timeUpdates.stop();
        setState(PlaybackState::loading);
    }
    if (!isCurrent())
        return; // an observer has given another command
    if (report && report->error) {
        trackFailed(*report->error);
        return;
    }
    planFollowers();
    watchDownload();
    if (state != PlaybackState::loading)
        tick();
}

} // namespace vantor
