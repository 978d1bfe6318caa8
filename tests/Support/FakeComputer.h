#pragma once

#include "MusicAssistantKit/Discovery/MusicAssistantServiceBrowser.h"
#include "MusicAssistantKit/Servers/WiFiNetworkProvider.h"
#include "MusicAssistantKit/Settings/MusicAssistantTokenStore.h"

namespace vantor {

/// A keychain that a test looks into, and that refuses what it is asked when the test says so.
class FakeTokenStore : public MusicAssistantTokenStore {
  public:
    QHash<QString, MusicAssistantToken> saved;
    std::optional<MusicAssistantTokenStoreError> failure;
    Kept keeps = Kept::permanently;

    QCoro::Task<std::optional<MusicAssistantToken>> token(QString account) override {
        failIfAsked();
        const auto found = saved.constFind(account);
        co_return found == saved.constEnd() ? std::nullopt : std::optional(*found);
    }
    QCoro::Task<std::optional<Kept>> kept(QString account) override {
        failIfAsked();
        co_return saved.contains(account) ? std::optional(keeps) : std::nullopt;
    }
    QCoro::Task<Kept> save(QString account, MusicAssistantToken token) override {
        failIfAsked();
        saved.insert(account, token);
        co_return keeps;
    }
    QCoro::Task<> remove(QString account) override {
        failIfAsked();
        saved.remove(account);
        co_return;
    }

  private:
    void failIfAsked() const {
        if (failure)
            throw *failure;
    }
};

/// A network that a test joins and leaves.
class FakeWiFi : public WiFiNetworkProvider {
  public:
    [[nodiscard]] std::optional<QString> ssid() const override { return m_name; }
    [[nodiscard]] WiFiAuthorization authorization() const override { return permission; }
    void join(const std::optional<QString> &name) {
        m_name = name;
        Q_EMIT networkChanged();
    }
    WiFiAuthorization permission = WiFiAuthorization::authorized;

  private:
    std::optional<QString> m_name;
};

/// Announces what a test says as soon as somebody looks.
class FakeServiceBrowser : public MusicAssistantServiceBrowser {
  public:
    QList<MusicAssistantDiscoveredHost> hosts;

    void start() override {
        for (const MusicAssistantDiscoveredHost &host : hosts)
            Q_EMIT hostFound(host);
        Q_EMIT settled();
    }
    void stop() override {}
};

} // namespace vantor
