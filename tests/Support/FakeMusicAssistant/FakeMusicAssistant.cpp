#include "tests/Support/FakeMusicAssistant/FakeMusicAssistant.h"

#include <QDateTime>
#include <QHostAddress>
#include <QJsonDocument>
#include <QLocale>
#include <QSslSocket>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int pieceSize = 500;
constexpr qsizetype maxHeadBytes = 16 << 10;
constexpr qsizetype maxFrameBytes = 4 << 20;
constexpr int pingIntervalMs = 25'000;

enum ErrorCode { invalidCommand = 12, authenticationRequired = 20, invalidToken = 23 };

QString textOf(const QJsonObject &message) {
    return QString::fromUtf8(QJsonDocument(message).toJson(QJsonDocument::Compact));
}

void sendTo(QWebSocket *client, const QJsonObject &message) {
    if (client)
        client->sendTextMessage(textOf(message));
}

QJsonObject userRecord() {
    return {{u"user_id"_s, u"u1"_s}, {u"username"_s, u"listener"_s},     {u"role"_s, u"user"_s},
            {u"enabled"_s, true},    {u"display_name"_s, u"Listener"_s}, {u"player_filter"_s, QJsonArray()}};
}

QJsonObject eventMessage(const QString &name, const QJsonValue &objectID, const QJsonValue &data) {
    return {{u"event"_s, name}, {u"object_id"_s, objectID}, {u"data"_s, data}};
}

} // namespace

void FakeAnswer::result(const QJsonValue &result, bool partial) const {
    send({{u"message_id"_s, m_messageID}, {u"result"_s, result}, {u"partial"_s, partial}});
}

void FakeAnswer::stream(const QJsonArray &entries) const {
    QJsonArray piece;
    for (const QJsonValue entry : entries) {
        piece.append(entry);
        if (piece.size() == pieceSize)
            result(std::exchange(piece, {}), true);
    }
    result(piece);
}

void FakeAnswer::error(int code, const QString &details) const {
    send({{u"message_id"_s, m_messageID}, {u"error_code"_s, code}, {u"details"_s, details}});
}

FakeAnswer FakeAnswer::doubled() const {
    FakeAnswer made = *this;
    made.m_isDoubled = true;
    return made;
}

void FakeAnswer::send(const QJsonObject &message) const {
    sendTo(m_client, message);
    if (m_isDoubled)
        sendTo(m_client, message);
}

/// Hands out plain or encrypted sockets.
class FakeMusicAssistant::Listener : public QTcpServer {
  public:
    explicit Listener(FakeMusicAssistant &server) : m_server(server) {}

  protected:
    void incomingConnection(qintptr handle) override {
        auto *socket = m_server.tls ? new QSslSocket(&m_server) : new QTcpSocket(&m_server);
        socket->setSocketDescriptor(handle);
        if (auto *encrypted = qobject_cast<QSslSocket *>(socket)) {
            encrypted->setSslConfiguration(*m_server.tls);
            encrypted->startServerEncryption();
        }
        m_server.takeConnection(socket);
    }

  private:
    FakeMusicAssistant &m_server;
};

FakeMusicAssistant::FakeMusicAssistant()
    : info{{u"server_id"_s, u"fake-server"_s}, {u"server_version"_s, u"2.7.0"_s},
           {u"schema_version"_s, 65},          {u"min_supported_schema_version"_s, 28},
           {u"homeassistant_addon"_s, false},  {u"onboard_done"_s, true},
           {u"name"_s, u"Fake Home"_s},        {u"status"_s, u"running"_s},
           {u"has_remote_access"_s, false}},
      m_listener(std::make_unique<Listener>(*this)), m_upgrades(u"fake"_s, QWebSocketServer::NonSecureMode) {
    connect(&m_upgrades, &QWebSocketServer::newConnection, this,
            [this] { greet(m_upgrades.nextPendingConnection()); });
    m_pings.callOnTimeout(this, [this] {
        for (auto client = m_clients.keyBegin(); client != m_clients.keyEnd(); ++client)
            (*client)->ping();
    });
    m_pings.start(pingIntervalMs);
    onHTTP(u"/info"_s, [this](const QUrl &) {
        return HTTPAnswer{.body = QJsonDocument(info).toJson(QJsonDocument::Compact)};
    });
}

FakeMusicAssistant::~FakeMusicAssistant() {
    stop();
}

