#include "Vantor/Library/MusicAssistantSource.h"

#include "MusicAssistantKit/Backend/MusicAssistantBackendErrors.h"

#include <QPointer>

namespace vantor {

using namespace MusicAssistantBackendErrors;

MusicAssistantSource::MusicAssistantSource(MusicAssistantServers &servers) : m_servers(servers) {
    connect(&servers, &MusicAssistantServers::selectionChanged, this, &MusicAssistantSource::choose);
    connect(&servers, &MusicAssistantServers::localClientChanged, this, [this] {
        if (m_backendOfServer)
            m_backendOfServer->setLocalClientID(m_servers.localClientID());
    });
    connect(&servers.settings(), &MusicAssistantSettingsModel::tokenChanged, this, [this](const QUuid &id) {
        if (!m_server || m_server->id != id)
            return;
        leave();
        choose();
    });
}

MusicAssistantSource::~MusicAssistantSource() = default;

QString MusicAssistantSource::key() const {
    return QStringLiteral("musicAssistant");
}

QString MusicAssistantSource::name() const {
    const bool hasName = m_server && !m_server->name.isEmpty();
    return hasName ? m_server->name : QStringLiteral("Music Assistant");
}

void MusicAssistantSource::open() {
    if (std::exchange(m_isOpen, true))
        return;
    m_servers.beginSelection();
    choose();
}

void MusicAssistantSource::close() {
    m_isLookingAgain = false;
    if (std::exchange(m_isOpen, false))
        m_servers.endSelection();
    leave();
    setBackend(nullptr);
}

void MusicAssistantSource::retry() {
    if (!m_isOpen)
        return;
    m_isLookingAgain = false;
    leave();
    m_servers.select();
}

void MusicAssistantSource::choose() {
    if (!m_isOpen)
        return;
    const MusicAssistantSelectionController *const selection = m_servers.selection();
    const bool isBack = m_later && selection && !selection->isFinding();
    if (selection && selection->current()) {
        if (isBack || !m_server || !MusicAssistantServers::isReachedAlike(*m_server, *selection->current()))
            use(*selection->current());
        return;
    }
    if (isAsItWas()) {
        if (isBack) // it is not
            lookSoon();
        return;
    }
    if (m_isLookingAgain && selection && selection->isFinding())
        return; // what is told of it holds until it is there
    leave();
    const bool hasFailedBefore = std::exchange(m_isLookingAgain, false);
    const auto &servers = m_servers.list().servers();
    if (servers.empty())
        fail(noServer(SettingsPage::musicAssistant));
    else if (!selection || selection->isFinding())
        setBackend(nullptr);
    else if (std::ranges::none_of(servers, [](const auto &server) { return server.address.isVerified(); }))
        fail(MusicBackendError::notConfigured(selection->reason()));
    else
        lookAgain(hasFailedBefore);
}

// A server may start later than this computer. Meanwhile nothing flickers.
void MusicAssistantSource::lookAgain(bool hasFailedBefore) {
    m_isLookingAgain = true;
    if (!hasFailedBefore)
        fail(noServerReachable());
    lookSoon();
}

bool MusicAssistantSource::isAsItWas() const {
    const auto now = m_server ? m_servers.list().server(m_server->id) : std::nullopt;
    return now && MusicAssistantServers::isReachedAlike(*m_server, *now);
}

void MusicAssistantSource::leave() {
    ++m_round;
    m_updates = {};
    m_status = {};
    m_later.reset();
    m_backendOfServer.reset();
    if (std::exchange(m_server, std::nullopt))
        Q_EMIT nameChanged();
}

QCoro::Task<> MusicAssistantSource::use(MusicAssistantServerConfiguration server) {
    const QPointer<MusicAssistantSource> self(this);
    leave();
    m_isLookingAgain = false;
    const int round = m_round;
    m_server = server;
    setBackend(nullptr);
    Q_EMIT nameChanged();
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
        fail(*failure);
        co_return;
    }
    const MusicAssistantBackend::Server description{server.id, server.name, *settings};
    const MusicAssistantBackend::Collaborators with{m_servers.transports(), m_servers.http(),
                                                    m_servers.clock()};
    const auto backend = std::make_shared<MusicAssistantBackend>(description, with);
    backend->setLocalClientID(m_servers.localClientID());
    m_backendOfServer = backend;
    m_updates = backend->statusUpdates();
    followStatus();
    setBackend(backend);
}

QCoro::Task<> MusicAssistantSource::followStatus() {
    const QPointer<MusicAssistantSource> self(this);
    const int round = m_round;
    while (true) {
        const std::optional<MusicAssistantStatus> status = co_await m_updates.next();
        if (!self || m_round != round || !status)
            co_return;
        take(*status);
    }
}

void MusicAssistantSource::take(const MusicAssistantStatus &status) {
    const MusicAssistantStatus before = std::exchange(m_status, status);
    Q_EMIT activityChanged();
    if (status.capabilities != before.capabilities)
        Q_EMIT capabilitiesChanged();
    if (status.state == MusicAssistantStatus::State::failed)
        takeFailure();
}

// What a later attempt would meet as well, stands where the music was. Otherwise the server is looked for,
// and what is shown stays until it is there.
void MusicAssistantSource::takeFailure() {
    using Case = MusicAssistantError::Case;
    const MusicAssistantError error = m_status.error.value_or(MusicAssistantError::disconnected());
    if (!error.isPermanent()) {
        lookSoon();
        return;
    }
    m_updates = {};
    const bool isSetup =
        error.errorCase() == Case::tokenRejected || error.errorCase() == Case::serverMismatch;
    setBackend(nullptr, LibraryFailure{error.description(), isSetup});
}

void MusicAssistantSource::lookSoon() {
    m_later = m_servers.clock().after(lookInterval, [this] { m_servers.select(); });
}

void MusicAssistantSource::fail(const MusicBackendError &error) {
    setBackend(nullptr, LibraryFailure::of(std::make_exception_ptr(error)));
}

bool MusicAssistantSource::isInterrupted() const {
    return backend() && m_status.connection > 0 && m_status.state != MusicAssistantStatus::State::connected;
}

QString MusicAssistantSource::activity() const {
    const MusicAssistantSelectionController *const selection = m_servers.selection();
    if (backend())
        return m_status.text;
    if (failure())
        return {}; // it stands where the music would
    return selection ? selection->reason() : QString();
}

} // namespace vantor
