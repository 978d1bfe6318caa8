#include "MusicAssistantKit/Connection/MusicAssistantClient.h"

#include "MusicAssistantKit/Connection/MAConnection_p.h"
#include "MusicAssistantKit/Connection/MAEndpoints.h"
#include "MusicAssistantKit/Connection/MAPendingCalls_p.h"
#include "MusicAssistantKit/Servers/MusicAssistantAddressInput.h"
#include "Platform/AsyncBroadcast.h"

#include <QLoggingCategory>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(logClient, "co.kelvane.vantor.musicassistant.client")

const QString socketPath = u"/ws"_s;
const QString infoPath = u"/info"_s;
constexpr qint64 maxInfoBytes = 1 << 20;

std::optional<MusicAssistantError> addressProblem(const QUrl &baseURL) {
    if (!isServerURL(baseURL))
        return MusicAssistantError::invalidURL();
    // The address may come from a file that somebody edited: the token never travels openly through the
    // Internet.
    if (classifyAddress(baseURL) == MusicAssistantAddressSecurity::requiresTLS)
        return MusicAssistantError::transport(
            {.kind = MATransportError::Kind::securityRequired, .detail = u"plain http"_s});
    return std::nullopt;
}

} // namespace

class MusicAssistantClient::Private : public QObject {
  public:
    using Phase = ConnectionState::Phase;
    using ConnectOutcome = std::variant<MAServerInfo, MusicAssistantError>;

    Private(const QUrl &url, const Collaborators &collaborators, const Timing &clientTiming)
        : baseURL(url), transports(collaborators.transports), clock(collaborators.clock),
          timing(clientTiming), calls(clock) {}

    void begin(const MusicAssistantToken &newToken, const std::optional<QString> &expectedID,
               AsyncStreamProducer<ConnectOutcome> outcome);
    void end();
    [[nodiscard]] QString nextMessageID() { return QString::number(m_nextMessageID++); }

    void establish();
    void drop();
    void setState(const ConnectionState &next);
    void activate(const MAServerInfo &serverInfo);
    void lose(const MusicAssistantError &error);
    void reconnect(int attempt);
    void giveUp(const MusicAssistantError &error);
    void take(const MAEnvelope &envelope);

    const QUrl baseURL;
    MAWebSocketTransports &transports;
    Scheduler &clock;
    const Timing timing;
    ConnectionState state;
    std::optional<MAServerInfo> info;
    int connectionCount = 0;
    MAPendingCalls calls;
    AsyncBroadcast<ConnectionState> states;
    AsyncBroadcast<MAServerEvent> events;
    std::unique_ptr<MAConnection> connection;

  private:
    qint64 m_nextMessageID = 1;
    std::optional<MusicAssistantToken> m_token; ///< as long as a connection is wanted
    std::optional<QString> m_expectedServerID;
    AsyncStreamProducer<ConnectOutcome> m_connecting;
    std::unique_ptr<Scheduler::Pending> m_reconnect;
};

void MusicAssistantClient::Private::begin(const MusicAssistantToken &newToken,
                                          const std::optional<QString> &expectedID,
                                          AsyncStreamProducer<ConnectOutcome> outcome) {
    drop();
    m_token = newToken;
    m_expectedServerID = expectedID;
    m_connecting = std::move(outcome);
    setState({.phase = Phase::connecting, .attempt = 0, .error = {}});
    if (const auto problem = addressProblem(baseURL))
        giveUp(*problem);
    else
        establish();
}

void MusicAssistantClient::Private::end() {
    drop();
    m_token.reset();
    if (state.phase != Phase::disconnected)
        setState({});
}

/// Ends what there is of a connection, with everything that waits for it.
void MusicAssistantClient::Private::drop() {
    m_reconnect.reset();
    if (connection) {
        QObject::disconnect(connection.get(), nullptr, this, nullptr);
        connection->close();
        connection.release()->deleteLater(); // it may be what is calling
    }
    calls.failAll(MusicAssistantError::disconnected());
    m_connecting.yield(MusicAssistantError::disconnected());
    m_connecting.finish();
}

void MusicAssistantClient::Private::establish() {
    auto transport = transports.make(webSocketURL(baseURL, socketPath));
    MAConnection::SignIn signIn{
        .token = *m_token, .messageID = nextMessageID(), .expectedServerID = m_expectedServerID};
    connection = std::make_unique<MAConnection>(std::move(transport), clock, timing, std::move(signIn));
    QObject::connect(connection.get(), &MAConnection::authenticating, this, [this] {
        if (state.phase == Phase::connecting)
            setState({.phase = Phase::authenticating, .attempt = 0, .error = {}});
    });
    QObject::connect(connection.get(), &MAConnection::established, this, &Private::activate);
    QObject::connect(connection.get(), &MAConnection::received, this, &Private::take);
    QObject::connect(connection.get(), &MAConnection::failed, this, &Private::lose);
    connection->open();
}

void MusicAssistantClient::Private::activate(const MAServerInfo &serverInfo) {
    info = serverInfo;
    m_expectedServerID = serverInfo.serverID;
    ++connectionCount;
    qCInfo(logClient) << "connected, schema" << serverInfo.schemaVersion;
    setState({.phase = Phase::connected, .attempt = 0, .error = {}});
    m_connecting.yield(serverInfo);
    m_connecting.finish();
}

