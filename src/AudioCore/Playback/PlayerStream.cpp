#include "AudioCore/Playback/PlayerPrivate_p.h"

#include <QLoggingCategory>

namespace vantor {

Q_DECLARE_LOGGING_CATEGORY(lcPlayer)

void Player::startStream(const LiveSourceForRate &sourceForRate) {
    if (d->state == PlaybackState::playing)
        d->pause();
    else if (d->state == PlaybackState::loading)
        d->setAutoplay(false);
    const bool isNew = !d->isStreaming();
    d->liveSourceForRate = sourceForRate;
    d->ensureOutput();
    d->graph->node()->pause(); // it plays on where a track that is loading follows another
    d->playStream();
    if (!isNew)
        return;
    d->emitEvent(PlayerEvents::StreamStarted{});
    Q_EMIT streamingChanged();
}

void Player::endStream() {
    d->endStream();
}

bool Player::isStreaming() const {
    return d->isStreaming();
}

void Player::failStream(const AudioCoreError &error) {
    d->endStream();
    d->reportFailure(error, std::nullopt);
}

void Player::Private::playStream() {
    graph->playLive(liveSourceForRate(graph->sampleRate()));
    output->setTimed(true);
    wakeOutput();
}

bool Player::Private::leaveStream() {
    if (!isStreaming())
        return false;
    liveSourceForRate = nullptr;
    if (graph) {
        graph->playLive(nullptr);
        output->setTimed(false);
        idleTimer.start();
    }
    return true;
}

void Player::Private::preemptStream() {
    if (!leaveStream())
        return;
    emitEvent(PlayerEvents::StreamPreempted{});
    Q_EMIT q.streamingChanged();
}

void Player::Private::endStream() {
    if (!leaveStream())
        return;
    emitEvent(PlayerEvents::StreamEnded{});
    Q_EMIT q.streamingChanged();
}

void Player::Private::reportFailure(const AudioCoreError &error, const std::optional<Track> &track) {
    qCWarning(lcPlayer, "%s", error.what());
    errorMessage = error.description();
    emitEvent(PlayerEvents::Failed{{track, error.description(), 1, false}});
}

} // namespace vantor
