#pragma once

#include "MusicAssistantKit/Backend/MusicAssistantBackend.h"
#include "tests/MusicAssistantKit/Awaited.h"
#include "tests/Support/FakeMusicAssistant/FakePlayers.h"

#include <gtest/gtest.h>

namespace vantor {

/// What became of an operation: its value, or the sentence of its failure.
template <typename T>
struct Outcome {
    std::optional<T> value;
    QString failure;
    bool isOver = false;
};

template <typename T>
QCoro::Task<> follow(QCoro::Task<T> task, std::shared_ptr<Outcome<T>> outcome) {
    try {
        outcome->value = co_await task;
    } catch (const std::exception &error) {
        outcome->failure = QString::fromUtf8(error.what());
    }
    outcome->isOver = true;
}

inline QCoro::Task<bool> withValue(QCoro::Task<> task) {
    co_await task;
    co_return true;
}

template <typename T>
auto begun(QCoro::Task<T> task) {
    if constexpr (std::is_void_v<T>) {
        return begun(withValue(std::move(task)));
    } else {
        auto outcome = std::make_shared<Outcome<T>>();
        follow(std::move(task), outcome);
        return outcome;
    }
}

/// Runs the event loop until the operation is over.
template <typename T>
auto outcomeOf(QCoro::Task<T> task) {
    const auto outcome = begun(std::move(task));
    waitUntil([&] { return outcome->isOver; });
    return *outcome;
}

/// The sentence of its failure; empty when it succeeds.
template <typename T>
QString failureOf(QCoro::Task<T> task) {
    const auto outcome = outcomeOf(std::move(task));
    return outcome.isOver ? outcome.failure : QStringLiteral("it never ends");
}

/// The latest value of a stream, as it comes.
template <typename T>
struct Watched {
    AsyncStream<T> stream;
    std::optional<T> value;
    int count = 0;
    bool isOver = false;
};

template <typename T>
QCoro::Task<> keepWatching(std::shared_ptr<Watched<T>> watched) {
    while (true) {
        auto next = co_await watched->stream.next();
        watched->isOver = !next;
        if (!next)
            co_return;
        watched->value = std::move(next);
        ++watched->count;
    }
}

/// Ends with the stream, so that the producer has to go first.
template <typename T>
std::shared_ptr<Watched<T>> watch(AsyncStream<T> stream) {
    auto watched = std::make_shared<Watched<T>>();
    watched->stream = std::move(stream);
    keepWatching(watched);
    return watched;
}

/// A backend at a server of this machine with a library and players.
class BackendFixture : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(server.listen()); }
    void TearDown() override {
        if (backend)
            outcomeOf(backend->disconnect());
        backend.reset();
    }

    void make(FakeLibrary::Size size = {}, FakeLibrary::Dialect dialect = FakeLibrary::Dialect::today) {
        library = std::make_unique<FakeLibrary>(server, size, dialect);
        players = std::make_unique<FakePlayers>(server, *library);
        MusicAssistantClient::Timing timing;
        timing.callTimeout = callTimeout;
        timing.reconnect.steps = {std::chrono::milliseconds(20)};
        timing.reconnect.cap = std::chrono::milliseconds(20);
        const MusicAssistantServerSettings settings{
            .address = {.baseURL = server.url(), .serverID = QStringLiteral("fake-server")},
            .token = MusicAssistantToken(QStringLiteral("secret-token"))};
        const MusicAssistantBackend::Server chosen{
            .id = {}, .name = QStringLiteral("Home"), .settings = settings};
        const MusicAssistantBackend::Collaborators with{
            .transports = transports, .http = http, .clock = clock};
        backend = std::make_shared<MusicAssistantBackend>(chosen, with, timing);
    }
    /// Signed in, with the players and the list of commands read.
    void open(FakeLibrary::Size size = {}, FakeLibrary::Dialect dialect = FakeLibrary::Dialect::today) {
        make(size, dialect);
        connectBackend();
    }
    void connectBackend() {
        const int before = countOf("player_queues/all");
        ASSERT_EQ(failureOf(backend->connect()), QString());
        ASSERT_TRUE(waitUntil([&] { return countOf("player_queues/all") > before; }));
        // Waits for the list of commands, and is answered behind the players.
        outcomeOf(backend->recommendationItems({}));
    }
    [[nodiscard]] bool sawCommand(const char *name) const { return countOf(name) > 0; }
    [[nodiscard]] int countOf(const char *name) const {
        const auto &all = server.receivedCommands();
        return static_cast<int>(std::count_if(all.begin(), all.end(), [name](const auto &command) {
            return command.name == QLatin1StringView(name);
        }));
    }
    /// Of the latest command of that name.
    [[nodiscard]] QJsonObject argsOf(const char *name) const {
        const auto &all = server.receivedCommands();
        for (auto command = all.rbegin(); command != all.rend(); ++command) {
            if (command->name == QLatin1StringView(name))
                return command->args;
        }
        return {{QStringLiteral("missing"), QString::fromLatin1(name)}};
    }
    [[nodiscard]] static MediaID id(MediaKind kind, int index) {
        return {kind, FakeLibrary::uri(rawValue(kind), index)};
    }
    void setFault(const char *command, FakeMusicAssistant::CommandFault fault) {
        server.commandFaults.insert(QString::fromLatin1(command), fault);
    }

    FakeMusicAssistant server;
    std::unique_ptr<FakeLibrary> library;
    std::unique_ptr<FakePlayers> players;
    SystemScheduler clock;
    QtWebSocketTransports transports;
    QtHTTPTransport http;
    std::chrono::milliseconds callTimeout{30'000};
    std::shared_ptr<MusicAssistantBackend> backend;
    const OutputDevice::ID kitchen{QStringLiteral("kitchen")};
    const OutputDevice::ID bedroom{QStringLiteral("bedroom")};
};

} // namespace vantor
