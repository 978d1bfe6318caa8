#include "MusicAssistantKit/Backend/MusicAssistantBackend_p.h"
#include "MusicAssistantKit/Connection/MAEndpoints.h"

#include <QLoggingCategory>
#include <QPointer>

namespace vantor {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

Q_LOGGING_CATEGORY(logBackend, "co.kelvane.vantor.musicassistant.backend")

const QString commandsPath = u"/api-docs/commands.json"_s;
constexpr qint64 maxCommandsBytes = 8 << 20;
constexpr auto probeTimeout = 10s;
/// Of events that were missed, before all is read anew.
constexpr auto gatheringTime = 1s;
/// Before the players are asked for again.
constexpr auto pauseAfterFailure = 2s;

enum ErrorCode { unavailable = 10, invalidCommand = 12, notPermitted = 22 };

std::shared_ptr<MusicAssistantClient> makeClient(const MusicAssistantBackend::Server &server,
                                                 const MusicAssistantBackend::Collaborators &with,
                                                 const MusicAssistantClient::Timing &timing) {
    const auto *settings = std::get_if<MusicAssistantServerSettings>(&server.settings);
    if (!settings)
        return nullptr;
    const MusicAssistantClient::Collaborators collaborators{.transports = with.transports,
                                                            .clock = with.clock};
    return std::make_shared<MusicAssistantClient>(settings->address.baseURL, collaborators, timing);
}

MAServerCommands commandsIn(const QByteArray &body) {
    return MAServerCommands::decode(MAJSON::parse(body).value_or(MAJSON()));
}

/// Holds the backend until the command has ended.
QCoro::Task<MAJSON> heldCall([[maybe_unused]] std::shared_ptr<MusicBackend> held,
                             MusicAssistantBackend::Private *d, QString command, QJsonObject args) {
    const MAJSON result = co_await d->call(command, args, MusicBackendCapability::remoteOutputs);
    co_return result;
}

} // namespace

MusicAssistantBackend::Private::Private(MusicAssistantBackend &backend, const Server &chosen,
                                        const Collaborators &collaborators,
                                        const MusicAssistantClient::Timing &timing)
    : q(backend), server(chosen), with(collaborators), client(makeClient(chosen, collaborators, timing)),
      changes(with.clock), watchers(with.clock, [this](const QString &command, const QJsonObject &args) {
          return heldCall(q.shared_from_this(), this, command, args);
      }) {
    status.capabilities = capabilities();
}

QCoro::Task<MAJSON> MusicAssistantBackend::Private::call(QString command, QJsonObject args,
                                                         MusicBackendCapabilities needed) {
    const auto self = q.shared_from_this();
    if (!client)
        throw std::get<MusicBackendError>(server.settings);
    if (client->state().error)
        throw *client->state().error;
    if (commands.wasRefused(command))
        throw MusicBackendError::unsupported(needed);
    if (MAJSON(args).encoded().size() > mostBytesAtOnce) // the server would drop the connection
        throw MusicAssistantBackendErrors::tooLarge();
    const MARequest request{.command = command, .args = args, .timeout = {}};
    try {
        const MAJSON result = co_await client->call(request);
        co_return result;
    } catch (const MusicAssistantError &error) {
        qCInfo(logBackend) << command << "failed:" << error;
        if (error.errorCase() != MusicAssistantError::Case::server)
            throw;
        if (error.code() == notPermitted)
            throw MusicAssistantBackendErrors::notPermitted();
        if (error.code() != invalidCommand || !commands.isUnknownWhenInvalid(command))
            throw;
        commands.noteRefused(command);
        tellStatus();
        throw MusicBackendError::unsupported(needed);
    }
}

QCoro::Task<> MusicAssistantBackend::Private::callTask(QString command, QJsonObject args,
                                                       MusicBackendCapabilities needed) {
    const MAJSON task = co_await call(command, args, needed);
    const auto outcome = MAReader(task).optionalString("status");
    if (outcome == "failed"_L1 || outcome == "cancelled"_L1)
        throw MusicAssistantBackendErrors::requestFailed();
}

