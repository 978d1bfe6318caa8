#include "Vantor/App/TimedRun.h"

#include "MusicBackendKit/MarqueeText.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Windows/MainWindow.h"

#include <QCoreApplication>

#include <cmath>
#include <cstdio>

namespace vantor {

namespace {

QString nameOf(PlaybackState state) {
    switch (state) {
    case PlaybackState::stopped:
        return QStringLiteral("stopped");
    case PlaybackState::loading:
        return QStringLiteral("loading");
    case PlaybackState::playing:
        return QStringLiteral("playing");
    case PlaybackState::paused:
        return QStringLiteral("paused");
    }
    return {};
}

constexpr std::chrono::seconds longestWait{60}; // for the first sound

QString decibels(float peak) {
    return peak > 0 ? QStringLiteral("%1 dB").arg(20 * std::log10(peak), 0, 'f', 1)
                    : QStringLiteral("silent");
}

} // namespace

TimedRun::TimedRun(PlayerModel &model, MainWindow &window, double seconds, QString screenshot)
    : m_model(model), m_window(window), m_seconds(seconds), m_screenshot(std::move(screenshot)) {
    m_clock.start();
    m_reports.setInterval(1000);
    m_reports.setTimerType(Qt::PreciseTimer);
    connect(&m_reports, &QTimer::timeout, this, &TimedRun::report);
    connect(&model, &PlayerModel::trackRefused, this, [this](const QString &name, const QString &message) {
        refuse(tr("Could not play %1: %2").arg(name, message));
    });
    connect(&model, &PlayerModel::partRefused, this, [this](const QString &name, const QString &message) {
        refuse(QStringLiteral("%1: %2").arg(name, message));
    });
    connect(&model, &PlayerModel::skinRefused, this, [this](const QString &name, const QString &message) {
        refuse(tr("Could not load %1: %2").arg(name, message));
    });
    connect(&model.imports(), &QueueImports::allFinished, this, &TimedRun::finishIfNothingPlays);
    m_observer = model.player().addEventObserver([this](const PlayerEvent &event) { handle(event); });
}

TimedRun::~TimedRun() {
    m_model.player().removeEventObserver(m_observer);
}

void TimedRun::begin() {
    finishIfNothingPlays();
    QTimer::singleShot(longestWait, this, [this] {
        if (m_started)
            return;
        refuse(tr("Nothing began to play"));
        finish();
    });
}

void TimedRun::print(const char *kind, const QString &text) const {
    std::printf("%8.3f  %-5s  %s\n", static_cast<double>(m_clock.elapsed()) / 1000, kind,
                qUtf8Printable(text));
    std::fflush(stdout);
}

void TimedRun::handle(const PlayerEvent &event) {
    if (m_finished)
        return;
    if (const auto *changed = std::get_if<PlayerEvents::TrackChanged>(&event)) {
        const std::optional<Track> &track = changed->track;
        print("track", track ? MarqueeText::track(track->artist, track->title, track->duration, std::nullopt)
                             : QStringLiteral("none"));
    } else if (const auto *state = std::get_if<PlayerEvents::StateChanged>(&event)) {
        const QString output = m_model.player().outputName();
        const bool playing = state->state == PlaybackState::playing;
        print("state", playing ? QStringLiteral("playing to %1").arg(output) : nameOf(state->state));
        if (playing && !m_started) {
            m_started = true;
            m_reports.start();
            QTimer::singleShot(std::chrono::milliseconds(std::llround(m_seconds * 1000)), Qt::PreciseTimer,
                               this, &TimedRun::finish);
        }
        QTimer::singleShot(0, this, &TimedRun::finishIfNothingPlays);
    } else if (const auto *seeked = std::get_if<PlayerEvents::Seeked>(&event)) {
        print("seek", MarqueeText::time(seeked->time));
    }
}

void TimedRun::report() {
    m_reportedAt = static_cast<double>(m_clock.elapsed()) / 1000;
    Player &player = m_model.player();
    print("time", QStringLiteral("%1  peak %2")
                      .arg(MarqueeText::time(player.currentTime()), decibels(player.takePeak())));
}

void TimedRun::refuse(const QString &sentence) {
    m_refused = true;
    std::fprintf(stderr, "%s\n", qUtf8Printable(sentence));
}

void TimedRun::finishIfNothingPlays() {
    if (m_model.player().state() == PlaybackState::stopped && !m_model.imports().isImporting())
        finish();
}

void TimedRun::finish() {
    if (std::exchange(m_finished, true))
        return;
    m_reports.stop();
    // A level needs some sound to be measured over.
    if (m_started && static_cast<double>(m_clock.elapsed()) / 1000 - m_reportedAt > 0.5)
        report();
    if (!m_started && !m_refused)
        refuse(tr("There is nothing to play"));
    if (!m_screenshot.isEmpty()) {
        if (m_window.savePicture(m_screenshot))
            print("image", m_screenshot);
        else
            refuse(tr("Could not write %1").arg(m_screenshot));
    }
    QCoreApplication::exit(m_refused ? 1 : 0);
}

} // namespace vantor
