#pragma once

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QPointer>
#include <QSet>
#include <QSslConfiguration>
#include <QTcpServer>
#include <QTimer>
#include <QUrl>
#include <QWebSocket>
#include <QWebSocketServer>

#include <chrono>
#include <functional>
#include <optional>

namespace vantor {

/// How a command is answered: at once or whenever the handler likes. A value; any number of copies.
class FakeAnswer {
  public:
    FakeAnswer(QWebSocket *client, const QJsonValue &messageID) : m_client(client), m_messageID(messageID) {}

    void result(const QJsonValue &result, bool partial = false) const;
    /// In pieces of 500 entries; the last one, which may be empty, ends it.
    void stream(const QJsonArray &entries) const;
    void error(int code, const QString &details) const;
    /// Which says everything twice.
    [[nodiscard]] FakeAnswer doubled() const;

  private:
    void send(const QJsonObject &message) const;

    QPointer<QWebSocket> m_client;
    QJsonValue m_messageID; ///< as it came
    bool m_isDoubled = false;
};

/// A Music Assistant server as far as a client sees one: the real messages over a real WebSocket and HTTP on
/// one port, and the faults that a test asks for. What the library and the players answer is added from
/// outside. One thread, that of the event loop.
class FakeMusicAssistant : public QObject {
  public:
    enum class Fault {
        none,
        saysNothing,      ///< not even the server's information
        garbageFirst,     ///< frames that mean nothing before the information
        brokenInfo,       ///< the information has members of wrong types
        stallsDuringAuth, ///< takes the token and never answers
        dropsDuringAuth,
        eventDuringAuth,  ///< an event in place of the answer
        notAuthenticated, ///< a result that says no
        closesAfterAuth,  ///< as a server does that falls over
        redirects,        ///< every request over HTTP, to `redirectTarget`
        failsHTTP,        ///< every request over HTTP, with a page in HTML
    };
    /// What becomes of a command; its name in `commandFaults`, or "*" for all but signing in.
    struct CommandFault {
        enum class Kind {
            stalls,    ///< no answer
            fails,     ///< with `code`
            garbles,   ///< a result of a form that no client expects
            doubles,   ///< the answer twice
            drops,     ///< the connection, instead of doing it
            doesDrops, ///< does it, but drops the connection before the answer
            delays,    ///< by `delay`
        };
        Kind kind = Kind::stalls;
        int code = 999;
        std::chrono::milliseconds delay{200};
    };
    struct HTTPAnswer {
        int status = 200;
        QByteArray type = "application/json";
        QByteArray body = {};
        QByteArray headers = {}; ///< more of them, each with its line end
    };
    struct ReceivedCommand {
        QString name;
        QJsonObject args;
    };
    using CommandHandler = std::function<void(const QJsonObject &args, const FakeAnswer &answer)>;
    using HTTPHandler = std::function<HTTPAnswer(const QUrl &target)>;

    FakeMusicAssistant();
    ~FakeMusicAssistant() override;

    // What the server is; to be changed at any time.
    QJsonObject info;
    QSet<QString> tokens{QStringLiteral("secret-token")};
    Fault fault = Fault::none;
    QHash<QString, CommandFault> commandFaults;
    QUrl redirectTarget;
    double clockAhead = 0;                ///< of its clock, in seconds
    std::optional<QSslConfiguration> tls; ///< from the next listen() on

    /// On this machine only; 0 for any free port.
    bool listen(quint16 port = 0);
    [[nodiscard]] quint16 port() const { return m_port; }
    /// Of its clock, seconds since 1970.
    [[nodiscard]] double time() const;
    [[nodiscard]] QUrl url() const;
    /// Drops everybody and takes nobody; listen(port()) brings it back.
    void stop();
    /// Drops the connections without a word.
    void dropClients();

    /// In place of one with this name.
    void onCommand(const QString &name, CommandHandler handler) {
        m_commands.insert(name, std::move(handler));
    }
    /// A path that ends with a slash stands for all below it.
    void onHTTP(const QString &path, HTTPHandler handler) { m_pages.insert(path, std::move(handler)); }
    /// Who takes the WebSockets of "/sendspin"; without one that is not there.
    void onSendspin(std::function<void(QWebSocket *)> take) { m_takeSendspin = std::move(take); }
    /// To everybody who has signed in.
    void sendEvent(const QString &name, const QJsonValue &objectID, const QJsonValue &data);
    /// The text as it is.
    void sendRaw(const QString &text);

    [[nodiscard]] int clientCount() const { return static_cast<int>(m_clients.size()); }
    /// Every text frame that ever came in.
    [[nodiscard]] const QStringList &receivedFrames() const { return m_received; }
    [[nodiscard]] const QList<ReceivedCommand> &receivedCommands() const { return m_receivedCommands; }
    [[nodiscard]] int httpRequestCount() const { return m_httpRequests; }

  private:
    struct Client {
        bool signedIn = false;
    };
    class Listener;

    void takeConnection(QTcpSocket *socket);
    void readHead(QTcpSocket *socket);
    void answerHTTP(QTcpSocket *socket, const QUrl &target);
    [[nodiscard]] HTTPAnswer pageFor(const QUrl &target) const;
    void greet(QWebSocket *client);
    void takeFrame(QWebSocket *client, const QString &text);
    void authenticate(QWebSocket *client, const QJsonObject &args, const FakeAnswer &answer);
    void run(const QString &name, const QJsonObject &args, const FakeAnswer &answer);
    void runFaulty(const CommandFault &commandFault, const QString &name, const QJsonObject &args,
                   const FakeAnswer &answer);
    void execute(const QString &name, const QJsonObject &args, const FakeAnswer &answer);

    std::unique_ptr<Listener> m_listener;
    QWebSocketServer m_upgrades;
    QTimer m_pings;
    quint16 m_port = 0;
    QHash<QWebSocket *, Client> m_clients;
    QHash<QString, CommandHandler> m_commands;
    QHash<QString, HTTPHandler> m_pages;
    std::function<void(QWebSocket *)> m_takeSendspin;
    QStringList m_received;
    QList<ReceivedCommand> m_receivedCommands;
    int m_httpRequests = 0;
};

} // namespace vantor
