#pragma once

#include "MusicAssistantKit/Connection/MAHTTPTransport.h"
#include "MusicAssistantKit/Discovery/MusicAssistantServiceBrowser.h"
#include "MusicAssistantKit/Servers/MusicAssistantServerList.h"
#include "MusicAssistantKit/Wire/MAServerInfo.h"
#include "Platform/Scheduler.h"

namespace vantor {

/// A server in the local network that is not set up yet.
struct MusicAssistantDiscoveredServer {
    QString id; ///< the server's own
    QUrl url;
    std::optional<QString> name;

    bool operator==(const MusicAssistantDiscoveredServer &) const = default;
};

/// Finds servers in the local network: asks each host that announces something who it is. Main thread.
class MusicAssistantDiscovery : public QObject {
    Q_OBJECT
  public:
    /// What the button that calls start() says.
    [[nodiscard]] static QString buttonText();

    /// They outlive this and its probes.
    struct Collaborators {
        MusicAssistantServiceBrowser &browser;
        MAHTTPTransport &http;
        const MusicAssistantServerList &list;
        Scheduler &clock;
    };

    explicit MusicAssistantDiscovery(const Collaborators &collaborators, QObject *parent = nullptr);

    /// Looks anew. Servers that turn up later are still taken, until stop().
    void start();
    void stop();

    [[nodiscard]] bool isLooking() const { return m_looking; }
    /// Those that are not set up yet, in the order found.
    [[nodiscard]] const std::vector<MusicAssistantDiscoveredServer> &servers() const { return m_servers; }
    /// What to show in place of servers; empty when there are some.
    [[nodiscard]] QString statusText() const;

    /// A server that is set up was found at another address than those it is set up with.
    std::function<void(const MusicAssistantServerConfiguration &, const QUrl &)> onConfiguredServerMoved;

  Q_SIGNALS:
    void changed();

  private:
    void take(const MusicAssistantDiscoveredHost &host);
    QCoro::Task<> probe(MusicAssistantDiscoveredHost host);
    void take(const MAServerInfo &info, const QUrl &url);
    void settleIfDone();

    Collaborators m_with;
    bool m_looking = false;
    bool m_browserSettled = false;
    int m_round = 0;
    int m_probes = 0;
    int m_answers = 0;
    std::vector<MusicAssistantDiscoveredHost> m_hosts;
    std::vector<MusicAssistantDiscoveredServer> m_servers;
    std::unique_ptr<Scheduler::Pending> m_limit;
};

} // namespace vantor
