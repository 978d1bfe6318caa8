#include "AudioCore/Playback/PlayerPrivate_p.h"
#include "AudioCore/Playback/PlayerRules.h"

#include <QLoggingCategory>

#include <thread>

namespace vantor {

Q_LOGGING_CATEGORY(lcPlayer, "co.kelvane.vantor.Player")

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

static constexpr std::chrono::milliseconds timeUpdatePeriod{100};
// Close to the end the player looks more often, so that the next track follows soon.
static constexpr std::chrono::milliseconds endWatchPeriod{5};
static constexpr double endWatchSeconds = 0.2;
// Short pauses keep the device running, so that the sound is back at once.
static constexpr std::chrono::milliseconds idleBeforeSuspend{5000};
static constexpr double longestFarewell = 0.3; // seconds
static constexpr int analyzerWindow = 1024;
static constexpr int analyzerRing = 32768;

Player::Private::Private(Player &player, std::unique_ptr<TrackResolver> trackResolver,
                         std::unique_ptr<OutputDeviceProvider> outputDevices)
    : q(player), resolver(std::move(trackResolver)), devices(std::move(outputDevices)),
      analyzer(analyzerWindow, analyzerRing),
      streamer([this](const TrackStreamer::Report &report) { streamerReported(report); }) {
    timeUpdates.setSingleShot(true);
    QObject::connect(&timeUpdates, &QTimer::timeout, &q, [this] { tick(); });
    QObject::connect(&downloadTimer, &QTimer::timeout, &q, [this] { watchDownload(); });
    idleTimer.setSingleShot(true);
    idleTimer.setInterval(idleBeforeSuspend);
    QObject::connect(&idleTimer, &QTimer::timeout, &q, [this] {
        if (output && !isStreaming())
            output->setSuspended(true);
    });
    watchDevices();
}

// The sound fades out instead of breaking off, which takes as long as it is on its way to the ear.
Player::Private::~Private() {
    if (!output || (state != PlaybackState::playing && !isStreaming()))
        return;
    graph->node()->pause();
    graph->playLive(nullptr);
    const auto onItsWay = std::chrono::duration<double>(std::min(output->latency(), longestFarewell));
    std::this_thread::sleep_for(onItsWay + std::chrono::duration<double>(2 * PlayerNode::fadeSeconds));
}

void Player::Private::requestFrom(double seconds) {
    generation = newGeneration();
    forgetFollowers();
    graph->node()->discardBefore(generation);
    streamer.play({.generation = generation,
                   .url = url,
                   .range = range,
                   .start = seconds,
                   .sampleRate = graph->sampleRate(),
                   .node = graph->node()});
    analyzer.resetCursor();
}

void Player::Private::moveToCurrentTrack(bool autoplay) {
    const unsigned commands = startsAndStops;
    Q_EMIT q.queueChanged();
    announceTrack();
    if (startsAndStops == commands)
        startCurrentTrack(autoplay);
}

void Player::Private::startCurrentTrack(bool autoplay) {
    const std::optional<Track> track = queue.current();
    if (!track)
        return;
    if (autoplay)
        preemptStream();
    ++startsAndStops;
    generation = newGeneration();
    forgetFollowers();
    setAutoplay(autoplay);
    fileDuration = 0;
    url.clear();
    download.reset();
    timeUpdates.stop();
    try {
        // Awake, so that the node lets go of what it still holds; a new output has nothing yet, and wakes
        // with the first sound.
        if (output)
            wakeOutput();
        ensureOutput();
        graph->node()->pause();
        graph->node()->discardBefore(generation);
        url = resolver->resolve(*track);
        range = track->range;
        requestFrom(0);
    } catch (const AudioCoreError &error) {
        // Through the event loop like every other failure: a long list of missing files is no recursion.
        streamer.rest();
        QMetaObject::invokeMethod(
            &q,
            [this, error, failed = generation] {
                if (failed == generation)
                    trackFailed(error);
            },
            Qt::QueuedConnection);
    }
    setFormat(std::nullopt);
    setCurrentTime(0);
    setState(PlaybackState::loading);
    watchDownload();
}

void Player::Private::streamerReported(const TrackStreamer::Report &report) {
    const auto follower = std::ranges::find(followers, report.generation, &Follower::generation);
    if (follower != followers.end()) {
        follower->take(report);
        if (follower->isSilent())
            sendFollowers(); // without it
        planFollowers();
    }
    if (report.generation != generation)
        return;
    if (report.error && report.endsInNode) {
        failureAtEnd = report.error;
        planFollowers();
        return;
    }
    if (report.error) {
        trackFailed(*report.error);
        return;
    }
    fileDuration = report.duration;
    download = report.download;
    setFormat(report.format);
    if (state != PlaybackState::loading)
        return; // a seek has arrived
    if (!outputMadeFor.isSettled)
        return; // nothing shall be lost to silence: it is loaded again as soon as the devices are known
    consecutiveFailures = 0;
    if (autoplayAfterLoad)
        resume();
    else
        pause();
    watchDownload();
    planFollowers();
}

void Player::Private::resume() {
    autoplayAfterLoad = true;
    // The node first: an output that wakes asks for sound at once. One that is about to be replaced stays
    // silent, and its successor plays.
    if (!switchTimer.isActive())
        graph->node()->play();
    streamer.wake();
    wakeOutput();
    timeUpdates.start(timeUpdatePeriod);
    setState(PlaybackState::playing);
}

void Player::Private::pause() {
    autoplayAfterLoad = false;
    graph->node()->pause();
    timeUpdates.start(timeUpdatePeriod);
    idleTimer.start();
    pausedFor.start();
    setState(PlaybackState::paused);
}

void Player::Private::seekTo(double seconds) {
    if (!url.isEmpty())
        requestFrom(seconds);
    if (state == PlaybackState::paused) { // awake for a while, so that the node lets go of the old place
        wakeOutput();
        idleTimer.start();
    }
    planFollowers();
    setCurrentTime(seconds);
    emitEvent(PlayerEvents::Seeked{seconds});
}

void Player::Private::stop() {
    ++startsAndStops;
    consecutiveFailures = 0;
    autoplayAfterLoad = false;
    generation = newGeneration();
    forgetFollowers();
    streamer.rest();
    if (graph) {
        graph->node()->pause();
        graph->node()->discardBefore(generation);
        idleTimer.start();
    }
    timeUpdates.stop();
    fileDuration = 0;
    url.clear();
    download.reset();
    setFormat(std::nullopt);
    setCurrentTime(0);
    setState(PlaybackState::stopped);
    watchDownload();
}

void Player::Private::trackFailed(const PlaybackError &error) {
    const std::optional<Track> track = queue.current();
    qCWarning(lcPlayer, "could not play %s: %s", track ? qUtf8Printable(track->title) : "",
              error.logged.constData());
    const int failures = consecutiveFailures + 1;
    if (error.isFatal || !PlayerRules::skipsAfterFailure(queue, failures)) {
        fail(error);
        return;
    }
    consecutiveFailures = failures;
    errorMessage = error.message;
    const std::uint32_t failed = generation;
    emitEvent(PlayerEvents::Failed{{track, error.message, failures, true}});
    if (failed != generation)
        return; // an observer has given another command
    queue.advanceAfterTrackEnd();
    const std::optional<Track> next = queue.current();
    if (!followers.empty() && next && followers.front().trackID == next->id)
        adoptFollower();
    else
        moveToCurrentTrack(autoplayAfterLoad);
}

void Player::Private::fail(const PlaybackError &error) {
    const std::optional<Track> track = queue.current();
    const int failures = consecutiveFailures + 1;
    stop();
    errorMessage = error.message;
    emitEvent(PlayerEvents::Failed{{track, error.message, failures, false}});
}

// In a pause what has been rendered is still heard, and nothing else comes on its way.
double Player::Private::unheard() const {
    const double since = state == PlaybackState::paused ? static_cast<double>(pausedFor.elapsed()) / 1000 : 0;
    return std::max(output->latency() - since, 0.0);
}

// Called while playing, and for a while in a pause, when sound is still on its way to the ear.
void Player::Private::tick() {
    const PlayerNode::Progress progress = graph->node()->progress();
    if (state == PlaybackState::paused && progress.generation <= generation) {
        showTime(progress);
        if (unheard() > 0)
            timeUpdates.start(timeUpdatePeriod);
        return;
    }
    if (endIsHeard(progress)) {
        trackEnded();
        return;
    }
    if (state == PlaybackState::playing)
        showTime(progress);
    const bool isNearEnd =
        failureAtEnd || (duration() > 0 && duration() - currentTime < output->latency() + endWatchSeconds);
    if (state == PlaybackState::playing || endHeardAt)
        timeUpdates.start(isNearEnd || endHeardAt ? endWatchPeriod : timeUpdatePeriod);
}

void Player::Private::showTime(const PlayerNode::Progress &progress) {
    double rendered = static_cast<double>(progress.frame) / graph->sampleRate();
    if (progress.generation > generation && duration() > 0)
        rendered += duration(); // the follower sounds
    else if (progress.generation != generation)
        return;
    setCurrentTime(PlayerRules::heardTime(rendered, unheard(), currentTime, duration()));
}

void Player::Private::trackEnded() {
    if (failureAtEnd) {
        trackFailed(PlaybackError(*failureAtEnd));
        return;
    }
    if (followers.empty()) {
        stop();
        return;
    }
    queue.advanceAfterTrackEnd();
    adoptFollower();
}

} // namespace vantor