bool FakeMusicAssistant::listen(quint16 port) {
    const bool listens = m_listener->listen(QHostAddress::LocalHost, port);
    m_port = listens ? m_listener->serverPort() : m_port;
    return listens;
}

QUrl FakeMusicAssistant::url() const {
    return QUrl((tls ? u"https://localhost:%1"_s : u"http://127.0.0.1:%1"_s).arg(m_port));
}

double FakeMusicAssistant::time() const {
    return static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000 + clockAhead;
}

void FakeMusicAssistant::stop() {
    m_listener->close();
    dropClients();
}

void FakeMusicAssistant::dropClients() {
    for (QWebSocket *client : m_clients.keys()) {
        client->abort();
        client->deleteLater();
    }
    m_clients.clear();
}

void FakeMusicAssistant::takeConnection(QTcpSocket *socket) {
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readHead(socket); });
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
}

void FakeMusicAssistant::readHead(QTcpSocket *socket) {
    const QByteArray head = socket->peek(maxHeadBytes);
    if (!head.contains("\r\n\r\n")) {
        if (head.size() >= maxHeadBytes)
            socket->abort();
        return;
    }
    const QList<QByteArray> requestLine = head.left(head.indexOf("\r\n")).split(' ');
    const QUrl target(QString::fromLatin1(requestLine.value(1)));
    disconnect(socket, nullptr, this, nullptr);
    const bool isSendspin = m_takeSendspin && target.path() == "/sendspin"_L1;
    // An answer about the time must not wait until the sound before it has been acknowledged.
    if (isSendspin)
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    if ((isSendspin || target.path() == "/ws"_L1) && head.toLower().contains("upgrade: websocket")) {
        disconnect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        m_upgrades.handleConnection(socket);
    } else {
        socket->readAll();
        answerHTTP(socket, target);
    }
}

void FakeMusicAssistant::answerHTTP(QTcpSocket *socket, const QUrl &target) {
    ++m_httpRequests;
    const HTTPAnswer answer = pageFor(target);
    const auto date = QDateTime::fromSecsSinceEpoch(static_cast<qint64>(time()), Qt::UTC);
    socket->write(
        "HTTP/1.1 " + QByteArray::number(answer.status) + " Answer\r\nContent-Type: " + answer.type +
        "\r\nContent-Length: " + QByteArray::number(answer.body.size()) +
        "\r\nDate: " + QLocale::c().toString(date, u"ddd, dd MMM yyyy hh:mm:ss 'GMT'"_s).toLatin1() +
        "\r\nConnection: close\r\n" + answer.headers + "\r\n" + answer.body);
    socket->disconnectFromHost();
}

FakeMusicAssistant::HTTPAnswer FakeMusicAssistant::pageFor(const QUrl &target) const {
    if (fault == Fault::redirects)
        return {.status = 302, .headers = "Location: " + redirectTarget.toEncoded() + "\r\n"};
    if (fault == Fault::failsHTTP)
        return {.type = "text/html", .body = "<html><body>Not here</body></html>"};
    auto page = m_pages.constFind(target.path());
    if (page == m_pages.constEnd())
        page = m_pages.constFind(target.path().section(u'/', 0, -2) + u'/');
    return page == m_pages.constEnd() ? HTTPAnswer{.status = 404} : (*page)(target);
}

void FakeMusicAssistant::greet(QWebSocket *client) {
    if (!client)
        return;
    if (client->requestUrl().path() == "/sendspin"_L1) {
        m_takeSendspin(client);
        return;
    }
    m_clients.insert(client, {});
    connect(client, &QWebSocket::textMessageReceived, this,
            [this, client](const QString &text) { takeFrame(client, text); });
    connect(client, &QWebSocket::disconnected, this, [this, client] {
        m_clients.remove(client);
        client->deleteLater();
    });
    if (fault == Fault::garbageFirst) {
        for (const auto &garbage :
             {u""_s, u"{"_s, u"[]"_s, u"42"_s, u"{\"event\": 7}"_s, u"{\"server_id\": \"x\"}"_s})
            client->sendTextMessage(garbage);
        client->sendBinaryMessage("\x01\x02");
    }
    QJsonObject shown = info;
    if (fault == Fault::brokenInfo)
        shown.insert("schema_version"_L1, u"twenty-eight"_s);
    if (fault != Fault::saysNothing)
        client->sendTextMessage(textOf(shown));
}

