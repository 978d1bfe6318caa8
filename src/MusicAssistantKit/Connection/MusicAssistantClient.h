#pragma once

#include "MusicAssistantKit/Connection/MAHTTPTransport.h"
#include "MusicAssistantKit/Connection/MAWebSocketTransport.h"
#include "MusicAssistantKit/Connection/ReconnectPolicy.h"
#include "MusicAssistantKit/Wire/MAEnvelope.h"
#include "MusicAssistantKit/Wire/MARequest.h"
#include "Platform/AsyncStream.h"
#include "Platform/Scheduler.h"

#include <QCoroTask>
#include <QUrl>

#include <memory>

namespace vantor {

class MAConnection;

/// One connection to a Music Assistant server: signs in, sends commands and matches their answers, delivers
/// the server's events, and comes back by itself after a loss. Main thread; lives in a shared_ptr, which
/// every operation under way holds.
///
/// No call runs the caller's code: what waits for a result or a stream is resumed by the event loop. The
/// token is kept as long as the connection is wanted, and sent only after the server has proved to be the
/// expected one.
class MusicAssistantClient : public std::enable_shared_from_this<MusicAssistantClient> {
  public:
    struct ConnectionState {
        enum class Phase { disconnected, connecting, authenticating, connected, reconnecting, failed };
        Phase phase = Phase::disconnected;
        int attempt = 0;                          ///< of `reconnecting`, from 1
        std::optional<MusicAssistantError> error; ///< of `failed`
        bool operator==(const ConnectionState &) const = default;
    };

    // The schemas that this client understands: a server's own must reach the first, and what the server asks
    // of its clients at least must not pass the second.
    static constexpr qint64 minimumSchemaVersion = 28;
    static constexpr qint64 supportedSchemaVersion = 65;
    /// Why a server's schema is not understood; none when it is.
    [[nodiscard]] static std::optional<MusicAssistantError> schemaProblem(const MAServerInfo &info);

    struct Timing {
        std::chrono::milliseconds pingInterval{20'000};
        /// Of silence after a ping; anything that arrives ends it.
        std::chrono::milliseconds pongTimeout{15'000};
        /// Pages of a large library take a small server many seconds.
        std::chrono::milliseconds callTimeout{30'000};
        /// Each for opening with the server's information, and for signing in.
        std::chrono::milliseconds handshakeTimeout{10'000};
        ReconnectPolicy reconnect = ReconnectPolicy::standard();
    };

    /// The collaborators outlive the client.
    struct Collaborators {
        MAWebSocketTransports &transports;
        Scheduler &clock;
    };

    /// `baseURL`: http or https, as the user knows the server.
    MusicAssistantClient(const QUrl &baseURL, const Collaborators &collaborators, const Timing &timing);
    ~MusicAssistantClient();
    MusicAssistantClient(const MusicAssistantClient &) = delete;
    MusicAssistantClient &operator=(const MusicAssistantClient &) = delete;

    /// Asks the server at `baseURL` who it is, without a connection or a token. Throws MusicAssistantError.
    [[nodiscard]] static QCoro::Task<MAServerInfo> serverInfo(QUrl baseURL, MAHTTPTransport &http,
                                                              std::chrono::milliseconds timeout);

    /// Opens, signs in and stays connected until disconnect(), in place of any connection before. Throws
    /// MusicAssistantError; then the state is `failed` and no attempt follows. `expectedServerID`: when
    /// another server answers, it never sees the token.
    [[nodiscard]] QCoro::Task<MAServerInfo> connect(MusicAssistantToken token,
                                                    std::optional<QString> expectedServerID);
    /// For good: no attempt to reconnect follows, and the token is forgotten.
    void disconnect();

    /// One command and its whole result, gathered from its pieces. Ends exactly once: with the answer, the
    /// server's error, a timeout or the loss of the connection. Throws MusicAssistantError.
    /// `timeout`: before the request's own and the client's.
    [[nodiscard]] QCoro::Task<MAJSON> call(MARequest request,
                                           std::optional<std::chrono::milliseconds> timeout = std::nullopt);

    /// Every change from now on; finished when the client ends.
    [[nodiscard]] AsyncStream<ConnectionState> states();
    [[nodiscard]] AsyncStream<MAServerEvent> events();

    [[nodiscard]] const QUrl &baseURL() const;
    [[nodiscard]] const ConnectionState &state() const;
    /// Of the latest successful connection.
    [[nodiscard]] const std::optional<MAServerInfo> &serverInfo() const;
    /// Whom the token signed in, while there is a connection and the server told.
    [[nodiscard]] std::optional<MAUser> user() const;
    [[nodiscard]] int connectionCount() const; ///< of successful connections
    [[nodiscard]] int pendingCallCount() const;

  private:
    class Private;
    std::unique_ptr<Private> m_private;
};

} // namespace vantor
