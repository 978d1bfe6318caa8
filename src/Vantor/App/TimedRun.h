#pragma once

#include "AudioCore/Playback/PlaybackState.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace vantor {

class MainWindow;
class PlayerModel;

/// Lets the program play for a while without anybody at the controls: prints one line per event to standard
/// output (seconds since the start, kind, text), and at the end, or when the queue has played, writes a
/// picture of the window and ends the event loop with status 0, or 1 if anything was refused. Main thread;
/// borrows both.
class TimedRun : public QObject {
    Q_OBJECT

  public:
    TimedRun(PlayerModel &model, MainWindow &window, double seconds, QString screenshot);
    ~TimedRun() override;

    /// To be called once everything that was asked for is under way.
    void begin();

  private:
    void print(const char *kind, const QString &text) const;
    void handle(const PlayerEvent &event);
    void report();
    void refuse(const QString &sentence);
    void finishIfNothingPlays();
    void finish();

    PlayerModel &m_model;
    PlayerEventToken m_observer;
    MainWindow &m_window;
    double m_seconds;
    QString m_screenshot; ///< empty: no picture
    QElapsedTimer m_clock;
    QTimer m_reports;        ///< a line about time and level every second
    double m_reportedAt = 0; ///< seconds
    bool m_started = false;
    bool m_refused = false;
    bool m_finished = false;
};

} // namespace vantor
