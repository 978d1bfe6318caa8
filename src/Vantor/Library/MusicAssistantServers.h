#pragma once

#include "MusicAssistantKit/Connection/MAWebSocketTransport.h"
#include "MusicAssistantKit/Discovery/MusicAssistantDiscovery.h"
#include "MusicAssistantKit/Servers/MusicAssistantSelectionController.h"
#include "MusicAssistantKit/Settings/MusicAssistantSettingsModel.h"

#include <optional>

namespace vantor {

/// The Music Assistant servers of the program: which there are, which one is chosen, and with what they are
/// reached. Nothing is asked before it is needed. Main thread; borrows the settings.
class MusicAssistantServers : public QObject {
    Q_OBJECT

  public:
    /// What this computer tells, and keeps. Borrowed.
    struct Computer {
        MusicAssistantTokenStore &tokens;
        WiFiNetworkProvider &wifi;
        MusicAssistantServiceBrowser &services;
        /// Called once, before any of them is asked.
        std::function<void()> wakeUp;
    };
    /// For how long a choice waits to hear which network this is.
    static constexpr std::chrono::milliseconds wifiPatience{1'000};

    MusicAssistantServers(QSettings &settings, Computer computer);

    [[nodiscard]] MusicAssistantServerList &list() { return m_list; }
    [[nodiscard]] MusicAssistantSettingsModel &settings() { return m_model; }
    [[nodiscard]] MusicAssistantDiscovery &discovery() { return m_discovery; }
    [[nodiscard]] WiFiNetworkProvider &wifi() { return m_computer.wifi; }
    [[nodiscard]] MAWebSocketTransports &transports() { return m_transports; }
    [[nodiscard]] MAHTTPTransport &http() { return m_http; }
    [[nodiscard]] Scheduler &clock() { return m_clock; }

    /// Has the computer tell which network this is and what is in it.
    void wakeUp();

    /// Whether a connection to the one is a connection to the other. On which networks it is preferred does
    /// not count.
    [[nodiscard]] static bool isReachedAlike(const MusicAssistantServerConfiguration &one,
                                             const MusicAssistantServerConfiguration &other);

    /// The Sendspin client of this computer, which the chosen server knows as a player; none while it does
    /// not take part.
    [[nodiscard]] const std::optional<QString> &localClientID() const { return m_localClientID; }
    void setLocalClientID(const std::optional<QString> &id);

    /// What one connection to a server needs. Throws MusicBackendError. The servers may go meanwhile.
    [[nodiscard]] QCoro::Task<MusicAssistantServerSettings>
    settingsOf(MusicAssistantServerConfiguration server);

    /// Begins to choose a server, again and again as things change, until everybody who has asked for it has
    /// ended it.
    void beginSelection();
    void endSelection();
    /// Chooses anew now.
    void select();
    /// None before the first choice has begun.
    [[nodiscard]] const MusicAssistantSelectionController *selection() const {
        return m_selection ? &*m_selection : nullptr;
    }

  Q_SIGNALS:
    void selectionChanged();
    void localClientChanged();

  private:
    Computer m_computer;
    MusicAssistantServerList m_list;
    QtHTTPTransport m_http;
    QtWebSocketTransports m_transports;
    SystemScheduler m_clock;
    MusicAssistantSettingsModel m_model;
    MusicAssistantDiscovery m_discovery;
    MusicAssistantServerSelector m_selector;
    std::optional<MusicAssistantSelectionController> m_selection;
    std::optional<QString> m_localClientID;
    int m_selecting = 0;                ///< how many want a choice
    std::unique_ptr<QObject> m_waiting; ///< for the network, before the first choice
    std::unique_ptr<Scheduler::Pending> m_patience;
};

} // namespace vantor
