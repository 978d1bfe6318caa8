#include "AudioCore/Playback/PlayerPrivate_p.h"
#include "AudioCore/Playback/PlayerRules.h"

#include <QLoggingCategory>

#include <thread>

namespace vantor {

Q_LOGGING_CATEGORY(lcPlayer, "co.kelvane.vantor.Player")

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

static constexpr std::chrono::milliseconds timeUpdatePeriod{50};
// Close to the end the player looks more often, so that the next track follows soon.
static constexpr std::chrono::milliseconds endWatchPeriod{5};
static constexpr double endWatchSeconds = 0.2;
// Short pauses keep the device running, so that the sound is back at once.
static constexpr std::chrono::milliseconds idleBeforeSuspend{5000};
static constexpr double longestFarewell = 0.3; // seconds
static constexpr int analyzerWindow = 1024;
static constexpr int analyzerRing = 32768;

Player::Private::Private(Player &player, std::unique_ptr<TrackResolver> trackResolver,
                         AudioOutputFactory outputFactory)
    : q(player), resolver(std::move(trackResolver)), outputs(std::move(outputFactory)),
      analyzer(analyzerWindow, analyzerRing),
      streamer([this](const TrackStreamer::Report &report) { streamerReported(report); }) {
    timeUpdates.setSingleShot(true);
    timeUpdates.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timeUpdates, &QTimer::timeout, &q, [this] { tick(); });
    idleTimer.setSingleShot(true);
    idleTimer.setInterval(idleBeforeSuspend);
    QObject::connect(&idleTimer, &QTimer::timeout, &q, [this] {
        if (output)
            output->setSuspended(true);
    });
}

// The sound fades out instead of breaking off, which takes as long as it is on its way to the ear.
Player::Private::~Private() {
    if (state != PlaybackState::playing || !output)
        return;
    graph->node()->pause();
    const auto onItsWay = std::chrono::duration<double>(std::min(output->latency(), longestFarewell));
    std::this_thread::sleep_for(onItsWay + std::chrono::duration<double>(2 * PlayerNode::fadeSeconds));
}

void Player::Private::ensureOutput() {
    if (output)
        return;
    std::unique_ptr<AudioOutput> made = outputs();
    if (!made)
        throw AudioCoreError::engineStart(QStringLiteral("no output"));
    graph = std::make_unique<AudioGraph>(made->sampleRate(), &analyzer);
    graph->setVolume(volume);
    graph->setBalance(balance);
    graph->setEqualizer(eq);
    analyzer.prepare(graph->sampleRate());
    AudioGraph *const rendered = graph.get();
    AudioOutput *const started = made.get();
    made->start([rendered](float *interleaved, int frames) { rendered->render(interleaved, frames); },
                [this, started](const QString &reason) {
                    // Not inside the output's own call: it is about to be replaced.
                    const auto replace = [this, started, reason] {
                        if (output.get() == started)
                            outputLost(reason);
                    };
                    QMetaObject::invokeMethod(&q, replace, Qt::QueuedConnection);
                });
    output = std::move(made);
    qCInfo(lcPlayer, "output: %s, %d Hz", qUtf8Printable(output->name()), output->sampleRate());
}

void Player::Private::wakeOutput() {
    idleTimer.stop();
    output->setSuspended(false);
}

void Player::Private::requestFrom(double seconds) {
    generation = newGeneration();
    forgetFollower();
    graph->node()->discardBefore(generation);
    streamer.play({.generation = generation,
                   .path = path,
                   .start = seconds,
                   .sampleRate = graph->sampleRate(),
                   .node = graph->node()});
    analyzer.resetCursor();
}

void Player::Private::moveToCurrentTrack(bool autoplay) {
    Q_EMIT q.queueChanged();
    announceTrack();
    startCurrentTrack(autoplay);
}