void FakeMusicAssistant::takeFrame(QWebSocket *client, const QString &text) {
    if (text.toUtf8().size() > maxFrameBytes) {
        client->close(QWebSocketProtocol::CloseCodeTooMuchData);
        return;
    }
    m_received.append(text);
    const QJsonObject message = QJsonDocument::fromJson(text.toUtf8()).object();
    if (message.isEmpty()) {
        client->close(QWebSocketProtocol::CloseCodeDatatypeNotSupported);
        return;
    }
    const QString name = message.value("command"_L1).toString();
    const QJsonObject args = message.value("args"_L1).toObject();
    const FakeAnswer answer(client, message.value("message_id"_L1));
    m_receivedCommands.append({.name = name, .args = args});
    if (name == "auth"_L1)
        authenticate(client, args, answer);
    else if (!m_clients.value(client).signedIn)
        answer.error(authenticationRequired, u"Authentication required"_s);
    else
        run(name, args, answer);
}

void FakeMusicAssistant::authenticate(QWebSocket *client, const QJsonObject &args, const FakeAnswer &answer) {
    if (fault == Fault::stallsDuringAuth)
        return;
    if (fault == Fault::dropsDuringAuth) {
        client->close();
        return;
    }
    if (fault == Fault::eventDuringAuth)
        sendTo(client, eventMessage(u"player_updated"_s, u"p1"_s, QJsonObject()));
    const QString token = args.value("token"_L1).toString(args.value("access_token"_L1).toString());
    const bool isGood = tokens.contains(token) && fault != Fault::notAuthenticated;
    if (fault == Fault::notAuthenticated)
        answer.result(QJsonObject{{u"authenticated"_s, false}});
    else if (isGood)
        answer.result(QJsonObject{{u"authenticated"_s, true}, {u"user"_s, userRecord()}});
    else
        answer.error(token.isEmpty() ? authenticationRequired : invalidToken, u"Sign-in refused"_s);
    m_clients[client].signedIn = isGood;
    if (fault == Fault::closesAfterAuth)
        client->close(QWebSocketProtocol::CloseCodeGoingAway);
}

void FakeMusicAssistant::run(const QString &name, const QJsonObject &args, const FakeAnswer &answer) {
    auto found = commandFaults.constFind(name);
    if (found == commandFaults.constEnd())
        found = commandFaults.constFind(u"*"_s);
    if (found == commandFaults.constEnd())
        execute(name, args, answer);
    else
        runFaulty(*found, name, args, answer);
}

void FakeMusicAssistant::runFaulty(const CommandFault &commandFault, const QString &name,
                                   const QJsonObject &args, const FakeAnswer &answer) {
    switch (commandFault.kind) {
    case CommandFault::Kind::stalls:
        return;
    case CommandFault::Kind::fails:
        return answer.error(commandFault.code, u"As the test wants"_s);
    case CommandFault::Kind::garbles:
        return answer.result(QJsonObject{{u"nonsense"_s, QJsonArray{1, u"two"_s, QJsonObject()}}});
    case CommandFault::Kind::doubles:
        return execute(name, args, answer.doubled());
    case CommandFault::Kind::drops:
        return dropClients();
    case CommandFault::Kind::doesDrops:
        execute(name, args, FakeAnswer(nullptr, {}));
        return dropClients();
    case CommandFault::Kind::delays:
        QTimer::singleShot(commandFault.delay, this,
                           [this, name, args, answer] { execute(name, args, answer); });
        return;
    }
}

void FakeMusicAssistant::execute(const QString &name, const QJsonObject &args, const FakeAnswer &answer) {
    const auto handler = m_commands.constFind(name);
    if (handler == m_commands.constEnd())
        answer.error(invalidCommand, u"Invalid command: %1"_s.arg(name));
    else
        (*handler)(args, answer);
}

void FakeMusicAssistant::sendEvent(const QString &name, const QJsonValue &objectID, const QJsonValue &data) {
    for (auto client = m_clients.begin(); client != m_clients.end(); ++client) {
        if (client->signedIn)
            sendTo(client.key(), eventMessage(name, objectID, data));
    }
}

void FakeMusicAssistant::sendRaw(const QString &text) {
    for (auto client = m_clients.keyBegin(); client != m_clients.keyEnd(); ++client)
        (*client)->sendTextMessage(text);
}

} // namespace vantor
