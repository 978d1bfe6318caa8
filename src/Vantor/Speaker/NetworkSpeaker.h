#pragma once

#include "AudioCore/Playback/Player.h"
#include "MusicAssistantKit/Servers/MusicAssistantServerConfiguration.h"
#include "Platform/Scheduler.h"
#include "SendspinKit/Session/SendspinError.h"
#include "SendspinKit/Session/SendspinIdentity.h"
#include "SendspinKit/Session/SendspinPlayerState.h"
#include "SendspinKit/Wire/SendspinIncoming.h"
#include "SendspinPlayback/Player/SendspinFigures.h"

#include <QCoroTask>
#include <QElapsedTimer>
#include <QObject>

#include <memory>
#include <optional>

class QSettings;

namespace vantor {

class MusicAssistantServers;
class SendspinSource;
class SpeakerThreads;
struct SendspinConnectionConfiguration;
struct SendspinEvent;

/// This computer as a speaker of the Music Assistant server that is chosen. Main thread; borrows the player,
/// the servers and the settings.
///
/// What a server streams takes the player's output, and local commands take it back (Player::startStream()).
/// When they have done so the server is told that the speaker is not available, and that it is again when it
/// has ended its stream and nothing is played here by itself any more.
///
/// While it is switched on it follows the choice of the server, whatever the library shows. The setting
/// "sendspin.server" names the address of a Sendspin server to be used instead, without a sign-in.
class NetworkSpeaker : public QObject {
    Q_OBJECT

  public:
    enum class State { Off, NoServer, Connecting, Connected, Retrying, Refused };

    NetworkSpeaker(Player &player, MusicAssistantServers &servers, QSettings &settings);
    ~NetworkSpeaker() override;

    /// From here on it connects while it is switched on: nothing is asked while the program starts.
    void begin();

    /// Off at first; kept.
    [[nodiscard]] bool isEnabled() const;
    void setEnabled(bool on);
    /// What servers call it; kept. Empty: the standard name.
    [[nodiscard]] QString name() const;
    void setName(const QString &name);
    [[nodiscard]] QString standardName() const { return m_identity.name; }
    /// By how many milliseconds everything is heard later, 0…SendspinIncoming::maxStaticDelayMs; kept and
    /// told to the server, which may set it as well.
    [[nodiscard]] int staticDelay() const { return m_playerState.staticDelayMs; }
    void setStaticDelay(int milliseconds);
    /// 0…1, as loud as it is perceived; also set by the server.
    [[nodiscard]] double volume() const { return m_playerState.volume / 100.0; }
    void setVolume(double volume);
    [[nodiscard]] bool isMuted() const { return m_playerState.muted; }
    void setMuted(bool muted);

    /// The same in every run.
    [[nodiscard]] const QString &clientID() const { return m_identity.clientID; }

    [[nodiscard]] State state() const { return m_state; }
    /// A sentence for the settings: "Connected: shows in Music Assistant as " and the name, or why not.
    [[nodiscard]] QString statusText() const;
    /// Whether a stream of a server has the output.
    [[nodiscard]] bool isStreaming() const { return m_isStreaming; }
    /// What streams, as far as the connection tells: the group that the speaker is in, else the server. Empty
    /// while nothing does.
    [[nodiscard]] QString streamName() const;
    /// How the stream is coded; none while there is none.
    [[nodiscard]] std::optional<SendspinStreamFormat> streamFormat() const;
    /// For how long the stream has been here, in seconds.
    [[nodiscard]] double streamedFor() const;
    /// A server is about to be asked to play here: what plays here by itself makes way.
    void makeWay();
    /// As of now; none while not connected. Cheap enough for a few times a second.
    [[nodiscard]] std::optional<SendspinFigures> figures() const;

    /// Ticks on each whole second of the server's clock, so that computers that are in step click together,
    /// until the connection ends or a local command takes the output. Takes the output as a stream does.
    void setClicking(bool on);
    [[nodiscard]] bool isClicking() const { return m_isClicking; }

  Q_SIGNALS:
    void changed(); ///< anything of the above but the figures

  private:
    void apply();
    void choose();
    QCoro::Task<> use(MusicAssistantServerConfiguration server);
    void connectTo(const SendspinConnectionConfiguration &configuration);
    [[nodiscard]] SendspinConnectionConfiguration configuration() const;
    void leaveServer(State state, const QString &text);
    void setState(State state, const QString &text);
    void startThreads();
    void take(const SendspinEvent &event);
    void takeGroup(const SendspinGroupUpdate &update);
    void takeStreaming(bool isStreaming);
    void startStream();
    void takeOutput();
    void endStream();
    void takePlayerEvent(const PlayerEvent &event);
    void becomeAvailable();
    [[nodiscard]] std::shared_ptr<SendspinSource> sourceForRate(int sampleRate);
    void takeFailure(const SendspinError &error);

    Player &m_player;
    PlayerEventToken m_observer;
    MusicAssistantServers &m_servers;
    QSettings &m_settings;
    const SendspinIdentity m_identity;
    SendspinPlayerState m_playerState;
    bool m_hasBegun = false;
    State m_state = State::Off;
    QString m_text;
    SendspinGroupUpdate m_group; ///< as of now
    QString m_serverName;        ///< as it says itself
    std::optional<SendspinStreamFormat> m_format;
    QElapsedTimer m_streamedSince;
    bool m_serverStreams = false;
    bool m_isStreaming = false;
    bool m_isTakenBack = false;                ///< a local command has the output; the server was told
    std::unique_ptr<Scheduler::Pending> m_end; ///< of the stream, unless another follows at once
    std::shared_ptr<SendspinSource> m_source;
    bool m_isClicking = false;
    std::unique_ptr<SpeakerThreads> m_threads; ///< while it is switched on
    std::optional<MusicAssistantServerConfiguration> m_server;
    std::unique_ptr<SendspinConnectionConfiguration> m_connection; ///< in use
    int m_round = 0;                                               ///< of the server in use
    std::unique_ptr<Scheduler::Pending> m_look; ///< for another server while this one does not answer
};

} // namespace vantor
