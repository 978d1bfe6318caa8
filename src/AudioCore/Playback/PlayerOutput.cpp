#include "AudioCore/Playback/PlayerPrivate_p.h"

#include <QLoggingCategory>

namespace vantor {

Q_DECLARE_LOGGING_CATEGORY(lcPlayer)

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
    ++generation;
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