QCoro::Task<> MusicAssistantBackend::Private::probed() {
    const auto stream = whenProbed.subscribe(latestValueOnly);
    if (!isProbing)
        co_return;
    [[maybe_unused]] const auto end = co_await stream.next();
}

QCoro::Task<MAJSON> MusicAssistantBackend::Private::callOutput(OutputDevice::ID output, QString command,
                                                               QJsonObject args,
                                                               MusicBackendCapabilities needed) {
    try {
        const MAJSON result = co_await call(command, args, needed);
        co_return result;
    } catch (const MusicAssistantError &error) {
        if (error.errorCase() == MusicAssistantError::Case::server && error.code() == unavailable)
            throw MusicBackendError::unknownOutput(output);
        throw;
    }
}

MusicBackendCapabilities MusicAssistantBackend::Private::capabilities() const {
    using enum MusicBackendCapability;
    auto offered = MusicBackendCapabilities(favorites) | playlistEditing | search | playlists | artwork |
                   localOutput | remoteOutputs | queueEditing;
    offered.setFlag(recommendations, commands.mayHave(u"music/recommendations"_s));
    offered.setFlag(radio, commands.mayHave(u"music/radios/library_items"_s));
    return offered;
}

void MusicAssistantBackend::Private::tellStatus() {
    status.capabilities = capabilities();
    statuses.send(status);
}

void MusicAssistantBackend::Private::setState(MusicAssistantStatus::State state, const QString &text,
                                              const std::optional<MusicAssistantError> &error) {
    status.state = state;
    status.text = text;
    status.error = error;
    tellStatus();
}

void MusicAssistantBackend::Private::takeState(const MusicAssistantClient::ConnectionState &state) {
    using Phase = MusicAssistantClient::ConnectionState::Phase;
    using State = MusicAssistantStatus::State;
    switch (state.phase) {
    case Phase::disconnected:
        return setState(State::offline, {});
    case Phase::connecting:
    case Phase::authenticating:
        return setState(State::connecting, u"Connecting to %1…"_s.arg(server.name));
    case Phase::reconnecting:
        return setState(State::reconnecting, u"Reconnecting to %1…"_s.arg(server.name));
    case Phase::failed:
        return setState(State::failed, state.error ? state.error->description() : QString(), state.error);
    case Phase::connected:
        break;
    }
    if (status.connection == client->connectionCount())
        return;
    const bool isReturn = status.connection > 0;
    status.connection = client->connectionCount();
    counts.clear();
    watchers.forgetClock();
    probe();
    readPlayers();
    setState(State::connected, {});
    if (isReturn)
        changes.announceReload();
}

void MusicAssistantBackend::Private::follow() {
    m_states = client->states();
    m_events = client->events();
    followStates();
    followEvents();
}

QCoro::Task<> MusicAssistantBackend::Private::followStates() {
    const QPointer self(this);
    while (true) {
        const auto state = co_await m_states.next();
        if (!state || !self)
            co_return;
        // Several may have come meanwhile: the present one counts.
        takeState(client->state());
    }
}

QCoro::Task<> MusicAssistantBackend::Private::followEvents() {
    const QPointer self(this);
    std::size_t missed = 0;
    while (true) {
        const auto event = co_await m_events.next();
        if (!event || !self)
            co_return;
        if (m_events.missed() != missed) {
            missed = m_events.missed();
            readPlayersIn(gatheringTime);
            changes.announceReloadSoon();
        }
        if (event->event.startsWith("media_item_"_L1) || event->event == "favorite_updated"_L1) {
            const auto user = client->user();
            changes.take(*event, user ? std::optional(user->userID) : std::nullopt);
        } else {
            watchers.take(*event);
        }
    }
}

