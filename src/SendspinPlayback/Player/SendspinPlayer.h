#pragma once

#include "Platform/Scheduler.h"
#include "Platform/ThreadSafety.h"
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
///     const auto source = std::make_shared<SendspinSource>(output.sampleRate());
///     auto *player = new SendspinPlayer(session, scheduler, clock, source, std::move(settings), capacity);
///     player->moveToThread(&decoding);
///     connect(&session, &SendspinSession::occurred, player, &SendspinPlayer::take);
///     connect(&decoding, &QThread::finished, player, &QObject::deleteLater);
///
/// and then the session is started, with the same capacity in its configuration.
///
/// To be heard, somebody renders the source, as Player::startStream() has it done. isStreaming() says when to
/// take the output and when to give it back; for some seconds after an end it should stay open, because a
/// seek ends one stream and begins another. While something else has the output, setAvailable(false) has the
/// server take its stream away. For an output of another rate there has to be another source.
class SendspinPlayer : public QObject {
    Q_OBJECT
  public:
    /// The collaborators outlive the player; it uses the scheduler in its thread. `settings` keep volume,
    /// mute and static delay between two runs. `capacity`: see SendspinBuffer.
    SendspinPlayer(SendspinSession &session, Scheduler &scheduler, const SendspinClock &clock,
                   std::shared_ptr<SendspinSource> source, std::unique_ptr<QSettings> settings,
                   std::int64_t capacity);
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
    /// Goes on through another source. Any thread.
    void setSource(const std::shared_ptr<SendspinSource> &source) VANTOR_EXCLUDES(m_sourceMutex);

    /// Any thread.
    [[nodiscard]] SendspinFigures figures() const VANTOR_EXCLUDES(m_sourceMutex);
    /// In the player's thread.
    [[nodiscard]] const SendspinPlayerState &state() const { return m_state; }
    [[nodiscard]] bool isStreaming() const { return m_isStreaming; }

  Q_SIGNALS:
    void stateChanged(const vantor::SendspinPlayerState &state);
    void streamingChanged(bool isStreaming);
    /// A stream began that cannot be decoded.
    void streamRefused();

  private:
    void change(const std::function<void(SendspinPlayerState &)> &edit);
    void apply(const SendspinPlayerState &state);
    void setStreaming(bool isStreaming);
    void takeSource(const std::shared_ptr<SendspinSource> &source) VANTOR_EXCLUDES(m_sourceMutex);
    void measure(const SendspinAudioChunk &chunk);
    void work();
    void workLater();
    void synchronize();
    void updateTiming();

    SendspinSession &m_session;
    Scheduler &m_scheduler;
    const SendspinClock &m_clock;
    QSettings *const m_settings; ///< a child, so that it moves along
    SendspinBuffer m_buffer;
    SendspinPlayerState m_state;
    SendspinTiming m_timing;
    bool m_isSynchronized = false;
    bool m_isLost = false; ///< the connection, in the middle of something
    bool m_isStreaming = false;
    bool m_isClicking = false;
    std::unique_ptr<Scheduler::Pending> m_work;
    std::int64_t m_measuredFrom = 0;  ///< the timestamp from which the bit rate is reckoned
    std::int64_t m_measuredBytes = 0; ///< since then; 0: not begun
    std::atomic<int> m_bitrate{0};

    mutable Mutex m_sourceMutex; ///< changes are made in the player's thread, with it; reading there is free
    std::shared_ptr<SendspinSource> m_source;
    std::int64_t m_lateBefore VANTOR_GUARDED_BY(m_sourceMutex) = 0; ///< through other sources
    std::int64_t m_resyncsBefore VANTOR_GUARDED_BY(m_sourceMutex) = 0;
};

} // namespace vantor
