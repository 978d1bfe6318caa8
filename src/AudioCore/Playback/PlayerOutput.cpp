#include "AudioCore/Playback/PlayerPrivate_p.h"
#include "AudioCore/Playback/PlayerRules.h"

#include <QLoggingCategory>

namespace vantor {

Q_DECLARE_LOGGING_CATEGORY(lcPlayer)

static constexpr double longestFarewell = 0.3; // seconds

static std::optional<std::int64_t>
inMicroseconds(const std::optional<std::chrono::steady_clock::time_point> &instant) {
    using std::chrono::microseconds;
    return instant ? std::optional<std::int64_t>(
                         std::chrono::duration_cast<microseconds>(instant->time_since_epoch()).count())
                   : std::nullopt;
}

std::vector<OutputDeviceDescription> Player::outputDevices() const {
    return d->devices->devices();
}

std::optional<OutputDeviceDescription> Player::outputDevice() const {
    return d->output ? d->deviceWith(d->output->device()) : std::nullopt;
}

std::optional<QString> Player::chosenOutputDevice() const {
    return d->chosenDevice;
}

void Player::chooseOutputDevice(const std::optional<QString> &key) {
    const bool isNew = d->chosenDevice != key;
    d->chosenDevice = key;
    d->refusedDevice.reset();
    d->followDevices();
    if (isNew)
        Q_EMIT outputDevicesChanged();
}

void Player::outputDeviceChanged(quint32 deviceID) {
    if (const std::optional<OutputDeviceDescription> device = d->deviceWith(deviceID))
        chooseOutputDevice(device->key);
    else
        d->reportFailure(AudioCoreError::outputDevice(tr("There is no such device.")), d->queue.current());
}

void Player::Private::watchDevices() {
    QObject::connect(devices.get(), &OutputDeviceProvider::changed, &q, [this] {
        followDevices();
        Q_EMIT q.outputDevicesChanged();
    });
    switchTimer.setSingleShot(true);
    switchTimer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&switchTimer, &QTimer::timeout, &q, [this] { replaceOutput(true); });
}

std::optional<OutputDeviceDescription> Player::Private::deviceWith(const std::optional<quint32> &id) const {
    for (const OutputDeviceDescription &device : devices->devices()) {
        if (device.id == id)
            return device;
    }
    return std::nullopt;
}

PlayerRules::OutputTarget Player::Private::outputTarget() const {
    return {.isSettled = devices->isSettled(),
            .chosen = PlayerRules::chosenOutput(devices->devices(), chosenDevice, refusedDevice),
            .systemDefault = devices->defaultDevice()};
}

void Player::Private::ensureOutput() {
    if (output)
        return;
    outputMadeFor = outputTarget();
    output = devices->makeOutput(outputMadeFor.chosen);
    graph = std::make_unique<AudioGraph>(output->sampleRate(), &analyzer);
    graph->setVolume(volume);
    graph->setBalance(balance);
    graph->setEqualizer(eq);
    applyLoudness();
    analyzer.prepare(graph->sampleRate());
    qCInfo(lcPlayer, "output: %s, %d Hz", qUtf8Printable(output->name()), output->sampleRate());
    AudioGraph *const rendered = graph.get();
    // What it reports is followed outside its own call: it is about to be replaced.
    const auto whileItPlays = [this, number = ++outputNumber](auto follow) {
        const auto followIfItPlays = [this, number, follow] {
            if (output && outputNumber == number)
                follow();
        };
        QMetaObject::invokeMethod(&q, followIfItPlays, Qt::QueuedConnection);
    };
    output->start(
        [rendered, played = output.get()](float *interleaved, int frames) {
            rendered->render(interleaved, frames, inMicroseconds(played->heardAt()));
        },
        {.lost =
             [this, whileItPlays](bool wasReady, const QString &reason) {
                 whileItPlays([this, wasReady, reason] { outputLost(wasReady, reason); });
             },
         .moved = [this, whileItPlays] { whileItPlays([this] { outputMoved(); }); }});
}

void Player::Private::wakeOutput() {
    idleTimer.stop();
    output->setSuspended(false);
}

void Player::Private::followDevices() {
    if (!output || switchTimer.isActive())
        return;
    const PlayerRules::OutputTarget target = outputTarget();
    if (!PlayerRules::needsAnotherOutput(outputMadeFor, target, output->device())) {
        if (target.systemDefault)
            outputMadeFor = target; // else it is lost, and hears so itself
        return;
    }
    if ((state != PlaybackState::playing && !isStreaming()) || !output->device()) {
        replaceOutput(false);
        return;
    }
    // The sound fades out before it breaks off, and what is on its way is heard.
    graph->node()->pause();
    graph->playLive(nullptr);
    const double seconds = std::min(output->latency(), longestFarewell) + 2 * PlayerNode::fadeSeconds;
    switchTimer.start(std::chrono::ceil<std::chrono::milliseconds>(std::chrono::duration<double>(seconds)));
}

void Player::Private::outputMoved() {
    followDevices();
    Q_EMIT q.outputDevicesChanged();
}

void Player::Private::outputLost(bool wasReady, const QString &reason) {
    qCWarning(lcPlayer, "lost the output: %s", qUtf8Printable(reason));
    const PlayerRules::OutputTarget target = outputTarget();
    const bool isRefused = !wasReady && target == outputMadeFor;
    if (!isRefused) { // or the device is gone
        replaceOutput(false);
    } else if (target.chosen) {
        refusedDevice = target.chosen;
        replaceOutput(false);
        reportFailure(AudioCoreError::outputDevice(reason), queue.current());
    } else {
        const bool wasSwitch = std::exchange(outputIsReplacement, false);
        output.reset();
        graph.reset();
        const AudioCoreError error =
            wasSwitch ? AudioCoreError::outputDevice(reason) : AudioCoreError::engineStart(reason);
        if (state != PlaybackState::stopped) {
            endStream();
            fail(error);
        } else if (isStreaming()) {
            q.failStream(error);
        }
    }
}

// Up to where the sound has been heard.
double Player::Private::heardNow(bool wasAllHeard) const {
    const PlayerNode::Progress progress = graph->node()->progress();
    if (progress.generation != generation)
        return currentTime;
    const double rendered = static_cast<double>(progress.frame) / graph->sampleRate();
    return PlayerRules::heardTime(rendered, wasAllHeard ? 0 : unheard(), currentTime, duration());
}

// Everything goes on at the same place, in the same state.
void Player::Private::replaceOutput(bool wasAllHeard) {
    switchTimer.stop();
    if (state != PlaybackState::stopped)
        setCurrentTime(heardNow(wasAllHeard));
    output.reset();
    graph.reset();
    outputIsReplacement = state != PlaybackState::stopped || isStreaming();
    if (!outputIsReplacement)
        return;
    ensureOutput();
    if (isStreaming())
        playStream();
    if (url.isEmpty())
        return; // there is no track in it
    requestFrom(currentTime);
    planFollowers();
    if (state == PlaybackState::playing) {
        graph->node()->play();
        streamer.wake();
        wakeOutput();
    }
}

} // namespace vantor
