#include "Vantor/Speaker/NetworkSpeaker.h"

#include "MusicAssistantKit/Backend/MusicAssistantBackendErrors.h"
#include "MusicAssistantKit/Connection/MAEndpoints.h"
#include "Vantor/Library/MusicAssistantServers.h"
#include "Vantor/Model/StoredValue.h"
#include "Vantor/Speaker/SpeakerThreads.h"

#include <QCoreApplication>
#include <QPointer>
#include <QSettings>
#include <QSysInfo>

#include <cmath>

namespace vantor {

using namespace MusicAssistantBackendErrors;
using namespace Qt::Literals::StringLiterals;

namespace {

const QString enabledKey = u"sendspin.enabled"_s;
const QString oldEnabledKey = u"ma.sendspin.enabled"_s; ///< counts until the other one is set
const QString nameKey = u"sendspin.name"_s;
const QString serverKey = u"sendspin.server"_s;
constexpr int fallbackRate = 48'000; // Hz
// What it takes from the announcement of a stream to its first sound: opening the output, and the way to it.
constexpr int leadTimeMs = 300;
constexpr int minBufferMs = 500;
constexpr std::chrono::milliseconds lookInterval{10'000};
// A seek ends one stream and begins another.
constexpr std::chrono::milliseconds endPatience{1'500};

} // namespace

NetworkSpeaker::NetworkSpeaker(Player &player, MusicAssistantServers &servers, QSettings &settings)
    : m_player(player), m_servers(servers), m_settings(settings),
      m_identity(SendspinIdentity::load(settings, QSysInfo::machineHostName())),
      m_playerState(SendspinPlayer::storedState(settings)) {
    connect(&servers, &MusicAssistantServers::selectionChanged, this, &NetworkSpeaker::choose);
    connect(&servers.settings(), &MusicAssistantSettingsModel::tokenChanged, this, [this](const QUuid &id) {
        if (m_server && m_server->id == id)
            use(*m_server);
    });
    m_observer = player.addEventObserver([this](const PlayerEvent &event) { takePlayerEvent(event); });
    connect(&player, &Player::stateChanged, this, &NetworkSpeaker::becomeAvailable);
}

NetworkSpeaker::~NetworkSpeaker() {
    m_player.removeEventObserver(m_observer);
    m_player.endStream();
}

void NetworkSpeaker::begin() {
    m_hasBegun = true;
    apply();
}

// What the user sets

bool NetworkSpeaker::isEnabled() const {
    return StoredValue::boolean(m_settings, enabledKey,
                                StoredValue::boolean(m_settings, oldEnabledKey, false));
}

void NetworkSpeaker::setEnabled(bool on) {
    if (on == isEnabled())
        return;
    m_settings.setValue(enabledKey, on);
    apply();
    Q_EMIT changed();
}

QString NetworkSpeaker::name() const {
    const QString chosen = m_settings.value(nameKey).toString().trimmed();
    return chosen.isEmpty() ? m_identity.name : chosen;
}

void NetworkSpeaker::setName(const QString &name) {
    const QString before = this->name();
    const QString chosen = name.trimmed();
    if (chosen.isEmpty() || chosen == m_identity.name)
        m_settings.remove(nameKey);
    else
        m_settings.setValue(nameKey, chosen);
    if (this->name() == before)
        return;
    if (m_connection) { // the name is told once, in the beginning
        m_connection->name = this->name();
        connectTo(SendspinConnectionConfiguration(*m_connection));
    }
    Q_EMIT changed();
}

void NetworkSpeaker::setStaticDelay(int milliseconds) {
    SendspinPlayerState state = m_playerState;
    state.staticDelayMs = std::clamp(milliseconds, 0, SendspinIncoming::maxStaticDelayMs);
    if (state == m_playerState)
        return;
    m_playerState = state;
    if (m_threads)
        m_threads->player().setStaticDelay(state.staticDelayMs);
    else
        SendspinPlayer::store(state, m_settings);
    Q_EMIT changed();
}

void NetworkSpeaker::setVolume(double volume) {
    m_playerState.volume = static_cast<int>(std::lround(std::clamp(volume, 0.0, 1.0) * 100));
    if (isMuted())
        setMuted(false); // who sets it wants to hear it
    if (m_threads)
        m_threads->player().setVolume(m_playerState.volume);
    else
        SendspinPlayer::store(m_playerState, m_settings);
    Q_EMIT changed();
}

void NetworkSpeaker::setMuted(bool muted) {
    m_playerState.muted = muted;
    if (m_threads)
        m_threads->player().setMuted(muted);
    else
        SendspinPlayer::store(m_playerState, m_settings);
    Q_EMIT changed();
}

void NetworkSpeaker::setClicking(bool on) {
    on = on && m_state == State::Connected;
    if (std::exchange(m_isClicking, on) == on)
        return;
    m_threads->player().setClicking(on);
    if (on)
        takeOutput();
    else if (!m_isStreaming)
        m_player.endStream();
    Q_EMIT changed();
}

// The server

void NetworkSpeaker::apply() {
    if (!m_hasBegun || isEnabled() == (m_threads != nullptr))
        return;
    if (!isEnabled()) {
        m_servers.endSelection();
        setClicking(false);
        endStream();
        m_servers.setLocalClientID(std::nullopt);
        leaveServer(State::Off, {});
        m_threads.reset();
        m_serverStreams = m_isTakenBack = false;
        m_format.reset();
        return;
    }
    startThreads();
    m_servers.beginSelection();
    choose();
}

void NetworkSpeaker::startThreads() {
    m_threads = std::make_unique<SpeakerThreads>(m_settings, sourceForRate(fallbackRate));
    connect(m_threads.get(), &SpeakerThreads::told, this, &NetworkSpeaker::take);
    connect(m_threads.get(), &SpeakerThreads::stateChanged, this, [this](const SendspinPlayerState &state) {
        m_playerState = state;
        Q_EMIT changed();
    });
    connect(m_threads.get(), &SpeakerThreads::streamingChanged, this, &NetworkSpeaker::takeStreaming);
    connect(m_threads.get(), &SpeakerThreads::streamRefused, this, [this] {
        endStream();
        m_player.failStream(AudioCoreError::unsupportedStreamFormat());
    });
}

void NetworkSpeaker::choose() {
    if (!m_threads)
        return;
    const QUrl direct(m_settings.value(serverKey).toString());
    const bool isDirect = isServerURL(direct);
    m_servers.setLocalClientID(isDirect ? std::nullopt : std::optional(m_identity.clientID));
    if (isDirect) {
        SendspinConnectionConfiguration wanted = configuration();
        wanted.baseURL = direct;
        if (m_connection && *m_connection == wanted)
            return;
        ++m_round;
        m_server.reset();
        connectTo(wanted);
        return;
    }
    const MusicAssistantSelectionController *const selection = m_servers.selection();
    if (selection && selection->current()) {
        if (!m_server || !MusicAssistantServers::isReachedAlike(*m_server, *selection->current()))
            use(*selection->current());
        return;
    }
    const auto now = m_server ? m_servers.list().server(m_server->id) : std::nullopt;
    if (now && MusicAssistantServers::isReachedAlike(*m_server, *now))
        return; // it is waited for
    const bool isLooking = !selection || selection->isFinding();
    if (m_servers.list().servers().empty())
        leaveServer(State::NoServer, noServer(SettingsPage::musicAssistant).description());
    else if (isLooking)
        leaveServer(State::Connecting, tr("Looking for a Music Assistant server…"));
    else
        leaveServer(State::NoServer, selection->reason());
}

QCoro::Task<> NetworkSpeaker::use(MusicAssistantServerConfiguration server) {
    const QPointer<NetworkSpeaker> self(this);
    leaveServer(State::Connecting, tr("Connecting to %1…").arg(server.name));
    const int round = m_round;
    m_server = server;
    std::optional<MusicAssistantServerSettings> settings;
    std::optional<MusicBackendError> failure;
    try {
        settings = co_await m_servers.settingsOf(server);
    } catch (const MusicBackendError &error) {
        failure = error;
    }
    if (!self || m_round != round)
        co_return;
    if (failure) {
        setState(State::Refused, failure->description());
        co_return;
    }
    SendspinConnectionConfiguration wanted = configuration();
    wanted.baseURL = settings->address.baseURL;
    wanted.token = settings->token;
    connectTo(wanted);
}

SendspinConnectionConfiguration NetworkSpeaker::configuration() const {
    return {.baseURL = {},
            .token = MusicAssistantToken(QString()),
            .clientID = m_identity.clientID,
            .name = name(),
            .deviceInfo = {.manufacturer = u"Kelvane"_s,
                           .productName = u"Vantor"_s,
                           .softwareVersion = QCoreApplication::applicationVersion()},
            .format = {.codec = u"flac"_s},
            .bufferCapacity = SpeakerThreads::bufferCapacity,
            .requiredLeadTimeMs = leadTimeMs,
            .minBufferMs = minBufferMs};
}

void NetworkSpeaker::connectTo(const SendspinConnectionConfiguration &configuration) {
    m_connection = std::make_unique<SendspinConnectionConfiguration>(configuration);
    m_threads->connectTo(configuration);
    const QString server = m_server ? m_server->name : configuration.baseURL.host();
    setState(State::Connecting, tr("Connecting to %1…").arg(server));
}

void NetworkSpeaker::leaveServer(State state, const QString &text) {
    ++m_round;
    m_look.reset();
    m_server.reset();
    m_connection.reset();
    m_threads->leave(state == State::Off ? SendspinGoodbyeReason::userRequest
                                         : SendspinGoodbyeReason::anotherServer);
    setState(state, text);
}

void NetworkSpeaker::setState(State state, const QString &text) {
    if (m_state == state && m_text == text)
        return;
    if (state != State::Connected)
        setClicking(false);
    m_state = state;
    m_text = text;
    Q_EMIT changed();
}

// What the server says

void NetworkSpeaker::take(const SendspinEvent &event) {
    const auto &content = event.content;
    if (const auto *connected = std::get_if<SendspinEvent::Connected>(&content)) {
        m_serverName = connected->server.name;
        m_group = {};
        setState(State::Connected, {});
    } else if (const auto *end = std::get_if<SendspinEvent::Disconnected>(&content); end && end->reason) {
        takeFailure(*end->reason);
    } else if (const auto *group = std::get_if<SendspinEvent::GroupUpdated>(&content)) {
        takeGroup(group->update);
    } else if (const auto *start = std::get_if<SendspinEvent::StreamStarted>(&content)) {
        m_format = start->format;
        Q_EMIT changed();
    }
}

void NetworkSpeaker::takeGroup(const SendspinGroupUpdate &update) {
    const auto take = [](std::optional<QString> &known, const std::optional<QString> &told) {
        if (told)
            known = told;
    };
    take(m_group.playbackState, update.playbackState);
    take(m_group.groupID, update.groupID);
    take(m_group.groupName, update.groupName);
    Q_EMIT changed();
}

// The session tries again by itself, whatever it was; meanwhile another server may be the better choice.
void NetworkSpeaker::takeFailure(const SendspinError &error) {
    using Case = SendspinError::Case;
    const bool isRefused = error.errorCase() == Case::unauthorized || error.errorCase() == Case::roleRejected;
    setState(isRefused ? State::Refused : State::Retrying, error.description());
    if (!m_isStreaming || !m_threads->player().figures().isPlaying) { // what had come before has been heard
        m_serverStreams = false;
        endStream();
        becomeAvailable();
    }
    if (m_server && !isRefused && !m_look)
        m_look = m_servers.clock().after(lookInterval, [this] {
            m_look.reset();
            m_servers.select();
        });
}

// The stream

void NetworkSpeaker::takeStreaming(bool isStreaming) {
    m_serverStreams = isStreaming;
    m_end.reset();
    if (isStreaming)
        startStream();
    else if (m_isStreaming)
        m_end = m_servers.clock().after(endPatience, [this] { endStream(); });
    becomeAvailable();
}

void NetworkSpeaker::startStream() {
    m_isTakenBack = false;
    if (!std::exchange(m_isStreaming, true))
        m_streamedSince.start();
    takeOutput();
    Q_EMIT changed();
}

void NetworkSpeaker::takeOutput() {
    m_player.startStream([this](int sampleRate) { return sourceForRate(sampleRate); });
}

void NetworkSpeaker::endStream() {
    m_end.reset();
    if (!std::exchange(m_isStreaming, false))
        return;
    if (!m_isClicking)
        m_player.endStream();
    Q_EMIT changed();
}

// What ends the stream here without being asked to is a command of the user, or the output is gone.
void NetworkSpeaker::takePlayerEvent(const PlayerEvent &event) {
    const bool isOver = std::holds_alternative<PlayerEvents::StreamPreempted>(event) ||
                        std::holds_alternative<PlayerEvents::StreamEnded>(event);
    if (!isOver)
        return;
    setClicking(false);
    if (!std::exchange(m_isStreaming, false))
        return;
    m_end.reset();
    if (m_threads) {
        m_isTakenBack = true;
        m_threads->player().setAvailable(false);
        if (!m_serverStreams)
            becomeAvailable();
    }
    Q_EMIT changed();
}

void NetworkSpeaker::becomeAvailable() {
    if (!m_threads || m_serverStreams || m_player.wantsToPlay() || !std::exchange(m_isTakenBack, false))
        return;
    m_threads->player().setAvailable(true);
}

void NetworkSpeaker::makeWay() {
    if (m_isTakenBack)
        m_player.pause();
}

// One at a time: the output that it is for replaces the one before.
std::shared_ptr<SendspinSource> NetworkSpeaker::sourceForRate(int sampleRate) {
    if (!m_source || m_source->queue().sampleRate != sampleRate) {
        m_source = std::make_shared<SendspinSource>(sampleRate);
        if (m_threads)
            m_threads->player().setSource(m_source);
    }
    return m_source;
}

QString NetworkSpeaker::streamName() const {
    if (!m_isStreaming)
        return {};
    const QString group = m_group.groupName.value_or(QString());
    return group.isEmpty() ? m_serverName : group;
}

std::optional<SendspinStreamFormat> NetworkSpeaker::streamFormat() const {
    return m_isStreaming ? m_format : std::nullopt;
}

double NetworkSpeaker::streamedFor() const {
    return m_isStreaming ? static_cast<double>(m_streamedSince.elapsed()) / 1000 : 0;
}

QString NetworkSpeaker::statusText() const {
    if (m_state == State::Connected)
        return (isMuted() ? tr("Connected: shows in Music Assistant as %1, muted there")
                          : tr("Connected: shows in Music Assistant as %1"))
            .arg(name());
    return m_text;
}

std::optional<SendspinFigures> NetworkSpeaker::figures() const {
    if (m_state != State::Connected)
        return std::nullopt;
    SendspinFigures figures = m_threads->player().figures();
    figures.isPlaying = figures.isPlaying && m_isStreaming; // the source tells what it did last
    return figures;
}

} // namespace vantor
