#pragma once

#include "SendspinPlayback/Player/SendspinPlayer.h"

#include <QThread>

namespace vantor {

/// The two threads in which this computer is a speaker of a music server: one measures the server's clock and
/// keeps the connection, one decodes. Main thread; what it tells comes there from both of them.
class SpeakerThreads : public QObject {
    Q_OBJECT

  public:
    /// Bytes of coded sound that are held at most: some twenty seconds of flac, ten of pcm.
    static constexpr std::int64_t bufferCapacity = 2 << 20;

    /// `settings`: where the player's state is kept; it is only copied. `source`: what makes the sound heard.
    SpeakerThreads(const QSettings &settings, std::shared_ptr<SendspinSource> source);
    /// Takes leave of a server that there still is: the program ends.
    ~SpeakerThreads() override;

    void connectTo(const SendspinConnectionConfiguration &configuration);
    void leave(SendspinGoodbyeReason reason);

    [[nodiscard]] SendspinPlayer &player() { return *m_player; }
    [[nodiscard]] const SendspinPlayer &player() const { return *m_player; }
    /// What is known of the server's clock.
    [[nodiscard]] SendspinClockState clock() const { return m_session->clock(); }

  Q_SIGNALS:
    /// Everything but the sound, of the server that was connected last.
    void told(const vantor::SendspinEvent &event);
    void stateChanged(const vantor::SendspinPlayerState &state);
    void streamingChanged(bool isStreaming);
    void streamRefused();
    /// From the session's thread.
    void eventCame(const vantor::SendspinEvent &event, QPrivateSignal);

  private:
    void take(const SendspinEvent &event);

    QtWebSocketTransports m_transports{SendspinSession::longestFrame};
    SystemScheduler m_scheduler;
    SendspinSteadyClock m_clock;
    QThread m_sessionThread;
    QThread m_decodingThread;
    SendspinSession *m_session; ///< goes with its thread
    SendspinPlayer *m_player;   ///< goes with its thread
    bool m_isConnected = false; ///< to some server, or on the way
    int m_partings = 0;         ///< that were asked for and have not happened yet
};

} // namespace vantor
