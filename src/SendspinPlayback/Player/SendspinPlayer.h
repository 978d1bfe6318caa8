#pragma once

#include "Platform/Scheduler.h"
#include "SendspinKit/Session/SendspinSession.h"
#include "SendspinPlayback/Decoding/SendspinBuffer.h"
#include "SendspinPlayback/Player/SendspinFigures.h"
#include "SendspinPlayback/Source/SendspinSource.h"

#include <QSettings>

namespace vantor {

/// Plays what a session receives, in step with the other players of its group, through a SendspinSource.
///
/// It decodes in the thread that it lives in, which should be neither the session's, whose measurements that
/// would disturb, nor the main one:
///
///     SendspinSource source(output.sampleRate());                     // outlives the player
///     auto *player = new SendspinPlayer(session, scheduler, clock, source, std::move(settings), capacity);
///     player->moveToThread(&decoding);
///     connect(&session, &SendspinSession::occurred, player, &SendspinPlayer::take);
///     connect(&decoding, &QThread::finished, player, &QObject::deleteLater);
///
/// and then the session is started, with the same capacity in its configuration.
///
/// To be heard, somebody renders the source: an output's callback calls source.render() with the instant at
/// which the first frame will be heard (see there), before the equalizer and the analyzer, and instead of the
/// local tracks. isStreaming() says when to take over from them and when they may have the output back; for
/// some seconds after an end it should stay open, because a seek ends one stream and begins another. While
/// something else has the output, setAvailable(false) has the server take its stream away. For an output of
/// another rate there has to be another source, and so another player; settings and state stay the same.
class SendspinPlayer : public QObject {
    Q_OBJECT
  public:
    /// The collaborators outlive the player; it uses the scheduler in its thread. `settings` keep volume,
    /// mute and static delay between two runs. `capacity`: see SendspinBuffer.
    SendspinPlayer(SendspinSession &session, Scheduler &scheduler, const SendspinClock &clock,
                   SendspinSource &source, std::unique_ptr<QSettings> settings, std::int64_t capacity);
    ~SendspinPlayer() override;

    /// What the settings keep of the state: volume, mute and static delay.
    [[nodiscard]] static SendspinPlayerState storedState(const QSettings &settings);
    static void store(const SendspinPlayerState &state, QSettings &settings);

    /// What the session tells. In the player's thread.
    void take(const vantor::SendspinEvent &event);

    // From the user; any thread. The server is told. Values out of range become the nearest that is in range.
    void setVolume(int volume);
    void setMuted(bool muted);
    void setStaticDelay(int milliseconds);
    void setAvailable(bool available);
    /// Ticks through the source; see SendspinClick.
    void setClicking(bool on);

    /// Any thread.
    [[nodiscard]] SendspinFigures figures() const;
    /// In the player's thread.
    [[nodiscard]] const SendspinPlayerState &state() const { return m_state; }
    [[nodiscard]] bool isStreaming() const { return m_isStreaming; }

  Q_SIGNALS:
    void stateChanged(const vantor::SendspinPlayerState &state);
    void streamingChanged(bool isStreaming);

  private:
    void change(const std::function<void(SendspinPlayerState &)> &edit);
    void apply(const SendspinPlayerState &state);
    void setStreaming(bool isStreaming);
    void work();
    void workLater();
    void synchronize();
    void updateTiming();

    SendspinSession &m_session;
    Scheduler &m_scheduler;
    const SendspinClock &m_clock;
    SendspinSource &m_source;
    QSettings *const m_settings; ///< a child, so that it moves along
    SendspinBuffer m_buffer;
    SendspinPlayerState m_state;
    SendspinTiming m_timing;
    bool m_isSynchronized = false;
    bool m_isStreaming = false;
    bool m_isClicking = false;
    std::unique_ptr<Scheduler::Pending> m_work;
};

} // namespace vantor
