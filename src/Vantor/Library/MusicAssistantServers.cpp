#include "Vantor/Library/MusicAssistantServers.h"

#include "MusicAssistantKit/Backend/MusicAssistantBackendErrors.h"

namespace vantor {

using namespace MusicAssistantBackendErrors;

MusicAssistantServers::MusicAssistantServers(QSettings &settings, Computer computer)
    : m_computer(std::move(computer)), m_list(settings),
      m_model({m_list, m_computer.tokens, m_http, m_transports, m_clock}),
      m_discovery({m_computer.services, m_http, m_list, m_clock}), m_selector(m_http) {}

void MusicAssistantServers::wakeUp() {
    if (const auto wake = std::exchange(m_computer.wakeUp, {}))
        wake();
}

bool MusicAssistantServers::isReachedAlike(const MusicAssistantServerConfiguration &one,
                                           const MusicAssistantServerConfiguration &other) {
    return one.id == other.id && one.address == other.address && one.name == other.name;
}

QCoro::Task<MusicAssistantServerSettings>
MusicAssistantServers::settingsOf(MusicAssistantServerConfiguration server) {
    try {
        const auto settings = co_await MusicAssistantSettingsModel::settings(server, m_computer.tokens);
        if (settings)
            co_return *settings;
    } catch (const MusicAssistantTokenStoreError &) {
        throw unreadableToken();
    }
    throw noToken(SettingsPage::musicAssistant);
}

void MusicAssistantServers::setLocalClientID(const std::optional<QString> &id) {
    if (std::exchange(m_localClientID, id) != id)
        Q_EMIT localClientChanged();
}

void MusicAssistantServers::beginSelection() {
    if (m_selecting++ > 0)
        return;
    wakeUp();
    if (m_computer.wifi.authorization() != WiFiAuthorization::notDetermined) {
        select();
        return;
    }
    // Else the first server might be connected, only to be left for the one that this network prefers.
    m_waiting = std::make_unique<QObject>();
    connect(&m_computer.wifi, &WiFiNetworkProvider::networkChanged, m_waiting.get(), [this] { select(); });
    m_patience = m_clock.after(wifiPatience, [this] { select(); });
}

void MusicAssistantServers::endSelection() {
    if (--m_selecting > 0)
        return;
    m_waiting.reset();
    m_patience.reset();
    m_selection.reset();
}

void MusicAssistantServers::select() {
    if (m_waiting)
        m_waiting.release()->deleteLater(); // whose slot this may be
    m_patience.reset();
    if (m_selection) {
        m_selection->resolve();
        return;
    }
    m_selection.emplace(m_list, m_computer.wifi, m_selector, m_clock);
    connect(&*m_selection, &MusicAssistantSelectionController::changed, this,
            &MusicAssistantServers::selectionChanged);
    Q_EMIT selectionChanged();
}

} // namespace vantor
