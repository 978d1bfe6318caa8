#pragma once

#include "MusicAssistantKit/Connection/MusicAssistantClient.h"
#include "tests/MusicAssistantKit/Awaited.h"
#include "tests/Support/FakeMusicAssistant/FakeMusicAssistant.h"
#include "tests/Support/ManualScheduler.h"

#include <gtest/gtest.h>

namespace vantor {

/// A client and a server on this machine, and a clock that the test moves.
class ClientFixture : public testing::Test {
  protected:
    using Phase = MusicAssistantClient::ConnectionState::Phase;
    using Case = MusicAssistantError::Case;

    void SetUp() override { ASSERT_TRUE(server.listen()); }

    void makeClient(const QUrl &url) {
        const MusicAssistantClient::Collaborators with{.transports = transports, .clock = clock};
        client = std::make_shared<MusicAssistantClient>(url, with, timing);
    }
    Awaited<MAServerInfo> connectClient(const std::optional<QString> &expectedID = std::nullopt) {
        if (!client)
            makeClient(server.url());
        return ended(client->connect(token, expectedID));
    }
    [[nodiscard]] auto call(const QString &command, const QJsonObject &args = {}) {
        return started(client->call({.command = command, .args = args, .timeout = {}}));
    }
    bool waitFor(Phase phase) {
        return waitUntil([&] { return client->state().phase == phase; });
    }
    [[nodiscard]] bool tokenWasSent() const {
        return std::any_of(server.receivedFrames().begin(), server.receivedFrames().end(),
                           [this](const QString &frame) { return frame.contains(token.reveal()); });
    }

    const MusicAssistantToken token{QStringLiteral("secret-token")};
    FakeMusicAssistant server;
    ManualScheduler clock;
    QtWebSocketTransports transports;
    QtHTTPTransport http;
    MusicAssistantClient::Timing timing;
    std::shared_ptr<MusicAssistantClient> client;
};

} // namespace vantor
