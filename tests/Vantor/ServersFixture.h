#pragma once

#include "Vantor/Library/MusicLibrary.h"
#include "tests/Support/FakeComputer.h"
#include "tests/Support/FakeMusicAssistant/FakeMusicAssistant.h"
#include "tests/Vantor/PlayerFixture.h"

namespace vantor {

/// Servers at hand and a computer that knows what a test tells it.
class ServersFixture : public PlayerFixture {
  protected:
    ServersFixture() {
        qputenv("XDG_DATA_HOME", m_folder.path("data").toUtf8());
        qputenv("XDG_CACHE_HOME", m_folder.path("cache").toUtf8());
    }
    void SetUp() override {
        ASSERT_TRUE(m_fake.listen());
        makeLibrary();
    }
    /// As the next start of the program does.
    void makeLibrary() {
        m_library.reset();
        m_library = std::make_unique<MusicLibrary>(m_model, m_settings, m_servers);
    }

    /// As if it had been added and tested before, with its token in the keychain.
    QUuid addServer(const FakeMusicAssistant &fake, const QString &name, const QStringList &networks = {}) {
        const QUuid id = QUuid::createUuid();
        m_tokens.saved.insert(id.toString(QUuid::WithoutBraces), MusicAssistantToken(u"secret-token"_qs));
        m_servers.list().add(
            {.id = id,
             .name = name,
             .address = {.baseURL = fake.url(), .serverID = fake.info[u"server_id"].toString()},
             .networks = networks});
        return id;
    }

    FakeTokenStore m_tokens;
    FakeWiFi m_wifi;
    FakeServiceBrowser m_services;
    FakeMusicAssistant m_fake;
    MusicAssistantServers m_servers{m_settings, {m_tokens, m_wifi, m_services, {}}};
    std::unique_ptr<MusicLibrary> m_library;
};

} // namespace vantor
