#include "AudioCore/Playback/Player.h"

#include "AudioCore/Network/ProgressiveInput.h"
#include "AudioCore/Playback/PlayerPrivate_p.h"
#include "AudioCore/Playback/PlayerRules.h"

#include <numeric>

namespace vantor {

QUrl FileTrackResolver::resolve(const Track &track) const {
    const QUrl *const url = std::get_if<QUrl>(&track.source);
    if (!url || (!url->isLocalFile() && !ProgressiveInput::takes(*url)))
        throw AudioCoreError::unresolvableSource();
    return *url;
}

Player::Player(std::unique_ptr<TrackResolver> resolver, std::unique_ptr<OutputDeviceProvider> outputDevices,
               QObject *parent)
    : QObject(parent), d(std::make_unique<Private>(*this, std::move(resolver), std::move(outputDevices))) {}

Player::~Player() = default;

const PlayQueue &Player::queue() const {
    return d->queue;
}

PlaybackState Player::state() const {
    return d->state;
}

bool Player::wantsToPlay() const {
    return d->state == PlaybackState::playing || (d->state == PlaybackState::loading && d->autoplayAfterLoad);
}

double Player::currentTime() const {
    return d->currentTime;
}

double Player::duration() const {
    return d->duration();
}

double Player::Private::duration() const {
    if (fileDuration > 0)
        return fileDuration;
    const std::optional<Track> track = queue.current();
    return track ? track->duration : 0.0;
}

std::optional<PlaybackFormat> Player::currentFormat() const {
    return d->format;
}

std::optional<QString> Player::errorMessage() const {
    return d->errorMessage;
}

float Player::volume() const {
    return d->volume;
}

float Player::balance() const {
    return d->balance;
}

const EQState &Player::eq() const {
    return d->eq;
}

ReplayGainMode Player::replayGainMode() const {
    return d->replayGainMode;
}

bool Player::isLimiterEnabled() const {
    return d->limiterEnabled;
}

RepeatMode Player::repeatMode() const {
    return d->queue.repeatMode();
}

bool Player::isShuffled() const {
    return d->queue.isShuffled();
}

AnalyzerTap &Player::analyzer() {
    return d->analyzer;
}

float Player::takePeak() {
    return d->graph ? d->graph->takePeak() : 0.0F;
}

QString Player::outputName() const {
    return d->output ? d->output->name() : QString();
}

void Player::play() {
    d->preemptStream();
    if (d->state == PlaybackState::paused && d->graph && !d->isStale()) {
        d->resume();
        return;
    }
    if (!d->queue.currentIndex())
        next();
    else
        d->startCurrentTrack(true);
}

void Player::play(int index) {
    if (index < 0 || index >= d->queue.count())
        return;
    d->queue.select(index);
    d->moveToCurrentTrack(true);
}

void Player::pause() {
    d->preemptStream();
    if (d->state == PlaybackState::playing) {
        d->pause();
    } else if (d->state == PlaybackState::loading) {
        d->setAutoplay(false);
        if (d->graph) // it plays on where the track before has just ended
            d->graph->node()->pause();
    }
}

void Player::togglePause() {
    if (d->state != PlaybackState::stopped)
        togglePlayPause();
}

void Player::togglePlayPause() {
    d->preemptStream();
    const bool isLoading = d->state == PlaybackState::loading;
    if (d->state == PlaybackState::playing || (isLoading && d->autoplayAfterLoad))
        pause();
    else if (isLoading)
        d->setAutoplay(true);
    else
        play();
}

void Player::stop() {
    d->endStream();
    d->stop();
}

void Player::next() {
    if (!d->queue.next())
        return;
    d->moveToCurrentTrack(true);
}

void Player::previous() {
    d->preemptStream();
    const std::optional<int> before = d->queue.currentIndex();
    d->queue.previous();
    if (d->queue.currentIndex() == before) {
        seek(0);
        return;
    }
    d->setCurrentTime(0);
    d->moveToCurrentTrack(true);
}

void Player::seek(double seconds) {
    d->preemptStream();
    const bool hasPlaces = !d->isRemote() || duration() > 0;
    if (d->state != PlaybackState::stopped && hasPlaces)
        d->seekTo(PlayerRules::seekTarget(seconds, duration()));
}

void Player::enqueue(const std::vector<Track> &tracks) {
    d->editQueue([&](PlayQueue &queue) { queue.append(tracks); });
}

void Player::insertTracks(const std::vector<Track> &tracks, int row) {
    d->editQueue([&](PlayQueue &queue) {
        const int count = queue.count();
        queue.append(tracks);
        if (row < 0 || row >= count)
            return;
        std::vector<int> order(static_cast<size_t>(queue.count()));
        std::iota(order.begin(), order.end(), 0);
        std::rotate(order.begin() + row, order.begin() + count, order.end());
        queue.reorder(order);
    });
}

void Player::removeTrack(int index) {
    d->editQueue([&](PlayQueue &queue) { queue.remove(index); });
}

void Player::removeTracks(const IndexSet &indices) {
    d->editQueue([&](PlayQueue &queue) { queue.remove(indices); });
}

void Player::cropTracks(const IndexSet &keeping) {
    d->editQueue([&](PlayQueue &queue) { queue.crop(keeping); });
}

void Player::moveTracks(const IndexSet &indices, int offset) {
    d->editQueue([&](PlayQueue &queue) { queue.move(indices, offset); });
}

void Player::reorderTracks(const std::vector<int> &order) {
    d->editQueue([&](PlayQueue &queue) { queue.reorder(order); });
}

void Player::sortQueue(PlaylistSortKey key) {
    d->editQueue([&](PlayQueue &queue) { queue.sort(key); });
}

void Player::reverseQueue() {
    d->editQueue([](PlayQueue &queue) { queue.reverse(); });
}

void Player::randomizeQueue() {
    d->editQueue([](PlayQueue &queue) { queue.randomize(); });
}

void Player::clearQueue() {
    d->editQueue([](PlayQueue &queue) { queue.removeAll(); });
}

void Player::restoreQueue(std::vector<Track> tracks, std::optional<int> currentIndex, RepeatMode repeatMode,
                          bool isShuffled) {
    d->stop();
    d->editQueue([&](PlayQueue &queue) {
        queue = PlayQueue(std::move(tracks));
        queue.setRepeatMode(repeatMode);
        if (currentIndex)
            queue.select(*currentIndex);
        queue.setShuffle(isShuffled); // last, so that the current track leads the pass
    });
}

void Player::Private::editQueue(const std::function<void(PlayQueue &)> &edit) {
    const auto currentID = [this] {
        const std::optional<Track> track = queue.current();
        return track ? std::optional(track->id) : std::nullopt;
    };
    const std::optional<QUuid> before = currentID();
    edit(queue);
    const std::optional<QUuid> after = currentID();
    if (!after && state != PlaybackState::stopped)
        stop();
    const bool plays = state != PlaybackState::stopped;
    const unsigned commands = startsAndStops;
    Q_EMIT q.queueChanged();
    if (after == before) {
        planFollowers();
        return;
    }
    announceTrack();
    if (plays && startsAndStops == commands)
        startCurrentTrack(autoplayAfterLoad);
}

void Player::setVolume(float volume) {
    d->volume = PlayerRules::clampedVolume(volume);
    if (d->graph)
        d->graph->setVolume(d->volume);
    Q_EMIT volumeChanged();
}

void Player::setBalance(float balance) {
    d->balance = PlayerRules::clampedBalance(balance);
    if (d->graph)
        d->graph->setBalance(d->balance);
    Q_EMIT balanceChanged();
}

void Player::setEq(const EQState &eq) {
    d->eq = eq;
    if (d->graph)
        d->graph->setEqualizer(eq);
    Q_EMIT eqChanged();
}

void Player::setReplayGainMode(ReplayGainMode mode) {
    d->replayGainMode = mode;
    d->applyLoudness();
    Q_EMIT loudnessChanged();
}

void Player::setLimiterEnabled(bool enabled) {
    d->limiterEnabled = enabled;
    d->applyLoudness();
    Q_EMIT loudnessChanged();
}

void Player::Private::applyLoudness() {
    if (!graph)
        return;
    graph->node()->setReplayGain(replayGainMode, !limiterEnabled);
    graph->setLimiterEnabled(limiterEnabled);
}

void Player::setRepeatMode(RepeatMode mode) {
    d->editQueue([&](PlayQueue &queue) { queue.setRepeatMode(mode); });
}

void Player::setShuffled(bool on) {
    d->editQueue([&](PlayQueue &queue) { queue.setShuffle(on); });
}

PlayerEventToken Player::addEventObserver(std::function<void(const PlayerEvent &)> callback) {
    const PlayerEventToken token{++d->lastToken};
    d->observers.emplace(token, std::move(callback));
    return token;
}

void Player::removeEventObserver(PlayerEventToken token) {
    d->observers.erase(token);
}

// An observer may add or remove observers, itself included.
void Player::Private::emitEvent(const PlayerEvent &event) {
    const auto present = observers;
    for (const auto &[token, callback] : present) {
        if (observers.contains(token))
            callback(event);
    }
}

void Player::Private::setState(PlaybackState newState) {
    if (newState == state)
        return;
    state = newState;
    emitEvent(PlayerEvents::StateChanged{newState});
    Q_EMIT q.stateChanged();
}

void Player::Private::setAutoplay(bool autoplay) {
    if (std::exchange(autoplayAfterLoad, autoplay) != autoplay && state == PlaybackState::loading)
        Q_EMIT q.stateChanged();
}

void Player::Private::setCurrentTime(double seconds) {
    if (seconds == currentTime)
        return;
    currentTime = seconds;
    Q_EMIT q.currentTimeChanged();
}

void Player::Private::setFormat(const std::optional<PlaybackFormat> &newFormat) {
    if (newFormat == format)
        return;
    format = newFormat;
    Q_EMIT q.formatChanged();
}

void Player::Private::announceTrack() {
    const std::optional<Track> track = queue.current();
    const std::optional<QUuid> id = track ? std::optional(track->id) : std::nullopt;
    if (id == lastEmittedTrackID)
        return;
    lastEmittedTrackID = id;
    emitEvent(PlayerEvents::TrackChanged{track});
}

} // namespace vantor
