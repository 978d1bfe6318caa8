#pragma once

#include "MusicAssistantKit/Backend/MusicAssistantBackend.h"
#include "Vantor/Library/LibrarySource.h"
#include "Vantor/Library/MusicAssistantServers.h"

namespace vantor {

/// The Music Assistant server that is chosen on this network. A server that cannot be reached any more is
/// waited for, until another one is chosen or it is set up in another way. Main thread; borrows the servers.
class MusicAssistantSource : public LibrarySource {
    Q_OBJECT

  public:
    /// After which a server that could not be connected is looked for again.
    static constexpr std::chrono::milliseconds lookInterval{5'000};

    explicit MusicAssistantSource(MusicAssistantServers &servers);
    ~MusicAssistantSource() override;

    [[nodiscard]] QString key() const override;
    [[nodiscard]] QString name() const override;
    void open() override;
    void close() override;
    void retry() override;
    [[nodiscard]] QString activity() const override;
    [[nodiscard]] bool isInterrupted() const override;

    /// Whether any server is set up.
    [[nodiscard]] bool isSetUp() const { return !m_servers.list().servers().empty(); }
    /// The server whose library it is; none while there is none.
    [[nodiscard]] const std::optional<MusicAssistantServerConfiguration> &server() const { return m_server; }

  private:
    void choose();
    void leave();
    [[nodiscard]] bool isAsItWas() const;
    QCoro::Task<> use(MusicAssistantServerConfiguration server);
    QCoro::Task<> followStatus();
    void take(const MusicAssistantStatus &status);
    void takeFailure();
    void lookSoon();
    void lookAgain(bool hasFailedBefore);
    void fail(const MusicBackendError &error);

    MusicAssistantServers &m_servers;
    bool m_isOpen = false;
    bool m_isLookingAgain = false; ///< for servers of which none could be reached
    std::optional<MusicAssistantServerConfiguration> m_server;
    std::shared_ptr<MusicAssistantBackend> m_backendOfServer; ///< as long as it is followed
    AsyncStream<MusicAssistantStatus> m_updates;
    MusicAssistantStatus m_status;
    std::unique_ptr<Scheduler::Pending> m_later; ///< another look for a server that could not be connected
    int m_round = 0;                             ///< of the server in use
};

} // namespace vantor
