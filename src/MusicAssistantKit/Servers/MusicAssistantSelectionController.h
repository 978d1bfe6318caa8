#pragma once

#include "MusicAssistantKit/Servers/MusicAssistantServerList.h"
#include "MusicAssistantKit/Servers/MusicAssistantServerSelector.h"
#include "MusicAssistantKit/Servers/WiFiNetworkProvider.h"
#include "Platform/Scheduler.h"

namespace vantor {

/// Owns the choice of the server: decides anew when the list of servers or the network changes, and now and
/// then while no server can be reached. Main thread.
class MusicAssistantSelectionController : public QObject {
    Q_OBJECT
  public:
    /// A changing network sends several signs; only the last of them counts.
    static constexpr std::chrono::milliseconds networkDebounce{1'500};
    static constexpr std::chrono::milliseconds retryInterval{30'000};

    /// The collaborators outlive the controller. The first decision starts at once.
    MusicAssistantSelectionController(const MusicAssistantServerList &list, const WiFiNetworkProvider &wifi,
                                      const MusicAssistantServerSelector &selector, Scheduler &clock);

    /// The chosen server. While another decision is under way the former one stays.
    [[nodiscard]] const std::optional<MusicAssistantServerConfiguration> &current() const {
        return m_current;
    }
    /// Whether some server is still being asked that could be the choice.
    [[nodiscard]] bool isFinding() const { return m_isFinding; }
    /// Why this server, or why none: one sentence.
    [[nodiscard]] const QString &reason() const { return m_reason; }
    /// What the music library is called: the chosen server's name.
    [[nodiscard]] QString libraryName() const;
    /// What the latest check found out about a server.
    [[nodiscard]] QString outcomeText(const QUuid &id) const;

    /// Decides anew now.
    void resolve();

  Q_SIGNALS:
    /// Any of the values above.
    void changed();

  private:
    QCoro::Task<> follow();
    void take(const MusicAssistantServerSelector::Result &result);
    void settle(const MusicAssistantServerRanking::Decision &decision);

    const MusicAssistantServerList &m_list;
    const WiFiNetworkProvider &m_wifi;
    const MusicAssistantServerSelector &m_selector;
    Scheduler &m_clock;
    std::optional<MusicAssistantServerConfiguration> m_current;
    QString m_reason;
    bool m_isFinding = false;
    MusicAssistantServerRanking::Outcomes m_outcomes;
    AsyncStream<MusicAssistantServerSelector::Result> m_results;
    int m_round = 0; ///< of the decision under way
    std::unique_ptr<Scheduler::Pending> m_later;
};

} // namespace vantor