void MusicAssistantClient::Private::lose(const MusicAssistantError &error) {
    qCInfo(logClient) << "connection ended:" << error;
    const bool isFirstAttempt = state.phase == Phase::connecting || state.phase == Phase::authenticating;
    if (isFirstAttempt || error.isPermanent()) {
        giveUp(error);
        return;
    }
    const int attempt = state.phase == Phase::reconnecting ? state.attempt + 1 : 1;
    drop();
    reconnect(attempt);
}

void MusicAssistantClient::Private::reconnect(int attempt) {
    setState({.phase = Phase::reconnecting, .attempt = attempt, .error = {}});
    m_reconnect = clock.after(timing.reconnect.delay(attempt), [this] { establish(); });
}

void MusicAssistantClient::Private::giveUp(const MusicAssistantError &error) {
    m_connecting.yield(error);
    m_connecting.finish();
    drop();
    m_token.reset();
    setState({.phase = Phase::failed, .attempt = 0, .error = error});
}

void MusicAssistantClient::Private::setState(const ConnectionState &next) {
    state = next;
    states.send(next);
}

void MusicAssistantClient::Private::take(const MAEnvelope &envelope) {
    if (const auto *result = std::get_if<MAEnvelope::Result>(&envelope.content))
        calls.take(*result);
    else if (const auto *error = std::get_if<MAEnvelope::Error>(&envelope.content))
        calls.take(*error);
    else if (const auto *event = std::get_if<MAServerEvent>(&envelope.content))
        events.send(*event);
}

MusicAssistantClient::MusicAssistantClient(const QUrl &baseURL, const Collaborators &collaborators,
                                           const Timing &timing)
    : m_private(std::make_unique<Private>(baseURL, collaborators, timing)) {}

MusicAssistantClient::~MusicAssistantClient() = default;

std::optional<MusicAssistantError> MusicAssistantClient::schemaProblem(const MAServerInfo &info) {
    if (info.schemaVersion >= minimumSchemaVersion &&
        info.minSupportedSchemaVersion <= supportedSchemaVersion)
        return std::nullopt;
    return MusicAssistantError::schemaUnsupported(info.schemaVersion, info.minSupportedSchemaVersion);
}

QCoro::Task<MAServerInfo> MusicAssistantClient::serverInfo(QUrl baseURL, MAHTTPTransport &http,
                                                           std::chrono::milliseconds timeout) {
    if (const auto problem = addressProblem(baseURL))
        throw *problem;
    const MAHTTPAnswer answer = co_await http.get(endpointURL(baseURL, infoPath), maxInfoBytes, timeout);
    if (answer.status != 200) {
        qCInfo(logClient) << "no server information: status" << answer.status;
        throw MusicAssistantError::handshakeFailed();
    }
    const auto json = MAJSON::parse(answer.body);
    try {
        const MAReader reader(json.value_or(MAJSON()));
        if (!json)
            reader.failCorrupt();
        co_return MAServerInfo::decode(reader);
    } catch (const MADecodingError &error) {
        throw MusicAssistantError::decoding(u"info"_s, error.detail());
    }
}

QCoro::Task<MAServerInfo> MusicAssistantClient::connect(MusicAssistantToken token,
                                                        std::optional<QString> expectedServerID) {
    const auto self = shared_from_this();
    auto [producer, stream] = AsyncStream<Private::ConnectOutcome>::make(latestValueOnly);
    m_private->begin(token, expectedServerID, std::move(producer));
    const auto outcome = co_await stream.next();
    if (const auto *error = std::get_if<MusicAssistantError>(&*outcome))
        throw *error;
    co_return std::get<MAServerInfo>(*outcome);
}

void MusicAssistantClient::disconnect() {
    m_private->end();
}

QCoro::Task<MAJSON> MusicAssistantClient::call(MARequest request,
                                               std::optional<std::chrono::milliseconds> timeout) {
    const auto self = shared_from_this();
    if (state().phase != ConnectionState::Phase::connected)
        throw MusicAssistantError::notConnected();
    const QString id = m_private->nextMessageID();
    const auto limit = timeout ? timeout : request.timeout;
    const auto stream =
        m_private->calls.add(id, request.description(), limit.value_or(m_private->timing.callTimeout));
    m_private->connection->send(request.encoded(id));
    const auto outcome = co_await stream.next();
    Q_ASSERT_X(outcome, "call(_:timeout:)", "MusicAssistantKit/MusicAssistantClient");
    if (const auto *error = std::get_if<MusicAssistantError>(&*outcome))
        throw *error;
    co_return std::get<MAJSON>(*outcome);
}

AsyncStream<MusicAssistantClient::ConnectionState> MusicAssistantClient::states() {
    return m_private->states.subscribe(eventBuffer);
}

AsyncStream<MAServerEvent> MusicAssistantClient::events() {
    return m_private->events.subscribe(eventBuffer);
}

const QUrl &MusicAssistantClient::baseURL() const {
    return m_private->baseURL;
}

const MusicAssistantClient::ConnectionState &MusicAssistantClient::state() const {
    return m_private->state;
}

const std::optional<MAServerInfo> &MusicAssistantClient::serverInfo() const {
    return m_private->info;
}

std::optional<MAUser> MusicAssistantClient::user() const {
    return m_private->connection ? m_private->connection->user() : std::nullopt;
}

int MusicAssistantClient::connectionCount() const {
    return m_private->connectionCount;
}

int MusicAssistantClient::pendingCallCount() const {
    return m_private->calls.count();
}

} // namespace vantor
