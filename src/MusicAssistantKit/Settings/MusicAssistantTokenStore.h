#pragma once

#include "MusicAssistantKit/Wire/MusicAssistantToken.h"
#include "Platform/AsyncStream.h"

#include <QCoroTask>
#include <QHash>

#include <exception>
#include <optional>

namespace vantor {

/// Failures of the keychain.
class MusicAssistantTokenStoreError : public std::exception {
  public:
    /// The keychain was reached and refused, with its own number.
    [[nodiscard]] static MusicAssistantTokenStoreError keychain(int status);
    [[nodiscard]] static MusicAssistantTokenStoreError notReadable();
    [[nodiscard]] static MusicAssistantTokenStoreError notCheckable();
    [[nodiscard]] static MusicAssistantTokenStoreError notUsable();

    /// Of keychain(), otherwise 0.
    [[nodiscard]] int status() const { return m_status; }
    /// The sentence for the user.
    [[nodiscard]] const QString &description() const { return m_description; }
    [[nodiscard]] const char *what() const noexcept override { return m_what.constData(); }

    bool operator==(const MusicAssistantTokenStoreError &other) const {
        return m_description == other.m_description;
    }

  private:
    MusicAssistantTokenStoreError(int status, const QString &description)
        : m_status(status), m_description(description), m_what(description.toUtf8()) {}

    int m_status;
    QString m_description;
    QByteArray m_what;
};

/// Where tokens are kept, one per account. Main thread; outlives the operations on it.
class MusicAssistantTokenStore {
  public:
    enum class Kept {
        permanently,
        untilQuit, ///< this computer has no keychain at work
    };
    /// The sentence for the user.
    [[nodiscard]] static QString message(Kept kept);

    virtual ~MusicAssistantTokenStore() = default;
    // All throw MusicAssistantTokenStoreError.
    [[nodiscard]] virtual QCoro::Task<std::optional<MusicAssistantToken>> token(QString account) = 0;
    /// Where there is a token, if there is one.
    [[nodiscard]] virtual QCoro::Task<std::optional<Kept>> kept(QString account) = 0;
    [[nodiscard]] virtual QCoro::Task<Kept> save(QString account, MusicAssistantToken token) = 0;
    /// Without effect when there is none.
    [[nodiscard]] virtual QCoro::Task<> remove(QString account) = 0;
};

/// The keychain of the desktop: the Secret Service or KWallet. Where none is at work, tokens stay in memory.
/// It asks the user at most once for each token: what was read is remembered, and who asks for what is being
/// read gets the same answer.
class KeychainMusicAssistantTokenStore : public MusicAssistantTokenStore {
  public:
    [[nodiscard]] static QString standardService();

    explicit KeychainMusicAssistantTokenStore(const QString &service = standardService())
        : m_service(service) {}

    [[nodiscard]] QCoro::Task<std::optional<MusicAssistantToken>> token(QString account) override;
    [[nodiscard]] QCoro::Task<std::optional<Kept>> kept(QString account) override;
    [[nodiscard]] QCoro::Task<Kept> save(QString account, MusicAssistantToken token) override;
    [[nodiscard]] QCoro::Task<> remove(QString account) override;

  private:
    using Token = std::optional<MusicAssistantToken>;
    struct Reading {
        bool isRefused = false;
        Token token;
    };

    /// Throws `failure` when somebody refuses; none when there is no token or nobody who could have it.
    [[nodiscard]] QCoro::Task<Token> read(QString account, MusicAssistantTokenStoreError failure);
    QCoro::Task<> readOnce(QString account);

    QString m_service;
    QHash<QString, MusicAssistantToken> m_session; ///< what no keychain took
    QHash<QString, MusicAssistantToken> m_known;   ///< what the keychain has
    QHash<QString, std::vector<std::shared_ptr<AsyncStreamProducer<Reading>>>> m_readers; ///< that wait
};

} // namespace vantor