void Player::Private::startCurrentTrack(bool autoplay) {
    const std::optional<Track> track = queue.current();
    if (!track)
        return;
    generation = newGeneration();
    forgetFollower();
    autoplayAfterLoad = autoplay;
    fileDuration = 0;
    path.clear();
    timeUpdates.stop();
    try {
        // Awake, so that the node lets go of what it still holds; a new output has nothing yet, and wakes
        // with the first sound.
        if (output)
            wakeOutput();
        ensureOutput();
        graph->node()->pause();
        graph->node()->discardBefore(generation);
        path = resolver->resolve(*track).toLocalFile();
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
}

void Player::Private::streamerReported(const TrackStreamer::Report &report) {
    if (follower && report.generation == follower->generation)
        follower->report = report;
    if (report.generation != generation)
        return;
    if (report.error) {
        trackFailed(*report.error);
        return;
    }
    fileDuration = report.duration;
    setFormat(report.format);
    if (state != PlaybackState::loading)
        return; // a seek has arrived
    consecutiveFailures = 0;
    if (autoplayAfterLoad)
        resume();
    else
        pause();
    planFollower();
}

void Player::Private::resume() {
    autoplayAfterLoad = true;
    // The node first: an output that wakes asks for sound at once.
    graph->node()->play();
    wakeOutput();
    timeUpdates.start(timeUpdatePeriod);
    setState(PlaybackState::playing);
}

void Player::Private::pause() {
    autoplayAfterLoad = false;
    graph->node()->pause();
    timeUpdates.start(timeUpdatePeriod);
    idleTimer.start();
    setState(PlaybackState::paused);
}

void Player::Private::seekTo(double seconds) {
    if (!path.isEmpty())
        requestFrom(seconds);
    planFollower();
    setCurrentTime(seconds);
    emitEvent(PlayerEvents::Seeked{seconds});
}

void Player::Private::stop() {
    consecutiveFailures = 0;
    autoplayAfterLoad = false;
    generation = newGeneration();
    forgetFollower();
    streamer.rest();
    if (graph) {
        graph->node()->pause();
        graph->node()->discardBefore(generation);
        idleTimer.start();
    }
    timeUpdates.stop();
    fileDuration = 0;
    path.clear();
    setFormat(std::nullopt);
    setCurrentTime(0);
    setState(PlaybackState::stopped);
}

void Player::Private::trackFailed(const AudioCoreError &error) {
    const std::optional<Track> track = queue.current();
    qCWarning(lcPlayer, "could not play %s: %s", track ? qUtf8Printable(track->title) : "", error.what());
    const int failures = consecutiveFailures + 1;
    if (error.isFatal() || !PlayerRules::skipsAfterFailure(queue, failures)) {
        fail(error);
        return;
    }
    consecutiveFailures = failures;
    errorMessage = error.description();
    const std::uint32_t failed = generation;
    emitEvent(PlayerEvents::Failed{{track, error.description(), failures, true}});
    if (failed != generation)
        return; // an observer has given another command
    queue.advanceAfterTrackEnd();
    moveToCurrentTrack(autoplayAfterLoad);
}

void Player::Private::fail(const AudioCoreError &error) {
    const std::optional<Track> track = queue.current();
    const int failures = consecutiveFailures + 1;
    stop();
    errorMessage = error.description();
    emitEvent(PlayerEvents::Failed{{track, error.description(), failures, false}});
}

// Called while playing, and for a while in a pause, when the end of a track is still on its way to the ear.
void Player::Private::tick() {
    const PlayerNode::Progress progress = graph->node()->progress();
    if (state == PlaybackState::paused && progress.generation <= generation)
        return;
    planFollower(); // a seek or a new output has forgotten it
    if (endIsHeard(progress)) {
        trackEnded();
        return;
    }
    if (state == PlaybackState::playing)
        showTime(progress);
    const bool isNearEnd = duration() > 0 && duration() - currentTime < output->latency() + endWatchSeconds;
    if (state == PlaybackState::playing || endHeardAt)
        timeUpdates.start(isNearEnd || endHeardAt ? endWatchPeriod : timeUpdatePeriod);
}

void Player::Private::showTime(const PlayerNode::Progress &progress) {
    double rendered = static_cast<double>(progress.frame) / graph->sampleRate();
    if (progress.generation > generation && duration() > 0)
        rendered += duration(); // the follower sounds
    else if (progress.generation != generation)
        return;
    setCurrentTime(PlayerRules::heardTime(rendered, output->latency(), currentTime, duration()));
}

void Player::Private::trackEnded() {
    if (follower)
        adoptFollower();
    else
        stop();
}

void Player::Private::outputLost(const QString &reason) {
    qCWarning(lcPlayer, "lost the output: %s", qUtf8Printable(reason));
    const double position = currentTime;
    output.reset();
    graph.reset();
    if (state == PlaybackState::stopped)
        return;
    if (state == PlaybackState::loading) {
        startCurrentTrack(autoplayAfterLoad);
        return;
    }
    try {
        ensureOutput();
    } catch (const AudioCoreError &error) {
        fail(error);
        return;
    }
    requestFrom(position);
    if (state == PlaybackState::playing) {
        graph->node()->play();
        wakeOutput();
    }
}

} // namespace vantor