QCoro::Task<> MusicAssistantBackend::Private::probe() {
    const auto self = q.shared_from_this();
    const int number = ++m_probe;
    isProbing = true;
    MAServerCommands found;
    MAHTTPAnswer answer;
    const double asked = secondsNow();
    try {
        const QUrl url = endpointURL(client->baseURL(), commandsPath);
        answer = co_await with.http.get(url, maxCommandsBytes, probeTimeout);
    } catch (const MusicAssistantError &error) {
        qCInfo(logBackend) << "no list of commands:" << error;
    }
    const double answered = secondsNow();
    if (answer.status == 200)
        found = co_await QtConcurrent::run(&commandsIn, answer.body);
    if (number != m_probe)
        co_return; // of a connection that has ended
    if (answer.date)
        watchers.readClock(static_cast<double>(answer.date->toSecsSinceEpoch()), asked, answered);
    commands = found;
    isProbing = false;
    whenProbed.send(true);
    tellStatus();
}

void MusicAssistantBackend::Private::readPlayersIn(std::chrono::milliseconds delay) {
    if (!m_readingPlayers)
        m_readingPlayers = with.clock.after(delay, [this] {
            const auto timer = std::move(m_readingPlayers);
            readPlayers();
        });
}

void MusicAssistantBackend::Private::readPlayers() {
    m_readingPlayers.reset();
    keepReading(&MAOutputWatchers::reloadPlayers);
    keepReading(&MAOutputWatchers::reloadQueues);
}

QCoro::Task<> MusicAssistantBackend::Private::keepReading(Reload reload) {
    const auto self = q.shared_from_this();
    const int connection = status.connection;
    try {
        co_await (watchers.*reload)();
        co_return;
    } catch (const std::exception &error) {
        qCInfo(logBackend) << "players or queues could not be read:" << error.what();
    }
    const bool isConnected = status.state == MusicAssistantStatus::State::connected;
    if (isConnected && connection == status.connection)
        readPlayersIn(pauseAfterFailure);
}

void MusicAssistantBackend::Private::end() {
    m_states = {};
    m_events = {};
    m_readingPlayers.reset();
    if (client)
        client->disconnect();
    changes.end();
    watchers.end();
    commands = {};
    recommended.clear();
    ++m_probe;
    isProbing = false;
    whenProbed.send(false);
    setState(MusicAssistantStatus::State::offline, {});
}

MusicAssistantBackend::MusicAssistantBackend(const Server &server, const Collaborators &with,
                                             const MusicAssistantClient::Timing &timing)
    : d(std::make_unique<Private>(*this, server, with, timing)) {}

MusicAssistantBackend::~MusicAssistantBackend() = default;

QString MusicAssistantBackend::sourceID() const {
    const auto *settings = std::get_if<MusicAssistantServerSettings>(&d->server.settings);
    // The server's own, so that the same library keeps its pictures under another address.
    const QString id = settings && settings->address.serverID ? *settings->address.serverID
                                                              : d->server.id.toString(QUuid::WithoutBraces);
    return u"musicassistant:"_s + id;
}

QString MusicAssistantBackend::displayName() const {
    return d->server.name;
}

MusicBackendCapabilities MusicAssistantBackend::capabilities() const {
    return d->capabilities();
}

MusicAssistantStatus MusicAssistantBackend::status() const {
    return d->status;
}

AsyncStream<MusicAssistantStatus> MusicAssistantBackend::statusUpdates() {
    return d->statuses.subscribe(latestValueOnly, d->status);
}

QCoro::Task<> MusicAssistantBackend::connect() {
    const auto self = shared_from_this();
    if (const auto *problem = std::get_if<MusicBackendError>(&d->server.settings)) {
        d->setState(MusicAssistantStatus::State::failed, problem->description());
        throw MusicBackendError(*problem);
    }
    const auto &settings = std::get<MusicAssistantServerSettings>(d->server.settings);
    d->follow();
    co_await d->client->connect(settings.token, settings.address.serverID);
    d->takeState(d->client->state());
}

QCoro::Task<> MusicAssistantBackend::disconnect() {
    d->end();
    co_return;
}

AsyncStream<LibraryChange> MusicAssistantBackend::libraryChanges() {
    return d->changes.subscribe();
}

} // namespace vantor
