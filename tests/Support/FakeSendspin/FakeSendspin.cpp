#include "tests/Support/FakeSendspin/FakeSendspin.h"

#include <QPointer>

#include <cmath>

namespace vantor {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {
constexpr auto pumpInterval = 20ms;
constexpr auto restartLead = 500ms;
} // namespace

FakeSendspin::FakeSendspin(Timeline &time, unsigned seed)
    : m_time(time), m_chance(seed), m_upgrades(u"fake"_s, QWebSocketServer::NonSecureMode) {
    connect(&m_listener, &QTcpServer::newConnection, this, [this] {
        QTcpSocket *socket = m_listener.nextPendingConnection();
        // An answer about the time must not wait until the sound before it has been acknowledged.
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        m_upgrades.handleConnection(socket);
    });
    connect(&m_upgrades, &QWebSocketServer::newConnection, this,
            [this] { greet(m_upgrades.nextPendingConnection()); });
}

FakeSendspin::~FakeSendspin() {
    dropClients();
}

void FakeSendspin::setClock(std::int64_t skew, double drift) {
    m_skew = skew;
    m_drift = drift / 1e6;
    m_driftsFrom = m_time.now();
}

std::int64_t FakeSendspin::clockAt(std::int64_t timelineInstant) const {
    return timelineInstant + m_skew +
           std::llround(m_drift * static_cast<double>(timelineInstant - m_driftsFrom));
}

bool FakeSendspin::listen(quint16 port) {
    return m_listener.listen(QHostAddress::LocalHost, port);
}

QUrl FakeSendspin::url() const {
    return QUrl(u"http://127.0.0.1:%1"_s.arg(m_listener.serverPort()));
}

void FakeSendspin::greet(QWebSocket *socket) {
    if (!socket)
        return;
    if (socket->requestUrl().path() != "/sendspin"_L1) {
        socket->abort();
        socket->deleteLater();
        return;
    }
    take(socket);
}

void FakeSendspin::take(QWebSocket *socket) {
    const auto ifThere = [guarded = QPointer(socket)](auto action) {
        return [guarded, action](const auto &...arguments) {
            if (guarded)
                action(*guarded, arguments...);
        };
    };
    FakeSendspinPeer *peer = attach(
        {.sendText = ifThere([](QWebSocket &to, const QString &text) { to.sendTextMessage(text); }),
         .sendBinary = ifThere([](QWebSocket &to, const QByteArray &data) { to.sendBinaryMessage(data); }),
         .close = ifThere([](QWebSocket &to, int code, const QString &reason) {
             if (code == 0)
                 to.abort();
             else
                 to.close(static_cast<QWebSocketProtocol::CloseCode>(code), reason);
         })});
    socket->setParent(this);
    connect(socket, &QWebSocket::textMessageReceived, peer, &FakeSendspinPeer::takeText);
    connect(socket, &QWebSocket::disconnected, peer, [this, peer] { detach(peer); });
    connect(socket, &QWebSocket::disconnected, socket, &QObject::deleteLater);
}

FakeSendspinPeer *FakeSendspin::attach(FakeLink link) {
    return m_peers.emplace_back(std::make_unique<FakeSendspinPeer>(*this, std::move(link))).get();
}

void FakeSendspin::detach(FakeSendspinPeer *peer) {
    const auto found =
        std::find_if(m_peers.begin(), m_peers.end(), [peer](const auto &each) { return each.get() == peer; });
    if (found == m_peers.end())
        return;
    m_gone.push_back(std::move(*found));
    m_peers.erase(found);
    m_burial = m_time.after(1s, [this] { m_gone.clear(); });
}

void FakeSendspin::dropClients() {
    for (FakeSendspinPeer *peer : clients()) {
        peer->close(0, {});
        detach(peer);
    }
}

std::vector<FakeSendspinPeer *> FakeSendspin::clients() const {
    std::vector<FakeSendspinPeer *> clients;
    for (const auto &peer : m_peers)
        clients.push_back(peer.get());
    return clients;
}

void FakeSendspin::play(const MadeFormat &format, double from, std::chrono::microseconds lead) {
    if (!MadeEncoder(format, 0).isValid())
        return;
    endStream();
    m_stream = std::make_unique<MadeStream>(format, clock() + lead.count(), from);
    send(u"group/update"_s, {{u"playback_state"_s, u"playing"_s}});
    for (FakeSendspinPeer *peer : clients())
        peer->restart(std::nullopt);
    pumpLater();
}

void FakeSendspin::seek(double to, Seek how) {
    if (!m_stream)
        return;
    const int newest = m_stream->newestFormat();
    const MadeFormat format = m_stream->coding(newest).format;
    const QJsonObject sent{{u"server_transmitted"_s, static_cast<qint64>(clock())}};
    if (how == Seek::clears)
        send(u"stream/clear"_s, sent);
    else
        endStream();
    m_stream =
        std::make_unique<MadeStream>(format, clock() + std::chrono::microseconds(restartLead).count(), to);
    for (FakeSendspinPeer *peer : clients())
        peer->restart(newest);
    pumpLater();
}

void FakeSendspin::changeFormat(const MadeFormat &format) {
    if (m_stream && MadeEncoder(format, 0).isValid())
        m_stream->changeFormat(format);
}

void FakeSendspin::endStream() {
    for (FakeSendspinPeer *peer : clients())
        peer->endStream();
    m_stream.reset();
    m_pump.reset();
}

void FakeSendspin::command(const QString &command, const QJsonObject &members) {
    QJsonObject player = members;
    player.insert("command"_L1, command);
    send(u"server/command"_s, {{u"player"_s, player}});
}

void FakeSendspin::send(const QString &type, const QJsonObject &payload) {
    for (FakeSendspinPeer *peer : clients())
        peer->send(type, payload);
}

void FakeSendspin::pumpLater() {
    m_pump = m_time.after(pumpInterval, [this] {
        std::int64_t oldest = std::numeric_limits<std::int64_t>::max();
        for (FakeSendspinPeer *peer : clients()) {
            peer->pump();
            oldest = std::min(oldest, peer->nextChunk() < 0 ? oldest : peer->nextChunk());
        }
        m_stream->forgetPlayed(oldest, clock());
        pumpLater();
    });
}

void FakeSendspin::record(const QJsonObject &message) {
    m_received.append(message);
}

QList<QJsonObject> FakeSendspin::received(const QString &type) const {
    QList<QJsonObject> payloads;
    for (const QJsonObject &message : m_received) {
        if (message.value("type"_L1) == type)
            payloads.append(message.value("payload"_L1).toObject());
    }
    return payloads;
}

} // namespace vantor
