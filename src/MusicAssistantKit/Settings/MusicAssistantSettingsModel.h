#pragma once

#include "MusicAssistantKit/Connection/MusicAssistantClient.h"
#include "MusicAssistantKit/Servers/MusicAssistantServerList.h"
#include "MusicAssistantKit/Settings/MusicAssistantConnectionFailure.h"
#include "MusicAssistantKit/Settings/MusicAssistantTokenStore.h"

#include <QHash>

namespace vantor {

/// What the settings do to servers and their tokens: adding, changing, testing. Main thread.
///
/// A token goes only to the server that was tested: the one whose ID is stored, or the one that the latest
/// test without a token found.
class MusicAssistantSettingsModel : public QObject {
    Q_OBJECT
  public:
    // The fixed texts of the settings.
    [[nodiscard]] static QString tokenPlaceholder();
    [[nodiscard]] static QString afterAddingText();
    [[nodiscard]] static QString replacingText();

    struct Status {
        enum class Kind { none, testing, passed, failed };
        Kind kind = Kind::none;
        QString text;
        std::optional<MusicAssistantConnectionFailure> failure; ///< of `failed`
        bool operator==(const Status &) const = default;
    };

    /// They outlive the model and its operations.
    struct Collaborators {
        MusicAssistantServerList &list;
        MusicAssistantTokenStore &tokens;
        MAHTTPTransport &http;
        MAWebSocketTransports &transports;
        Scheduler &clock;
    };

    explicit MusicAssistantSettingsModel(const Collaborators &collaborators, QObject *parent = nullptr);

    /// A new server at the end of the list, not verified yet; its ID, or what is wrong with the address.
    [[nodiscard]] std::variant<QUuid, MusicAssistantConnectionFailure> add(const QString &name,
                                                                           const QString &addressText);
    /// The stored server ID stays: behind another address the same server is expected.
    [[nodiscard]] std::optional<MusicAssistantConnectionFailure> setAddress(const QUuid &id,
                                                                            const QString &addressText);
    /// The server that answers at the address now takes the place of the former one, whose token is
    /// forgotten.
    QCoro::Task<> replace(QUuid id);
    /// With its token.
    QCoro::Task<> remove(QUuid id);
    /// Keeps a token; its text becomes the status. An empty one removes what was kept.
    QCoro::Task<> setToken(QUuid id, MusicAssistantToken token);
    /// Whether there is a token becomes the status.
    QCoro::Task<> checkToken(QUuid id);
    /// Test Connection: who is there, then whether the token signs in. The outcome is the status. A token
    /// that was typed is tried instead of the one that is kept, and takes its place once it has signed in.
    QCoro::Task<> test(QUuid id, MusicAssistantToken typed = MusicAssistantToken(QString()));

    [[nodiscard]] Status status(const QUuid &id) const { return m_statuses.value(id); }
    /// Where the server's token is, as far as it was looked for; none without one.
    [[nodiscard]] std::optional<MusicAssistantTokenStore::Kept> keptToken(const QUuid &id) const {
        return m_kept.value(id);
    }
    /// Whether the keychain has been asked for the server's token, and may ask the user in turn.
    [[nodiscard]] bool asksKeychain(const QUuid &id) const { return m_keychainQuestions.value(id) > 0; }
    /// What one connection to a server needs; none without a token. Throws MusicAssistantTokenStoreError.
    [[nodiscard]] static QCoro::Task<std::optional<MusicAssistantServerSettings>>
    settings(MusicAssistantServerConfiguration server, MusicAssistantTokenStore &tokens);

  Q_SIGNALS:
    void statusChanged(const QUuid &id); ///< or whether the keychain is asked
    /// Another token is kept, or none any more.
    void tokenChanged(const QUuid &id);

  private:
    struct Found {
        QUrl baseURL;
        MAServerInfo info;
    };

    /// From its beginning to its end the keychain is asked.
    class KeychainQuestion;

    [[nodiscard]] QCoro::Task<MusicAssistantToken> keptTokenOf(QUuid id);
    QCoro::Task<> keep(QUuid id, MusicAssistantToken token);
    QCoro::Task<MAServerInfo> signIn(MusicAssistantServerConfiguration server, MusicAssistantToken token,
                                     QString serverID);
    [[nodiscard]] QString expectedServerID(const MusicAssistantServerConfiguration &server,
                                           const MAServerInfo &answering) const;
    void verify(const MusicAssistantServerConfiguration &tested, const MAServerInfo &info);
    void setStatus(const QUuid &id, const Status &status);
    void setFailure(const QUuid &id, const MusicAssistantConnectionFailure &failure);
    void setKeychainFailure(const QUuid &id, const MusicAssistantTokenStoreError &error);
    /// Ends what is under way for a server, whose answer then counts no more.
    int beginRound(const QUuid &id) { return ++m_rounds[id]; }

    Collaborators m_with;
    QHash<QUuid, Status> m_statuses;
    QHash<QUuid, std::optional<MusicAssistantTokenStore::Kept>> m_kept;
    QHash<QUuid, Found> m_found; ///< by tests that had no token yet
    QHash<QUuid, int> m_rounds;
    QHash<QUuid, int> m_keychainQuestions; ///< how many are open
};

} // namespace vantor
